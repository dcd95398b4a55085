#pragma once

#include "ObjectManager/Mof/Declarations.h"
#include "Platform/Cim/ITeskType.h"
#include "Platform/Util/TSKSmrPtr.h"

namespace Repository {

/// A data type. There are few, so each exists once.
///
/// Thread safety: immutable, may be used by several threads at once.
class CimType : public ITeskType {
  public:
    CimType(Mof::DataType dataType, bool isArray)
        : isReference_(dataType == Mof::DataType::kReference),
          isArray_(isArray),
          name_(Mof::keywordOf(dataType)) {}

    /// The one instance of a type, or of an array of it. Lives as long as the process.
    [[nodiscard]] static const TSKSmrPtr<ITeskType>& of(Mof::DataType dataType, bool isArray);

    [[nodiscard]] bool isReference() const override { return isReference_; }
    [[nodiscard]] bool isArray() const override { return isArray_; }
    [[nodiscard]] TSKString getTypeName() const override { return name_; }

  private:
    bool isReference_;
    bool isArray_;
    TSKString name_;
};

}  // namespace Repository
