"""The page of a class in a browser: opened from a disk, and served."""

import io
import re
import unittest
import zipfile

import Browser
import Measures
import Site

_EVIL = "<img src=x onerror=alert(1)>\\\"'</script>"
_CLASSES = f"""
    class TST_Thing {{ [Key, Description ("What it is called. {"It is long. " * 40}")] string Name;
        [ValueMap {{"1", "2", "3", "4", "5", "6", "7"}}, Values {{"{_EVIL}"}}] uint8 Size; }};
    [Description ("Holds blocks.\\n\\nIt turns. {_EVIL}")] class TST_Disk : TST_Thing {{
        [Description ("{_EVIL}")] uint32 Speed;
        [Description ("Begins to turn.")] uint32 SpinUp ([In, ValueMap {{"{_EVIL}"}}] string How); }};
    [Association] class TST_Holds {{ [Key] TST_Disk REF Holder; [Key] TST_Thing REF Held; }};
"""


def setUpModule():
    Browser.Browser.ofModule()
    global site
    site = Site.Export(_CLASSES)
    unittest.addModuleCleanup(site.close)


class ClassPageTest(Browser.BrowserCase):

    def open(self, name="TST_Disk", fragment=""):
        self.browser.open(site.address(f"root/test/{name}.html", fragment))

    def testWhatIsInheritedCanBeHidden(self):
        self.open()
        self.assertEqual(self.browser.texts("#properties h3 > a"), ["Name", "Size", "Speed"])
        self.browser.click("#hide-properties")
        self.assertEqual(self.browser.texts("#properties h3 > a"), ["Speed"])
        self.browser.press(Browser.SPACE)
        self.assertEqual(self.browser.texts("#properties h3 > a"), ["Name", "Size", "Speed"])

    def testWhatIsHiddenIsShownWhenItsAddressIsOpened(self):
        self.open()
        self.browser.click("#hide-properties")
        self.browser.go(site.address("root/test/TST_Disk.html", "#property-Name"))
        self.assertEqual(self.browser.texts("#properties h3 > a"), ["Name", "Speed"])

    def testLongTextsAndValuesUnfold(self):
        self.open()
        self.assertEqual(self.browser.texts("#property-Name details p"), [])
        self.browser.click("#property-Name summary")
        self.assertEqual(len(self.browser.texts("#property-Name details p")), 1)
        self.assertEqual(self.browser.texts("#property-Size td"), [])
        self.browser.click("#property-Size summary")
        self.assertEqual(len(self.browser.texts("#property-Size tr")), 8)

    def testThePictureLeadsToOtherClasses(self):
        self.open()
        self.browser.click("svg a[href='TST_Thing.html']")
        self.waitFor("TST_Thing – root/test", self.browser.title)
        self.browser.click("svg a[href='TST_Holds.html']")
        self.waitFor("TST_Holds – root/test", self.browser.title)

    def testAddressesAndExamplesAreCopied(self):
        self.open()
        self.browser.click("#addresses dd:last-child button")
        self.waitFor("Copied", lambda: self.browser.texts("#addresses dd:last-child button")[0])
        uri = "http://schemas.dmtf.org/wbem/wscim/1/cim-schema/2/TST_Disk"
        self.assertEqual(self.browser.clipboard(), uri)
        self.browser.click("#operation-Get summary")
        self.browser.click("#operation-Get pre + button")
        self.waitFor(True, lambda: self.browser.clipboard().startswith("curl "))
        command = self.browser.clipboard()
        self.assertTrue(command.endswith("</s:Envelope>\nEND\n"), command)
        self.browser.click("#operation-Get span[data-of] + button")
        self.waitFor(True, lambda: self.browser.clipboard().startswith("<?xml "))
        self.assertIn("<<'END'\n" + self.browser.clipboard() + "END\n", command)

    def testAProgramIsCopiedWithItsSetUp(self):
        self.open()
        self.browser.click("#operation-Get summary")
        self.browser.click("#zeep-0 + button")
        self.waitFor(True, lambda: self.browser.clipboard().startswith("import uuid\n"))
        program = self.browser.clipboard()
        self.assertTrue(program.endswith("print(service['Get'](_soapheaders=header))\n"), program)
        self.browser.picture("class-examples")

    def testALinkToAnExampleUnfoldsIt(self):
        self.open()
        self.assertEqual(self.browser.texts("#request-SpinUp pre"), [])
        self.browser.click("a[href='#request-SpinUp']")
        self.waitFor(3, lambda: len(self.browser.texts("#request-SpinUp pre")))

    def testTextsOfAModelAreNoMarkup(self):
        for name in ("TST_Disk", "TST_Thing"):
            self.open(name)
            self.assertEqual(self.browser.see("document.images.length"), 0)
            self.assertEqual(self.browser.see("document.scripts.length"), 1)
        self.open()
        shown = "<img src=x onerror=alert(1)>\"'</script>"
        self.assertEqual(self.browser.texts("#description p"), ["Holds blocks.", "It turns. " + shown])
        self.assertEqual(self.browser.texts("#property-Speed p"), [shown])

    def testWithoutScriptAllIsThereButTheCopyButtons(self):
        self.browser.be(script=False)
        self.open()
        self.browser.be()
        self.assertEqual(self.browser.texts("h1"), ["TST_Disk"])
        self.assertEqual(self.browser.texts("button"), [])
        self.browser.click("#hide-properties")
        self.assertEqual(self.browser.texts("#properties h3 > a"), ["Speed"])

    def testNothingIsWiderThanAPhone(self):
        word = "x" * 150
        wide = Site.Export(
            f"class TST_{word} {{ [Key, ValueMap {{\"{word}\"}}, Description (\"{word}\")] string {word};\n"
            f"  uint32 M{word} ([In] string P{word}); }}; class TST_Other{word} : TST_{word} {{}};\n"
            f"[Association] class TST_Link{word} {{ [Key] TST_{word} REF One{word}; "
            f"[Key] TST_Other{word} REF Two; }};")
        self.addCleanup(wide.close)
        for width in (320, 390, 810):
            with self.subTest(width):
                self.browser.be(width=width, height=800)
                self.browser.open(wide.address(f"root/test/TST_Other{word}.html"))
                self.browser.click("#operation-Put summary")
                self.assertEqual(self.browser.see(Measures.WIDER), [])

    def testTextsStandOutInLightAndDark(self):
        for dark in (False, True):
            with self.subTest(dark):
                self.browser.be(dark=dark)
                self.open()
                self.assertEqual(self.browser.see(Measures.LOW_CONTRAST), [])
        self.browser.be(width=390, height=2000)
        self.open()
        self.browser.picture("class-phone")

    def testScreenReadersAndKeyboardsGetAlong(self):
        self.open()
        self.assertEqual(self.browser.see(Measures.FAULTS), [])


class ServedPagesTest(Browser.BrowserCase):

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.service = Site.Service()
        cls.addClassCleanup(cls.service.close)

    def testAllDocumentsComeAsAnArchive(self):
        self.browser.open(self.service.address("/"))
        links = self.browser.see("Array.from(document.querySelectorAll('#list section > p > a'))"
                                 ".map((each) => each.getAttribute('href'))")
        self.assertEqual(links, ["-/root/cimv2.zip", "-/interop.zip"])
        with zipfile.ZipFile(io.BytesIO(self.service.get("/" + links[0]))) as archive:
            self.assertIsNone(archive.testzip())
            names = archive.namelist()
            documents = [name for name in names if name.startswith("root/cimv2/")]
            self.assertEqual(names, ["README.txt", "catalog.xml", *documents])
            classes = self.browser.texts("#list section:first-child li > a")
            self.assertEqual(sorted(documents),
                             sorted(f"root/cimv2/{each}{end}" for each in classes for end in (".wsdl", ".xsd")))
            document = archive.read("root/cimv2/CIM_ComputerSystem.wsdl")
            self.assertEqual(document, self.service.get("/root/cimv2/CIM_ComputerSystem.wsdl"))
            known = re.findall(r'name="([^"]*)"', archive.read("catalog.xml").decode())
            readme = archive.read("README.txt").decode()
            for name in documents:
                for address in re.findall(r'schemaLocation="([^"]*)"', archive.read(name).decode()):
                    self.assertIn(address, known)
                    self.assertIn(address, readme)

    def testAMissingDocumentIsAPage(self):
        self.browser.open(self.service.address("/root/cimv2/CIM_Nothing.wsdl"))
        self.assertEqual(self.browser.texts("h1"), ["404 Not Found"])
        self.assertEqual(self.browser.see(Measures.FAULTS), [])
        self.browser.click("a")
        self.waitFor("WSDL and XML Schema of CIM classes", self.browser.title)
        self.expectedMessages = ["404"]

    def testFromASearchToTheDocumentOfAClass(self):
        service = self.service
        self.browser.open(service.address("/"))
        self.browser.press("/")
        self.browser.press("ResetCapability")
        self.waitFor(["CIM_ComputerSystem"], lambda: self.browser.texts("#results > ul > li > a"))
        self.browser.press(Browser.DOWN + Browser.DOWN + Browser.ENTER)
        path = "/-/root/cimv2/CIM_ComputerSystem#property-ResetCapability"
        self.waitFor(True, lambda: self.browser.address().endswith(service.host + path))
        self.assertEqual(self.browser.texts("#addresses dd:nth-of-type(1) code"),
                         [f"http://{service.host}/wsman"])
        self.browser.picture("class-served")
        self.browser.click("header a[href$='.wsdl']")
        self.waitFor(True, lambda: self.browser.address().endswith(
            service.host + "/root/cimv2/CIM_ComputerSystem.wsdl"))
        self.browser.console()  # what the browser says of a document of XML is not ours
