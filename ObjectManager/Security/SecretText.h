#pragma once

#include <cstddef>
#include <memory>
#include <string_view>

namespace Security {

/// A text that leaves no copy behind: its bytes are overwritten when it is destroyed, assigned to,
/// or grows. Can be moved, not copied.
///
/// Thread safety: one object belongs to one thread; while nobody changes it, it may be read by
/// several threads at once.
class SecretText {
  public:
    SecretText() noexcept = default;
    /// Copies `text`, whose own bytes are the caller's to wipe.
    explicit SecretText(std::string_view text);
    SecretText(SecretText&& other) noexcept;
    SecretText& operator=(SecretText&& other) noexcept;
    ~SecretText();

    void append(char byte);
    /// Keeps the first `size` bytes; `size` must not be more than size().
    void shorten(std::size_t size) noexcept;

    [[nodiscard]] std::size_t size() const noexcept { return size_; }
    [[nodiscard]] bool isEmpty() const noexcept { return size_ == 0; }

    /// The bytes. Valid until the text changes or is destroyed.
    [[nodiscard]] std::string_view view() const noexcept { return {zeroTerminated(), size_}; }
    /// The same with a zero byte behind them.
    [[nodiscard]] const char* zeroTerminated() const noexcept {
        return bytes_ == nullptr ? "" : bytes_.get();
    }

  private:
    void wipe() noexcept;
    void grow(std::size_t capacity);

    // Not a std::string: short ones are copied around inside the object, and nothing wipes them.
    std::unique_ptr<char[]> bytes_;
    std::size_t size_ = 0;
    std::size_t capacity_ = 0;  // without the zero byte
};

}  // namespace Security
