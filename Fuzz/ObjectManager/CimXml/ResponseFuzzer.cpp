// Feeds the bytes of a server through everything between the connection and the repository: the
// reader of responses, the classes, what they inherit from each other, and the checks.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Fuzz/ObjectManager/Mof/CompileTexts.h"
#include "Fuzz/ObjectManager/Repository/ReadBack.h"
#include "Fuzz/Support/Require.h"
#include "ObjectManager/Base/NameMap.h"
#include "ObjectManager/Base/OutputDirectory.h"
#include "ObjectManager/CimXml/ClassCollection.h"
#include "ObjectManager/CimXml/ResponseReader.h"
#include "ObjectManager/CimXml/ServerError.h"
#include "ObjectManager/Loading/ImportFiles.h"
#include "ObjectManager/Repository/ClassRepository.h"

namespace {

using CimXml::ServerError;

CimXml::Limits limits() {
    CimXml::Limits limits;
    limits.maxClassSize = 10'000;
    limits.maxElements = 500;
    limits.maxResults = 50;
    limits.maxDepth = 15;
    limits.maxAttributeSize = 200;
    return limits;
}

const CimXml::Limits kLimits = limits();

// Takes what the response to an operation holds, by parts of a size. Returns the error, if any.
std::optional<ServerError::Kind> read(std::string_view bytes, std::size_t partSize,
                                      CimXml::ClassCollection& classes) {
    const auto take = [&](const CimXml::Element& element) {
        require(element.count() > 0 && !element.body().empty(), "a result is an element");
        if (element.tag() == CimXml::Tag::kQualifierDeclaration)
            classes.addQualifier(element);
        else
            classes.addClass(element);
    };
    try {
        CimXml::ResponseReader reader("EnumerateClasses", kLimits, take);
        for (; !bytes.empty(); bytes.remove_prefix(std::min(partSize, bytes.size())))
            reader.read(bytes.substr(0, partSize));
        reader.finish();
    } catch (const ServerError& error) {
        require(error.kind() == ServerError::Kind::kNotCimXml ||
                    error.kind() == ServerError::Kind::kLimit ||
                    error.kind() == ServerError::Kind::kCimError,
                "a response has faults of its own alone");
        require(!error.getMessage().isEmpty(), "an error says something");
        return error.kind();
    }
    return std::nullopt;
}

// The promises of declarations without errors.
void checkPromises(const Mof::Compilation& compilation) {
    Base::NameSet names;
    for (const Mof::ClassDeclaration& declaration : compilation.classes) {
        require(CimXml::isName(declaration.name.text), "a class has a name");
        require(names.insert(declaration.name.text).second, "no class is declared twice");
    }
    for (const Mof::ClassDeclaration& declaration : compilation.classes) {
        const TSKString& superclass = declaration.superclass.text;
        require(superclass.isEmpty() || names.contains(superclass), "every superclass is there");
    }
    for (const Mof::Diagnostic& diagnostic : compilation.diagnostics) {
        require(diagnostic.toString().starts_with("http://host:5988: root/fuzzed: "),
                "a diagnostic shows where it is");
    }
}

// What is imported of declarations without errors can be compiled, and has the same classes.
void checkImport(const Mof::Compilation& compilation) {
    std::vector<std::string> texts;
    Base::NameSet names;
    const std::vector<Loading::ImportFile> files = Loading::importFiles(compilation);
    for (const Loading::ImportFile& file : files) {
        require(Base::OutputDirectory::validateName(file.name).empty(), "a file has a name");
        require(names.insert(file.name).second, "no file has the name of another one");
        if (file.name != Loading::kMainFile)
            texts.push_back(file.content);
    }
    const Mof::Compilation again = compileTexts(texts);
    require(!again.hasErrors(), "what is imported has no errors");
    require(again.classes.size() == compilation.classes.size(), "all classes are imported");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const std::string place = "http://host:5988: root/fuzzed";
    CimXml::ClassCollection whole(place, kLimits);
    CimXml::ClassCollection byBytes(place, kLimits);
    const std::optional<ServerError::Kind> error = read(bytes, size + 1, whole);
    require(read(bytes, 1, byBytes).has_value() == error.has_value(),
            "a response is the same in parts of any size");
    if (!error)
        require(whole.digest() == byBytes.digest(), "classes are the same in parts of any size");
    Mof::Compilation compilation = whole.declarations({});
    checkPromises(compilation);
    if (compilation.hasErrors())
        return 0;
    checkImport(compilation);
    std::vector<Repository::CimNamespace> namespaces;
    namespaces.emplace_back("root/fuzzed", std::move(compilation.classes), Repository::Options());
    readBack(Repository::ClassRepository(std::move(namespaces)));
    return 0;
}
