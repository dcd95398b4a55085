#include <gtest/gtest.h>
#include <libxml/HTMLparser.h>
#include <libxml/xpath.h>
#include <memory>
#include <string>

#include "ObjectManager/Pages/ClassPage.h"
#include "ObjectManager/Pages/PageFrame.h"
#include "Tests/Support/MofModel.h"

namespace {

std::string between(const std::string& text, const std::string& begin, const std::string& end) {
    const std::size_t start = text.find(begin);
    if (start == std::string::npos)
        return "no " + begin;
    const std::size_t from = start + begin.size();
    return text.substr(from, text.find(end, from) - from);
}

std::string pageOf(const MofModel& model, const char* name,
                   Pages::Layout layout = Pages::Layout::kServed) {
    const Pages::ClassRelations relations(model.nameSpace());
    return Pages::makeClassPage(model.cimClass(name), relations, layout, "http://host:1");
}

std::string pageOf(const std::string& mof, const char* name,
                   Pages::Layout layout = Pages::Layout::kServed) {
    return pageOf(MofModel(mof), name, layout);
}

// What is shown of a property or a method.
std::string member(const std::string& page, const std::string& id) {
    return between(page, " id=\"" + id + "\">\n", "\n</div>\n<div class=\"member");
}

TEST(ClassPage, TellsNameNamespaceBadgesAndDocuments) {
    const std::string page = pageOf(
        R"([Abstract, Association, Experimental, Terminal, Version ("1.2"), Deprecated {"TST_New.A", "x"},
           Description ("One.\n\n<Two>.")] class TST_Old { [Key] TST_New REF A; [Key] TST_New REF B; };
           class TST_New {};)",
        "TST_Old");
    EXPECT_EQ(between(page, "<title>", "</title>"), "TST_Old – root/test");
    EXPECT_EQ(between(page, "<header>\n", "<nav aria-label=\"Contents\">"),
              R"(<nav aria-label="Way"><a href="../../../">All classes</a> / root/test</nav>
<h1>TST_Old</h1>
<p class=badges> <span class="badge ">abstract</span> <span class="badge ">association</span> <span class="badge ">terminal</span> <span class="badge warning">experimental</span> <span class="badge warning">deprecated</span> <span class="badge ">version 1.2</span></p>
<p class=documents><a href=../../../root/test/TST_Old.wsdl>WSDL document</a> <a href=../../../root/test/TST_Old.xsd>XML Schema</a></p>
)");
    EXPECT_EQ(between(page, "<section id=description>\n", "</section>"),
              "<p>One.</p>\n<p>&lt;Two&gt;.</p>\n<p class=note>Deprecated, replaced by "
              "<a href=TST_New>TST_New</a>.A, x.</p>\n");
}

TEST(ClassPage, DoesNotLeadToASuperclassThatIsLeftOut) {
    const std::string large = "TST_" + std::string(1'000, 'a');
    const MofModel model("class " + large + " { [Key] string K; }; class TST_B : " + large +
                             " {};\n[Association] class TST_C { [Key] " + large +
                             " REF A; [Key] TST_B REF B; };",
                         {.maxDocumentSize = 20'000});
    EXPECT_EQ(model.nameSpace().classes().size(), 2U);
    for (const char* const name : {"TST_B", "TST_C"}) {
        const std::string page = pageOf(model, name);
        EXPECT_NE(page.find(large.substr(0, 60)), std::string::npos) << name;
        EXPECT_EQ(page.find("<a href=" + large), std::string::npos) << name;
    }
    EXPECT_NE(pageOf(model, "TST_B").find("<p>Extends " + large + "</p>"), std::string::npos);
}

TEST(ClassPage, AnExportedOneLeadsToFiles) {
    const std::string page = pageOf("class A {}; class B : A {};", "B", Pages::Layout::kExported);
    EXPECT_NE(page.find("<a href=\"../../index.html\">All classes</a>"), std::string::npos);
    EXPECT_NE(page.find("<a href=../../root/test/B.wsdl>"), std::string::npos);
    EXPECT_NE(page.find("<p>Extends <a href=A.html>A</a></p>"), std::string::npos);
}

TEST(ClassPage, TellsAddressesWithTheHostOfTheService) {
    EXPECT_EQ(between(pageOf("class A {};", "A"),
                      "<section id=addresses>\n<h2>Addresses</h2>\n<dl>\n", "</dl>"),
              R"(<dt>Service</dt><dd><code data-copy="Service">http://host:1/wsman</code></dd>
<dt>WSDL</dt><dd><code data-copy="WSDL">http://host:1/root/test/A.wsdl</code></dd>
<dt>XML Schema</dt><dd><code data-copy="XML Schema">http://host:1/root/test/A.xsd</code></dd>
<dt>Namespace URI</dt><dd><code data-copy="Namespace URI">http://schemas.dmtf.org/wbem/wscim/1/cim-schema/2/A</code></dd>
<dt>Resource URI</dt><dd><code data-copy="Resource URI">http://schemas.dmtf.org/wbem/wscim/1/cim-schema/2/A</code></dd>
)");
}

TEST(ClassPage, ShowsAPropertyWithAllThatItsQualifiersSay) {
    const std::string page = pageOf(
        R"(class A { [Key, Required, Write, MaxLen (8), MinLen (2), PUnit ("byte"), Description ("Text & more."),
             ModelCorrespondence {"B.X", "C"}, ValueMap {"1", "2..4", ".."}, Values {"<One>", "Few"}]
           string P[]; };
           class B {};)",
        "A");
    EXPECT_EQ(
        between(page, "id=\"property-P\">\n", "</section>"),
        R"(<h3><a href="#property-P">P</a> <code>string[]</code> <span class="badge key">key</span> <span class="badge required">required</span> <span class="badge ">writable</span></h3>
<p>Text &amp; more.</p>
<dl>
<dt>Unit</dt><dd>byte</dd>
<dt>Minimum length</dt><dd>2</dd>
<dt>Maximum length</dt><dd>8</dd>
<dt>See also</dt><dd><a href=B>B</a>.X, C</dd>
</dl>
<details class=values open><summary>3 values</summary>
<table>
<tr><th>Value<th>Name
<tr><td>1<td>&lt;One&gt;
<tr><td>2..4<td>Few
<tr><td>..<td>
</table>
</details>
</div>
)");
}

TEST(ClassPage, ClassesWithinTypesAreLinks) {
    const std::string page = pageOf(
        R"(class A { A REF R; [EmbeddedInstance ("a")] string I; [EmbeddedObject] string O[]; };)",
        "A");
    EXPECT_NE(page.find("<code><a href=A>A</a> REF</code>"), std::string::npos);
    EXPECT_NE(page.find("<code>instance of <a href=A>A</a></code>"), std::string::npos);
    EXPECT_NE(page.find("<code>any object[]</code>"), std::string::npos);
}

TEST(ClassPage, TellsWhatIsInheritedAndFromWhere) {
    const std::string page =
        pageOf("class A { string X; string Y; }; class B : A { string Z; };", "B");
    EXPECT_NE(page.find("<h2>Properties <small>3, 2 inherited</small></h2>\n<input type=checkbox "
                        "id=hide-properties class=hide>"),
              std::string::npos);
    EXPECT_EQ(member(page, "property-X"),
              "<h3><a href=\"#property-X\">X</a> <code>string</code></h3>\n"
              "<p class=origin>from <a href=A>A</a></p>");
    EXPECT_NE(page.find("<div class=\"member inherited\" id=\"property-X\">"), std::string::npos);
    EXPECT_NE(page.find("<div class=\"member\" id=\"property-Z\">"), std::string::npos);
}

TEST(ClassPage, ShowsMethodsWithParametersDirectionsAndReturnValues) {
    const std::string page = pageOf(
        R"(class A {
             [Description ("Does."), ValueMap {"0"}, Values {"Done"}]
             uint32 M ([In, Required, Description ("A number.")] uint8 N, [In (false), Out] A REF R,
                       [Out] string Both); };)",
        "A");
    EXPECT_EQ(between(page, "id=\"method-M\">\n", "</section>"),
              R"(<h3><a href="#method-M">M</a> <code>uint32</code></h3>
<p>Does.</p>
<h4>Parameters</h4>
<div class=parameter>
<h5>N <code>uint8</code> <span class="badge ">in</span> <span class="badge required">required</span></h5>
<p>A number.</p>
</div>
<div class=parameter>
<h5>R <code><a href=A>A</a> REF</code> <span class="badge ">out</span></h5>
</div>
<div class=parameter>
<h5>Both <code>string</code> <span class="badge ">in</span> <span class="badge ">out</span></h5>
</div>
<h4>Return values</h4>
<details class=values open><summary>1 value</summary>
<table>
<tr><th>Value<th>Name
<tr><td>0<td>Done
</table>
</details>
<p><a href="#request-M">Example request</a></p>
</div>
)");
    EXPECT_EQ(pageOf("class A {};", "A").find("id=methods"), std::string::npos);
}

TEST(ClassPage, ListsAssociationsAndWhereThereAreMore) {
    const char* const mof = R"(
        class A {}; class B : A {}; class C {};
        [Association] class OfA { [Key] A REF Mine; [Key] C REF Other; };
        [Association] class OfB { [Key] B REF Mine; [Key] C REF Other; };)";
    EXPECT_EQ(between(pageOf(mof, "B"), "<section id=associations>\n", "</section>"),
              R"(<h2>Associations <small>1</small></h2>
<ul>
<li><a href=OfB>OfB</a> as <code>Mine</code>, with <code>Other</code> <a href=C>C</a>
</ul>
<p>Its superclasses have more: <a href=A#associations>A</a> (1)</p>
)");
    EXPECT_EQ(pageOf("class A {};", "A").find("id=associations"), std::string::npos);
}

// What a browser finds in a page, whatever a model holds: names that no MOF file could declare, and
// texts that any could.
TEST(ClassPage, HostileTextsAreNoMarkup) {
    const std::string evil = R"(</style></script></svg>"'><img src=x onerror=alert(1)>{{`$&)";
    std::string quotedEvil;
    for (const char byte : evil)
        quotedEvil += byte == '"' ? std::string("\\\"") : std::string(1, byte);
    const std::string text = "\"" + quotedEvil + "\"";
    const MofModel model(
        "[Description (" + text + "), Version (" + text + "), Deprecated {" + text +
        "}] class A { [Key, Description (" + text + "), PUnit (" + text + "), ValueMap {" + text +
        "}, Values {" + text + "}, ModelCorrespondence {" + text + "}, EmbeddedInstance (" + text +
        "), Propagated (" + text + ")] string P;\n[Description (" + text + "), ValueMap {" + text +
        "}] uint32 M ([In, Description (" + text + "), ValueMap {" + text + "}] string N); };");
    std::vector<Mof::ClassDeclaration> declarations(2);
    declarations[0].name.text = TSKString(evil);
    declarations[0].properties.resize(1);
    declarations[0].properties[0].name.text = TSKString(evil);
    declarations[0].properties[0].type.dataType = Mof::DataType::kReference;
    declarations[0].properties[0].type.referencedClass.text = TSKString(evil);
    declarations[0].methods.resize(1);
    declarations[0].methods[0].name.text = TSKString(evil);
    declarations[0].methods[0].parameters.resize(1);
    declarations[0].methods[0].parameters[0].name.text = TSKString(evil);
    declarations[1].name.text = "Below";
    declarations[1].superclass.text = TSKString(evil);
    const Repository::CimNamespace nameSpace(TSKString(evil), std::move(declarations), {});
    const Pages::ClassRelations relations(nameSpace);

    std::vector<std::string> pages = {pageOf(model, "A")};
    for (const TSKSmrPtr<Repository::CimClass>& each : nameSpace.classes())
        pages.push_back(Pages::makeClassPage(*each, relations, Pages::Layout::kExported, evil));
    ASSERT_EQ(pages.size(), 3U);
    for (const std::string& page : pages) {
        const std::unique_ptr<xmlDoc, decltype(&xmlFreeDoc)> document(
            htmlReadMemory(page.data(), static_cast<int>(page.size()), nullptr, "UTF-8",
                           HTML_PARSE_NOERROR | HTML_PARSE_NOWARNING),
            xmlFreeDoc);
        const std::unique_ptr<xmlXPathContext, decltype(&xmlXPathFreeContext)> context(
            xmlXPathNewContext(document.get()), xmlXPathFreeContext);
        const auto count = [&](const char* expression) {
            const std::unique_ptr<xmlXPathObject, decltype(&xmlXPathFreeObject)> found(
                xmlXPathEvalExpression(reinterpret_cast<const xmlChar*>(expression), context.get()),
                xmlXPathFreeObject);
            return found->floatval;
        };
        EXPECT_EQ(count("count(//img)"), 0);
        EXPECT_EQ(count("count(//@*[starts-with(name(), 'on')])"), 0);
        EXPECT_EQ(count("count(//style)"), 1);
        EXPECT_EQ(count("count(//script)"), 1);
        EXPECT_EQ(count("count(//a[starts-with(@href, 'javascript:')])"), 0);
        EXPECT_EQ(count("count(//main)"), 1);
    }
}

TEST(ClassPage, ThePolicyAllowsTheScriptAndTheStyleOfThePageAndNothingElse) {
    const std::string page = pageOf("class A {};", "A");
    const std::string policy = "default-src 'none'; script-src " +
                               Pages::sourceHash(between(page, "<script>", "</script>")) +
                               "; style-src " +
                               Pages::sourceHash(between(page, "<style>", "</style>")) +
                               "; img-src data:; base-uri 'none'; form-action 'none'";
    EXPECT_EQ(between(page, "<meta http-equiv=\"Content-Security-Policy\" content=\"", "\">"),
              policy);
    EXPECT_EQ(Pages::contentSecurityPolicy(Pages::PageKind::kClass),
              policy + "; frame-ancestors 'none'");
}

}  // namespace
