#include "ObjectManager/Http/Dispatcher.h"

#include <exception>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "ObjectManager/Base/Log.h"
#include "ObjectManager/Base/Text.h"
#include "ObjectManager/Host/ProviderCall.h"
#include "ObjectManager/Http/ErrorResponses.h"
#include "ObjectManager/Http/Options.h"
#include "ObjectManager/Http/RequestTarget.h"
#include "Platform/Util/TeskBaseException.h"

namespace Http {

namespace {

bool isHead(const TSKHTTPRequest& request) {
    return request.getMethod() == "HEAD";
}

Response fail(const TSKHTTPRequest& request, std::string_view reason) {
    Base::log(kLogComponent, TeskTraceLog::SeverityError,
              Base::logText(request.getMethod()) + " " + Base::logText(request.getUri()) + ": " +
                  Base::logText(reason));
    return errorResponse({.status = 500, .text = "The server failed; its log says why."},
                         isHead(request));
}

}  // namespace

Response Dispatcher::respond(TSKHTTPRequest& request,
                             const boost::asio::ip::tcp::endpoint& client) const {
    using enum Host::ProviderCall::Outcome;
    try {
        Host::ProviderCall call = Host::callProvider(
            manager_, request,
            {.address = toUriHost(client.address()), .port = std::to_string(client.port())});
        if (call.outcome == kNotFound)
            return errorResponse({.status = 404, .text = "There is nothing at this path."},
                                 isHead(request));
        if (call.outcome == kNotAuthenticated)
            return authenticationChallenge();
        if (auto response = Response::make(std::move(call.response), isHead(request)))
            return std::move(*response);
        return fail(request, "no HTTP response was written");
    } catch (const TeskBaseException& exception) {
        return fail(request, exception.what());  // with the place in the provider
    } catch (const std::exception& exception) {
        return fail(request, Base::reasonOf(exception));
    } catch (...) {
        return fail(request, "an exception of unknown type");
    }
}

}  // namespace Http
