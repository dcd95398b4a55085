#pragma once

#include <array>
#include <boost/asio/buffer.hpp>
#include <cstddef>
#include <optional>
#include <string>

namespace Http {

/// A response on its way to the client: as it was written, with the fields that every answer
/// carries put in behind the status line. The body is not copied for that.
///
/// Thread safety: belongs to one thread.
class Answer {
  public:
    /// The parts of what is not sent yet, to be sent in this order; some may be empty.
    using Parts = std::array<boost::asio::const_buffer, 3>;

    /// `response` is a whole response, head and body. Adds the field "Date", and "Connection:
    /// close" if there is no such field. With `headOnly` the body is left out, as HEAD asks for.
    /// Nothing is returned when `response` does not begin with a head of HTTP/1.
    [[nodiscard]] static std::optional<Answer> make(std::string response, bool headOnly);

    /// Valid until `consume` or the end of this answer.
    [[nodiscard]] Parts unsent() const;

    /// So many more bytes are sent.
    void consume(std::size_t length) noexcept { sent_ += length; }

    [[nodiscard]] bool isSent() const noexcept { return sent_ == size(); }

  private:
    Answer() = default;

    [[nodiscard]] std::size_t size() const noexcept { return length_ + fields_.size(); }

    std::string response_;
    std::size_t length_ = 0;            // of the response, without a body that is left out
    std::size_t statusLineLength_ = 0;  // with the end of the line
    std::string fields_;                // what is put in behind the status line
    std::size_t sent_ = 0;
};

}  // namespace Http
