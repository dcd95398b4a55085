#pragma once

#include <cstddef>
#include <memory>
#include <string_view>

namespace Security {

/// A password or another secret. Its bytes are overwritten when it is destroyed, assigned to, or
/// grows, so that no copy stays in memory. Can be moved, not copied.
///
/// Thread safety: belongs to one thread while it is changed; may be read by several at once.
class SecretText {
  public:
    SecretText() noexcept = default;
    /// Copies `text`. The caller must wipe the original.
    explicit SecretText(std::string_view text);
    SecretText(SecretText&& other) noexcept;
    SecretText& operator=(SecretText&& other) noexcept;
    ~SecretText();

    void append(char byte);

    [[nodiscard]] std::size_t size() const noexcept { return size_; }
    [[nodiscard]] bool isEmpty() const noexcept { return size_ == 0; }

    /// The bytes. Valid until the text changes or is destroyed.
    [[nodiscard]] std::string_view view() const noexcept { return {zeroTerminated(), size_}; }
    /// The same with a zero byte at the end.
    [[nodiscard]] const char* zeroTerminated() const noexcept {
        return bytes_ == nullptr ? "" : bytes_.get();
    }

  private:
    void wipe() noexcept;
    void grow(std::size_t capacity);

    // Not a std::string: it keeps short texts inside the object, and a move leaves a copy there.
    std::unique_ptr<char[]> bytes_;
    std::size_t size_ = 0;
    std::size_t capacity_ = 0;  // without the zero byte
};

}  // namespace Security
