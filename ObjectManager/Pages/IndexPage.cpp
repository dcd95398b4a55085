#include "ObjectManager/Pages/IndexPage.h"

#include <string_view>

#include "ObjectManager/Base/Text.h"
#include "ObjectManager/Pages/FirstSentence.h"
#include "ObjectManager/Pages/PageFrame.h"

namespace Pages {

namespace {

using Base::htmlText;
using Base::percentEncodedPath;

// More than a sentence should have. A description without the end of a sentence must not fill the
// page; the document holds all of it.
constexpr std::size_t kMaxDescriptionBytes = 500;

// Numbers are written without separators.
std::string countOf(std::size_t count, const char* singular, const char* plural) {
    return std::to_string(count) + " " + (count == 1 ? singular : plural);
}

// Without the end tags of items and paragraphs and the quotes around these links, which HTML does
// not need: with a thousand classes that matters.
void appendClass(std::string& page, const std::string& directory,
                 const Repository::CimClass& cimClass) {
    const std::string document = directory + percentEncodedPath(cimClass.name());
    page += "<li><a href=" + document + ".wsdl>" + htmlText(cimClass.name()) + "</a>";
    if (cimClass.superclass() != nullptr)
        page += " <i>" + htmlText(cimClass.superclass()->name()) + "</i>";
    page += " <a href=" + document + ".xsd>XSD</a>";
    const std::string description = firstSentence(cimClass.description(), kMaxDescriptionBytes);
    if (!description.empty())
        page += " <p>" + htmlText(description);
    page += "\n";
}

void appendNamespace(std::string& page, const Repository::CimNamespace& nameSpace,
                     std::size_t number) {
    page += "<section>\n<h2 id=namespace-" + std::to_string(number) + ">" +
            htmlText(nameSpace.name()) + " <small>" +
            countOf(nameSpace.classes().size(), "class", "classes") + "</small></h2>\n<ul>\n";
    const std::string directory = percentEncodedPath(nameSpace.name()) + "/";
    for (const TSKSmrPtr<Repository::CimClass>& cimClass : nameSpace.classes())
        appendClass(page, directory, *cimClass);
    page += "</ul>\n</section>\n";
}

// Empty for a single namespace.
std::string linksToNamespaces(const Repository::ClassRepository& repository) {
    std::string links;
    for (const Repository::CimNamespace& nameSpace : repository.namespaces()) {
        const std::size_t number =
            static_cast<std::size_t>(&nameSpace - repository.namespaces().data()) + 1;
        links += "<a href=#namespace-" + std::to_string(number) + ">" + htmlText(nameSpace.name()) +
                 "</a>\n";
    }
    return repository.namespaces().size() < 2
               ? ""
               : "<nav aria-label=\"Namespaces\">\n" + links + "</nav>\n";
}

// The filter is shown by the script that makes it work.
constexpr std::string_view kFilter = R"(<div role="search" id="search" hidden>
<label for="filter">Filter</label>
<input id="filter" type="search" autocomplete="off" spellcheck="false"
  placeholder="words of name, superclass or description">
<output id="count" for="filter"></output>
</div>
)";

}  // namespace

std::string makeIndexPage(const Repository::ClassRepository& repository) {
    std::string page =
        "<header>\n<h1>WSDL and XML Schema of CIM classes</h1>\n<p>" +
        countOf(repository.countClasses(), "class", "classes") + " in " +
        countOf(repository.namespaces().size(), "namespace", "namespaces") +
        ". A name leads to the WSDL document of the class, XSD to its XML Schema.</p>\n";
    page += linksToNamespaces(repository) + "</header>\n";
    page += kFilter;
    page += "<main>\n";
    std::size_t number = 0;
    for (const Repository::CimNamespace& nameSpace : repository.namespaces())
        appendNamespace(page, nameSpace, ++number);
    page += "</main>\n";
    return framedPage(PageKind::kIndex, "WSDL and XML Schema of CIM classes", page);
}

}  // namespace Pages
