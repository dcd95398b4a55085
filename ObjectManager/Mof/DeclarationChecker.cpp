#include "ObjectManager/Mof/DeclarationChecker.h"

#include <algorithm>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "ObjectManager/Base/NameMap.h"
#include "ObjectManager/Base/Text.h"
#include "ObjectManager/Mof/ValueChecker.h"

namespace Mof {

namespace {

// Removes declarations that repeat an earlier one; one of the same name that says something else is
// an error.
template <typename Declaration>
void removeRepeated(std::vector<Declaration>& declarations, const char* kind, Reporter& reporter) {
    Base::NameMap<const Declaration*> first;
    first.reserve(declarations.size());
    std::vector<bool> repeated(declarations.size());
    for (std::size_t index = 0; index < declarations.size(); ++index) {
        const Declaration& declaration = declarations[index];
        const auto [known, isNew] = first.emplace(declaration.name.text, &declaration);
        repeated[index] = !isNew;
        if (!isNew && !isSame(declaration, *known->second)) {
            reporter.error(declaration.name.position,
                           std::string("the ") + kind + " " + Base::quoted(declaration.name.text) +
                               " is declared otherwise at " +
                               reporter.nameOf(known->second->name.position));
        }
    }
    if (first.size() == declarations.size())
        return;
    std::size_t index = 0;
    declarations.erase(std::remove_if(declarations.begin(), declarations.end(),
                                      [&](const Declaration&) { return repeated[index++]; }),
                       declarations.end());
}

void removeRepeated(Compilation& compilation, Reporter& reporter) {
    removeRepeated(compilation.qualifiers, "qualifier", reporter);
    removeRepeated(compilation.classes, "class", reporter);
}

// Whether a qualifier of that type is true when it is written without a value.
bool takesNoValue(const Type& type) {
    return type.dataType == DataType::kBoolean && !type.isArray;
}

Value nullValue(const Position& position) {
    Literal null;
    null.position = position;
    return Value{.isArray = false, .position = position, .literals = {null}};
}

// How many properties, methods, parameters and qualifiers a class declares itself.
std::size_t countDeclared(const ClassDeclaration& declaration) {
    std::size_t count = declaration.qualifiers.size();
    for (const Property& property : declaration.properties)
        count += 1 + property.qualifiers.size();
    for (const Method& method : declaration.methods) {
        count += 1 + method.qualifiers.size();
        for (const Parameter& parameter : method.parameters)
            count += 1 + parameter.qualifiers.size();
    }
    return count;
}

// Calls `onRepeated` for each element that has the name of an earlier one. Most lists are short
// enough to be compared element by element.
template <typename Element, typename OnRepeated>
void findRepeated(const std::vector<Element>& elements, const OnRepeated& onRepeated) {
    constexpr std::size_t kShort = 12;
    if (elements.size() <= kShort) {
        for (auto later = elements.begin(); later != elements.end(); ++later) {
            if (std::any_of(elements.begin(), later, [&](const Element& earlier) {
                    return earlier.name.text.equalsIgnoreCase(later->name.text);
                }))
                onRepeated(*later);
        }
        return;
    }
    Base::NameSet names;
    names.reserve(elements.size());
    for (const Element& element : elements) {
        if (!names.insert(element.name.text).second)
            onRepeated(element);
    }
}

// Checks a compilation in which nothing is declared twice.
class DeclarationChecker {
  public:
    // What happens to a class with an error.
    enum class Faulty { kIsAnError, kIsLeftOut };

    DeclarationChecker(Compilation& compilation, Reporter& reporter, Faulty faulty)
        : compilation_(compilation), reporter_(reporter), faulty_(faulty) {
        qualifiers_.reserve(compilation.qualifiers.size());
        for (const QualifierDeclaration& declaration : compilation.qualifiers)
            qualifiers_.emplace(declaration.name.text, &declaration);
        listClasses();
    }

    void check(const std::vector<ClassFault>& known) {
        for (QualifierDeclaration& declaration : compilation_.qualifiers)
            checkDefaultOf(declaration);
        for (const ClassFault& fault : known)
            faults_.emplace(classes_.at(fault.className), fault);
        for (ClassDeclaration& declaration : compilation_.classes) {
            if (!faults_.contains(&declaration))
                checkClass(declaration);
        }
        checkInheritance();
    }

  private:
    using Sizes = std::unordered_map<const ClassDeclaration*, std::size_t>;
    using Nearest = std::unordered_map<const ClassDeclaration*, const ClassDeclaration*>;

    void listClasses() {
        classes_.clear();
        classes_.reserve(compilation_.classes.size());
        for (const ClassDeclaration& declaration : compilation_.classes)
            classes_.emplace(declaration.name.text, &declaration);
    }

    // An error of the class that is checked.
    void error(const Position& position, const std::string& message) {
        if (faulty_ == Faulty::kIsAnError)
            reporter_.error(position, message);
        else
            faults_.try_emplace(checked_, ClassFault{checked_->name.text, position, message});
    }

    void checkDefaultOf(QualifierDeclaration& declaration) {
        const std::optional<Mismatch> mismatch =
            mismatchOf(declaration.defaultValue, declaration.type, declaration.name);
        if (!mismatch)
            return;
        if (faulty_ == Faulty::kIsAnError) {
            reporter_.error(mismatch->position, mismatch->reason);
            return;
        }
        reporter_.warning(mismatch->position, mismatch->reason + "; it is left out");
        declaration.defaultValue.reset();
    }

    void checkClass(ClassDeclaration& declaration) {
        checked_ = &declaration;
        checkQualifiers(declaration.qualifiers);
        findRepeated(declaration.properties, [&](const Property& property) {
            reportRepeated("property", property.name, "class", declaration.name);
        });
        for (Property& property : declaration.properties)
            checkProperty(property);
        findRepeated(declaration.methods, [&](const Method& method) {
            reportRepeated("method", method.name, "class", declaration.name);
        });
        for (Method& method : declaration.methods)
            checkMethod(method);
    }

    void checkProperty(Property& property) {
        checkQualifiers(property.qualifiers);
        checkType(property.type);
        if (property.type.dataType == DataType::kReference && property.type.isArray) {
            error(property.name.position,
                  "the reference " + Base::quoted(property.name.text) + " must not be an array");
        }
        if (const std::optional<Mismatch> mismatch =
                mismatchOf(property.defaultValue, property.type, property.name))
            error(mismatch->position, mismatch->reason);
    }

    void checkMethod(Method& method) {
        checkQualifiers(method.qualifiers);
        checkType(method.returnType);
        findRepeated(method.parameters, [&](const Parameter& parameter) {
            reportRepeated("parameter", parameter.name, "method", method.name);
        });
        for (Parameter& parameter : method.parameters) {
            checkQualifiers(parameter.qualifiers);
            checkType(parameter.type);
        }
    }

    void reportRepeated(const char* kind, const Name& name, const char* ownerKind,
                        const Name& owner) {
        error(name.position, std::string("the ") + ownerKind + " " + Base::quoted(owner.text) +
                                 " has a " + kind + " " + Base::quoted(name.text) + " already");
    }

    void checkType(const Type& type) {
        const Name& name = type.referencedClass;
        if (type.dataType != DataType::kReference || classes_.contains(name.text))
            return;
        if (unknownClasses_.insert(name.text).second) {
            reporter_.warning(name.position, "the referenced class " + Base::quoted(name.text) +
                                                 " is not declared");
        }
    }

    // With the whole sentence as its reason.
    static std::optional<Mismatch> mismatchOf(const std::optional<Value>& value, const Type& type,
                                              const Name& name) {
        std::optional<Mismatch> mismatch;
        if (value)
            mismatch = findMismatch(*value, type);
        if (mismatch) {
            mismatch->reason.insert(0, "the default value of " + Base::quoted(name.text) + " ");
        }
        return mismatch;
    }

    void checkQualifiers(Qualifiers& qualifiers) {
        findRepeated(qualifiers, [&](const Qualifier& qualifier) {
            error(qualifier.name.position,
                  "the qualifier " + Base::quoted(qualifier.name.text) + " is written twice");
        });
        for (Qualifier& qualifier : qualifiers)
            checkQualifier(qualifier);
    }

    void checkQualifier(Qualifier& qualifier) {
        const auto declared = qualifiers_.find(qualifier.name.text);
        if (declared == qualifiers_.end()) {
            qualifier.propagates = qualifier.flavors.toSubclass.value_or(true);
            if (unknownQualifiers_.insert(qualifier.name.text).second) {
                reporter_.warning(
                    qualifier.name.position,
                    "the qualifier " + Base::quoted(qualifier.name.text) + " is not declared");
            }
            return;
        }
        const QualifierDeclaration& declaration = *declared->second;
        qualifier.dataType = declaration.type.dataType;
        qualifier.propagates =
            qualifier.flavors.toSubclass.value_or(declaration.flavors.toSubclass.value_or(true));
        if (!qualifier.value && !takesNoValue(declaration.type)) {
            reporter_.warning(
                qualifier.name.position,
                "the qualifier " + Base::quoted(qualifier.name.text) + " has no value");
            qualifier.value = nullValue(qualifier.name.position);
        }
        if (!qualifier.value)
            return;
        if (const std::optional<Mismatch> mismatch =
                findMismatch(*qualifier.value, declaration.type)) {
            error(mismatch->position,
                  "the qualifier " + Base::quoted(qualifier.name.text) + " " + mismatch->reason);
        }
    }

    // Every superclass must be declared, and no class may be its own superclass.
    void checkInheritance() {
        std::size_t missing = 0;
        for (const ClassDeclaration& declaration : compilation_.classes) {
            const Name& name = declaration.superclass;
            if (name.text.isEmpty() || classes_.contains(name.text))
                continue;
            ++missing;
            checked_ = &declaration;
            error(name.position, "the superclass " + Base::quoted(name.text) + " of " +
                                     Base::quoted(declaration.name.text) + " is not declared");
        }
        if (missing == 0 || faulty_ == Faulty::kIsLeftOut)
            checkDepths();
        if (!faults_.empty())
            leaveOut();
        if (!compilation_.hasErrors())
            checkSizes();
    }

    // Every class with a fault, and all below it.
    void leaveOut() {
        std::unordered_map<const ClassDeclaration*, std::size_t> subclasses;
        std::vector<bool> isLeftOut;
        isLeftOut.reserve(compilation_.classes.size());
        Nearest nearest;
        for (const ClassDeclaration& declaration : compilation_.classes) {
            const ClassDeclaration* const faulty = nearestFaulty(declaration, nearest);
            isLeftOut.push_back(faulty != nullptr);
            if (faulty != nullptr && faulty != &declaration)
                ++subclasses[faulty];
        }
        for (const ClassDeclaration& declaration : compilation_.classes) {
            const auto fault = faults_.find(&declaration);
            if (fault != faults_.end())
                reportLeftOut(fault->second, subclasses[&declaration]);
        }
        std::size_t index = 0;
        std::erase_if(compilation_.classes,
                      [&](const ClassDeclaration&) { return isLeftOut[index++]; });
        faults_.clear();
        listClasses();
    }

    // The class itself, or the first one above it, that has a fault; null for none. In a cycle of
    // superclasses one has.
    const ClassDeclaration* nearestFaulty(const ClassDeclaration& declaration, Nearest& nearest) {
        std::vector<const ClassDeclaration*> line;
        const ClassDeclaration* current = &declaration;
        while (current != nullptr && !faults_.contains(current) && !nearest.contains(current)) {
            line.push_back(current);
            current = superclassOf(*current);
        }
        const auto known = nearest.find(current);
        const ClassDeclaration* const faulty = known == nearest.end() ? current : known->second;
        for (const ClassDeclaration* const below : line)
            nearest.emplace(below, faulty);
        return faulty;
    }

    void reportLeftOut(const ClassFault& fault, std::size_t subclasses) {
        const std::string those =
            subclasses == 0 ? ""
                            : " with its " + Base::counted(subclasses, "subclass", "subclasses");
        reporter_.warning(fault.position, fault.message + "; the class is left out" + those);
    }

    // The depth of a class is the number of superclasses above it, and found once for each class. A
    // class that is met again while its own superclasses are looked up is one of them.
    void checkDepths() {
        constexpr auto kLookedUp = static_cast<std::size_t>(-1);
        std::unordered_map<const ClassDeclaration*, std::size_t> depths;
        depths.reserve(compilation_.classes.size());
        for (const ClassDeclaration& declaration : compilation_.classes) {
            std::vector<const ClassDeclaration*> line;
            const ClassDeclaration* current = &declaration;
            while (current != nullptr && depths.emplace(current, kLookedUp).second) {
                line.push_back(current);
                current = superclassOf(*current);
            }
            const bool isCyclic = current != nullptr && depths[current] == kLookedUp;
            if (isCyclic)
                reportCycle(*current);
            std::size_t depth = current == nullptr || isCyclic ? 0 : depths[current] + 1;
            // In a cycle, which is reported already, there are no depths.
            std::reverse(line.begin(), line.end());
            for (const ClassDeclaration* const below : line)
                setDepth(depths[below], isCyclic ? 0 : depth++, *below);
        }
    }

    void setDepth(std::size_t& place, std::size_t depth, const ClassDeclaration& declaration) {
        place = depth;
        if (depth == kMaxSuperclasses + 1) {
            checked_ = &declaration;
            error(declaration.superclass.position,
                  "the class " + Base::quoted(declaration.name.text) + " has more than " +
                      std::to_string(kMaxSuperclasses) + " superclasses above it");
        }
    }

    void reportCycle(const ClassDeclaration& declaration) {
        constexpr std::size_t kMaxNamed = 10;
        checked_ = &declaration;
        std::string message =
            "the class " + Base::quoted(declaration.name.text) + " is its own superclass";
        std::size_t others = 0;
        for (const ClassDeclaration* current = superclassOf(declaration); current != &declaration;
             current = superclassOf(*current)) {
            if (++others <= kMaxNamed)
                message += ", by way of " + Base::quoted(current->name.text);
        }
        if (others > kMaxNamed)
            message += " and " + std::to_string(others - kMaxNamed) + " more";
        error(declaration.superclass.position, message);
    }

    void checkSizes() {
        Sizes sizes;
        sizes.reserve(compilation_.classes.size());
        std::size_t total = 0;
        for (const ClassDeclaration& declaration : compilation_.classes) {
            total += sizeOf(declaration, sizes);
            if (total > kMaxInherited) {
                reporter_.error(declaration.name.position,
                                "up to this class, classes declare and inherit more than " +
                                    std::to_string(kMaxInherited) +
                                    " properties, methods, parameters and qualifiers");
                return;
            }
        }
    }

    // How much a class declares and inherits. The recursion is no deeper than kMaxSuperclasses.
    std::size_t sizeOf(const ClassDeclaration& declaration, Sizes& sizes) const {
        const auto known = sizes.find(&declaration);
        if (known != sizes.end())
            return known->second;
        const ClassDeclaration* const superclass = superclassOf(declaration);
        const std::size_t inherited = superclass == nullptr ? 0 : sizeOf(*superclass, sizes);
        const std::size_t size = countDeclared(declaration) + inherited;
        sizes.emplace(&declaration, size);
        return size;
    }

    [[nodiscard]] const ClassDeclaration* superclassOf(const ClassDeclaration& declaration) const {
        const auto superclass = classes_.find(declaration.superclass.text);
        return superclass == classes_.end() ? nullptr : superclass->second;
    }

    Compilation& compilation_;
    Reporter& reporter_;
    Faulty faulty_;
    const ClassDeclaration* checked_ = nullptr;
    std::unordered_map<const ClassDeclaration*, ClassFault> faults_;  // of classes to leave out
    Base::NameMap<const QualifierDeclaration*> qualifiers_;
    Base::NameMap<const ClassDeclaration*> classes_;
    Base::NameSet unknownQualifiers_;
    Base::NameSet unknownClasses_;
};

}  // namespace

void checkDeclarations(Compilation& compilation, Reporter& reporter) {
    removeRepeated(compilation, reporter);
    DeclarationChecker(compilation, reporter, DeclarationChecker::Faulty::kIsAnError).check({});
}

void leaveOutFaulty(Compilation& compilation, Reporter& reporter,
                    const std::vector<ClassFault>& known) {
    removeRepeated(compilation, reporter);
    DeclarationChecker(compilation, reporter, DeclarationChecker::Faulty::kIsLeftOut).check(known);
}

}  // namespace Mof
