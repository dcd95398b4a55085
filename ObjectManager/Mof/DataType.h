#pragma once

#include <cstdint>

namespace Mof {

/// The data types of CIM (DSP0004, 5.2), and references.
enum class DataType : std::uint8_t {
    kUint8,
    kSint8,
    kUint16,
    kSint16,
    kUint32,
    kSint32,
    kUint64,
    kSint64,
    kReal32,
    kReal64,
    kChar16,
    kString,
    kBoolean,
    kDatetime,
    kReference,
};

/// The word for it in MOF, in lower case: "uint8", "datetime", "ref".
[[nodiscard]] const char* keywordOf(DataType type) noexcept;

}  // namespace Mof
