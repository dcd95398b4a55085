"""What zeep makes of the documents."""

import collections
import json
import os
import shutil
import subprocess
import sys
import tempfile
import unittest

from lxml import etree

import Environment
import FakeService
import Guide
import Model
import Rejections

_WSDL = "{http://schemas.xmlsoap.org/wsdl/}"
_OF_EVERY_CLASS = {"Create", "Delete", "Enumerate", "Get", "Pull", "Put"}


def listOperations(model, documents):
    """For each document what ZeepLister.py writes of it."""
    directory = os.path.dirname(os.path.abspath(__file__))
    command = [os.path.join(Environment.REPOSITORY, "Scripts", "with-catalog"), Environment.CATALOG,
               sys.executable, os.path.join(directory, "ZeepLister.py")]
    result = subprocess.run(command, cwd=model.directory, text=True, check=True,
                            input="".join(document + "\n" for document in documents),
                            stdout=subprocess.PIPE, stderr=subprocess.PIPE)
    if result.stderr:
        raise AssertionError(result.stderr)
    return {response.pop("document"): response for response in map(json.loads, result.stdout.splitlines())}


def statedOperations(path):
    """The names of a document's operations, as often as it states them."""
    portType, = etree.parse(path).getroot().iter(_WSDL + "portType")
    return collections.Counter(operation.get("name") for operation in portType.iter(_WSDL + "operation"))


class ZeepTest(unittest.TestCase):

    @classmethod
    def setUpClass(cls):
        cls.model = Model.Model.ofThisRun()

    def testEveryWsdlLoadsAndShowsItsOperations(self):
        documents = self.model.documents(".wsdl")
        responses = listOperations(self.model, documents)
        self.assertEqual(sorted(responses), documents)
        findings = []
        for document, response in responses.items():
            stated = statedOperations(self.model.path(document))
            self.assertLessEqual(_OF_EVERY_CLASS, set(stated), document)
            if "error" in response:
                findings.append((document, response["error"]))
                continue
            shown = collections.Counter(response["operations"])
            self.assertLessEqual(set(shown), set(stated), document)
            findings += [(document, f"shows {shown[name]} of {times} operations {name}")
                         for name, times in stated.items() if shown[name] != times]
        Rejections.check(self, "zeep", self.model, findings)


@unittest.skipUnless(os.environ["CLIENTS_MODEL"] == "sample", "calls are tried on the sample model")
class ZeepCallTest(unittest.TestCase):

    def setUp(self):
        model = Model.Model.ofThisRun()
        self.guide = Guide.Guide.read()
        self.directory = tempfile.mkdtemp(dir=Environment.WORK_DIRECTORY)
        self.addCleanup(shutil.rmtree, self.directory)
        model.copyTo(self.directory)
        with open(os.path.join(self.directory, "call.py"), "w", encoding="utf-8") as file:
            file.write(self.guide.text("python", "zeep-call"))

    def call(self, commands, response):
        """Runs the guide's program; gives the outline of its only request."""
        with FakeService.FakeService(FakeService.readMessage(response)) as service:
            result = Guide.runCommands(commands, self.directory, SERVICE=service.address)
        self.assertEqual(result, (0, self.guide.text("output", "zeep-call")))
        self.assertEqual(
            service.contentTypes,
            ['application/soap+xml; charset=utf-8; action="http://schemas.dmtf.org/wbem/ws-cim/1/'
             'cim-schema/2/CIM_ComputerSystem/RequestStateChange"'])
        return service.outlines()[0]

    def testGuidesProgramCallsAMethod(self):
        request = self.call(self.guide.text("sh", "zeep-call"), "Response.xml")
        expected = FakeService.outline(FakeService.readMessage("ZeepRequest.xml"))
        self.assertEqual(request, expected)

    def testQualifiedCopiesQualifyParameters(self):
        commands = self.guide.text("sh", "qualified") + self.guide.text("sh", "zeep-call").replace(
            " documents/", " qualified/")
        request = self.call(commands, "QualifiedResponse.xml")
        expected = FakeService.outline(FakeService.readMessage("ZeepQualifiedRequest.xml"))
        self.assertEqual(request, expected)
