#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

#include "Platform/Util/TSKString.h"

// Containers of names, which CIM compares without regard to case (DSP0004, 5.1.1). They keep views:
// the names live elsewhere.

namespace Mof {

[[nodiscard]] constexpr char foldedCase(char byte) noexcept {
    return byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte - 'A' + 'a') : byte;
}

/// A number that nobody knows before the process runs, and that stays the same while it does.
[[nodiscard]] std::uint64_t hashKey() noexcept;

/// FNV-1a over the folded bytes. It begins with a key that differs from process to process: names
/// come from files of others, who could choose them such that all have the same hash.
struct CaseInsensitiveHash {
    std::uint64_t key = hashKey();

    [[nodiscard]] std::size_t operator()(std::string_view name) const noexcept {
        std::uint64_t hash = key;
        for (const char byte : name)
            hash = (hash ^ static_cast<unsigned char>(foldedCase(byte))) * 0x100000001B3U;
        return hash;
    }
};

struct CaseInsensitiveEqual {
    [[nodiscard]] bool operator()(std::string_view left, std::string_view right) const noexcept {
        if (left.size() != right.size())
            return false;
        for (std::size_t index = 0; index < left.size(); ++index) {
            if (foldedCase(left[index]) != foldedCase(right[index]))
                return false;
        }
        return true;
    }
};

template <typename Value>
using NameMap =
    std::unordered_map<std::string_view, Value, CaseInsensitiveHash, CaseInsensitiveEqual>;
using NameSet = std::unordered_set<std::string_view, CaseInsensitiveHash, CaseInsensitiveEqual>;

}  // namespace Mof
