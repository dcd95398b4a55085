#include "Platform/Util/TSKString.h"

#include <algorithm>
#include <charconv>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <new>
#include <ostream>

#include "Platform/Util/TeskBaseException.h"
#include "Platform/Util/TeskStatusCode.h"

namespace {

std::string_view viewOf(const char* text) noexcept {
    return text == nullptr ? std::string_view() : std::string_view(text);
}

constexpr char folded(char character) noexcept {
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a')
                                                : character;
}

constexpr bool sameFolded(char left, char right) noexcept {
    return folded(left) == folded(right);
}

bool equalFolded(std::string_view left, std::string_view right) noexcept {
    return std::ranges::equal(left, right, sameFolded);
}

long positionOrAbsent(std::size_t position) noexcept {
    return position == std::string_view::npos ? -1 : static_cast<long>(position);
}

}  // namespace

char* TSKString::allocate(unsigned long capacity) {
    constexpr unsigned long kOverhead = sizeof(Buffer) + 1;
    if (capacity > static_cast<unsigned long>(PTRDIFF_MAX) - kOverhead)
        throw std::bad_alloc();
    void* memory = ::operator new(capacity + kOverhead);
    auto* buffer = ::new (memory) Buffer{.owners = 1, .capacity = capacity};
    return reinterpret_cast<char*>(buffer + 1);
}

void TSKString::releaseBuffer() noexcept {
    Buffer* shared = buffer();
    // A sole owner needs no locked instruction: no other is left that could add one.
    if (shared->owners.load(std::memory_order_acquire) != 1 &&
        shared->owners.fetch_sub(1, std::memory_order_acq_rel) != 1)
        return;
    shared->~Buffer();
    ::operator delete(shared);
}

// A text with the same bytes in a buffer of its own.
TSKString TSKString::copyWithCapacity(unsigned long capacity) const {
    TSKString copy;
    copy.text_ = allocate(capacity);
    std::memcpy(copy.text_, text_, length_);
    copy.setLength(length_);
    return copy;
}

// Afterwards the bytes are this object's alone, with room for `capacity`.
void TSKString::makeWritable(unsigned long capacity) {
    const unsigned long present = writableCapacity();
    const unsigned long needed = std::max(capacity, length_);
    if (needed > present)
        *this = copyWithCapacity(std::max(needed, 2 * present));
}

// A text with the same bytes and room for `length` more.
TSKString TSKString::copyForAppending(unsigned long length) const {
    if (length > static_cast<unsigned long>(PTRDIFF_MAX) - length_)
        throw std::bad_alloc();
    return copyWithCapacity(std::max(length_ + length, 2 * length_));
}

void TSKString::appendGrowing(const char* text, unsigned long length) {
    // `text` may be a part of the old bytes, which therefore live on until it is copied.
    TSKString larger = copyForAppending(length);
    std::memcpy(larger.extend(length), text, length);
    *this = std::move(larger);
}

bool TSKString::equals(const TSKString& other) const noexcept {
    return std::string_view(*this) == std::string_view(other);
}

bool TSKString::equals(const char* other) const noexcept {
    return std::string_view(*this) == viewOf(other);
}

bool TSKString::equalsIgnoreCase(const TSKString& other) const noexcept {
    return equalFolded(*this, other);
}

bool TSKString::equalsIgnoreCase(const char* other) const noexcept {
    return equalFolded(*this, viewOf(other));
}

bool TSKString::endsWith(const char* suffix, int ignoreCase) const noexcept {
    const std::string_view wanted = viewOf(suffix);
    if (wanted.size() > length_)
        return false;
    const std::string_view end = std::string_view(*this).substr(length_ - wanted.size());
    return ignoreCase == 0 ? end == wanted : equalFolded(end, wanted);
}

bool TSKString::contains(const char* part, int ignoreCase) const noexcept {
    if (ignoreCase == 0)
        return find(part, 0) >= 0;
    const std::string_view text = *this;
    const std::string_view wanted = viewOf(part);
    return wanted.empty() || std::search(text.begin(), text.end(), wanted.begin(), wanted.end(),
                                         sameFolded) != text.end();
}

long TSKString::find(char character) const noexcept {
    return positionOrAbsent(std::string_view(*this).find(character));
}

long TSKString::reverseFind(char character) const noexcept {
    return positionOrAbsent(std::string_view(*this).rfind(character));
}

long TSKString::find(const char* part, int start) const noexcept {
    const auto from = static_cast<std::size_t>(std::max(start, 0));
    return positionOrAbsent(std::string_view(*this).find(viewOf(part), from));
}

TSKString TSKString::substr(unsigned long position, unsigned long length) const {
    if (position >= length_)
        return {};
    if (position == 0 && length >= length_)
        return *this;
    return {text_ + position, std::min(length, length_ - position)};
}

TSKString TSKString::right(unsigned long length) const {
    return length >= length_ ? *this : substr(length_ - length, length);
}

TSKString& TSKString::toLower() {
    const auto isCapital = [](char character) { return folded(character) != character; };
    if (!std::ranges::any_of(std::string_view(*this), isCapital))
        return *this;
    makeWritable(length_);
    std::transform(text_, text_ + length_, text_, folded);
    return *this;
}

TSKString& TSKString::trim(const char* characters) {
    const std::string_view text = *this;
    const std::string_view unwanted = viewOf(characters);
    const std::size_t first = text.find_first_not_of(unwanted);
    if (first == std::string_view::npos)
        return *this = TSKString();
    const std::size_t last = text.find_last_not_of(unwanted);
    return *this = substr(first, last - first + 1);
}

TSKString& TSKString::ltoa(long value, int radix) {
    if (radix < 2 || radix > 36)
        throw TeskBaseException("TSKString::ltoa", "The radix must be from 2 to 36",
                                CIM_ERR_INVALID_PARAMETER);
    char digits[8 * sizeof value + 1];
    const std::to_chars_result written =
        std::to_chars(digits, digits + sizeof digits, value, radix);
    return *this = TSKString(digits, static_cast<unsigned long>(written.ptr - digits));
}

long TSKString::atol() const noexcept {
    return std::strtol(text_, nullptr, 10);
}

TSKString& TSKString::sprintf(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    const int needed = std::vsnprintf(nullptr, 0, format, arguments);
    va_end(arguments);
    if (needed < 0)
        throw TeskBaseException("TSKString::sprintf", "The text cannot be formatted",
                                CIM_ERR_FAILED);

    const auto length = static_cast<unsigned long>(needed);
    TSKString formatted;
    formatted.reserve(length);
    va_start(arguments, format);
    (void)std::vsnprintf(formatted.text_, length + 1, format, arguments);
    va_end(arguments);
    formatted.setLength(length);
    return *this = std::move(formatted);
}

namespace {

TSKString joined(std::string_view left, std::string_view right) {
    TSKString result;
    result.reserve(left.size() + right.size());
    result.append(left.data(), left.size());
    result.append(right.data(), right.size());
    return result;
}

}  // namespace

TSKString operator+(const TSKString& left, const TSKString& right) {
    return joined(left, right);
}
TSKString operator+(const TSKString& left, const char* right) {
    return joined(left, viewOf(right));
}
TSKString operator+(const char* left, const TSKString& right) {
    return joined(viewOf(left), right);
}
TSKString operator+(TSKString&& left, const TSKString& right) {
    return std::move(left += right);
}
TSKString operator+(TSKString&& left, const char* right) {
    return std::move(left += right);
}

std::ostream& operator<<(std::ostream& stream, const TSKString& text) {
    return stream.write(text.data(), static_cast<std::streamsize>(text.length()));
}
