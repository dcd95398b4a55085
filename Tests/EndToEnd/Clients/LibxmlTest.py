"""What libxml2 says to the documents: through xmllint as the guide runs it, and through lxml where
one process per document would take too long."""

import os
import re
import tempfile
import unittest

from lxml import etree

import Guide
import Model
import Rejections

_SCHEMA = "{http://www.w3.org/2001/XMLSchema}schema"
# What xmllint prints of a document that breaks its schema, and of each document at the end.
_FAULT = re.compile(r"^(documents/\S+):\d+: element \S+: Schemas validity error : (.*)$", re.MULTILINE)
_VERDICT = re.compile(r"^(documents/\S+) (?:validates|fails to validate)$", re.MULTILINE)


def compileFaults(document, schema):
    """Pairs of document and message for what libxml2 does not take in a schema."""
    try:
        etree.XMLSchema(schema)
        return []
    except etree.XMLSchemaParseError as error:
        return [(document, entry.message) for entry in error.error_log]


class LibxmlTest(unittest.TestCase):

    @classmethod
    def setUpClass(cls):
        cls.model = Model.Model.ofThisRun()
        cls.guide = Guide.Guide.read()
        cls.parser = etree.XMLParser(no_network=True)

    def testEveryDocumentIsWellFormed(self):
        commands = self.guide.text("sh", "well-formed")
        self.assertEqual(Guide.runCommands(commands, self.model.directory), (0, ""))

    def testEveryWsdlIsValidByTheSchemasOfWsdlAndItsSoapBinding(self):
        _, output = Guide.runCommands(self.guide.text("sh", "valid-wsdl"), self.model.directory)
        self.assertEqual(sorted(_VERDICT.findall(output)), self.model.documents(".wsdl"))
        Rejections.check(self, "libxml2 WSDL", self.model, _FAULT.findall(output))

    def testDamagedWsdlIsRefusedByTheSchemaThatTheDamageConcerns(self):
        name = "documents/root/cimv2/CIM_Error.wsdl" if self.model.name == "dmtf" else (
            "documents/root/cimv2/CIM_Component.wsdl")
        with open(self.model.path(name), encoding="utf-8") as file:
            text = file.read()
        soap = "Element '{http://schemas.xmlsoap.org/wsdl/soap12/}"
        for old, new, messages in (
                ("<wsdl:port name=", "<wsdl:port title=",
                 ["Element '{http://schemas.xmlsoap.org/wsdl/}port', attribute 'title': The attribute "
                  "'title' is not allowed.",
                  "Element '{http://schemas.xmlsoap.org/wsdl/}port': The attribute 'name' is required "
                  "but missing."]),
                ('style="document"', 'style="documents"',
                 [soap + "binding', attribute 'style': [facet 'enumeration'] The value 'documents' is "
                  "not an element of the set {'rpc', 'document'}."])):
            with self.subTest(new), tempfile.TemporaryDirectory(dir=self.model.directory) as directory:
                os.symlink(self.model.path("schemas"), os.path.join(directory, "schemas"))
                os.mkdir(os.path.join(directory, "documents"))
                self.assertEqual(text.count(old), 1)
                with open(os.path.join(directory, "documents", "a.wsdl"), "w", encoding="utf-8") as file:
                    file.write(text.replace(old, new))
                _, output = Guide.runCommands(self.guide.text("sh", "valid-wsdl"), directory)
                self.assertEqual([message for _, message in _FAULT.findall(output)], messages)

    def testEverySchemaCompilesAloneAndInItsWsdl(self):
        faults = []
        for document in self.model.documents(".xsd"):
            faults += compileFaults(document, etree.parse(self.model.path(document), self.parser))
        for document in self.model.documents(".wsdl"):
            schemas = list(etree.parse(self.model.path(document), self.parser).iter(_SCHEMA))
            self.assertEqual(len(schemas), 1, document)
            # Written out, the element takes the prefixes along that are declared around it.
            alone = etree.fromstring(etree.tostring(schemas[0]), self.parser)
            faults += compileFaults(document, alone)
        Rejections.check(self, "libxml2 schema", self.model, faults)
