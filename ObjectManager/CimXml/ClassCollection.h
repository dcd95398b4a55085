#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

#include "ObjectManager/Base/NameMap.h"
#include "ObjectManager/Base/NamePattern.h"
#include "ObjectManager/CimXml/DeclarationBuilder.h"
#include "ObjectManager/CimXml/Element.h"
#include "ObjectManager/CimXml/Options.h"
#include "ObjectManager/Mof/Compiler.h"

namespace CimXml {

/// Collects the classes of a namespace as a server sends them, in any order, and turns them into
/// the declarations that MOF would have made.
///
/// Servers differ in what they send beside what a class declares: all that it inherits, or some of
/// it, and marked as PROPAGATED or not; some mark what a class overrides as well. So a member is
/// taken for the superclass's own where it is marked and says the same as the superclass's.
///
/// Thread safety: belongs to one thread.
class ClassCollection {
  public:
    /// `place` is what diagnostics begin with, such as "https://cim.example.com:5989: root/cimv2".
    /// `limits` must outlive this. `elements` is how many of Limits::maxElements are taken already.
    ClassCollection(std::string place, const Limits& limits, std::size_t elements = 0)
        : place_(std::move(place)), limits_(limits), elements_(elements) {}

    /// Takes a QUALIFIER.DECLARATION. Errors: ServerError for any other element.
    void addQualifier(const Element& element);

    /// Takes a CLASS. Errors: ServerError for any other element; kLimit for too many.
    void addClass(const Element& element);

    /// The superclass of a class that is there, empty for none; nothing for one that is not there.
    [[nodiscard]] std::optional<TSKString> superclassOf(std::string_view className) const;

    /// The checked declarations of the classes whose names fit one of `patterns`, and of their
    /// superclasses; of all classes without a pattern (Base::NamePattern). What cannot be used is
    /// left out, with warnings. The result has an error when it is too large as a whole.
    [[nodiscard]] Mof::Compilation declarations(const std::vector<std::string>& patterns) const;

    /// How many of Limits::maxElements are taken now.
    [[nodiscard]] std::size_t countElements() const noexcept { return elements_; }

    /// A number that differs when what the server has sent differs, whatever its order. The same in
    /// one process only.
    [[nodiscard]] std::uint64_t digest() const noexcept { return digest_; }

  private:
    // A member or a qualifier of a class. The body is one of bodies_.
    struct Part {
        std::string_view body;
        bool isPropagated;

        [[nodiscard]] Element element() const noexcept { return Element(body, isPropagated); }
    };
    struct Class {
        TSKString name;
        TSKString superclass;
        std::vector<Part> parts;
        Base::NameMap<const Part*> qualifiers;
        Base::NameMap<const Part*> properties;
        Base::NameMap<const Part*> methods;
        std::size_t number = 0;  // in classes_
        bool isRepeated = false;
    };
    // Keyed: the server could choose bodies such that all have the same hash.
    struct Hash {
        [[nodiscard]] std::size_t operator()(std::string_view body) const noexcept;
    };
    class Making;

    [[nodiscard]] std::string_view keep(std::string_view body);
    [[nodiscard]] const Class* find(std::string_view name) const noexcept;

    const std::string place_;
    const Limits& limits_;
    std::deque<std::string> texts_;                      // what the views below refer to
    std::unordered_set<std::string_view, Hash> bodies_;  // each once
    std::vector<std::string_view> qualifiers_;
    std::deque<Class> classes_;
    Base::NameMap<std::size_t> index_;  // the numbers of classes
    std::vector<std::string> unnamed_;  // why classes have no usable name
    std::size_t elements_;
    std::uint64_t digest_ = 0;
};

}  // namespace CimXml
