"""What the guide tells users is so: each command on the page is run as it stands there."""

import os
import shutil
import tempfile
import unittest

from lxml import etree

import Environment
import Guide
import LibxmlTest
import Model
import XercesTest

_FENCE = "```"
# Who runs the commands that are not run here.
_ELSEWHERE = {"export", "export-dmtf", "well-formed", "valid-wsdl", "instance", "zeep-call", "qualified",
              "gsoap-generate", "gsoap-call"}
_HERE = {"xerces", "zeep-list", "one-restriction", "no-text-interval", "one-create"}


class GuideTest(unittest.TestCase):

    @classmethod
    def setUpClass(cls):
        Environment.needStandardSchemas()
        cls.guide = Guide.Guide.read()

    def workOn(self, modelName):
        """A directory of the model's layout, whose documents may be changed."""
        model = Model.Model(modelName)
        model.needMof()
        directory = tempfile.mkdtemp(dir=Environment.WORK_DIRECTORY)
        self.addCleanup(shutil.rmtree, directory)
        model.copyTo(directory)
        return directory

    def testEveryCommandIsRunBySomeTest(self):
        self.assertEqual(set(self.guide.names("sh")), _HERE | _ELSEWHERE)
        self.assertLessEqual(set(self.guide.names("output")), set(self.guide.names("sh")))

    def testCommandsPrintWhatTheGuideSays(self):
        directory = self.workOn("sample")
        for name in ("xerces", "zeep-list"):
            with self.subTest(name):
                self.assertEqual(Guide.runCommands(self.guide.text("sh", name), directory),
                                 (0, self.guide.text("output", name)))

    def faultsOf(self, directory, className):
        """What libxml2 and Xerces-C do not take in the documents of the class."""
        path = os.path.join(directory, "documents", className)
        parser = etree.XMLParser(no_network=True)
        schema, = etree.parse(path + ".wsdl", parser).getroot().iter(
            "{http://www.w3.org/2001/XMLSchema}schema")
        alone = etree.fromstring(etree.tostring(schema), parser)
        faults = LibxmlTest.compileFaults("libxml2, .wsdl", alone)
        faults += LibxmlTest.compileFaults("libxml2, .xsd", etree.parse(path + ".xsd", parser))
        faults += XercesTest.loadFaults(directory, [path + ".xsd"])
        commands = self.guide.text("sh", "valid-wsdl").replace(
            "find documents -name '*.wsdl'", f"echo documents/{className}.wsdl")
        status, output = Guide.runCommands(commands, directory)
        return faults + ([] if status == 0 else [("libxml2, WSDL", output)])

    def checkWayRound(self, name, modelName, className):
        directory = self.workOn(modelName)
        self.assertTrue(self.faultsOf(directory, className), "nothing to go round")
        self.assertEqual(Guide.runCommands(self.guide.text("sh", name), directory), (0, ""))
        self.assertEqual(self.faultsOf(directory, className), [])

    def testCopyWithOneRestrictionIsAccepted(self):
        self.checkWayRound("one-restriction", "sample", "root/cimv2/TSK_Server")

    def testCopyWithoutIntervalOfTextsIsAccepted(self):
        self.checkWayRound("no-text-interval", "sample", "root/cimv2/TSK_Everything")

    def testCopyWithOneCreateIsAccepted(self):
        self.checkWayRound("one-create", "dmtf", "root/cimv2/CIM_OpaqueManagementDataService")


    def testQualifiedCopiesAreAccepted(self):
        directory = self.workOn("sample")
        self.assertEqual(Guide.runCommands(self.guide.text("sh", "qualified"), directory), (0, ""))
        shutil.rmtree(os.path.join(directory, "documents"))
        os.rename(os.path.join(directory, "qualified"), os.path.join(directory, "documents"))
        self.assertEqual(self.faultsOf(directory, "root/cimv2/CIM_ComputerSystem"), [])


class GuideReaderTest(unittest.TestCase):

    def testBlocksAreFoundByLanguageAndName(self):
        guide = Guide.Guide(f"text\n{_FENCE}sh list\nls\n{_FENCE}\n{_FENCE}output list\na\nb\n{_FENCE}\n")
        self.assertEqual(guide.names("sh"), ["list"])
        self.assertEqual(guide.text("sh", "list"), "ls\n")
        self.assertEqual(guide.text("output", "list"), "a\nb\n")

    def testBlockWithoutNameIsRefused(self):
        with self.assertRaisesRegex(ValueError, "without language or name"):
            Guide.Guide(f"{_FENCE}sh\nls\n{_FENCE}\n")

    def testNameThatIsGivenTwiceIsRefused(self):
        with self.assertRaisesRegex(ValueError, "two blocks sh list"):
            Guide.Guide(f"{_FENCE}sh list\nls\n{_FENCE}\n" * 2)

    def testFailureAnywhereInCommandsEndsThem(self):
        with tempfile.TemporaryDirectory() as directory:
            self.assertEqual(Guide.runCommands("echo a\nfalse | cat\necho b\n", directory), (1, "a\n"))
