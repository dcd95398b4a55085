#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

#include "ObjectManager/Base/Ascii.h"

// Containers of names, which CIM compares without regard to case (DSP0004, 5.1.1). They keep views:
// the texts must live as long as the container.
//
// Thread safety: as the containers of the standard library.

namespace Base {

/// A random number, the same one as long as the process runs. May be called by several threads at
/// once.
[[nodiscard]] std::uint64_t hashKey() noexcept;

/// FNV-1a over the bytes in lower case. It begins with a key that differs from process to process:
/// names come from files of others, who could choose them such that all have the same hash.
struct CaseInsensitiveHash {
    std::uint64_t key = hashKey();

    [[nodiscard]] std::size_t operator()(std::string_view name) const noexcept {
        std::uint64_t hash = key;
        for (const char byte : name)
            hash = (hash ^ static_cast<unsigned char>(lowerCase(byte))) * 0x100000001B3U;
        return hash;
    }
};

struct CaseInsensitiveEqual {
    [[nodiscard]] bool operator()(std::string_view left, std::string_view right) const noexcept {
        return equalsIgnoringCase(left, right);
    }
};

template <typename Value>
using NameMap =
    std::unordered_map<std::string_view, Value, CaseInsensitiveHash, CaseInsensitiveEqual>;
using NameSet = std::unordered_set<std::string_view, CaseInsensitiveHash, CaseInsensitiveEqual>;

}  // namespace Base
