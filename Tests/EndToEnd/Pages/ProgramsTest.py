"""The programs of class pages send the envelopes that stand beside them."""

import os
import shutil
import subprocess
import tempfile
import unittest

from lxml import etree, html

import FakeService
import Site

# Before lxml and zeep read anything.
_SCHEMAS = os.environ.get("STANDARD_SCHEMAS_DIR", "")
_CATALOG = os.path.join(_SCHEMAS, "catalog.xml")
_WITH_CATALOG = os.path.join(os.path.dirname(os.environ["MODELS_DIRECTORY"]), "Scripts/with-catalog")

# Methods and arrays, every type, texts beyond ASCII, references as keys, many parameters, nothing
# but methods.
_CLASSES = ("CIM_ComputerSystem", "TSK_Everything", "TSK_Server", "CIM_Component",
            "CIM_StorageConfigurationService", "TSK_Diagnostics")
# One response fits all requests.
_FAULT = b"""<s:Envelope xmlns:s="http://www.w3.org/2003/05/soap-envelope"><s:Body><s:Fault>
<s:Code><s:Value>s:Receiver</s:Value></s:Code><s:Reason><s:Text xml:lang="en">refused</s:Text></s:Reason>
</s:Fault></s:Body></s:Envelope>"""


def withoutTheMarksOfGsoap(message):
    """The header blocks in the order of their names, without attributes that do not matter."""
    root = etree.fromstring(message)
    for element in root.iter():
        for name in ("{http://www.w3.org/2003/05/soap-envelope}mustUnderstand",
                     "{http://www.w3.org/2001/XMLSchema-instance}type"):
            element.attrib.pop(name, None)
    root[0][:] = sorted(root[0], key=lambda block: block.tag)
    return etree.tostring(root)


class Page:
    """The programs and envelopes of an exported class page, for a service at another address."""

    def __init__(self, path, address):
        self._document = html.parse(path)
        self._address = address
        self.operations = [each.get("id").split("-", 1)[1]
                           for each in self._document.iterfind(".//details[@class='request']")]

    def text(self, identifier):
        element = self._document.find(f".//*[@id='{identifier}']")
        return element.text_content().replace("http://localhost:5985/wsman", self._address)

    def envelope(self, number):
        return self.text(f"envelope-{number}").encode()


@unittest.skipUnless(_SCHEMAS, "STANDARD_SCHEMAS_DIR is not set")
class ProgramsTest(unittest.TestCase):

    @classmethod
    def setUpClass(cls):
        cls.site = Site.Export()
        cls.addClassCleanup(cls.site.close)

    def setUp(self):
        self.maxDiff = None
        self.directory = tempfile.mkdtemp()
        self.addCleanup(shutil.rmtree, self.directory)

    def page(self, className, address):
        for extension in (".wsdl", ".xsd"):
            shutil.copy(self.site.path(f"site/root/cimv2/{className}{extension}"), self.directory)
        return Page(self.site.path(f"site/root/cimv2/{className}.html"), address)

    def run_(self, command):
        result = subprocess.run([_WITH_CATALOG, _CATALOG, *command], cwd=self.directory, check=False,
                                stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, timeout=120)
        return result.returncode, result.stdout

    def compare(self, page, service, normalised=lambda message: message):
        self.assertEqual(len(service.requests), len(page.operations))
        for number, (operation, request) in enumerate(zip(page.operations, service.requests)):
            with self.subTest(operation):
                self.assertEqual(FakeService.outline(normalised(request)),
                                 FakeService.outline(normalised(page.envelope(number))))

    def testProgramsForZeepSendTheEnvelopes(self):
        for className in _CLASSES:
            with self.subTest(className), FakeService.FakeService(_FAULT) as service:
                page = self.page(className, service.address)
                with open(os.path.join(self.directory, "call.py"), "w", encoding="utf-8") as file:
                    file.write(page.text("zeep") + "\n")
                    for number, _ in enumerate(page.operations):
                        file.write("try:\n" + "".join(f"    {line}\n" for line in
                                                      page.text(f"zeep-{number}").splitlines())
                                   + "except zeep.exceptions.Fault as fault:\n"
                                   "    assert fault.message == 'refused', fault\n")
                status, output = self.run_(["/usr/bin/python3", "call.py"])
                self.assertEqual(status, 0, output)
                self.compare(page, service)

    def testProgramsForGsoapSendTheEnvelopes(self):
        with FakeService.FakeService(_FAULT) as service:
            page = self.page("TSK_Everything", service.address)
            commands = page.text("gsoap-commands").replace("wsdl2h ", 'wsdl2h -r "$CATALOG_PROXY" ')
            # All calls in one program, which is made once.
            with open(os.path.join(self.directory, "call.cpp"), "w", encoding="utf-8") as file:
                file.write(page.text("gsoap"))
                for number, _ in enumerate(page.operations):
                    call = page.text(f"gsoap-{number}").replace("int main()", f"int call{number}()")
                    # It ends with a fault, and its end is the end of the program.
                    file.write(call.replace("require(soap, soap_call", "(void)(soap_call"))
                file.write("int main()\n{\n" + "".join(f"    call{number}();\n" for number, _ in
                                                       enumerate(page.operations)) + "}\n")
            status, output = self.run_(["bash", "-e", "-c", commands])
            self.assertEqual(status, 0, output)
            self.compare(page, service, withoutTheMarksOfGsoap)
