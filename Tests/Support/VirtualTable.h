#pragma once

#include <cstddef>
#include <cstring>

/// The position of a virtual operation in its class's virtual table, as the Itanium C++ ABI keeps
/// it in a pointer to the member.
template <typename Member>
std::size_t slotOf(Member member) {
    std::size_t words[2];
    static_assert(sizeof member == sizeof words);
    std::memcpy(words, &member, sizeof words);
    return (words[0] - 1) / sizeof(void*);
}
