#pragma once

#include <optional>

#include "ObjectManager/Repository/CimValue.h"

namespace Repository {

/// The value of a Description qualifier whose text would be markup in a document. Documents insert
/// descriptions as they are, so toString() escapes `&`, `<` and `>`; text() is what was declared.
///
/// Thread safety: immutable, may be used by several threads at once.
class EscapedDescription final : public CimValue {
  public:
    /// As CimValue::from, for a Description: an EscapedDescription if its text needs escapes, else
    /// a plain CimValue.
    [[nodiscard]] static TSKSmrPtr<CimValue> from(Mof::Value&& value,
                                                  std::optional<Mof::DataType> type);

    using CimValue::CimValue;  // for TSKSmrPtr::make; use from()

    /// Escapes at each call: the schema of the DMTF has six such descriptions of classes.
    [[nodiscard]] TSKString toString() const override;
};

}  // namespace Repository
