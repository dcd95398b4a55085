"""The page of a class in a browser: opened from a disk, and served."""

import unittest

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

    def testALinkToAnExampleUnfoldsIt(self):
        self.open()
        self.assertEqual(self.browser.texts("#request-SpinUp pre"), [])
        self.browser.click("a[href='#request-SpinUp']")
        self.waitFor(1, lambda: len(self.browser.texts("#request-SpinUp pre")))

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

    def testEveryControlHasAName(self):
        self.open()
        self.assertEqual(self.browser.see(Measures.NAMELESS), [])
        self.assertEqual(self.browser.see(Measures.REPEATED_IDS), [])


class ServedPagesTest(Browser.BrowserCase):

    def testFromASearchToTheDocumentOfAClass(self):
        service = Site.Service()
        self.addCleanup(service.close)
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
