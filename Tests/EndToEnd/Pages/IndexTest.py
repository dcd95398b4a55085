"""The index page in a browser, opened from a disk."""

import os
import unittest

import Browser
import Measures
import Site

_CLASSES = """
    [Description ("Holds blocks. It turns.")] class TST_Disk : TST_Thing {
        [Description ("How fast it turns, in blocks a second.")] uint32 Speed;
        [Description ("Begins to turn.")] uint32 SpinUp (); };
    [Description ("Turns & holds <i>blocks</i>.")] class TST_Drive : TST_Thing { uint32 DiskCount; };
    [Description ("Whatever there is; <script>document.title='evil'</script>")] class TST_Thing {};
    class tst_tape : TST_Thing {};
    class TST_DiskDrive : TST_Drive { string Label; };
"""
_ALL = ["TST_Disk", "TST_DiskDrive", "TST_Drive", "tst_tape", "TST_Thing"]
_TITLE = "WSDL and XML Schema of CIM classes"


def setUpModule():
    Browser.Browser.ofModule()
    global site
    site = Site.Export(_CLASSES)
    unittest.addModuleCleanup(site.close)


class IndexCase(Browser.BrowserCase):

    def open(self, fragment=""):
        self.browser.open(site.address("index.html", fragment))

    def names(self):
        return self.browser.texts("#list li > a, #results > ul > li > a")

    def count(self):
        return self.browser.texts("#count")[0]

    def search(self, words):
        """Types into the search and waits until all that is searched is loaded."""
        self.browser.click("#filter")
        self.browser.press(words)
        self.waitFor(False, lambda: "loading" in self.count())


class IndexTest(IndexCase):

    def testAllClassesAreListedWithLinks(self):
        self.open()
        self.assertEqual(self.names(), _ALL)
        self.assertEqual(self.count(), "5 classes")
        self.assertEqual(self.browser.title(), _TITLE)
        self.waitFor(["WSDL", "XSD"], lambda: self.browser.texts("#list li:first-child .documents a"))
        links = self.browser.see("Array.from(document.querySelectorAll('#list li:first-child a'))"
                                 ".map((each) => each.getAttribute('href'))")
        self.assertEqual(links, ["root/test/TST_Disk.html", "root/test/TST_Disk.wsdl",
                                 "root/test/TST_Disk.xsd"])

    def testTextsAreNoMarkup(self):
        self.open()
        texts = ["Holds blocks.", "Turns & holds <i>blocks</i>.",
                 "Whatever there is; <script>document.title='evil'</script>"]
        self.assertEqual(self.browser.texts("#list li p"), texts)
        self.search("<script")
        self.assertEqual(self.browser.texts("#results p"), texts[2:])
        self.assertEqual(self.browser.title(), _TITLE)

    def testNamesComeFirstThenTheirStartsThenWordsThenAllElse(self):
        self.open()
        self.search("disk")
        self.assertEqual(self.names(), ["TST_Disk", "TST_DiskDrive", "TST_Drive"])
        self.open()
        self.search("drive")
        self.assertEqual(self.names(), ["TST_Drive", "TST_DiskDrive"])
        self.open()
        self.search("isk")
        self.assertEqual(self.names(), ["TST_Disk", "TST_DiskDrive", "TST_Drive"])

    def testMembersAndDescriptionsAreFoundAndMarkedInTheirPlace(self):
        self.open()
        self.search("speed")
        self.assertEqual(self.names(), ["TST_Disk"])
        self.assertEqual(self.browser.texts("#results li li"),
                         ["Speed property How fast it turns, in blocks a second."])
        self.assertEqual(self.browser.texts("mark"), ["Speed"])
        self.open()
        self.search("BLOCKS turns")
        self.assertEqual(self.names(), ["TST_Disk", "TST_Drive"])
        self.assertEqual(self.browser.texts("#results > ul > li:last-child mark"), ["Turns", "blocks"])
        self.assertEqual(self.count(), "2 of 5 classes")

    def testWhatIsNotFoundIsSaid(self):
        self.open()
        self.search("no such thing")
        self.assertEqual(self.names(), [])
        self.assertEqual(self.count(), "0 of 5 classes")
        self.assertTrue(self.browser.texts("#results > p")[0].startswith("Nothing matches “no such thing”."))

    def testKeysLeadFromTheSearchToAClass(self):
        self.open()
        self.browser.press("/")
        self.assertEqual(self.browser.focused(), "filter")
        self.browser.press("speed")
        self.waitFor(["TST_Disk"], self.names)
        self.waitFor("1 of 5 classes", self.count)
        self.browser.press(Browser.DOWN)
        self.assertEqual(self.browser.focused(), "TST_Disk")
        self.browser.press(Browser.DOWN + Browser.DOWN)
        self.assertEqual(self.browser.focused(), "Speed")
        self.browser.press(Browser.UP + Browser.UP)
        self.assertEqual(self.browser.focused(), "filter")
        self.browser.press(Browser.DOWN + Browser.DOWN + Browser.ENTER)
        self.waitFor(site.address("root/test/TST_Disk.html", "#property-Speed"), self.browser.address)

    def testEnterOpensTheFirstResultAndEscapeEmptiesTheSearch(self):
        self.open()
        self.search("drive")
        self.browser.press(Browser.ESCAPE)
        self.assertEqual(self.names(), _ALL)
        self.assertEqual(self.browser.focused(), "filter")
        self.browser.press("drive" + Browser.ENTER)
        self.waitFor(site.address("root/test/TST_Drive.html"), self.browser.address)

    def testASlashIsALetterInTheSearch(self):
        self.open()
        self.browser.press("/" + "a/b")
        self.assertEqual(self.browser.see("document.getElementById('filter').value"), "a/b")

    def testTheTreeShowsWhoExtendsWhom(self):
        self.open()
        self.browser.click("#tree-view")
        self.waitFor(["TST_Thing"], lambda: self.browser.texts("#tree a"))
        self.browser.click("#tree summary small")
        self.waitFor(["TST_Thing", "TST_Disk", "TST_Drive", "tst_tape"], lambda: self.browser.texts("#tree a"))
        self.browser.click("#tree li li summary small")
        self.waitFor(["TST_Thing", "TST_Disk", "TST_Drive", "TST_DiskDrive", "tst_tape"],
                     lambda: self.browser.texts("#tree a"))
        self.browser.picture("index-tree")
        self.browser.click("#list-view")
        self.assertEqual(self.names(), _ALL)

    def testTheAddressFillsInTheSearchAndFollowsIt(self):
        self.open("#filter=TURNS%20tst_dis")
        self.waitFor(["TST_Disk"], self.names)
        self.open()
        self.search("disk & <b>")
        self.waitFor(site.address("index.html", "#filter=disk%20%26%20%3Cb%3E"), self.browser.address)
        self.browser.press(Browser.ESCAPE)
        self.waitFor(site.address(), self.browser.address)
        self.browser.go(site.address("index.html", "#filter=tape"))
        self.waitFor(["tst_tape"], self.names)
        self.browser.go(site.address("index.html", "#namespace-1"))
        self.assertEqual(self.names(), ["tst_tape"])

    def testOtherAddressesShowAll(self):
        for fragment in ("#namespace-1", "#filter=", "#filter", "#a=b", "#%", "#filter=%20%20"):
            with self.subTest(fragment):
                self.open(fragment)
                self.assertEqual(self.names(), _ALL)

    def testWithoutScriptTheListIsThereAndNoSearch(self):
        self.browser.be(script=False)
        self.open("#filter=disk")
        self.browser.be()  # so that it can be looked at; what was not run stays so
        self.assertEqual(self.names(), _ALL)
        self.assertEqual(self.browser.texts("#search"), [])

    def testForeignScriptsStylesAndPicturesAreBlocked(self):
        changed = Site.Export(_CLASSES)
        self.addCleanup(changed.close)
        changed.change("index.html", "</main>",
                       "<script>document.title = 'evil';</script><p style=\"color: red\">a</p>"
                       "<img alt=\"\" src=\"http://127.0.0.1:9/a.png\"></main>")
        self.browser.open(changed.address())
        self.assertEqual(self.browser.title(), _TITLE)
        self.expectedMessages = ["inline script", "inline style", "image"]

    def testOnlyNamesAreSearchedWhenTheRestIsMissing(self):
        other = Site.Export(_CLASSES)
        self.addCleanup(other.close)
        os.remove(other.path("site/search.js"))
        self.browser.open(other.address())
        self.search("disk")
        self.waitFor("2 of 5 classes; only names are searched", self.count)
        self.assertEqual(self.names(), ["TST_Disk", "TST_DiskDrive"])
        self.expectedMessages = ["ERR_FILE_NOT_FOUND"]


class IndexAccessTest(IndexCase):

    def testNothingIsWiderThanAPhone(self):
        word = "x" * 150
        wide = Site.Export(f'[Description ("{word} is a word.")] class TST_{word} {{ string {word}; }};\n'
                           f"class TST_Other{word} : TST_{word} {{}};")
        self.addCleanup(wide.close)
        for width in (320, 390, 810):
            for fragment in ("", "#filter=xxx"):
                with self.subTest(f"{width} {fragment}"):
                    self.browser.be(width=width, height=800)
                    self.browser.open(wide.address("index.html", fragment))
                    self.waitFor(2, lambda: len(self.names()))
                    self.waitFor([], lambda: self.browser.see(Measures.WIDER))

    def testTextsStandOutInLightAndDark(self):
        for dark in (False, True):
            self.browser.be(dark=dark)
            for fragment in ("", "#filter=nothing", "#filter=disk"):
                with self.subTest(f"{dark} {fragment}"):
                    self.open(fragment)
                    self.waitFor(False, lambda: "loading" in self.count())
                    self.assertEqual(self.browser.see(Measures.LOW_CONTRAST), [])
                    self.assertEqual(self.browser.see(Measures.GROUND),
                                     "rgb(13, 17, 23)" if dark else "rgb(255, 255, 255)")
            self.browser.picture("index-dark" if dark else "index-light")

    def testTheFocusGoesThroughThePageInItsOrderAndIsSeen(self):
        self.open()
        self.waitFor(10, lambda: len(self.browser.texts(".documents a")))
        names = []
        for _ in range(6):
            self.browser.press(Browser.TAB)
            names.append(self.browser.focused())
            self.assertTrue(self.browser.see(Measures.FOCUS_IS_SEEN), names[-1])
        self.assertEqual(names, ["filter", "list-view", "tree-view", "TST_Disk", "WSDL", "XSD"])

    def testScreenReadersAndKeyboardsGetAlong(self):
        self.open("#filter=disk")
        self.waitFor(["TST_Disk", "TST_DiskDrive", "TST_Drive"], self.names)
        self.assertEqual(self.browser.see(Measures.FAULTS), [])


@unittest.skipUnless(os.environ.get("CIM_SCHEMA_DIR"), "CIM_SCHEMA_DIR is not set")
class WholeSchemaTest(IndexCase):

    def testFifteenHundredClassesAreSearchedByKeys(self):
        schema = os.path.join(os.environ["CIM_SCHEMA_DIR"], "cim_schema_2.41.0.mof")
        dmtf = Site.Export(arguments=[f"--namespace=root/cimv2={schema}"])
        self.addCleanup(dmtf.close)
        self.browser.open(dmtf.address())
        self.assertEqual(self.count(), "1,438 classes")
        print("ready to type after", self.browser.see(Measures.READY), "ms")
        self.search("enabledstate")
        self.assertEqual(self.names()[0], "CIM_EnabledLogicalElement")
        self.assertEqual(self.browser.texts("#results li:first-child li a")[0], "EnabledState")
        for words in ("e", "power", "cim_computersystem", "the state of"):
            self.browser.press(Browser.ESCAPE + words)
            print(repr(words), self.count(), self.browser.see(Measures.KEY_STROKE), "ms")
        self.browser.press(Browser.ESCAPE + "cim_computersystem")
        self.assertEqual(self.names()[0], "CIM_ComputerSystem")
        self.browser.picture("index-results")
        self.browser.press(Browser.ENTER)
        self.waitFor(dmtf.address("root/cimv2/CIM_ComputerSystem.html"), self.browser.address)
        self.browser.picture("class-page")
