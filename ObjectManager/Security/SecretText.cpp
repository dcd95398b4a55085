#include "ObjectManager/Security/SecretText.h"

#include <algorithm>
#include <cstring>
#include <openssl/crypto.h>
#include <utility>

namespace Security {

namespace {

// Longer than most passwords, so that few of them are copied while they grow.
constexpr std::size_t kFirstCapacity = 63;

}  // namespace

SecretText::SecretText(std::string_view text) {
    if (text.empty())
        return;
    grow(text.size());
    std::memcpy(bytes_.get(), text.data(), text.size());
    size_ = text.size();
    bytes_[size_] = '\0';
}

SecretText::SecretText(SecretText&& other) noexcept
    : bytes_(std::move(other.bytes_)),
      size_(std::exchange(other.size_, 0)),
      capacity_(std::exchange(other.capacity_, 0)) {}

SecretText& SecretText::operator=(SecretText&& other) noexcept {
    if (this != &other) {
        wipe();
        bytes_ = std::move(other.bytes_);
        size_ = std::exchange(other.size_, 0);
        capacity_ = std::exchange(other.capacity_, 0);
    }
    return *this;
}

SecretText::~SecretText() {
    wipe();
}

void SecretText::append(char byte) {
    if (size_ == capacity_)
        grow(std::max(kFirstCapacity, 2 * capacity_));
    bytes_[size_] = byte;
    bytes_[++size_] = '\0';
}

void SecretText::wipe() noexcept {
    if (bytes_ != nullptr)
        OPENSSL_cleanse(bytes_.get(), capacity_ + 1);
}

void SecretText::grow(std::size_t capacity) {
    auto bytes = std::make_unique<char[]>(capacity + 1);
    std::memcpy(bytes.get(), zeroTerminated(), size_);
    wipe();
    bytes_ = std::move(bytes);
    capacity_ = capacity;
}

}  // namespace Security
