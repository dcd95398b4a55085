#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>

#include "ObjectManager/CimXml/Options.h"
#include "ObjectManager/CimXml/Requests.h"

namespace CimXml {

/// Sends requests to one server and hands over the bodies of the responses as they come. Goes to no
/// other host: redirects are not followed, proxies are not used. A response must be XML in UTF-8,
/// and not compressed.
///
/// Thread safety: belongs to one thread.
class HttpClient {
  public:
    /// A request and what becomes of its response.
    struct Call {
        Request request;
        std::function<void(std::string_view)> onBytes;
        std::function<void()> onEnd;  ///< when the response is whole
    };
    /// The next call to make; nothing when there is none before another one has ended.
    using NextCall = std::function<std::optional<Call>()>;

    /// `options` must outlive this. Errors: ServerError of the kind kOptions.
    explicit HttpClient(const ServerOptions& options);
    HttpClient(const HttpClient&) = delete;
    HttpClient& operator=(const HttpClient&) = delete;
    ~HttpClient();

    /// The server in messages: "https://cim.example.com:5989".
    [[nodiscard]] const std::string& serverName() const noexcept;

    /// The time that Limits::totalTimeout gives begins now.
    void restartTime() noexcept;

    /// Makes all calls that `next` gives, several at a time, and returns when they have ended.
    /// Errors: ServerError, which names server, operation and namespace, also for what onBytes and
    /// onEnd throw of it; whatever else those throw; std::bad_alloc. All calls have ended then.
    void perform(const NextCall& next, const std::stop_token& stop);

  private:
    class Implementation;

    std::unique_ptr<Implementation> implementation_;
};

}  // namespace CimXml
