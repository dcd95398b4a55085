#include "ObjectManager/Pages/IndexPage.h"

#include <algorithm>
#include <string_view>
#include <vector>

#include "ObjectManager/Base/Ascii.h"
#include "ObjectManager/Base/Text.h"
#include "ObjectManager/Pages/FirstSentence.h"
#include "ObjectManager/Pages/PageFrame.h"

namespace Pages {

namespace {

using Base::counted;
using Base::htmlText;
using Repository::CimClass;
using Repository::CimNamespace;

// Two lines of a list. The page of the class has all of it, and the first page that somebody loads
// shall be small.
constexpr std::size_t kMaxDescriptionBytes = 90;

std::vector<const CimClass*> classesWithoutRegardToCase(const CimNamespace& nameSpace) {
    std::vector<const CimClass*> classes;
    for (const TSKSmrPtr<CimClass>& cimClass : nameSpace.classes())
        classes.push_back(cimClass.get());
    std::ranges::stable_sort(classes, {}, [](const CimClass* each) {
        return Base::lowerCase(std::string_view(each->name()));
    });
    return classes;
}

// Without the end tags of items and paragraphs and the quotes around the link, which HTML does not
// need: with a thousand classes that matters.
void appendClass(std::string& page, const CimNamespace& nameSpace, const CimClass& cimClass,
                 Layout layout) {
    page += "<li><a href=" + pathOfClassPage(layout, nameSpace.name(), cimClass.name()) + ">" +
            htmlText(cimClass.name()) + "</a>";
    const std::string description = firstSentence(cimClass.description(), kMaxDescriptionBytes);
    if (!description.empty())
        page += "<p>" + htmlText(description);
    page += "\n";
}

void appendNamespace(std::string& page, const CimNamespace& nameSpace, std::size_t number,
                     Layout layout) {
    page += "<section>\n<h2 id=namespace-" + std::to_string(number) + ">" +
            htmlText(nameSpace.name()) + " <small>" +
            counted(nameSpace.classes().size(), "class", "classes") + "</small></h2>\n";
    if (layout == Layout::kServed)
        page += "<p><a href=\"" + pathOfArchive(nameSpace.name()) +
                "\">All documents as a ZIP archive</a></p>\n";
    page += "<ul>\n";
    for (const CimClass* const cimClass : classesWithoutRegardToCase(nameSpace))
        appendClass(page, nameSpace, *cimClass, layout);
    page += "</ul>\n</section>\n";
}

// Empty for a single namespace.
std::string linksToNamespaces(const Repository::ClassRepository& repository) {
    std::string links;
    std::size_t number = 0;
    for (const CimNamespace& nameSpace : repository.namespaces())
        links += "<a href=#namespace-" + std::to_string(++number) + ">" +
                 htmlText(nameSpace.name()) + "</a>\n";
    return number < 2 ? "" : "<nav aria-label=\"Namespaces\">\n" + links + "</nav>\n";
}

// Shown by the script that makes it work.
std::string searchBar(Layout layout) {
    return R"(<div role="search" id="search" data-source=")" +
           std::string(pathOfSearchData(layout)) + R"(" hidden>
<label for="filter">Search</label>
<input id="filter" type="search" autocomplete="off" spellcheck="false" aria-keyshortcuts="/"
  placeholder="classes, properties, methods, descriptions">
<button type="button" id="list-view" aria-pressed="true">List</button>
<button type="button" id="tree-view" aria-pressed="false">Tree</button>
<output id="count" for="filter"></output>
</div>
)";
}

}  // namespace

std::string makeIndexPage(const Repository::ClassRepository& repository, Layout layout) {
    constexpr std::string_view kTitle = "WSDL and XML Schema of CIM classes";
    std::string page = "<header>\n<h1>" + std::string(kTitle) + "</h1>\n<p>" +
                       counted(repository.countClasses(), "class", "classes") + " in " +
                       counted(repository.namespaces().size(), "namespace", "namespaces") +
                       ". The page of a class has its members, its documents and example "
                       "requests.</p>\n";
    page += linksToNamespaces(repository) + "</header>\n";
    page += searchBar(layout);
    page += "<main>\n<div id=list>\n";
    std::size_t number = 0;
    for (const CimNamespace& nameSpace : repository.namespaces())
        appendNamespace(page, nameSpace, ++number, layout);
    page += "</div>\n</main>\n";
    return framedPage(PageKind::kIndex, kTitle, page);
}

}  // namespace Pages
