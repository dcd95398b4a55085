#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "ObjectManager/Http/ErrorResponses.h"
#include "ObjectManager/Http/Options.h"
#include "Platform/Http/TSKHTTPRequest.h"

namespace Http {

/// Reads the header section of a request (RFC 9112: request line, header fields, empty line) from
/// bytes as they come in. What the bytes are, and how they are split, does not matter: the result
/// is the same. Empty lines before the request are skipped (section 2.2).
///
/// As soon as the bytes cannot become a request any more, they are refused, so that a client that
/// speaks another protocol is not waited for:
///
/// - 400 for a control character or a line that does not end with CR LF.
/// - 414 for a request line longer than Options::maxRequestLine.
/// - 431 for a header section longer than Options::maxHeaderSize, counted from the first byte.
///
/// A whole header section is refused with:
///
/// - 400 for what is malformed or ambiguous: request line, target (see parseRequestTarget), header
///   fields, a header field that continues on a second line, contradicting lengths, a transfer
///   coding whose end cannot be found, a Host field that is missing, malformed or not the only one.
/// - 405 for the method CONNECT, whose target is no resource. All other methods are left to the
///   Dispatcher.
/// - 431 for more header fields than Options::maxHeaderFields.
/// - 501 for a transfer coding that is not known.
/// - 505 for versions of HTTP other than 1.x. Versions above 1.1 are read as 1.1.
///
/// Thread safety: belongs to one thread.
class RequestParser {
  public:
    enum class State { kIncomplete, kComplete, kRefused };

    /// `options` must outlive the parser. `usesTls` says whether the client does.
    explicit RequestParser(const Options& options, bool usesTls = false) noexcept
        : options_(options), usesTls_(usesTls) {}

    /// `received` is everything that has come in: the bytes of the previous call, and more. Looks
    /// at each byte once. Must not be called again after kComplete or kRefused.
    /// Errors: std::bad_alloc.
    [[nodiscard]] State parse(std::string_view received);

    /// After kComplete: the request, without its body. Its uri is RequestTarget::path, or "*" for
    /// the method OPTIONS. It has exactly one header field "Host", which isHostWithPort accepts; an
    /// HTTP/1.0 request may have none. The authority of an absolute target replaces the value of
    /// the field (RFC 9112, section 3.2.2). Belongs to the parser.
    [[nodiscard]] TSKHTTPRequest& request() noexcept { return *request_; }

    /// After kComplete: how many bytes of what was received belong to the header section and the
    /// empty lines before it.
    [[nodiscard]] std::size_t length() const noexcept { return position_; }

    /// After kRefused: why.
    [[nodiscard]] const Error& error() const noexcept { return error_; }

    /// Whether the method is HEAD, as far as that has come in.
    [[nodiscard]] bool isHeadRequest(std::string_view received) const noexcept {
        return received.substr(start_).starts_with("HEAD ");
    }

  private:
    [[nodiscard]] State check(char byte);
    [[nodiscard]] State endLine();
    [[nodiscard]] State refuse(Error error);
    [[nodiscard]] State finish(std::string_view header);

    const Options& options_;
    const bool usesTls_;
    std::size_t position_ = 0;   // of the next byte to look at
    std::size_t start_ = 0;      // of the request line
    std::size_t lineStart_ = 0;  // of the line that `position_` is in
    char previous_ = '\0';       // the byte before `position_`
    std::optional<TSKHTTPRequest> request_;
    Error error_;
};

}  // namespace Http
