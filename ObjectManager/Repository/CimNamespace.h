#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "ObjectManager/Base/NameMap.h"
#include "ObjectManager/Mof/Declarations.h"
#include "ObjectManager/Repository/CimClass.h"
#include "ObjectManager/Repository/Options.h"

namespace Repository {

/// A class that a namespace leaves out, because its documents would be larger than
/// Options::maxDocumentSize.
struct OmittedClass {
    TSKString name;
    std::string member;  ///< the property or method that is to blame; empty for the class itself
    std::string reason;  ///< a sentence without a full stop: the size, what is large, the limit
};

/// A namespace and its classes. Classes whose documents would be too large are not among them, but
/// may be superclasses of those that are.
///
/// Thread safety: immutable, may be used by several threads at once.
class CimNamespace {
  public:
    /// `declarations` are free of errors, as Mof::compile says. Takes the texts out of them.
    CimNamespace(TSKString name, std::vector<Mof::ClassDeclaration>&& declarations,
                 const Options& options);

    [[nodiscard]] const TSKString& name() const noexcept { return name_; }

    /// Ascending by name, in byte order.
    [[nodiscard]] const std::vector<TSKSmrPtr<CimClass>>& classes() const noexcept {
        return classes_;
    }

    /// Ascending by name, in byte order.
    [[nodiscard]] const std::vector<OmittedClass>& omittedClasses() const noexcept {
        return omittedClasses_;
    }

    /// The class of that name, in any case; null when there is none. Takes constant time.
    [[nodiscard]] TSKSmrPtr<CimClass> findClass(const TSKString& name) const;

  private:
    TSKString name_;
    std::vector<TSKSmrPtr<CimClass>> classes_;
    std::vector<OmittedClass> omittedClasses_;
    Base::NameMap<std::size_t> places_;  // of each class in classes_
};

}  // namespace Repository
