#include "ObjectManager/Loading/ImportFiles.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <map>
#include <optional>
#include <utility>

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
template <typename Class, typename Visit>
void visitQualifiers(Class& declaration, const Visit& visit) {
    visit(declaration.qualifiers);
    for (auto& property : declaration.properties)
        visit(property.qualifiers);
    for (auto& method : declaration.methods) {
        visit(method.qualifiers);
        for (auto& parameter : method.parameters)
            visit(parameter.qualifiers);
    }
}

// The declarations of qualifiers in the order of their names.
std::vector<const Mof::QualifierDeclaration*> sortedQualifiers(const Mof::Compilation& content) {
    std::vector<const Mof::QualifierDeclaration*> sorted;
    sorted.reserve(content.qualifiers.size());
    for (const Mof::QualifierDeclaration& declaration : content.qualifiers)
        sorted.push_back(&declaration);
    std::ranges::sort(sorted, {}, [](const Mof::QualifierDeclaration* declaration) {
        return Base::lowerCase(declaration->name.text);
    });
    return sorted;
}

// Servers send with each qualifier the flavors of its declaration, which nobody writes in MOF.
class FlavorReducer {
  public:
    explicit FlavorReducer(const Mof::Compilation& content) {
        for (const Mof::QualifierDeclaration& declaration : content.qualifiers)
            declared_.emplace(declaration.name.text, &declaration.flavors);
    }

    // The class without the flavors that are those of the qualifiers' declarations.
    [[nodiscard]] Mof::ClassDeclaration reduced(Mof::ClassDeclaration declaration) const {
        visitQualifiers(declaration, [this](Mof::Qualifiers& qualifiers) {
            for (Mof::Qualifier& qualifier : qualifiers) {
                const auto declared = declared_.find(qualifier.name.text);
                if (declared == declared_.end())
                    continue;
                const Mof::Flavors& flavors = *declared->second;
                drop(qualifier.flavors.overridable, flavors.overridable.value_or(true));
                drop(qualifier.flavors.toSubclass, flavors.toSubclass.value_or(true));
                drop(qualifier.flavors.translatable, flavors.translatable.value_or(false));
            }
        });
        return declaration;
    }

  private:
    static void drop(std::optional<bool>& flavor, bool declared) noexcept {
        if (flavor == declared)
            flavor.reset();
    }

    Base::NameMap<const Mof::Flavors*> declared_;
};

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

// Puts classes into the order in which they are included: after their superclasses, and after the
// classes that they refer to unless these, in turn, need them.
class InclusionOrder {
  public:
    explicit InclusionOrder(const std::vector<Mof::ClassDeclaration>& classes)
        : classes_(classes), states_(classes.size(), State::kNew) {
        std::vector<std::pair<std::string, std::size_t>> sorted;
        for (std::size_t index = 0; index < classes.size(); ++index) {
            byName_.emplace(classes[index].name.text, index);
            sorted.emplace_back(Base::lowerCase(classes[index].name.text), index);
        }
        for (const Mof::ClassDeclaration& declaration : classes)
            superclasses_.push_back(indexOf(declaration.superclass.text));
        std::ranges::sort(sorted);
        for (const auto& [name, index] : sorted)
            add(index, 0);
    }

    [[nodiscard]] const std::vector<const Mof::ClassDeclaration*>& classes() const noexcept {
        return order_;
    }

  private:
    // A class waits while those are added that it needs.
    enum class State : std::uint8_t { kNew, kWaiting, kAdded };

    static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

    [[nodiscard]] std::size_t indexOf(const TSKString& name) const {
        const auto found = byName_.find(name);
        return found == byName_.end() ? kNone : found->second;
    }

    // `depth` classes wait. References are followed only so far: a server could send a line of them
    // that exhausts the stack.
    void add(std::size_t index, std::size_t depth) {
        constexpr std::size_t kMaxDepth = 500;
        if (states_[index] != State::kNew)
            return;
        states_[index] = State::kWaiting;
        if (superclasses_[index] != kNone)
            add(superclasses_[index], depth + 1);
        if (depth < kMaxDepth) {
            visitReferences(classes_[index], [&](std::size_t referenced) {
                if (states_[referenced] == State::kNew && !isBelowWaiting(referenced))
                    add(referenced, depth + 1);
            });
        }
        states_[index] = State::kAdded;
        order_.push_back(&classes_[index]);
    }

    // Whether a class above waits: then this one can only come after that.
    [[nodiscard]] bool isBelowWaiting(std::size_t index) const {
        while (index != kNone && states_[index] != State::kWaiting)
            index = superclasses_[index];
        return index != kNone;
    }

    template <typename Visit>
    void visitReferences(const Mof::ClassDeclaration& declaration, const Visit& visit) const {
        const auto visitNamed = [&](const TSKString& name) {
            const std::size_t index = name.isEmpty() ? kNone : indexOf(name);
            if (index != kNone)
                visit(index);
        };
        for (const Mof::Property& property : declaration.properties)
            visitNamed(property.type.referencedClass.text);
        for (const Mof::Method& method : declaration.methods) {
            visitNamed(method.returnType.referencedClass.text);
            for (const Mof::Parameter& parameter : method.parameters)
                visitNamed(parameter.type.referencedClass.text);
        }
        visitQualifiers(declaration, [&](const Mof::Qualifiers& qualifiers) {
            for (const Mof::Qualifier& qualifier : qualifiers)
                visitNamed(embeddedClassOf(qualifier));
        });
    }

    // The class whose instances a text holds, as a qualifier says it.
    static TSKString embeddedClassOf(const Mof::Qualifier& qualifier) {
        if (!qualifier.name.text.equalsIgnoreCase("EmbeddedInstance") || !qualifier.value ||
            qualifier.value->isArray)
            return {};
        return qualifier.value->literals.front().text;
    }

    const std::vector<Mof::ClassDeclaration>& classes_;
    Base::NameMap<std::size_t> byName_;
    std::vector<std::size_t> superclasses_;
    std::vector<State> states_;
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
    for (const Mof::QualifierDeclaration* const declaration : sortedQualifiers(content))
        qualifiers.content += mofOf(*declaration);
    qualifiers.content += UndeclaredQualifiers(content).mof();
    std::string main = "// All classes, each after its superclass.\n" + includeOf(kQualifiersFile);
    const FlavorReducer flavors(content);
    const InclusionOrder order(content.classes);
    for (const Mof::ClassDeclaration* const declaration : order.classes()) {
        ImportFile file = {.name = fileNameOf(declaration->name.text),
                           .content = mofOf(flavors.reduced(*declaration))};
        main += includeOf(file.name);
        files.push_back(std::move(file));
    }
    files.push_back({.name = std::string(kMainFile), .content = std::move(main)});
    return files;
}

}  // namespace Loading
