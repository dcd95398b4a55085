#include "ObjectManager/Loading/ImportFiles.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <map>
#include <optional>

#include "ObjectManager/Base/Ascii.h"
#include "ObjectManager/Base/NameMap.h"
#include "ObjectManager/Base/OutputDirectory.h"
#include "ObjectManager/Base/Utf8.h"
#include "ObjectManager/Mof/MofWriter.h"
#include "ObjectManager/Mof/ValueChecker.h"

namespace Loading {

namespace {

constexpr std::string_view kExtension = ".mof";
constexpr std::string_view kQualifiersFile = "qualifiers.mof";

// 16 digits that are the same for the same text, by FNV-1a.
std::string hashOf(std::string_view text) {
    std::uint64_t hash = 0xCBF29CE484222325U;
    for (const char byte : text) {
        hash ^= static_cast<unsigned char>(byte);
        hash *= 0x100000001B3U;
    }
    char digits[17];
    (void)std::snprintf(digits, sizeof digits, "%016llx", static_cast<unsigned long long>(hash));
    return digits;
}

// No name of a class has a hyphen, so that no other class has the name with the hash.
std::string fileNameOf(std::string_view className) {
    constexpr std::size_t kMaxShortened = 200;
    std::string file = std::string(className) + std::string(kExtension);
    const bool isTaken = Base::equalsIgnoringCase(file, kMainFile) ||
                         Base::equalsIgnoringCase(file, kQualifiersFile);
    if (!isTaken && Base::OutputDirectory::validateName(file).empty())
        return file;
    file.assign(className.substr(0, Base::startOfCharacter(className, kMaxShortened)));
    return file + "-" + hashOf(className) + std::string(kExtension);
}

// Calls `visit` with each list of qualifiers of a class and its members.
template <typename Visit>
void visitQualifiers(const Mof::ClassDeclaration& declaration, const Visit& visit) {
    visit(declaration.qualifiers);
    for (const Mof::Property& property : declaration.properties)
        visit(property.qualifiers);
    for (const Mof::Method& method : declaration.methods) {
        visit(method.qualifiers);
        for (const Mof::Parameter& parameter : method.parameters)
            visit(parameter.qualifiers);
    }
}

// Declares the qualifiers that a server uses without declaring them, as they are used. One that is
// used in different ways stays undeclared.
class UndeclaredQualifiers {
  public:
    explicit UndeclaredQualifiers(const Mof::Compilation& content) {
        for (const Mof::QualifierDeclaration& declaration : content.qualifiers)
            declared_.insert(declaration.name.text);
        for (const Mof::ClassDeclaration& declaration : content.classes) {
            visitQualifiers(declaration, [this](const Mof::Qualifiers& qualifiers) {
                for (const Mof::Qualifier& qualifier : qualifiers) {
                    if (!declared_.contains(qualifier.name.text))
                        uses_[Base::lowerCase(qualifier.name.text)].push_back(&qualifier);
                }
            });
        }
    }

    [[nodiscard]] std::string mof() const {
        std::string text;
        for (const auto& [name, uses] : uses_) {
            if (const std::optional<Mof::Type> type = typeOf(uses)) {
                Mof::QualifierDeclaration declaration;
                declaration.name = uses.front()->name;
                declaration.type = *type;
                declaration.scopes = Mof::kAnyScope;
                text += mofOf(declaration);
            }
        }
        return text;
    }

  private:
    using Uses = std::vector<const Mof::Qualifier*>;

    // The type that all uses have, if there is one.
    static std::optional<Mof::Type> typeOf(const Uses& uses) {
        if (!uses.front()->dataType)
            return std::nullopt;
        Mof::Type type;
        type.dataType = *uses.front()->dataType;
        type.isArray = std::ranges::any_of(
            uses, [](const Mof::Qualifier* use) { return use->value && use->value->isArray; });
        const bool isSame = std::ranges::all_of(uses, [&](const Mof::Qualifier* use) {
            return use->dataType == type.dataType && use->value && !findMismatch(*use->value, type);
        });
        return isSame ? std::optional(type) : std::nullopt;
    }

    Base::NameSet declared_;
    std::map<std::string, Uses> uses_;  // by the names in lower case
};

// Puts classes into the order in which they are included.
class InclusionOrder {
  public:
    explicit InclusionOrder(const std::vector<Mof::ClassDeclaration>& classes) {
        for (const Mof::ClassDeclaration& declaration : classes)
            byName_.emplace(declaration.name.text, &declaration);
        std::vector<const Mof::ClassDeclaration*> sorted;
        sorted.reserve(classes.size());
        for (const Mof::ClassDeclaration& declaration : classes)
            sorted.push_back(&declaration);
        std::ranges::sort(sorted, {}, [](const Mof::ClassDeclaration* declaration) {
            return Base::lowerCase(declaration->name.text);
        });
        // References refer to classes without references, but for few.
        for (const bool hasReferences : {false, true}) {
            for (const Mof::ClassDeclaration* const declaration : sorted) {
                if (hasReference(*declaration) == hasReferences)
                    add(*declaration);
            }
        }
    }

    [[nodiscard]] const std::vector<const Mof::ClassDeclaration*>& classes() const noexcept {
        return order_;
    }

  private:
    // The recursion is no deeper than Mof::kMaxSuperclasses.
    void add(const Mof::ClassDeclaration& declaration) {
        if (!added_.insert(declaration.name.text).second)
            return;
        const auto superclass = byName_.find(declaration.superclass.text);
        if (superclass != byName_.end())
            add(*superclass->second);
        order_.push_back(&declaration);
    }

    static bool hasReference(const Mof::ClassDeclaration& declaration) {
        return std::ranges::any_of(declaration.properties, [](const Mof::Property& property) {
            return property.type.dataType == Mof::DataType::kReference;
        });
    }

    Base::NameMap<const Mof::ClassDeclaration*> byName_;
    Base::NameSet added_;
    std::vector<const Mof::ClassDeclaration*> order_;
};

std::string includeOf(std::string_view file) {
    return "#pragma include (\"" + std::string(file) + "\")\n";
}

}  // namespace

std::vector<ImportFile> importFiles(const Mof::Compilation& content) {
    std::vector<ImportFile> files;
    ImportFile& qualifiers = files.emplace_back(
        ImportFile{.name = std::string(kQualifiersFile), .content = "// All qualifiers.\n"});
    for (const Mof::QualifierDeclaration& declaration : content.qualifiers)
        qualifiers.content += mofOf(declaration);
    qualifiers.content += UndeclaredQualifiers(content).mof();
    std::string main = "// All classes, each after its superclass.\n" + includeOf(kQualifiersFile);
    const InclusionOrder order(content.classes);
    for (const Mof::ClassDeclaration* const declaration : order.classes()) {
        ImportFile file = {.name = fileNameOf(declaration->name.text),
                           .content = mofOf(*declaration)};
        main += includeOf(file.name);
        files.push_back(std::move(file));
    }
    files.push_back({.name = std::string(kMainFile), .content = std::move(main)});
    return files;
}

}  // namespace Loading
