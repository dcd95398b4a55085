"""The example requests of class pages: every envelope is valid by the schemas that are served with
it, and a real CIM server takes them."""

import os
import re
import socket
import subprocess
import tempfile
import unittest
import urllib.error
import urllib.request

# For lxml, which reads it when it first looks for a file. What is not in the catalog is asked of a
# proxy that is not there, so that no test depends on the network.
_SCHEMAS = os.environ.get("STANDARD_SCHEMAS_DIR", "")
os.environ["XML_CATALOG_FILES"] = os.path.join(_SCHEMAS, "catalog.xml")
os.environ["http_proxy"] = os.environ["https_proxy"] = "http://127.0.0.1:9"

from lxml import etree, html

import Site

_CIM_SERVER = os.environ.get("CIM_SERVER_DIR", "")
_XS = "{http://www.w3.org/2001/XMLSchema}"
_SOAP = "{http://www.w3.org/2003/05/soap-envelope}"
_CLASSES = "http://schemas.dmtf.org/wbem/wscim/1/cim-schema/2/"
_IMPORTS = {
    "http://schemas.xmlsoap.org/ws/2004/08/addressing": "http://schemas.xmlsoap.org/ws/2004/08/addressing",
    "http://schemas.dmtf.org/wbem/wsman/1/wsman.xsd": "http://schemas.dmtf.org/wbem/wsman/1/wsman.xsd",
    "http://schemas.xmlsoap.org/ws/2004/09/enumeration":
        "http://schemas.xmlsoap.org/ws/2004/09/enumeration/enumeration.xsd",
}


def envelopesOf(page):
    """The envelopes of a page by the names of their operations, in their order."""
    document = html.parse(page)
    return [(details.get("id").split("-", 1)[1], details.find(".//span[@class='envelope']").text)
            for details in document.iterfind(".//details[@class='request']")]


def schemaOf(wsdl, className, directory):
    """A schema of all that a message about the class may contain: what the WSDL document holds and
    what it imports."""
    own, = (schema for schema in etree.parse(wsdl).iter(_XS + "schema")
            if schema.get("targetNamespace") == _CLASSES + className)
    # What XML Schema cannot express; Docs/clients.md has the same corrections.
    for restriction in own.xpath("//xs:simpleContent/xs:restriction[following-sibling::xs:restriction]"
                                 " | //xs:union/xs:simpleType[xs:restriction/@base='cim:cimString']",
                                 namespaces={"xs": _XS[1:-1]}):
        restriction.getparent().remove(restriction)
    ownFile = os.path.join(directory, "class.xsd")
    with open(ownFile, "wb") as file:
        file.write(etree.tostring(own))
    root = etree.Element(_XS + "schema")
    for nameSpace, location in {_CLASSES + className: ownFile, **_IMPORTS}.items():
        etree.SubElement(root, _XS + "import", namespace=nameSpace, schemaLocation=location)
    return etree.XMLSchema(root)


@unittest.skipUnless(_SCHEMAS, "STANDARD_SCHEMAS_DIR is not set")
class SampleModelTest(unittest.TestCase):

    def testEveryEnvelopeIsValid(self):
        site = Site.Export()
        self.addCleanup(site.close)
        count = 0
        for directory, _, files in os.walk(site.path("site")):
            for file in sorted(file for file in files if file.endswith(".wsdl")):
                with self.subTest(file), tempfile.TemporaryDirectory() as work:
                    className = file.removesuffix(".wsdl")
                    schema = schemaOf(os.path.join(directory, file), className, work)
                    page = os.path.join(directory, className + ".html")
                    for operation, envelope in envelopesOf(page):
                        self.expectValid(schema, operation, envelope)
                        count += 1
        self.assertGreater(count, 59 * 5)

    def expectValid(self, schema, operation, envelope):
        root = etree.fromstring(envelope.encode())
        self.assertEqual([child.tag for child in root], [_SOAP + "Header", _SOAP + "Body"])
        header, body = root
        self.assertEqual(len(header), 6, operation)
        self.assertEqual(len(body), 0 if operation in ("Get", "Delete") else 1, operation)
        for block in (*header, *body):
            # Where it stands it may be qualified by namespaces of the whole.
            alone = etree.fromstring(etree.tostring(block))
            self.assertTrue(schema.validate(alone), f"{operation}: {schema.error_log}")


# Classes that the server has instances of, with the keys that they have there.
_MODEL = """
    class CIM_OperatingSystem { [Key] string CSCreationClassName; [Key] string CSName;
        [Key] string CreationClassName; [Key] string Name; };
    class PG_OperatingSystem : CIM_OperatingSystem { uint32 RequestStateChange ([In] uint16 RequestedState); };
    class PG_ComputerSystem { [Key] string CreationClassName; [Key] string Name; };
    class PG_UnixProcess { [Key] string CSCreationClassName; [Key] string CSName;
        [Key] string OSCreationClassName; [Key] string OSName; [Key] string CreationClassName;
        [Key] string Handle; };
"""


@unittest.skipUnless(_CIM_SERVER, "CIM_SERVER_DIR is not set")
class RealServerTest(unittest.TestCase):

    @classmethod
    def setUpClass(cls):
        with socket.socket() as free:
            free.bind(("127.0.0.1", 0))
            port = free.getsockname()[1]
        cls.server = subprocess.Popen([os.path.join(_CIM_SERVER, "start"), "--port", str(port)],
                                      stdout=subprocess.PIPE, text=True)
        cls.addClassCleanup(cls.stop)
        if cls.server.stdout.readline() != "ready\n":
            raise AssertionError("the CIM server did not start")
        cls.address = f"http://127.0.0.1:{port}/wsman"
        cls.site = Site.Export(_MODEL, nameSpace="root/cimv2", arguments=[f"--host=127.0.0.1:{port}"])
        cls.addClassCleanup(cls.site.close)

    @classmethod
    def stop(cls):
        cls.server.terminate()
        cls.server.wait()
        cls.server.stdout.close()

    def send(self, envelope):
        """Gives the status and the response."""
        request = urllib.request.Request(self.address, envelope.encode(),
                                         {"Content-Type": "application/soap+xml;charset=UTF-8"})
        opener = urllib.request.build_opener(urllib.request.ProxyHandler({}))
        try:
            with opener.open(request, timeout=60) as response:
                return response.status, response.read().decode()
        except urllib.error.HTTPError as error:
            return error.code, error.read().decode()

    def requests(self, className):
        return dict(envelopesOf(self.site.path(f"site/root/cimv2/{className}.html")))

    def firstInstance(self, requests):
        """By Enumerate and Pull; gives the values of its properties by their names."""
        status, response = self.send(requests["Enumerate"])
        self.assertEqual(status, 200, response)
        context = re.search(r"EnumerationContext>([^<]*)<", response).group(1)
        status, response = self.send(requests["Pull"].replace("CONTEXT", context))
        self.assertEqual(status, 200, response)
        items, = etree.fromstring(response.encode()).iter("{*}Items")
        return {etree.QName(each).localname: each.text for each in items[0]}

    def withKeys(self, envelope, instance):
        """The envelope with the keys of an instance in place of the examples."""
        return re.sub(r'(<wsman:Selector Name="(?!__)(\w+)">)[^<]*',
                      lambda match: match.group(1) + instance[match.group(2)], envelope)

    def testInstancesOfThreeClassesAreRead(self):
        for className in ("PG_OperatingSystem", "PG_ComputerSystem", "PG_UnixProcess"):
            with self.subTest(className):
                requests = self.requests(className)
                instance = self.firstInstance(requests)
                status, response = self.send(self.withKeys(requests["Get"], instance))
                self.assertEqual(status, 200, response)
                self.assertIn(f'<p:{className} xmlns:p="{_CLASSES}{className}">', response)
                for key in re.findall(r'Selector Name="(?!__)(\w+)"', requests["Get"]):
                    self.assertIn(f"<p:{key}>{instance[key]}</p:{key}>", response)

    def testDeleteReachesTheProviderThatRefusesIt(self):
        for className in ("PG_OperatingSystem", "PG_ComputerSystem", "PG_UnixProcess"):
            with self.subTest(className):
                requests = self.requests(className)
                envelope = self.withKeys(requests["Delete"], self.firstInstance(requests))
                self.assertIn("CIM_ERR_NOT_SUPPORTED", self.send(envelope)[1])

    # This server wants the action and the parameters as the DMTF publishes them, which the page says.
    def testAMethodReachesTheProviderThatRefusesIt(self):
        requests = self.requests("PG_OperatingSystem")
        envelope = self.withKeys(requests["RequestStateChange"], self.firstInstance(requests))
        self.assertIn("ActionNotSupported", self.send(envelope)[1])
        envelope = envelope.replace("/wbem/ws-cim/1/", "/wbem/wscim/1/")
        envelope = re.sub("(</?)(RequestedState>)", r"\1p:\2", envelope)
        self.assertIn("does not support invokeMethod", self.send(envelope)[1])
