#include "ObjectManager/Pages/IndexPage.h"

#include <openssl/evp.h>
#include <string_view>

#include "ObjectManager/Base/Text.h"
#include "ObjectManager/Pages/FirstSentence.h"
#include "Platform/Util/TeskBaseException.h"
#include "Platform/Util/TeskStatusCode.h"

namespace Pages {

// The texts of IndexPage.css and IndexPage.js, in a file that the build makes from
// PageParts.cpp.in.
extern const std::string_view kPageStyle;
extern const std::string_view kPageScript;

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

std::string policyOfPage() {
    return "default-src 'none'; script-src " + sourceHash(kPageScript) + "; style-src " +
           sourceHash(kPageStyle) + "; img-src data:; base-uri 'none'; form-action 'none'";
}

// A picture in the page itself, so that no browser asks for a /favicon.ico.
constexpr std::string_view kIcon =
    "data:image/svg+xml,%3Csvg xmlns='http://www.w3.org/2000/svg' viewBox='0 0 16 16'%3E"
    "%3Crect width='16' height='16' rx='3' fill='%230550ae'/%3E"
    "%3Cpath d='M3 4h10v2.2H9.2V13H6.8V6.2H3z' fill='white'/%3E%3C/svg%3E";

std::string head() {
    std::string text = R"(<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta http-equiv="Content-Security-Policy" content=")";
    text += policyOfPage();
    text += R"(">
<meta name="viewport" content="width=device-width, initial-scale=1">
<title>WSDL and XML Schema of CIM classes</title>
<link rel="icon" href=")";
    text += kIcon;
    text += "\">\n<style>";
    text += kPageStyle;
    text += "</style>\n</head>\n";
    return text;
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
    std::string page = head();
    page += "<body>\n<header>\n<h1>WSDL and XML Schema of CIM classes</h1>\n<p>" +
            countOf(repository.countClasses(), "class", "classes") + " in " +
            countOf(repository.namespaces().size(), "namespace", "namespaces") +
            ". A name leads to the WSDL document of the class, XSD to its XML Schema.</p>\n";
    page += linksToNamespaces(repository) + "</header>\n";
    page += kFilter;
    page += "<main>\n";
    std::size_t number = 0;
    for (const Repository::CimNamespace& nameSpace : repository.namespaces())
        appendNamespace(page, nameSpace, ++number);
    page += "</main>\n<script>";
    page += kPageScript;
    page += "</script>\n</body>\n</html>\n";
    return page;
}

std::string sourceHash(std::string_view text) {
    unsigned char digest[EVP_MAX_MD_SIZE];
    unsigned length = 0;
    if (EVP_Digest(text.data(), text.size(), digest, &length, EVP_sha256(), nullptr) != 1)
        throw TeskBaseException("sourceHash", "SHA-256 cannot be computed", CIM_ERR_FAILED);
    unsigned char base64[2 * EVP_MAX_MD_SIZE];
    EVP_EncodeBlock(base64, digest, static_cast<int>(length));
    return "'sha256-" + std::string(reinterpret_cast<const char*>(base64)) + "'";
}

std::string contentSecurityPolicy() {
    return policyOfPage() + "; frame-ancestors 'none'";
}

}  // namespace Pages
