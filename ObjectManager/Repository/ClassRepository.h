#pragma once

#include <cstddef>
#include <vector>

#include "ObjectManager/Repository/CimNamespace.h"
#include "Platform/Cim/ITeskRepository.h"
#include "Platform/ProviderFramework/ITeskNamespaceList.h"

namespace Repository {

/// All namespaces with their classes, as they were when they were loaded. What it hands out stays
/// valid after it is gone.
///
/// Thread safety: immutable, may be used by several threads at once.
class ClassRepository : public ITeskRepository, public ITeskNamespaceList {
  public:
    /// The names of `namespaces` must differ in more than case.
    explicit ClassRepository(std::vector<CimNamespace> namespaces);
    // The index below refers to the names of this very object.
    ClassRepository(const ClassRepository&) = delete;
    ClassRepository& operator=(const ClassRepository&) = delete;
    ~ClassRepository() override = default;

    [[nodiscard]] TSKSmrPtr<ITeskClass> getClass(const TSKString& nameSpace,
                                                 const TSKString& className) const override;
    [[nodiscard]] TSKValSlist<TSKString> getNamespaceList() const override;

    /// In the order in which they were given.
    [[nodiscard]] const std::vector<CimNamespace>& namespaces() const noexcept {
        return namespaces_;
    }

    /// The namespace of that name, in any case; null when there is none.
    [[nodiscard]] const CimNamespace* findNamespace(const TSKString& name) const noexcept;

    /// The number of classes in all namespaces.
    [[nodiscard]] std::size_t countClasses() const noexcept;

  private:
    std::vector<CimNamespace> namespaces_;
    Base::NameMap<std::size_t> places_;  // of each namespace in namespaces_
};

}  // namespace Repository
