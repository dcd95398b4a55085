#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "Platform/Util/TSKString.h"

namespace Mof {

/// A pragma: #pragma NAME ("VALUE"). In the value a backslash stands for itself.
struct Pragma {
    enum class Kind : std::uint8_t { kInclude, kLocale, kNamespace, kUnknown };

    TSKString name;
    TSKString value;

    [[nodiscard]] Kind kind() const;
};

/// The text at a place where a pragma begins.
struct PragmaText {
    Pragma pragma;
    std::size_t length = 0;   ///< up to the closing parenthesis, or else to the end of the line
    bool isComplete = false;  ///< otherwise there is no value, and perhaps no name
};

/// Reads the pragma at the front of `text`, which begins with "#pragma".
[[nodiscard]] PragmaText readPragma(std::string_view text);

/// The warning about a pragma of an unknown kind.
[[nodiscard]] std::string unknownPragmaWarning(const Pragma& pragma);

}  // namespace Mof
