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
    folder = os.path.dirname(os.path.abspath(__file__))
    command = [os.path.join(Environment.REPOSITORY, "Scripts", "with-catalog"), Environment.CATALOG,
               sys.executable, os.path.join(folder, "ZeepLister.py")]
    result = subprocess.run(command, cwd=model.folder, text=True, check=True,
                            input="".join(document + "\n" for document in documents),
                            stdout=subprocess.PIPE, stderr=subprocess.PIPE)
    if result.stderr:
        raise AssertionError(result.stderr)
    return {answer.pop("document"): answer for answer in map(json.loads, result.stdout.splitlines())}


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
        answers = listOperations(self.model, documents)
        self.assertEqual(sorted(answers), documents)
        findings = []
        for document, answer in answers.items():
            stated = statedOperations(self.model.path(document))
            self.assertLessEqual(_OF_EVERY_CLASS, set(stated), document)
            if "error" in answer:
                findings.append((document, answer["error"]))
                continue
            shown = collections.Counter(answer["operations"])
            self.assertLessEqual(set(shown), set(stated), document)
            findings += [(document, f"shows {shown[name]} of {times} operations {name}")
                         for name, times in stated.items() if shown[name] != times]
        Rejections.check(self, "zeep", self.model, findings)


@unittest.skipUnless(os.environ["CLIENTS_MODEL"] == "sample", "calls are tried on the sample model")
class ZeepCallTest(unittest.TestCase):

    def setUp(self):
        model = Model.Model.ofThisRun()
        self.guide = Guide.Guide.read()
        self.folder = tempfile.mkdtemp(dir=Environment.WORK_FOLDER)
        self.addCleanup(shutil.rmtree, self.folder)
        model.copyTo(self.folder)
        with open(os.path.join(self.folder, "call.py"), "w", encoding="utf-8") as file:
            file.write(self.guide.text("python", "zeep-call"))

    def call(self, commands, answer):
        """Runs the guide's program; gives the outline of its only request."""
        with FakeService.FakeService(FakeService.readMessage(answer)) as service:
            result = Guide.runCommands(commands, self.folder, SERVICE=service.address)
        self.assertEqual(result, (0, self.guide.text("output", "zeep-call")))
        self.assertEqual(
            service.contentTypes,
            ['application/soap+xml; charset=utf-8; action="http://schemas.dmtf.org/wbem/ws-cim/1/'
             'cim-schema/2/CIM_ComputerSystem/RequestStateChange"'])
        return service.outlines()[0]

    def testGuidesProgramCallsAMethod(self):
        request = self.call(self.guide.text("sh", "zeep-call"), "Answer.xml")
        expected = FakeService.outline(FakeService.readMessage("ZeepRequest.xml"))
        self.assertEqual(request, expected)

    def testQualifiedCopiesQualifyParameters(self):
        commands = self.guide.text("sh", "qualified") + self.guide.text("sh", "zeep-call").replace(
            " documents/", " qualified/")
        request = self.call(commands, "QualifiedAnswer.xml")
        expected = FakeService.outline(FakeService.readMessage("ZeepQualifiedRequest.xml"))
        self.assertEqual(request, expected)
