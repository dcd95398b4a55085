#pragma once

#include <array>
#include <boost/asio/buffer.hpp>
#include <cstddef>
#include <ctime>
#include <optional>
#include <string>
#include <string_view>

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
    /// field "Connection". The version becomes HTTP/1.1, which is that of this server whatever the
    /// client's is. Returns nothing if `text` does not begin with the header section of an HTTP/1
    /// response.
    /// Errors: std::bad_alloc.
    [[nodiscard]] static std::optional<Response> make(std::string text);

    /// The number in the status line; 0 if there is none.
    [[nodiscard]] unsigned status() const noexcept;

    /// The value of the first field of that name among those that the provider wrote. Valid until
    /// dropBody() or the end of this response.
    [[nodiscard]] std::optional<std::string_view> field(std::string_view name) const noexcept;

    /// Valid until dropBody() or the end of this response.
    [[nodiscard]] std::string_view body() const noexcept;

    /// The bytes of memory that it takes, without the few that are added to it.
    [[nodiscard]] std::size_t memorySize() const noexcept { return text_.capacity(); }

    /// Adds a header field. Nothing may be sent yet.
    /// Errors: std::bad_alloc.
    void addField(std::string_view name, std::string_view value);

    /// Inserts `text` into the body, and the field Content-Length, if there is one, gets the new
    /// length. The response takes no more memory then, unless the text is longer than that field.
    /// Nothing may be sent yet.
    /// Errors: std::bad_alloc.
    void insertIntoBody(std::size_t position, std::string_view text);

    /// Makes `body` the body, in place of the one that the provider wrote, with the fields that
    /// describe it. Nothing may be sent yet.
    /// Errors: std::bad_alloc.
    void setBody(std::string_view contentType, std::string_view body);

    /// Leaves the body out, as the method HEAD requires, and frees its memory. Nothing may be sent
    /// yet.
    /// Errors: std::bad_alloc.
    void dropBody();

    /// Valid until `consume` or the end of this response.
    [[nodiscard]] Parts unsent() const;

    /// `length` more bytes are sent.
    void consume(std::size_t length) noexcept { sent_ += length; }

    [[nodiscard]] bool isSent() const noexcept { return sent_ == size(); }

    /// How many bytes of the body are sent.
    [[nodiscard]] std::size_t sentBodyBytes() const noexcept;

  private:
    Response() = default;

    [[nodiscard]] std::string_view lineOf(std::string_view name) const noexcept;

    [[nodiscard]] std::size_t size() const noexcept { return text_.size() + addedFields_.size(); }

    std::string text_;
    std::size_t statusLineLength_ = 0;  // with its line end
    std::size_t headerLength_ = 0;      // with its empty line
    std::string addedFields_;           // sent after the status line
    std::size_t sent_ = 0;
};

/// The header field "Date" for `time`, with its line end (RFC 9110, sections 5.6.7 and 6.6.1). The
/// year of `time` has four digits. May be used by several threads at once.
[[nodiscard]] std::string dateField(std::time_t time);

}  // namespace Http
