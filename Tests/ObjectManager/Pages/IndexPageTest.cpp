#include <filesystem>
#include <gtest/gtest.h>
#include <regex>
#include <string>

#include "ObjectManager/Loading/RepositoryLoader.h"
#include "ObjectManager/Pages/IndexPage.h"
#include "ObjectManager/Pages/PageFrame.h"
#include "Tests/Support/CimSchema.h"
#include "Tests/Support/RepositoryTest.h"

namespace {

std::string between(const std::string& text, const std::string& begin, const std::string& end) {
    const std::size_t start = text.find(begin);
    if (start == std::string::npos)
        return "no " + begin;
    const std::size_t from = start + begin.size();
    return text.substr(from, text.find(end, from) - from);
}

std::string pageOf(const Repository::ClassRepository& repository,
                   Pages::Layout layout = Pages::Layout::kServed) {
    return Pages::makeIndexPage(repository, layout);
}

// What depends on the classes.
std::string mainOf(const std::string& page) {
    return between(page, "<main>\n<div id=list>\n", "</div>\n</main>");
}

class IndexPageTest : public RepositoryTest {
  protected:
    [[nodiscard]] std::string listOf(const std::string& mof,
                                     const Repository::Options& options = {}) const {
        return between(pageOf(*load(mof, options)), "<ul>\n", "</ul>");
    }
};

TEST_F(IndexPageTest, ListsClassesWithDescriptionAndLink) {
    const std::string page = pageOf(*load(R"(
        [Description ("A thing. It is there.")] class TST_Thing {};
        class TST_Nothing : TST_Thing {};)"));
    EXPECT_EQ(mainOf(page), R"(<section>
<h2 id=namespace-1>root/test <small>2 classes</small></h2>
<p><a href="-/root/test.zip">All documents as a ZIP archive</a></p>
<ul>
<li><a href=-/root/test/TST_Nothing>TST_Nothing</a>
<li><a href=-/root/test/TST_Thing>TST_Thing</a><p>A thing.
</ul>
</section>
)");
    EXPECT_NE(page.find("<p>2 classes in 1 namespace. "), std::string::npos);
    EXPECT_EQ(page.find("<nav"), std::string::npos);
}

TEST_F(IndexPageTest, SeveralNamespacesHaveLinksToThem) {
    const std::string file = directory_.write("a.mof", "class A {};");
    const TSKSmrPtr<Repository::ClassRepository> repository =
        Loading::loadRepository({{.name = "root/b", .paths = {file}},
                                 {.name = "a", .paths = {file}},
                                 {.name = "c", .paths = {directory_.write("c.mof", "")}}},
                                {}, {})
            .repository;
    ASSERT_TRUE(repository);
    const std::string page = pageOf(*repository);
    EXPECT_EQ(between(page, "<nav aria-label=\"Namespaces\">\n", "</nav>"),
              "<a href=#namespace-1>root/b</a>\n"
              "<a href=#namespace-2>a</a>\n"
              "<a href=#namespace-3>c</a>\n");
    EXPECT_EQ(mainOf(page), R"(<section>
<h2 id=namespace-1>root/b <small>1 class</small></h2>
<p><a href="-/root/b.zip">All documents as a ZIP archive</a></p>
<ul>
<li><a href=-/root/b/A>A</a>
</ul>
</section>
<section>
<h2 id=namespace-2>a <small>1 class</small></h2>
<p><a href="-/a.zip">All documents as a ZIP archive</a></p>
<ul>
<li><a href=-/a/A>A</a>
</ul>
</section>
<section>
<h2 id=namespace-3>c <small>0 classes</small></h2>
<p><a href="-/c.zip">All documents as a ZIP archive</a></p>
<ul>
</ul>
</section>
)");
    EXPECT_NE(page.find("<p>2 classes in 3 namespaces. "), std::string::npos);
}

TEST_F(IndexPageTest, ARepositoryMayBeEmpty) {
    EXPECT_EQ(mainOf(pageOf(Repository::ClassRepository({}))), "");
}

// Whether the repository escapes descriptions or not.
TEST_F(IndexPageTest, DescriptionsAreEscapedOnce) {
    const std::string mof =
        R"([Description ("<b>a</b> & \"b\" &lt; &amp;lt;\nc <script>")] class A {};)";
    const std::string expected =
        "<li><a href=-/root/test/A>A</a>"
        "<p>&lt;b&gt;a&lt;/b&gt; &amp; &quot;b&quot; &amp;lt; &amp;amp;lt; c &lt;script&gt;\n";
    EXPECT_EQ(listOf(mof, {.escapeDescriptions = true}), expected);
    EXPECT_EQ(listOf(mof, {.escapeDescriptions = false}), expected);
}

TEST_F(IndexPageTest, ADescriptionIsCutBeforeItIsEscaped) {
    const std::string description(89, '<');
    std::string escaped;
    for (int count = 0; count < 89; ++count)
        escaped += "&lt;";
    EXPECT_EQ(
        between(listOf("[Description (\"" + description + "> x\")] class A {};"), "<p>", "\n"),
        escaped + "&gt;…");
    EXPECT_EQ(between(listOf("[Description (\"" + description + ">>\")] class A {};"), "<p>", "\n"),
              escaped + "&gt;…");
    EXPECT_EQ(between(listOf("[Description (\"" + description + ">\")] class A {};"), "<p>", "\n"),
              escaped + "&gt;");
}

TEST_F(IndexPageTest, AnInheritedDescriptionTellsNothingOfTheClass) {
    EXPECT_EQ(listOf(R"([Description ("A.")] class A {}; class B : A {};)"),
              "<li><a href=-/root/test/A>A</a><p>A.\n<li><a href=-/root/test/B>B</a>\n");
}

// Names that no MOF file could declare.
TEST_F(IndexPageTest, NamesAreEscapedAndEncoded) {
    std::vector<Mof::ClassDeclaration> declarations(2);
    declarations[0].name.text = "<a> \"b\" &c";
    declarations[1].name.text = "z>";
    declarations[1].superclass.text = declarations[0].name.text;
    std::vector<Repository::CimNamespace> namespaces;
    namespaces.emplace_back("java script:/<x>", std::move(declarations), Repository::Options());
    namespaces.emplace_back("&", std::vector<Mof::ClassDeclaration>(), Repository::Options());
    const std::string page = pageOf(Repository::ClassRepository(std::move(namespaces)));
    EXPECT_EQ(between(page, "<nav aria-label=\"Namespaces\">\n", "</nav>"),
              "<a href=#namespace-1>java script:/&lt;x&gt;</a>\n"
              "<a href=#namespace-2>&amp;</a>\n");
    const std::string directory = "-/java%20script%3A/%3Cx%3E/";
    EXPECT_EQ(
        between(page, "<section>\n", "</section>"),
        "<h2 id=namespace-1>java script:/&lt;x&gt; <small>2 classes</small></h2>\n"
        "<p><a href=\"-/java%20script%3A/%3Cx%3E.zip\">All documents as a ZIP archive</a></p>\n"
        "<ul>\n"
        "<li><a href=" +
            directory +
            "%3Ca%3E%20%22b%22%20%26c>&lt;a&gt; &quot;b&quot; &amp;c</a>\n<li><a href=" +
            directory + "z%3E>z&gt;</a>\n</ul>\n");
}

TEST_F(IndexPageTest, NamesAreSortedWithoutRegardToCase) {
    const std::string list = listOf("class b {}; class A {}; class C {}; class a_ {};");
    EXPECT_EQ(list,
              "<li><a href=-/root/test/A>A</a>\n<li><a href=-/root/test/a_>a_</a>\n"
              "<li><a href=-/root/test/b>b</a>\n<li><a href=-/root/test/C>C</a>\n");
}

TEST_F(IndexPageTest, AnExportedOneLeadsToFiles) {
    const std::string page = pageOf(*load("class A {};"), Pages::Layout::kExported);
    EXPECT_NE(page.find("<li><a href=root/test/A.html>A</a>"), std::string::npos);
    EXPECT_NE(page.find("data-source=\"search.js\""), std::string::npos);
    EXPECT_NE(pageOf(*load("class A {};")).find("data-source=\"-/search.js\""), std::string::npos);
}

TEST_F(IndexPageTest, ThePolicyAllowsTheScriptAndTheStyleOfThePageAndNothingElse) {
    const std::string page = pageOf(Repository::ClassRepository({}));
    const std::string script = between(page, "<script>", "</script>");
    const std::string style = between(page, "<style>", "</style>");
    EXPECT_NE(script.find("'use strict'"), std::string::npos);
    EXPECT_NE(style.find("prefers-color-scheme: dark"), std::string::npos);
    const std::string policy = "default-src 'none'; script-src " + Pages::sourceHash(script) +
                               " 'self'; style-src " + Pages::sourceHash(style) +
                               "; img-src data:; base-uri 'none'; form-action 'none'";
    EXPECT_EQ(between(page, "<meta http-equiv=\"Content-Security-Policy\" content=\"", "\">"),
              policy);
    EXPECT_EQ(Pages::contentSecurityPolicy(Pages::PageKind::kIndex),
              policy + "; frame-ancestors 'none'");
    // What the policy would block, or what would leave the computer.
    EXPECT_FALSE(std::regex_search(page, std::regex(R"(\s(style|on[a-z]+)=)")));
    EXPECT_FALSE(std::regex_search(page, std::regex(R"((src|href)="?(https?:|//))")));
}

// As "printf TEXT | openssl dgst -sha256 -binary | base64" says.
TEST(IndexPage, TheHashOfASourceIsInBase64) {
    EXPECT_EQ(Pages::sourceHash(""), "'sha256-47DEQpj8HBSa+/TImW+5JCeuQeRkm5NMpJWZG3hSuFU='");
    EXPECT_EQ(Pages::sourceHash("abc"), "'sha256-ungWv48Bz+pBQUDeXa4iI7ADYaOWF3qctBD/YfIAFa0='");
}

TEST_F(IndexPageTest, IsTheSameEachTime) {
    const TSKSmrPtr<Repository::ClassRepository> repository = load("class A {}; class B {};");
    EXPECT_EQ(pageOf(*repository), pageOf(*repository));
}

TEST(IndexPage, TheDmtfSchemaMakesAPageOfModerateSize) {
    const std::string schema = cimSchemaFile();
    if (schema.empty())
        GTEST_SKIP() << kNoCimSchema;
    const TSKSmrPtr<Repository::ClassRepository> repository =
        Loading::loadRepository({{.name = "root/cimv2", .paths = {schema}}}, {}, {}).repository;
    ASSERT_TRUE(repository);
    const std::string page = pageOf(*repository);
    std::size_t classes = 0;
    for (auto at = page.find("\n<li>"); at != page.npos; at = page.find("\n<li>", at + 1))
        ++classes;
    EXPECT_EQ(classes, 1438U);
    EXPECT_LT(page.size(), 300'000U);
    EXPECT_NE(page.find("<li><a href=-/root/cimv2/CIM_ComputerSystem>CIM_ComputerSystem</a><p>"),
              std::string::npos);
}

}  // namespace
