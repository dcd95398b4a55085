#pragma once

#include <optional>

#include "ObjectManager/Mof/Declarations.h"
#include "Platform/Cim/ITeskType.h"
#include "Platform/Cim/ITeskValue.h"
#include "Platform/Util/TSKReferenceCount.h"
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

/// A value of a qualifier: a literal, or an array of them. The text of an array is empty.
///
/// Thread safety: immutable, may be used by several threads at once.
class CimValue : public ITeskValue, public TSKReferenceCount {
  public:
    /// Takes the texts out of `value`. `type` is that of the value, or of its elements; without one
    /// it is the type that the first literal has by itself.
    /// Returns null for the literal null.
    [[nodiscard]] static TSKSmrPtr<CimValue> from(Mof::Value&& value,
                                                  std::optional<Mof::DataType> type);
    [[nodiscard]] static TSKSmrPtr<CimValue> from(bool truth);

    // For TSKSmrPtr::make; use from().
    CimValue(const TSKSmrPtr<ITeskType>& type, TSKString text, bool truth);

    [[nodiscard]] TSKSmrPtr<ITeskType> getType() const override { return type_; }
    [[nodiscard]] TSKString toString() const override { return text_; }
    [[nodiscard]] bool toBoolean() const override { return truth_; }
    [[nodiscard]] TSKSmrPtr<TSKValSlist<TSKSmrPtr<ITeskValue>>> getArrayValues() const override {
        return elements_;
    }

    /// The value as text, as it was declared; see EscapedDescription.
    [[nodiscard]] const TSKString& text() const noexcept { return text_; }

  private:
    TSKSmrPtr<ITeskType> type_;
    TSKString text_;
    bool truth_;
    TSKSmrPtr<TSKValSlist<TSKSmrPtr<ITeskValue>>> elements_;
};

}  // namespace Repository
