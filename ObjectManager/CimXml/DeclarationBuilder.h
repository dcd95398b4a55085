#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ObjectManager/Base/NameMap.h"
#include "ObjectManager/CimXml/Element.h"
#include "ObjectManager/Mof/Declarations.h"
#include "ObjectManager/Mof/Diagnostics.h"

namespace CimXml {

/// The places of declarations that come from a server: a class, a member of it, a parameter.
///
/// Thread safety: belongs to one thread.
class PlaceTable {
  public:
    /// `name` may be empty for a namespace as a whole, or a qualifier, which has no members.
    [[nodiscard]] Mof::Position add(const TSKString& name, const TSKString& member = {},
                                    const TSKString& parameter = {});

    /// "CIM_Foo.SetState.State"; empty for an empty name.
    [[nodiscard]] std::string nameOf(const Mof::Position& position) const;

  private:
    struct Place {
        TSKString name;
        TSKString member;
        TSKString parameter;
    };

    std::vector<Place> places_;
};

/// What is wrong with an element, where no declaration can be made of it.
struct ElementFault {
    Mof::Position position;
    std::string message;
};

/// What superclasses say about a member of a class, or a parameter of it. They can list thousands
/// of qualifiers each, so these are found by their names.
///
/// Thread safety: belongs to one thread.
class Overridden {
  public:
    /// Adds what the next superclass above says. Its bytes must live as long as this.
    void add(const Element& element);

    [[nodiscard]] bool isEmpty() const noexcept { return isEmpty_; }

    /// Whether the nearest superclass that has a qualifier of that name has it with the same value
    /// and passes it on.
    [[nodiscard]] bool passesOn(const Element& qualifier) const noexcept;

    /// What they say about a parameter of that kind and name.
    [[nodiscard]] Overridden parameter(const Element& named) const;

  private:
    bool isEmpty_ = true;
    Base::NameMap<Element> qualifiers_;  // the nearest of each name
    Base::NameMap<std::vector<Element>> parameters_;
};

/// Makes declarations of elements (DSP0201), as they would be made of MOF. Qualifiers that are
/// marked as propagated are left out where a superclass has the same one: they come from there.
///
/// Thread safety: belongs to one thread.
class DeclarationBuilder {
  public:
    /// Adds to `places`, which must outlive this.
    explicit DeclarationBuilder(PlaceTable& places) : places_(places) {}

    // Errors of the following: ElementFault.

    [[nodiscard]] Mof::QualifierDeclaration qualifierDeclaration(const Element& element);

    /// What is built next belongs to the class of that name; its own place.
    [[nodiscard]] Mof::Position beginClass(const TSKString& name);

    [[nodiscard]] Mof::Qualifier qualifierOfClass(const Element& element);
    [[nodiscard]] Mof::Property property(const Element& element, const Overridden& overridden);
    [[nodiscard]] Mof::Method method(const Element& element, const Overridden& overridden);

  private:
    [[nodiscard]] Mof::Name nameOf(const Element& element) const;
    [[nodiscard]] Mof::Type typeOf(const Element& element) const;
    [[nodiscard]] Mof::Parameter parameter(const Element& element, const Overridden& ofMethods,
                                           const TSKString& method);
    [[nodiscard]] Mof::Qualifier qualifier(const Element& element) const;
    void addQualifier(Mof::Qualifiers& qualifiers, const Element& element,
                      const Overridden& overridden) const;
    void addEmbeddedObject(Mof::Qualifiers& qualifiers, const Element& element) const;
    [[nodiscard]] Mof::Value valueOf(const Element& element, Mof::DataType type) const;
    [[nodiscard]] Mof::Literal literalOf(const Element& element, Mof::DataType type) const;
    [[noreturn]] void fail(const std::string& message) const;

    PlaceTable& places_;
    TSKString className_;
    Mof::Position position_;  // of what is built
};

/// Whether a text is a name of CIM: letters, digits and underscores, no digit first (DSP0004, annex
/// A); characters beyond ASCII count as letters.
[[nodiscard]] bool isName(std::string_view text) noexcept;

/// What comes from a server can be written as MOF, whatever it is used for.
/// Errors: ElementFault where a name is a word that cannot be one in MOF.
void requireNoReservedWord(std::string_view name, const Mof::Position& position);

/// Whether a qualifier says what the same one of a superclass says and passes on.
[[nodiscard]] bool isPassedOn(const Element& above, const Element& qualifier) noexcept;

/// Whether a member that a class lists is the superclass's own: it says the same, but for
/// qualifiers that are not passed on, which some servers leave out.
[[nodiscard]] bool isSameMember(const Element& listed, const Element& inherited);

}  // namespace CimXml
