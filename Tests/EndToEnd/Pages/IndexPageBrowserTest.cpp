// The index page in a real browser, Chromium. Skipped where there is none.

#include <algorithm>
#include <gtest/gtest.h>
#include <regex>
#include <string>

#include "Tests/EndToEnd/Pages/BrowserTest.h"

namespace {

constexpr const char* kClasses = R"(
    [Description ("Holds blocks. It turns.")] class TST_Disk : TST_Thing {};
    [Description ("Turns & holds <i>blocks</i>.")] class TST_Drive : TST_Thing {};
    [Description ("Whatever there is; <script>document.title='evil'</script>")]
    class TST_Thing {};
    class TST_Tape : TST_Thing {};)";

using Names = std::vector<std::string>;
const Names kAll = {"TST_Disk", "TST_Drive", "TST_Tape", "TST_Thing"};

class IndexPageBrowserTest : public BrowserTest {
  protected:
    [[nodiscard]] std::string page() const { return Pages::makeIndexPage(*load(kClasses)); }
    [[nodiscard]] std::string pageWith(const std::string& script) const {
        return withScript(page(), script);
    }
};

TEST_F(IndexPageBrowserTest, ShowsAllClassesAndTheFilterAtFirst) {
    const Shown shown = show(page());
    EXPECT_EQ(shown.names(), kAll);
    EXPECT_EQ(shown.count(), "4 of 4 classes");
    EXPECT_EQ(shown.found(R"(<div role="search" id="search"()>)").size(), 1U);
    EXPECT_EQ(shown.title(), "WSDL and XML Schema of CIM classes");
    EXPECT_EQ(shown.console, "");
}

TEST_F(IndexPageBrowserTest, TextsAreNoMarkup) {
    const Shown shown = show(page());
    EXPECT_EQ(shown.found("<p>([^\n]*)\n</p>"),
              (Names{"Holds blocks.", "Turns &amp; holds &lt;i&gt;blocks&lt;/i&gt;.",
                     "Whatever there is; &lt;script&gt;document.title='evil'&lt;/script&gt;"}));
    EXPECT_EQ(shown.console, "");
}

TEST_F(IndexPageBrowserTest, TheLinksLeadToTheDocuments) {
    EXPECT_EQ(show(page()).found(R"(href="([^"#]*TST_Di[^"]*)\")"),
              (Names{"root/test/TST_Disk.wsdl", "root/test/TST_Disk.xsd"}));
}

TEST_F(IndexPageBrowserTest, TheAddressFillsInTheFilter) {
    const Shown shown = show(page(), "#filter=TURNS%20tst_th");
    EXPECT_EQ(shown.names(), (Names{"TST_Drive"}));
    EXPECT_EQ(shown.count(), "1 of 4 classes");
    EXPECT_EQ(shown.console, "");
    EXPECT_EQ(show(page(), "#filter=blocks+disk").names(), (Names{"TST_Disk"}));
}

// The name, the superclass and the description are searched, and no link's text.
TEST_F(IndexPageBrowserTest, AllWordsAreFoundInWhatIsShownOfAClass) {
    EXPECT_EQ(show(page(), "#filter=tape").names(), (Names{"TST_Tape"}));
    EXPECT_EQ(show(page(), "#filter=TST_Thing").names(), kAll);
    EXPECT_EQ(show(page(), "#filter=%3Cscript").names(), (Names{"TST_Thing"}));
    const Shown none = show(page(), "#filter=xsd");
    EXPECT_EQ(none.names(), Names());
    EXPECT_EQ(none.count(), "0 of 4 classes");
    EXPECT_EQ(none.found(R"(<section( hidden)="">)").size(), 1U);
}

TEST_F(IndexPageBrowserTest, OtherAddressesShowAll) {
    for (const char* const fragment :
         {"#namespace-1", "#filter=", "#filter", "#a=b", "#%", "#filter=%20%20"}) {
        const Shown shown = show(page(), fragment);
        EXPECT_EQ(shown.names(), kAll) << fragment;
        EXPECT_EQ(shown.console, "") << fragment;
    }
}

TEST_F(IndexPageBrowserTest, TypingFiltersAndChangesTheAddress) {
    const Shown shown = show(pageWith(R"(
        const type = (text) => {
          document.getElementById('filter').value = text;
          document.getElementById('filter').dispatchEvent(new Event('input'));
        };
        type('di');
        type('disk & <b>');
        type(' holds  DIS ');
        setTimeout(() => { document.title = location.hash; }, 1000);)"));
    EXPECT_EQ(shown.names(), (Names{"TST_Disk"}));
    EXPECT_EQ(shown.title(), "#filter=holds%20%20DIS");
    EXPECT_EQ(shown.console, "");
}

TEST_F(IndexPageBrowserTest, AnEmptyFilterShowsAllAndLeavesTheAddress) {
    const Shown shown = show(pageWith(R"(
        document.getElementById('filter').value = '';
        document.getElementById('filter').dispatchEvent(new Event('input'));
        setTimeout(() => { document.title = `hash:${location.hash}`; }, 1000);)"),
                             "#filter=disk");
    EXPECT_EQ(shown.names(), kAll);
    EXPECT_EQ(shown.title(), "hash:");
    EXPECT_EQ(shown.console, "");
}

TEST_F(IndexPageBrowserTest, ALinkToAnotherFilterFilters) {
    const Shown shown = show(
        pageWith("setTimeout(() => { location.hash = '#filter=tape'; }, 100);"), "#filter=disk");
    EXPECT_EQ(shown.names(), (Names{"TST_Tape"}));
}

TEST_F(IndexPageBrowserTest, TheFilterStaysWhenSomebodyGoesToANamespace) {
    const Shown shown = show(
        pageWith("setTimeout(() => { location.hash = '#namespace-1'; }, 100);"), "#filter=disk");
    EXPECT_EQ(shown.names(), (Names{"TST_Disk"}));
}

TEST_F(IndexPageBrowserTest, ForeignScriptsAndStylesAreBlocked) {
    std::string text = page();
    text.insert(text.find("</main>"),
                "<script>document.title = 'evil';</script><p style=\"color: red\">a</p>"
                "<img alt=\"\" src=\"http://127.0.0.1:9/a.png\">");
    const Shown shown = show(text);
    EXPECT_EQ(shown.title(), "WSDL and XML Schema of CIM classes");
    EXPECT_EQ(std::count(shown.console.begin(), shown.console.end(), '\n'), 3) << shown.console;
    EXPECT_NE(shown.console.find("inline script violates"), std::string::npos) << shown.console;
    EXPECT_NE(shown.console.find("inline style violates"), std::string::npos) << shown.console;
    EXPECT_NE(shown.console.find("Loading the image"), std::string::npos) << shown.console;
}

// As for a reader whose browser runs no scripts, which the policy of the page can forbid it, too.
TEST_F(IndexPageBrowserTest, WithoutScriptTheWholeListIsThereAndNoFilter) {
    const std::regex allowedScript("script-src '[^']*'");
    const Shown shown =
        show(std::regex_replace(page(), allowedScript, "script-src 'none'"), "#filter=disk");
    EXPECT_NE(shown.console.find("inline script violates"), std::string::npos) << shown.console;
    EXPECT_EQ(shown.names(), kAll);
    EXPECT_EQ(shown.found(R"(<div role="search" id="search" hidden=""()>)").size(), 1U);
    EXPECT_EQ(shown.count(), "");
}

std::string nameOf(int number) {
    return "TST_Class" + std::to_string(10'000 + number);
}

// Classes from TST_Class10001 on, and what all of them extend.
std::string manyClasses(int count) {
    std::string mof = "[Description (\"What all have.\")] class TST_Base {};\n";
    for (int number = 1; number <= count; ++number) {
        mof += "[Description (\"Number " + std::to_string(number);
        mof += " of a long row, with words that are searched. And more.\")] class ";
        mof += nameOf(number) + " : TST_Base {};\n";
    }
    return mof;
}

// As many as there are in a whole schema. The time of the filter is shown when somebody asks for
// it, in the report of the test.
TEST_F(IndexPageBrowserTest, FiltersFifteenHundredClasses) {
    Names expected;
    for (int number = 1200; number < 1300; ++number)
        expected.push_back(nameOf(number));
    const Shown shown = show(withScript(Pages::makeIndexPage(*load(manyClasses(1499))), R"(
        const filter = document.getElementById('filter');
        const begin = performance.now();
        filter.value = 'long ROW class112';
        filter.dispatchEvent(new Event('input'));
        const shown = document.querySelector('main').getBoundingClientRect().height;
        document.title = `${performance.now() - begin} ms`;)"));
    EXPECT_EQ(shown.names(), expected);
    EXPECT_EQ(shown.count(), "100 of 1500 classes");
    EXPECT_EQ(shown.found(R"((<li\b))").size(), 1500U);
    EXPECT_TRUE(std::regex_match(shown.title(), std::regex("[0-9.]+ ms"))) << shown.title();
    EXPECT_EQ(shown.console, "");
    RecordProperty("timeOfTheFilter", shown.title());
}

}  // namespace
