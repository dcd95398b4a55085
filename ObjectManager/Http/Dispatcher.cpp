#include "ObjectManager/Http/Dispatcher.h"

#include <exception>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "ObjectManager/Host/ProviderCall.h"
#include "ObjectManager/Http/ErrorLog.h"
#include "ObjectManager/Http/LogText.h"
#include "ObjectManager/Http/OwnAnswers.h"
#include "ObjectManager/Http/UriHost.h"

namespace Http {

namespace {

bool isHead(const TSKHTTPRequest& request) {
    return request.getMethod() == "HEAD";
}

Answer failed(const TSKHTTPRequest& request, std::string_view reason) {
    logError(toLogText(request.getMethod()) + " " + toLogText(request.getUri()) + ": " +
             toLogText(reason));
    return answerOf({.status = 500, .text = "The server failed; its log says why."},
                    isHead(request));
}

}  // namespace

Answer Dispatcher::answer(TSKHTTPRequest& request,
                          const boost::asio::ip::tcp::endpoint& client) const {
    using Outcome = Host::ProviderCall::Outcome;
    try {
        Host::ProviderCall call = Host::callProvider(
            manager_, request,
            {.address = toUriHost(client.address()), .port = std::to_string(client.port())});
        switch (call.outcome) {
            case Outcome::kNotFound:
                return answerOf({.status = 404, .text = "There is nothing at this path."},
                                isHead(request));
            case Outcome::kNotAuthenticated:
                return makeChallenge();
            case Outcome::kResponse:
                break;
        }
        if (std::optional<Answer> answer = Answer::make(std::move(call.response), isHead(request)))
            return std::move(*answer);
        return failed(request, "no HTTP response was written");
    } catch (const std::exception& exception) {
        return failed(request, exception.what());
    } catch (...) {
        return failed(request, "an exception of unknown type");
    }
}

}  // namespace Http
