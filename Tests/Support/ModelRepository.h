#pragma once

#include <string>
#include <vector>

#include "Platform/Cim/ITeskRepository.h"
#include "Tests/Support/ClassModel.h"

/// The class definitions of a test, filled before it is used. Its lookups are noted by HostCalls as
/// "ITeskRepository::getClass NAMESPACE:CLASS".
class ModelRepository : public ITeskRepository {
  public:
    /// Adds a class and, where it is new, its namespace.
    void add(const char* nameSpace, const ModelClass& cimClass);

    [[nodiscard]] TSKSmrPtr<ITeskClass> getClass(const TSKString& nameSpace,
                                                 const TSKString& className) const override;

  private:
    struct Entry {
        TSKString nameSpace;
        TSKString className;
        TSKSmrPtr<ITeskClass> cimClass;
    };

    std::vector<Entry> entries_;
};
