#include "ObjectManager/CimXml/ClassCollection.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <utility>

#include "ObjectManager/Base/Text.h"
#include "ObjectManager/CimXml/ServerError.h"
#include "ObjectManager/Mof/DeclarationChecker.h"

namespace CimXml {

namespace {

std::string shown(std::string_view text) {
    return Base::quoted(Base::logText(text));
}

std::string_view nameIn(const Element& element) noexcept {
    return element.attribute(Attribute::kName).value_or("");
}

bool isProperty(Tag tag) noexcept {
    return tag == Tag::kProperty || tag == Tag::kPropertyArray || tag == Tag::kPropertyReference;
}

void require(const Element& element, Tag tag) {
    if (element.tag() == tag)
        return;
    throw ServerError(ServerError::Kind::kNotCimXml,
                      "the response is not CIM-XML: among its results is something else, " +
                          shown(nameIn(element)));
}

// Thread safety: belongs to one thread.
class ServerPlaces : public Mof::Places {
  public:
    ServerPlaces(const std::string& server, const PlaceTable& table)
        : server_(server), table_(table) {}

    [[nodiscard]] Mof::Diagnostic diagnosticAt(const Mof::Position& position) const override {
        return {.file = nameOf(position),
                .place = {.line = 0, .column = 0},
                .message = "",
                .sourceLine = ""};
    }

    [[nodiscard]] std::string nameOf(const Mof::Position& position) const override {
        const std::string name = table_.nameOf(position);
        return name.empty() ? server_ : server_ + ": " + name;
    }

  private:
    const std::string& server_;
    const PlaceTable& table_;
};

}  // namespace

// Makes one compilation.
class ClassCollection::Making {
  public:
    explicit Making(const ClassCollection& collection)
        : collection_(collection),
          reporter_(std::make_unique<ServerPlaces>(collection.place_, places_),
                    compilation_.diagnostics) {}

    Mof::Compilation make(const std::vector<std::string>& patterns) {
        const std::vector<bool> isSelected = select(patterns);
        for (const std::string& reason : collection_.unnamed_)
            reporter_.warning(places_.add({}), reason + "; the class is left out");
        for (const std::string_view body : collection_.qualifiers_)
            addQualifier(Element(body));
        compilation_.classes.reserve(collection_.classes_.size());
        for (std::size_t index = 0; index < isSelected.size(); ++index) {
            if (isSelected[index])
                addClass(collection_.classes_[index]);
        }
        try {
            Mof::leaveOutFaulty(compilation_, reporter_, faults_);
        } catch (const Mof::TooManyErrors&) {
            // The last diagnostic says so.
        }
        return std::move(compilation_);
    }

  private:
    void addQualifier(const Element& element) {
        try {
            Mof::QualifierDeclaration declaration = builder_.qualifierDeclaration(element);
            if (qualifierNames_.insert(nameIn(element)).second)
                compilation_.qualifiers.push_back(std::move(declaration));
            else
                reporter_.warning(declaration.name.position, "the qualifier is declared twice");
        } catch (const ElementFault& fault) {
            reporter_.warning(fault.position, fault.message + "; the qualifier is left out");
        }
    }

    void addClass(const Class& from) {
        const Mof::Position position = builder_.beginClass(from.name);
        if (from.isRepeated)
            reporter_.warning(position, "the server has sent the class twice, the first counts");
        Mof::ClassDeclaration declaration;
        declaration.name = {.text = from.name, .position = position};
        declaration.superclass = {.text = from.superclass, .position = position};
        try {
            requireNoReservedWord(from.name, position);
            for (const Part& part : from.parts)
                addPart(declaration, from, part.element());
        } catch (const ElementFault& fault) {
            faults_.push_back({from.name, fault.position, fault.message});
            declaration.qualifiers.clear();
            declaration.properties.clear();
            declaration.methods.clear();
        }
        compilation_.classes.push_back(std::move(declaration));
    }

    void addPart(Mof::ClassDeclaration& declaration, const Class& from, const Element& element) {
        switch (element.tag()) {
            case Tag::kQualifier:
                if (!element.isPropagated() || !isInherited(element, from))
                    declaration.qualifiers.push_back(builder_.qualifierOfClass(element));
                break;
            case Tag::kMethod:
                if (const auto overridden = overriddenBy(element, from))
                    declaration.methods.push_back(builder_.method(element, *overridden));
                break;
            case Tag::kProperty:
            case Tag::kPropertyArray:
            case Tag::kPropertyReference:
                if (const auto overridden = overriddenBy(element, from))
                    declaration.properties.push_back(builder_.property(element, *overridden));
                break;
            default:
                throw ElementFault{
                    .position = declaration.name.position,
                    .message = "a class must not hold the element " + shown(nameIn(element))};
        }
    }

    // What superclasses list under the name of a member; nothing where the member is theirs. A
    // cycle of superclasses, which is found later, ends like a line that is too long.
    [[nodiscard]] std::optional<Overridden> overriddenBy(const Element& member,
                                                         const Class& from) const {
        Overridden overridden;
        if (!member.isPropagated() && !holdsPropagated(member))
            return overridden;
        const Class* above = collection_.find(from.superclass);
        for (std::size_t level = 0; above != nullptr && level < Mof::kMaxSuperclasses; ++level) {
            const auto& members = member.tag() == Tag::kMethod ? above->methods : above->properties;
            const auto found = members.find(nameIn(member));
            if (found != members.end()) {
                const Element inherited = found->second->element();
                if (member.isPropagated() && overridden.isEmpty() &&
                    isSameMember(member, inherited))
                    return std::nullopt;
                overridden.add(inherited);
            }
            above = collection_.find(above->superclass);
        }
        return overridden;
    }

    static bool holdsPropagated(const Element& element) {
        return std::ranges::any_of(element.children(), [](const Element& child) {
            return child.isPropagated() || holdsPropagated(child);
        });
    }

    // Whether the nearest superclass that has a qualifier passes it on.
    [[nodiscard]] bool isInherited(const Element& qualifier, const Class& from) const {
        const Class* above = collection_.find(from.superclass);
        for (std::size_t level = 0; above != nullptr && level < Mof::kMaxSuperclasses; ++level) {
            const auto found = above->qualifiers.find(nameIn(qualifier));
            if (found != above->qualifiers.end())
                return isPassedOn(found->second->element(), qualifier);
            above = collection_.find(above->superclass);
        }
        return false;
    }

    // The classes that fit, with their superclasses, by their numbers.
    std::vector<bool> select(const std::vector<std::string>& patterns) {
        std::vector<bool> isSelected(collection_.classes_.size(), patterns.empty());
        for (const std::string& text : patterns) {
            const Base::NamePattern pattern(text);
            bool isUsed = false;
            for (const Class& candidate : collection_.classes_) {
                if (!pattern.fits(candidate.name.data()))
                    continue;
                isUsed = true;
                selectWithSuperclasses(candidate, isSelected);
            }
            if (!isUsed)
                reporter_.warning(places_.add({}), "no class fits " + shown(text));
        }
        return isSelected;
    }

    void selectWithSuperclasses(const Class& selected, std::vector<bool>& isSelected) const {
        const Class* current = &selected;
        while (current != nullptr && !isSelected[current->number]) {
            isSelected[current->number] = true;
            current = collection_.find(current->superclass);
        }
    }

    const ClassCollection& collection_;
    PlaceTable places_;
    Mof::Compilation compilation_;
    Mof::Reporter reporter_;
    DeclarationBuilder builder_{places_};
    Base::NameSet qualifierNames_;
    std::vector<Mof::ClassFault> faults_;
};

std::size_t ClassCollection::Hash::operator()(std::string_view body) const noexcept {
    constexpr std::uint64_t kFactor = 0x9E3779B97F4A7C15U;
    std::uint64_t hash = Base::hashKey() ^ body.size();
    const auto add = [&](std::uint64_t word) {
        hash = (hash ^ word) * kFactor;
        hash ^= hash >> 32U;
    };
    std::uint64_t word = 0;
    for (; body.size() >= sizeof word; body.remove_prefix(sizeof word)) {
        std::memcpy(&word, body.data(), sizeof word);
        add(word);
    }
    word = 0;
    std::memcpy(&word, body.data(), body.size());
    add(word);
    return hash;
}

void ClassCollection::addQualifier(const Element& element) {
    require(element, Tag::kQualifierDeclaration);
    qualifiers_.push_back(keep(element.body()));
    digest_ += Hash()(qualifiers_.back());
}

void ClassCollection::addClass(const Element& element) {
    require(element, Tag::kClass);
    const std::string_view name = nameIn(element);
    const std::string_view superclass = element.attribute(Attribute::kSuperclass).value_or("");
    digest_ += Hash()(element.body());
    if (!isName(name)) {
        unnamed_.push_back(shown(name) + " is not a name");
        return;
    }
    if (const auto known = index_.find(name); known != index_.end()) {
        classes_[known->second].isRepeated = true;
        return;
    }
    if (classes_.size() == limits_.maxResults) {
        throw ServerError(
            ServerError::Kind::kLimit,
            "there are more than " + Base::withSeparators(limits_.maxResults) + " classes");
    }
    Class& added = classes_.emplace_back();
    added.name = TSKString(name);
    added.superclass = TSKString(superclass);
    added.number = classes_.size() - 1;
    for (const Element child : element.children())
        added.parts.push_back({.body = keep(child.body()), .isPropagated = child.isPropagated()});
    for (const Part& part : added.parts) {
        const Element child = part.element();
        if (child.tag() == Tag::kQualifier)
            added.qualifiers.emplace(nameIn(child), &part);
        else if (child.tag() == Tag::kMethod)
            added.methods.emplace(nameIn(child), &part);
        else if (isProperty(child.tag()))
            added.properties.emplace(nameIn(child), &part);
    }
    index_.emplace(added.name, added.number);
}

std::optional<TSKString> ClassCollection::superclassOf(std::string_view className) const {
    const Class* const found = find(className);
    if (found == nullptr)
        return std::nullopt;
    return found->superclass;
}

Mof::Compilation ClassCollection::declarations(const std::vector<std::string>& patterns) const {
    return Making(*this).make(patterns);
}

std::string_view ClassCollection::keep(std::string_view body) {
    const auto known = bodies_.find(body);
    if (known != bodies_.end())
        return *known;
    elements_ += Element(body).count();
    if (elements_ > limits_.maxElements) {
        throw ServerError(ServerError::Kind::kLimit,
                          "the classes have more than " +
                              Base::withSeparators(limits_.maxElements) +
                              " properties, methods, parameters, qualifiers and values");
    }
    return *bodies_.insert(texts_.emplace_back(body)).first;
}

const ClassCollection::Class* ClassCollection::find(std::string_view name) const noexcept {
    const auto found = index_.find(name);
    return found == index_.end() ? nullptr : &classes_[found->second];
}

}  // namespace CimXml
