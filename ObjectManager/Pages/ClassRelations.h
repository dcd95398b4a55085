#pragma once

#include <unordered_map>
#include <vector>

#include "ObjectManager/Repository/CimNamespace.h"

namespace Pages {

/// A reference of an association to a class.
struct AssociationEnd {
    const Repository::CimClass* association;
    const Repository::CimProperty* reference;
};

/// What a class cannot tell of itself: which classes of its namespace extend it, and which
/// associations refer to it.
///
/// Thread safety: immutable, may be used by several threads at once.
class ClassRelations {
  public:
    /// `nameSpace` must outlive this.
    explicit ClassRelations(const Repository::CimNamespace& nameSpace);

    [[nodiscard]] const Repository::CimNamespace& nameSpace() const noexcept { return nameSpace_; }

    /// Those that name the class as their superclass, ascending by name.
    [[nodiscard]] const std::vector<const Repository::CimClass*>& subclassesOf(
        const Repository::CimClass& cimClass) const noexcept;

    /// The ends that name this very class, not a superclass of it; ascending by the name of the
    /// association. Inherited references count as the association's own.
    [[nodiscard]] const std::vector<AssociationEnd>& endsAt(
        const Repository::CimClass& cimClass) const noexcept;

  private:
    struct Related {
        std::vector<const Repository::CimClass*> subclasses;
        std::vector<AssociationEnd> ends;
    };

    void addEnds(const Repository::CimClass& association);
    [[nodiscard]] const Related& relatedTo(const Repository::CimClass& cimClass) const noexcept;

    const Repository::CimNamespace& nameSpace_;
    std::unordered_map<const Repository::CimClass*, Related> related_;
    Related none_;
};

/// The properties of a class that are references, in the order of its properties; those of an
/// association are its ends.
[[nodiscard]] std::vector<const Repository::CimProperty*> referencesOf(
    const Repository::CimClass& cimClass);

}  // namespace Pages
