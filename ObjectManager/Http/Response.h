#pragma once

#include <array>
#include <boost/asio/buffer.hpp>
#include <cstddef>
#include <ctime>
#include <optional>
#include <string>

namespace Http {

/// A response on its way to the client: the bytes that a provider wrote, with the header fields
/// that the server adds after the status line. The body is not copied.
///
/// Thread safety: belongs to one thread.
class Response {
  public:
    /// What is not sent yet, to be sent in this order; some parts may be empty.
    using Parts = std::array<boost::asio::const_buffer, 3>;

    /// `text` is a whole response. Adds the field "Date", and "Connection: close" if there is no
    /// field "Connection". Leaves the body out if `withoutBody` is true, as the method HEAD
    /// requires. Returns nothing if `text` does not begin with the header section of an HTTP/1
    /// response.
    /// Errors: std::bad_alloc.
    [[nodiscard]] static std::optional<Response> make(std::string text, bool withoutBody);

    /// Valid until `consume` or the end of this response.
    [[nodiscard]] Parts unsent() const;

    /// `length` more bytes are sent.
    void consume(std::size_t length) noexcept { sent_ += length; }

    [[nodiscard]] bool isSent() const noexcept { return sent_ == size(); }

    /// The number in the status line; 0 if there is none.
    [[nodiscard]] unsigned status() const noexcept;

    /// How many bytes of the body are sent.
    [[nodiscard]] std::size_t sentBodyBytes() const noexcept;

  private:
    Response() = default;

    [[nodiscard]] std::size_t size() const noexcept { return length_ + addedFields_.size(); }

    std::string text_;
    std::size_t length_ = 0;            // of text_, without a body that is left out
    std::size_t statusLineLength_ = 0;  // with its line end
    std::size_t headerLength_ = 0;      // of text_, with its empty line
    std::string addedFields_;           // sent after the status line
    std::size_t sent_ = 0;
};

/// The header field "Date" for `time`, with its line end (RFC 9110, sections 5.6.7 and 6.6.1). The
/// year of `time` has four digits. May be used by several threads at once.
[[nodiscard]] std::string dateField(std::time_t time);

}  // namespace Http
