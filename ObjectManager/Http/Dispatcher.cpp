#include "ObjectManager/Http/Dispatcher.h"

#include <exception>
#include <optional>
#include <string_view>

#include "ObjectManager/Http/ErrorLog.h"
#include "ObjectManager/Http/LogText.h"
#include "ObjectManager/Http/MemoryResponse.h"
#include "ObjectManager/Http/OwnAnswers.h"
#include "Platform/Http/TSKHTTPException.h"

namespace Http {

namespace {

// Bodies are not handed on.
class NoBody final : public TSKGenericHTTPIStream {
  public:
    unsigned long read(char* /*buffer*/, unsigned long /*length*/) override { return 0; }
};

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
    try {
        MemoryResponse response(client);
        if (!respond(request, response))
            return answerOf({.status = 404, .text = "There is nothing at this path."},
                            isHead(request));
        if (std::optional<Answer> answer = Answer::make(response.take(), isHead(request)))
            return std::move(*answer);
        return failed(request, "no HTTP response was written");
    } catch (const TSKHTTPException& exception) {
        if (exception.getErrorCode() == TSKHTTPException::kAuthenticationFailed)
            return makeChallenge();
        return failed(request, exception.what());
    } catch (const std::exception& exception) {
        return failed(request, exception.what());
    } catch (...) {
        return failed(request, "an exception of unknown type");
    }
}

// Whether somebody has answered.
bool Dispatcher::respond(TSKHTTPRequest& request, TSKGenericHTTPOStream& ostr) const {
    NoBody istr;
    if (handler_ != nullptr && handler_->handle(request, istr, ostr))
        return true;
    urma::pf::Provider* const provider = manager_.findProvider(request.getUri());
    if (provider == nullptr)
        return false;
    bool handled = true;
    provider->processHTTPRequest(istr, ostr, request, handled, nullptr);
    return handled;
}

}  // namespace Http
