// Loads XML Schema documents into Xerces-C with all its checks, each alone, and tells what it does
// not take. The schemas that they import come from a catalog, never from the network.

#include <filesystem>
#include <iostream>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <xercesc/dom/DOM.hpp>
#include <xercesc/framework/LocalFileInputSource.hpp>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/parsers/XercesDOMParser.hpp>
#include <xercesc/sax/HandlerBase.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLEntityResolver.hpp>
#include <xercesc/util/XMLResourceIdentifier.hpp>
#include <xercesc/validators/common/Grammar.hpp>

namespace {

constexpr const char* kUsage =
    "Usage: XercesSchemaLoader CATALOG\n"
    "Reads names of XML Schema documents from standard input, a line each. Writes a line\n"
    "FILE<tab>MESSAGE for each fault of a document, and FILE<tab>loaded for one without any.\n"
    "Ends with 0 when all were read, and with 1 when the catalog cannot be read.\n";

// The file of each address that a catalog maps.
using Catalog = std::map<std::string, std::filesystem::path>;

std::string toNarrow(const XMLCh* wide) {
    if (wide == nullptr) {
        return {};
    }
    char* characters = xercesc::XMLString::transcode(wide);
    std::string narrow = characters;
    xercesc::XMLString::release(&characters);
    return narrow;
}

// A text as Xerces-C takes it. Belongs to one thread.
class WideText {
  public:
    explicit WideText(const std::string& narrow)
        : characters_(xercesc::XMLString::transcode(narrow.c_str())) {}

    ~WideText() { xercesc::XMLString::release(&characters_); }

    WideText(const WideText&) = delete;
    WideText& operator=(const WideText&) = delete;

    [[nodiscard]] const XMLCh* get() const { return characters_; }

  private:
    XMLCh* characters_;
};

// Writes a line for each fault. Belongs to one thread.
class FaultWriter : public xercesc::HandlerBase {
  public:
    explicit FaultWriter(std::string file) : file_(std::move(file)) {}

    [[nodiscard]] bool hasFaults() const { return hasFaults_; }

    void write(const std::string& message) {
        hasFaults_ = true;
        std::cout << file_ << '\t' << message << '\n';
    }

    void warning(const xercesc::SAXParseException& fault) override {
        write(toNarrow(fault.getMessage()));
    }
    void error(const xercesc::SAXParseException& fault) override {
        write(toNarrow(fault.getMessage()));
    }
    void fatalError(const xercesc::SAXParseException& fault) override {
        write(toNarrow(fault.getMessage()));
    }

  private:
    std::string file_;
    bool hasFaults_ = false;
};

// Finds imported schemas in a catalog; others are empty, which is a fault. Xerces-C owns and
// deletes what it gets. Belongs to one thread.
class CatalogResolver : public xercesc::XMLEntityResolver {
  public:
    explicit CatalogResolver(const Catalog& catalog) : catalog_(catalog) {}

    xercesc::InputSource* resolveEntity(xercesc::XMLResourceIdentifier* resource) override {
        const auto found = catalog_.find(toNarrow(resource->getSystemId()));
        if (found == catalog_.end()) {
            return std::make_unique<xercesc::MemBufInputSource>(nullptr, 0, "unknown").release();
        }
        const WideText file(found->second.string());
        return std::make_unique<xercesc::LocalFileInputSource>(file.get()).release();
    }

  private:
    const Catalog& catalog_;
};

// Empty when the file is no catalog.
Catalog readCatalog(const std::filesystem::path& file) {
    Catalog catalog;
    xercesc::XercesDOMParser parser;
    parser.setDoNamespaces(true);
    parser.parse(file.c_str());
    const WideText anyNamespace("*");
    const WideText uri("uri");
    const WideText name("name");
    const xercesc::DOMDocument* const document = parser.getDocument();
    if (document == nullptr || document->getDocumentElement() == nullptr) {
        return catalog;
    }
    const xercesc::DOMNodeList* const entries =
        document->getElementsByTagNameNS(anyNamespace.get(), uri.get());
    for (XMLSize_t i = 0; i < entries->getLength(); ++i) {
        const auto* const entry = static_cast<const xercesc::DOMElement*>(entries->item(i));
        catalog.emplace(toNarrow(entry->getAttribute(name.get())),
                        file.parent_path() / toNarrow(entry->getAttribute(uri.get())));
    }
    return catalog;
}

void load(const std::string& file, CatalogResolver& resolver) {
    FaultWriter faults(file);
    xercesc::XercesDOMParser parser;
    parser.setDoNamespaces(true);
    parser.setDoSchema(true);
    parser.setValidationScheme(xercesc::XercesDOMParser::Val_Always);
    parser.setValidationSchemaFullChecking(true);
    parser.setXMLEntityResolver(&resolver);
    parser.setErrorHandler(&faults);
    try {
        const xercesc::LocalFileInputSource source(WideText(file).get());
        const auto* const grammar = parser.loadGrammar(source, xercesc::Grammar::SchemaGrammarType);
        if (grammar == nullptr && !faults.hasFaults()) {
            faults.write("no schema, and no reason given");
        }
    } catch (const xercesc::XMLException& exception) {
        faults.write(toNarrow(exception.getMessage()));
    }
    if (!faults.hasFaults()) {
        std::cout << file << "\tloaded\n";
    }
}

}  // namespace

int main(int argumentCount, char** arguments) {
    if (argumentCount != 2) {
        std::cerr << kUsage;
        return 2;
    }
    xercesc::XMLPlatformUtils::Initialize();
    int status = 1;
    const Catalog catalog = readCatalog(arguments[1]);
    if (catalog.empty()) {
        std::cerr << "XercesSchemaLoader: " << arguments[1] << ": no catalog, or an empty one\n";
    } else {
        CatalogResolver resolver(catalog);
        for (std::string file; std::getline(std::cin, file);) {
            load(file, resolver);
        }
        status = 0;
    }
    xercesc::XMLPlatformUtils::Terminate();
    return status;
}
