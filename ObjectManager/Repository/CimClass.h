#pragma once

#include <cstdint>
#include <vector>

#include "ObjectManager/Repository/CimDefinition.h"
#include "ObjectManager/Repository/CimMembers.h"
#include "Platform/Cim/ITeskClass.h"
#include "Platform/Util/TSKReferenceCount.h"
#include "Platform/Util/TSKSmrPtr.h"

namespace Repository {

/// A class with what it inherits. It owns what it declares itself and shares the rest with its
/// superclass, which it keeps alive.
///
/// Thread safety: immutable, may be used by several threads at once.
class CimClass : public CimDefinition<ITeskClass>, public TSKReferenceCount {
  public:
    /// Takes the texts out of `declaration`. `superclass` is null for a class without one.
    CimClass(Mof::ClassDeclaration&& declaration, TSKSmrPtr<CimClass> superclass,
             const Options& options);

    [[nodiscard]] CI_AutoPtr_U<urma::Iterator<const urma::IPropertyDef&>> getProperties(
        bool includeInherited) const override;
    [[nodiscard]] CI_AutoPtr_U<urma::Iterator<const urma::IMethodDef&>> getMethods(
        bool includeInherited) const override;

    /// Null for a class without one.
    [[nodiscard]] const CimClass* superclass() const noexcept { return superclass_.get(); }

    /// As getProperties and getMethods with what is inherited, without an iterator.
    [[nodiscard]] const std::vector<const CimProperty*>& properties() const noexcept {
        return *properties_.all;
    }
    [[nodiscard]] const std::vector<const CimMethod*>& methods() const noexcept {
        return *methods_.all;
    }

    /// What all members take together of a document (Repository/DocumentSize.h).
    [[nodiscard]] std::uint64_t sizeOfMembers() const noexcept;

    /// The class that declares what this one lists: itself or a superclass.
    [[nodiscard]] const CimClass& declaringClass(const CimProperty& property) const noexcept;
    [[nodiscard]] const CimClass& declaringClass(const CimMethod& method) const noexcept;

  private:
    template <typename Member>
    struct Members {
        std::vector<Member> declared;
        // In the order in which they are listed: the declared ones, and with the inherited ones. A
        // class that declares none, or has no superclass, needs no list of its own.
        std::vector<const Member*> own;
        std::vector<const Member*> merged;
        const std::vector<const Member*>* all = &own;
        std::uint64_t documentSize = 0;  // of all
    };

    template <typename Member>
    static void inherit(Members<Member>& members, const Members<Member>& inherited);
    template <typename Member>
    static void measure(Members<Member>& members);

    TSKSmrPtr<CimClass> superclass_;
    Members<CimProperty> properties_;
    Members<CimMethod> methods_;
};

}  // namespace Repository
