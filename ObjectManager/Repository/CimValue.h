#pragma once

#include <optional>

#include "ObjectManager/Mof/Declarations.h"
#include "Platform/Cim/ITeskValue.h"
#include "Platform/Util/TSKReferenceCount.h"

namespace Repository {

/// A value of a qualifier: a literal, or an array of them. The text of an array is empty.
///
/// Thread safety: immutable, may be used by several threads at once.
class CimValue : public ITeskValue, public TSKReferenceCount {
  public:
    /// Takes the texts out of `value`. `type` is that of the value, or of its elements; without one
    /// it is the type that the first literal has by itself.
    /// Returns null for the literal null.
    [[nodiscard]] static TSKSmrPtr<ITeskValue> from(Mof::Value&& value,
                                                    std::optional<Mof::DataType> type);
    [[nodiscard]] static TSKSmrPtr<ITeskValue> from(bool truth);

    // For TSKSmrPtr::make; use from().
    CimValue(const TSKSmrPtr<ITeskType>& type, TSKString text, bool truth);

    [[nodiscard]] TSKSmrPtr<ITeskType> getType() const override { return type_; }
    [[nodiscard]] TSKString toString() const override { return text_; }
    [[nodiscard]] bool toBoolean() const override { return truth_; }
    [[nodiscard]] TSKSmrPtr<TSKValSlist<TSKSmrPtr<ITeskValue>>> getArrayValues() const override {
        return elements_;
    }

  private:
    TSKSmrPtr<ITeskType> type_;
    TSKString text_;
    bool truth_;
    TSKSmrPtr<TSKValSlist<TSKSmrPtr<ITeskValue>>> elements_;
};

}  // namespace Repository
