"""What gSOAP makes of the documents."""

import os
import re
import shutil
import tempfile
import unittest

import Environment
import FakeService
import Guide
import Model
import Rejections

# Twenty classes that stand for all shapes of documents.
_CLASSES = {
    "sample": {
        "interop/CIM_RegisteredProfile": "a class of another namespace",
        "root/cimv2/CIM_AlertIndication": "an indication",
        "root/cimv2/CIM_Component": "an association of references alone",
        "root/cimv2/CIM_ComputerSystem": "methods, value maps and arrays",
        "root/cimv2/CIM_EthernetPort": "a long inheritance with overrides",
        "root/cimv2/CIM_ManagedElement": "a root without keys",
        "root/cimv2/CIM_Processor": "many value maps",
        "root/cimv2/CIM_StorageConfigurationService": "methods with many parameters",
        "root/cimv2/TSK_Diagnostics": "methods and no properties",
        "root/cimv2/TSK_Everything": "every type, alone and as an array; every form of value map",
        "root/cimv2/TSK_Server": "texts beyond ASCII, embedded objects",
        "root/cimv2/TSK_StoragePath": "an association with properties",
    },
    "dmtf": {
        "root/cimv2/CIM_AccountManagementService": "methods with embedded instances",
        "root/cimv2/CIM_CertificateManagementService": "the most methods, twelve",
        "root/cimv2/CIM_DHCPProtocolEndpoint": "the largest documents, with 4,667 mapped values",
        "root/cimv2/CIM_Error": "a class for nothing but embedding",
        "root/cimv2/CIM_LLDPEthernetPort": "the most properties, 121",
        "root/cimv2/CIM_OpaqueManagementDataService": "a method that is named like an operation",
        "root/cimv2/CIM_ResourceAllocationSettingData": "arrays without value maps",
        "root/cimv2/PRS_Expression": "a prefix other than CIM",
    },
}
_COMPLAINT = re.compile(r"^[ *]*(?:(?:critical|syntax) )?(?:warning|error)\b.*$", re.MULTILINE | re.IGNORECASE)


class GsoapCase(unittest.TestCase):

    @classmethod
    def setUpClass(cls):
        cls.model = Model.Model.ofThisRun()
        cls.guide = Guide.Guide.read()

    def setUp(self):
        self.directory = tempfile.mkdtemp(dir=Environment.WORK_DIRECTORY)
        self.addCleanup(shutil.rmtree, self.directory)
        for name in ("documents", "schemas", "Scripts"):
            os.symlink(self.model.path(name), os.path.join(self.directory, name))

    def generate(self, className):
        """Runs the guide's commands for a class; gives what the programs complain of."""
        commands = self.guide.text("sh", "gsoap-generate")
        self.assertIn("root/cimv2/CIM_ComputerSystem", commands)
        commands = commands.replace("root/cimv2/CIM_ComputerSystem", className)
        status, output = Guide.runCommands(commands, self.directory)
        self.assertEqual(status, 0, output)
        self.assertIn("Compilation successful", output)
        return _COMPLAINT.findall(output)


class GsoapTest(GsoapCase):

    def testGeneratesCodeForEveryShapeOfClass(self):
        findings = []
        for className in _CLASSES[self.model.name]:
            findings += [(f"documents/{className}.wsdl", complaint)
                         for complaint in self.generate(className)]
        Rejections.check(self, "gSOAP", self.model, findings)


@unittest.skipUnless(os.environ["CLIENTS_MODEL"] == "sample", "calls are tried on the sample model")
class GsoapCallTest(GsoapCase):

    def testGuidesProgramCallsAMethod(self):
        self.generate("root/cimv2/CIM_ComputerSystem")
        with open(os.path.join(self.directory, "call.cpp"), "w", encoding="utf-8") as file:
            file.write(self.guide.text("cpp", "gsoap-call"))
        with FakeService.FakeService(FakeService.readMessage("Response.xml")) as service:
            result = Guide.runCommands(self.guide.text("sh", "gsoap-call"), self.directory,
                                       SERVICE=service.address)
        self.assertEqual(result, (0, self.guide.text("output", "gsoap-call")))
        expected = FakeService.outline(FakeService.readMessage("GsoapRequest.xml"))
        self.assertEqual(service.outlines(), [expected])

    def testCodeForAClassWithEverythingCompiles(self):
        self.generate("root/cimv2/TSK_Everything")
        commands = "g++ -c soapC.cpp soapClient.cpp"
        self.assertEqual(Guide.runCommands(commands, self.directory), (0, ""))
