#pragma once

#include <atomic>
#include <compare>
#include <cstring>
#include <iosfwd>
#include <string_view>

#include "Platform/Util/Export.h"

/// A text with value semantics, as every name, path and document fragment of the platform is held.
///
/// Holds any bytes, zero bytes included; a further zero byte always follows the last one, so that
/// data() is a C string for texts without zero bytes. Lengths and positions count bytes.
///
/// Copying is cheap whatever the length: texts of up to 15 bytes are kept in the object, longer
/// ones in a reference-counted buffer that copies share until one of them is changed. Appending is
/// amortised constant time a byte.
///
/// Letter case is folded for ASCII letters only, whatever the locale. A null `const char*` counts
/// as the empty text everywhere.
///
/// Errors: a failed allocation throws std::bad_alloc and leaves the text as it was.
///
/// Thread safety: one object belongs to one thread; copies may be used by several threads at once,
/// also while they share a buffer.
class TESK_PLATFORM_EXPORT TSKString {
  public:
    TSKString() noexcept : text_(small_) { small_[0] = '\0'; }

    /// Copies a zero-terminated text.
    // Implicit: the platform's operations take literals for texts.
    TSKString(const char* text) : TSKString(text, text == nullptr ? 0 : std::strlen(text)) {}

    /// Copies `length` bytes from `text`, which may be null when `length` is 0.
    TSKString(const char* text, unsigned long length);

    explicit TSKString(std::string_view text) : TSKString(text.data(), text.size()) {}

    TSKString(const TSKString& other) noexcept { shareWith(other); }
    TSKString(TSKString&& other) noexcept { takeFrom(other); }
    ~TSKString() { release(); }

    TSKString& operator=(const TSKString& other) noexcept;
    TSKString& operator=(TSKString&& other) noexcept;
    TSKString& operator=(const char* text) { return *this = TSKString(text); }

    /// The bytes, followed by a zero byte. Valid until this object is changed or destroyed.
    [[nodiscard]] const char* data() const noexcept { return text_; }
    [[nodiscard]] unsigned long length() const noexcept { return length_; }
    [[nodiscard]] bool isEmpty() const noexcept { return length_ == 0; }

    /// A view of the bytes. Valid as long as data().
    // Implicit: so that the standard library reads the text without a copy.
    operator std::string_view() const noexcept { return {text_, length_}; }

    /// The byte at `position`, which must be less than or equal to length().
    [[nodiscard]] char operator[](unsigned long position) const noexcept { return text_[position]; }

    /// Makes room for `length` bytes in all, so that appending up to there allocates nothing.
    /// Reserving a little more again and again is amortised constant time a byte, as appending is.
    void reserve(unsigned long length) { makeWritable(length); }

    /// Appends; `text` may be a part of this very text.
    TSKString& append(const char* text, unsigned long length);
    TSKString& operator+=(const TSKString& text);
    TSKString& operator+=(const char* text);
    TSKString& operator+=(char character) { return append(&character, 1); }

    /// Appends `length` bytes of no particular value and returns where they stand. The caller
    /// writes them before anything else is done with the text.
    [[nodiscard]] char* extend(unsigned long length);

    /// The same bytes.
    [[nodiscard]] bool equals(const TSKString& other) const noexcept;
    [[nodiscard]] bool equals(const char* other) const noexcept;

    /// The same bytes but for the case of letters. Both names mean the same.
    [[nodiscard]] bool equalsIgnoreCase(const TSKString& other) const noexcept;
    [[nodiscard]] bool equalsIgnoreCase(const char* other) const noexcept;
    [[nodiscard]] bool isEqualCaseInsensitive(const TSKString& other) const noexcept {
        return equalsIgnoreCase(other);
    }
    [[nodiscard]] bool isEqualCaseInsensitive(const char* other) const noexcept {
        return equalsIgnoreCase(other);
    }

    /// Whether the text ends with `suffix`, or holds `part` anywhere. `ignoreCase` 0 compares
    /// exactly, any other value without regard to case. The empty text ends, and is part of, every
    /// text.
    [[nodiscard]] bool endsWith(const char* suffix, int ignoreCase) const noexcept;
    [[nodiscard]] bool contains(const char* part, int ignoreCase) const noexcept;

    /// The position of the first, or the last, `character`; -1 when there is none.
    [[nodiscard]] long find(char character) const noexcept;
    [[nodiscard]] long reverseFind(char character) const noexcept;

    /// The position of the first `part` at or after `start`; -1 when there is none. A negative
    /// `start` searches from the beginning. The empty text is found at `start` itself, up to the
    /// end of the text.
    [[nodiscard]] long find(const char* part, int start) const noexcept;

    /// `length` bytes from `position` on; fewer where the text ends before, none from a position
    /// past the end.
    [[nodiscard]] TSKString substr(unsigned long position, unsigned long length) const;

    /// The first, or the last, `length` bytes; the whole text where it is shorter.
    [[nodiscard]] TSKString left(unsigned long length) const { return substr(0, length); }
    [[nodiscard]] TSKString right(unsigned long length) const;

    /// Changes upper case letters to lower case, in place. Returns this text.
    TSKString& toLower();

    /// Removes from both ends all bytes that stand in `characters`, in place. Returns this text.
    TSKString& trim(const char* characters);

    /// Replaces the text by `value` written with the digits 0-9a-z in `radix` (2 to 36), with a
    /// leading '-' when negative. Both names mean the same. Returns this text.
    /// Errors: another radix throws TeskBaseException with CIM_ERR_INVALID_PARAMETER.
    TSKString& ltoa(long value, int radix);
    TSKString& itoa(long value, int radix) { return ltoa(value, radix); }

    /// The number that the text begins with, in decimal, after white space and an optional sign;
    /// 0 when there is none, the nearest long when it does not fit.
    [[nodiscard]] long atol() const noexcept;

    /// Replaces the text by the formatted one; the arguments may be parts of this very text.
    /// Returns this text.
    /// Errors: a format that the C library cannot print throws TeskBaseException.
    TSKString& sprintf(const char* format, ...) __attribute__((format(printf, 2, 3)));

    friend bool operator==(const TSKString& left, const TSKString& right) noexcept {
        return left.equals(right);
    }
    friend bool operator==(const TSKString& left, const char* right) noexcept {
        return left.equals(right);
    }
    /// Byte order.
    friend std::strong_ordering operator<=>(const TSKString& left,
                                            const TSKString& right) noexcept {
        return std::string_view(left) <=> std::string_view(right);
    }

  private:
    // Stands in front of the bytes of a shared buffer.
    struct Buffer {
        std::atomic<unsigned long> owners;
        unsigned long capacity;
    };

    static constexpr unsigned long kSmallCapacity = 15;

    [[nodiscard]] bool isSmall() const noexcept { return text_ == small_; }
    [[nodiscard]] Buffer* buffer() const noexcept { return reinterpret_cast<Buffer*>(text_) - 1; }
    [[nodiscard]] unsigned long writableCapacity() const noexcept;

    [[nodiscard]] bool hasRoomFor(unsigned long moreBytes) const noexcept;

    static char* allocate(unsigned long capacity);
    void shareWith(const TSKString& other) noexcept;
    void takeFrom(TSKString& other) noexcept;
    void release() noexcept;
    void releaseBuffer() noexcept;
    void setLength(unsigned long length) noexcept;
    [[nodiscard]] TSKString copyWithCapacity(unsigned long capacity) const;
    [[nodiscard]] TSKString copyForAppending(unsigned long length) const;
    void makeWritable(unsigned long capacity);
    void appendGrowing(const char* text, unsigned long length);

    char* text_;
    unsigned long length_ = 0;
    char small_[kSmallCapacity + 1];
};

[[nodiscard]] TESK_PLATFORM_EXPORT TSKString operator+(const TSKString& left,
                                                       const TSKString& right);
[[nodiscard]] TESK_PLATFORM_EXPORT TSKString operator+(const TSKString& left, const char* right);
[[nodiscard]] TESK_PLATFORM_EXPORT TSKString operator+(const char* left, const TSKString& right);
[[nodiscard]] TESK_PLATFORM_EXPORT TSKString operator+(TSKString&& left, const TSKString& right);
[[nodiscard]] TESK_PLATFORM_EXPORT TSKString operator+(TSKString&& left, const char* right);

/// Writes the bytes as they are, without regard to the stream's width.
TESK_PLATFORM_EXPORT std::ostream& operator<<(std::ostream& stream, const TSKString& text);

// Copying, moving, destroying and appending are what documents are made of; they stay inline.

inline TSKString::TSKString(const char* text, unsigned long length)
    : text_(length > kSmallCapacity ? allocate(length) : small_) {
    if (length != 0)
        std::memcpy(text_, text, length);
    setLength(length);
}

inline void TSKString::shareWith(const TSKString& other) noexcept {
    length_ = other.length_;
    if (other.isSmall()) {
        text_ = small_;
        std::memcpy(small_, other.small_, sizeof small_);
        return;
    }
    text_ = other.text_;
    buffer()->owners.fetch_add(1, std::memory_order_relaxed);
}

inline void TSKString::takeFrom(TSKString& other) noexcept {
    length_ = other.length_;
    if (other.isSmall()) {
        text_ = small_;
        std::memcpy(small_, other.small_, sizeof small_);
    } else {
        text_ = other.text_;
        other.text_ = other.small_;
    }
    other.setLength(0);
}

inline void TSKString::release() noexcept {
    if (!isSmall())
        releaseBuffer();
}

inline void TSKString::setLength(unsigned long length) noexcept {
    length_ = length;
    text_[length] = '\0';
}

inline TSKString& TSKString::operator=(const TSKString& other) noexcept {
    if (this != &other) {
        release();
        shareWith(other);
    }
    return *this;
}

inline TSKString& TSKString::operator=(TSKString&& other) noexcept {
    if (this != &other) {
        release();
        takeFrom(other);
    }
    return *this;
}

// How many bytes the object can hold without touching what it shares with others.
inline unsigned long TSKString::writableCapacity() const noexcept {
    if (isSmall())
        return kSmallCapacity;
    return buffer()->owners.load(std::memory_order_acquire) == 1 ? buffer()->capacity : 0;
}

inline bool TSKString::hasRoomFor(unsigned long moreBytes) const noexcept {
    const unsigned long capacity = writableCapacity();
    return capacity >= length_ && moreBytes <= capacity - length_;
}

inline char* TSKString::extend(unsigned long length) {
    if (!hasRoomFor(length))
        *this = copyForAppending(length);
    char* const end = text_ + length_;
    setLength(length_ + length);
    return end;
}

inline TSKString& TSKString::append(const char* text, unsigned long length) {
    if (length == 0)
        return *this;
    if (hasRoomFor(length)) {
        std::memcpy(text_ + length_, text, length);
        setLength(length_ + length);
    } else {
        appendGrowing(text, length);
    }
    return *this;
}

inline TSKString& TSKString::operator+=(const TSKString& text) {
    // What needs new memory anyway is shared while it is all there is.
    if (isEmpty() && !hasRoomFor(text.length_))
        return *this = text;
    return append(text.text_, text.length_);
}

inline TSKString& TSKString::operator+=(const char* text) {
    return text == nullptr ? *this : append(text, std::strlen(text));
}
