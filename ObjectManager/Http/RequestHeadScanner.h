#pragma once

#include <cstddef>
#include <string_view>

#include "ObjectManager/Http/Refusal.h"
#include "ObjectManager/Http/RequestLimits.h"

namespace Http {

/// Finds where the head of a request ends while its bytes come in, and refuses as soon as it can
/// tell that this is none: a client that speaks another protocol is not waited for. Empty lines in
/// front of the head are skipped (RFC 9112, section 2.2).
///
/// Thread safety: belongs to one thread.
class RequestHeadScanner {
  public:
    enum class Progress { kIncomplete, kComplete, kRefused };

    /// `limits` must outlive the scanner.
    explicit RequestHeadScanner(const RequestLimits& limits) noexcept : limits_(limits) {}

    /// `received` is all that has come in: the bytes of the call before, and more. Looks at each
    /// byte once. Not to be called again after kComplete or kRefused.
    [[nodiscard]] Progress scan(std::string_view received);

    /// The head with the empty line that ends it, after kComplete.
    [[nodiscard]] std::string_view headIn(std::string_view received) const noexcept {
        return received.substr(headStart_, position_ - headStart_);
    }
    /// How many bytes of what was received the head takes with all in front of it, after kComplete.
    [[nodiscard]] std::size_t end() const noexcept { return position_; }

    /// Whether the method is HEAD, as far as has come in.
    [[nodiscard]] bool isHeadRequest(std::string_view received) const noexcept {
        return received.substr(headStart_).starts_with("HEAD ");
    }

    /// Why, after kRefused.
    [[nodiscard]] const Refusal& refusal() const noexcept { return refusal_; }

  private:
    [[nodiscard]] Progress look(char byte);
    [[nodiscard]] Progress endLine();
    [[nodiscard]] Progress refuse(unsigned status, std::string text);

    const RequestLimits& limits_;
    std::size_t position_ = 0;
    std::size_t headStart_ = 0;
    std::size_t lineStart_ = 0;
    char previous_ = '\0';
    Refusal refusal_;
};

}  // namespace Http
