#include "ObjectManager/Pages/PageFrame.h"

#include <openssl/evp.h>

#include "ObjectManager/Base/Text.h"
#include "Platform/Util/TeskBaseException.h"
#include "Platform/Util/TeskStatusCode.h"

namespace Pages {

// The texts of the files of these names, in a file that the build makes from PageParts.cpp.in.
extern const std::string_view kIndexPageStyle;
extern const std::string_view kIndexPageScript;
extern const std::string_view kClassPageStyle;
extern const std::string_view kClassPageScript;

namespace {

std::string_view styleOf(PageKind kind) {
    return kind == PageKind::kIndex ? kIndexPageStyle : kClassPageStyle;
}

std::string_view scriptOf(PageKind kind) {
    return kind == PageKind::kIndex ? kIndexPageScript : kClassPageScript;
}

std::string makePolicy(PageKind kind) {
    return "default-src 'none'; script-src " + sourceHash(scriptOf(kind)) +
           (kind == PageKind::kIndex ? " 'self'" : "") + "; style-src " +
           sourceHash(styleOf(kind)) + "; img-src data:; base-uri 'none'; form-action 'none'";
}

// Hashed once.
const std::string& policyOf(PageKind kind) {
    static const std::string ofIndex = makePolicy(PageKind::kIndex);
    static const std::string ofClass = makePolicy(PageKind::kClass);
    return kind == PageKind::kIndex ? ofIndex : ofClass;
}

// A picture in the page itself, so that no browser asks for a /favicon.ico.
constexpr std::string_view kIcon =
    "data:image/svg+xml,%3Csvg xmlns='http://www.w3.org/2000/svg' viewBox='0 0 16 16'%3E"
    "%3Crect width='16' height='16' rx='3' fill='%230550ae'/%3E"
    "%3Cpath d='M3 4h10v2.2H9.2V13H6.8V6.2H3z' fill='white'/%3E%3C/svg%3E";

}  // namespace

std::string framedPage(PageKind kind, std::string_view title, std::string_view body) {
    std::string page = R"(<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta http-equiv="Content-Security-Policy" content=")";
    page.reserve(body.size() + styleOf(kind).size() + scriptOf(kind).size() + 2000);
    page += policyOf(kind);
    page += R"(">
<meta name="viewport" content="width=device-width, initial-scale=1">
<title>)";
    page += Base::htmlText(title);
    page += "</title>\n<link rel=\"icon\" href=\"";
    page += kIcon;
    page += "\">\n<style>";
    page += styleOf(kind);
    page += "</style>\n</head>\n<body>\n";
    page += body;
    page += "<script>";
    page += scriptOf(kind);
    page += "</script>\n</body>\n</html>\n";
    return page;
}

std::string contentSecurityPolicy(PageKind kind) {
    return policyOf(kind) + "; frame-ancestors 'none'";
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

}  // namespace Pages
