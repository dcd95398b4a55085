// The index page in a real browser, Chromium. Skipped where there is none.

#include <algorithm>
#include <cstdlib>
#include <gtest/gtest.h>
#include <regex>
#include <string>
#include <string_view>
#include <vector>

#include "ObjectManager/Index/IndexPage.h"
#include "ObjectManager/Index/SourceHash.h"
#include "Tests/ObjectManager/Repository/RepositoryTest.h"
#include "Tests/Support/RunningProgram.h"

namespace {

constexpr const char* kClasses = R"(
    [Description ("Holds blocks. It turns.")] class TST_Disk : TST_Thing {};
    [Description ("Turns & holds <i>blocks</i>.")] class TST_Drive : TST_Thing {};
    [Description ("Whatever there is; <script>document.title='evil'</script>")]
    class TST_Thing {};
    class TST_Tape : TST_Thing {};)";

struct Shown {
    std::string dom;      // as HTML, when all scripts have run
    std::string console;  // what the browser's console says, policies that were violated too

    // Of the classes that can be seen.
    [[nodiscard]] std::vector<std::string> names() const {
        return found(R"(<li(?: class="")?><a href="[^"]*">([^<]*)</a>)");
    }
    [[nodiscard]] std::string title() const { return found("<title>([^<]*)</title>").at(0); }
    [[nodiscard]] std::string count() const { return found("<output[^>]*>([^<]*)</output>").at(0); }

    [[nodiscard]] std::vector<std::string> found(const char* pattern) const {
        const std::regex expression(pattern);
        std::vector<std::string> all;
        for (std::sregex_iterator match(dom.begin(), dom.end(), expression), end; match != end;
             ++match)
            all.push_back((*match)[1]);
        return all;
    }
};

using Names = std::vector<std::string>;
const Names kAll = {"TST_Disk", "TST_Drive", "TST_Tape", "TST_Thing"};

class IndexPageBrowserTest : public RepositoryTest {
  protected:
    void SetUp() override {
        if (std::system("command -v chromium > /dev/null") != 0)
            GTEST_SKIP() << "there is no Chromium";
    }

    [[nodiscard]] std::string page() const { return Index::makeIndexPage(*load(kClasses)); }

    // The page with a script of the test at its end, which the policy allows.
    [[nodiscard]] std::string pageWith(const std::string& script) const {
        std::string text = page();
        text.insert(text.find("script-src ") + 11, Index::sourceHash(script) + " ");
        text.insert(text.find("</body>"), "<script>" + script + "</script>");
        return text;
    }

    // `fragment` is the end of the address, such as "#filter=a".
    [[nodiscard]] Shown show(const std::string& text, const std::string& fragment = "") const {
        const std::string file = folder_.write("index.html", text);
        const ProgramRun run =
            RunningProgram({"chromium", "--headless", "--no-sandbox", "--disable-gpu",
                            "--disable-dev-shm-usage", "--user-data-dir=" + folder_.path("profile"),
                            "--enable-logging=stderr", "--virtual-time-budget=5000", "--dump-dom",
                            "file://" + file + fragment})
                .waitForEnd();
        EXPECT_EQ(run.end, "status 0") << run.errors;
        Shown shown;
        shown.dom = run.output;
        const std::regex line("[^\n]*CONSOLE[^\n]*\n");
        for (std::sregex_iterator match(run.errors.begin(), run.errors.end(), line), last;
             match != last; ++match)
            shown.console += match->str();
        return shown;
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

}  // namespace
