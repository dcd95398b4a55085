"""What Xerces-C, with all its checks, says to the schemas."""

import os
import subprocess
import tempfile
import unittest

import Environment
import Model
import Rejections

_HEAD = """<xs:schema xmlns:xs="http://www.w3.org/2001/XMLSchema"
    xmlns:cim="http://schemas.dmtf.org/wbem/wscim/1/common">"""


def loadFaults(directory, documents):
    """Pairs of document and message for what Xerces-C does not take. Each document must be spoken
    of, so that none goes unread."""
    result = subprocess.run([Environment.XERCES_PROGRAM, Environment.CATALOG], cwd=directory,
                            input="".join(document + "\n" for document in documents),
                            stdout=subprocess.PIPE, text=True, check=True)
    lines = [tuple(line.split("\t", 1)) for line in result.stdout.splitlines()]
    unread = set(documents) - {document for document, _ in lines}
    if unread:
        raise AssertionError(f"not read: {sorted(unread)}")
    return [line for line in lines if line[1] != "loaded"]


class XercesTest(unittest.TestCase):

    @classmethod
    def setUpClass(cls):
        cls.model = Model.Model.ofThisRun()

    def faultsOf(self, schema):
        with tempfile.TemporaryDirectory() as directory:
            with open(os.path.join(directory, "a.xsd"), "w", encoding="utf-8") as file:
                file.write(_HEAD + schema + "</xs:schema>")
            return [message for _, message in loadFaults(directory, ["a.xsd"])]

    def testEverySchemaLoadsWithFullChecking(self):
        faults = loadFaults(self.model.directory, self.model.documents(".xsd"))
        Rejections.check(self, "Xerces-C", self.model, faults)

    def testContentThatOnlyFullCheckingRefusesIsRefused(self):
        self.assertEqual(
            self.faultsOf("""<xs:complexType name="T"><xs:sequence>
                <xs:element name="A" type="xs:string" minOccurs="0"/>
                <xs:element name="A" type="xs:string"/>
                </xs:sequence></xs:complexType>"""),
            ["complex type 'T' violates the unique particle attribution rule in its components 'A' "
             "and 'A'"])

    def testImportThatIsNotInTheCatalogIsRefused(self):
        self.assertEqual(
            self.faultsOf("""<xs:import namespace="http://schemas.dmtf.org/wbem/wscim/1/common"
                schemaLocation="http://schemas.dmtf.org/no/such.xsd"/>"""),
            ["invalid document structure", "fatal error during schema scan"])
