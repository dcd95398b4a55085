#include "ObjectManager/Http/Dispatcher.h"

#include <algorithm>
#include <array>
#include <exception>
#include <malloc.h>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "ObjectManager/Base/Log.h"
#include "ObjectManager/Base/Text.h"
#include "ObjectManager/Http/EntityTag.h"
#include "ObjectManager/Http/ErrorPage.h"
#include "ObjectManager/Http/ErrorResponses.h"
#include "ObjectManager/Http/Options.h"
#include "ObjectManager/Http/RequestTarget.h"
#include "Platform/Util/TeskBaseException.h"

namespace Http {

namespace {

constexpr std::array kKnownMethods = {"CONNECT", "DELETE", "GET", "HEAD", "OPTIONS",
                                      "PATCH",   "POST",   "PUT", "TRACE"};

// Bytes of a response. What a provider needed to make a larger one goes back to the system at once;
// the C library would keep most of it.
constexpr std::size_t kLarge = 8UL * 1024 * 1024;

constexpr unsigned kFirstError = 400;

bool isHead(const TSKHTTPRequest& request) {
    return request.getMethod() == "HEAD";
}

bool isSafe(const TSKHTTPRequest& request) {
    return isHead(request) || request.getMethod() == "GET";
}

Response fail(const TSKHTTPRequest& request, std::string_view reason) {
    Base::log(kLogComponent, TeskTraceLog::SeverityError,
              Base::logText(request.getMethod()) + " " + Base::logText(request.getUri()) + ": " +
                  Base::logText(reason));
    return errorResponse({.status = 500, .text = "The server failed; its log says why."},
                         isHead(request));
}

// Not that of a provider which leaves out the body itself when the method is HEAD.
bool isErrorWithoutBody(const Response& response) {
    return response.status() >= kFirstError && response.body().empty() &&
           response.field("Content-Length").value_or("0") == "0";
}

// A response with the body that the request wants. `response` has the one that GET would get.
Response finished(Response response, const TSKHTTPRequest& request) {
    if (isErrorWithoutBody(response) && asksForPage(request))
        addErrorPage(response, request.getUri());
    if (isHead(request))
        response.dropBody();
    return response;
}

Response notFound(TSKHTTPRequest& request, const Host::Client& client) {
    if (!Host::isAuthenticated(request, client))
        return finished(authenticationChallenge(), request);
    return errorResponse({.status = 404, .text = "There is nothing at this path."},
                         isHead(request));
}

void publishHttps(Response& response) {
    if (response.status() != 200)
        return;
    if (const auto insertion = Host::findHttpsInsertion(response.body()))
        response.insertIntoBody(*insertion, Host::kHttpsInsertion);
}

// What a provider wrote, as the request wants it.
Response conditional(Response response, const TSKHTTPRequest& request) {
    if (!isSafe(request) || response.status() != 200)
        return response;
    std::string tag(response.field("ETag").value_or(""));
    if (tag.empty()) {
        tag = entityTag(response.body());
        response.addField("ETag", tag);
    }
    switch (evaluatePreconditions(request, tag)) {
        case Precondition::kNotModified:
            response = notModifiedResponse(tag);
            break;
        case Precondition::kFailed:
            response = errorResponse(
                {.status = 412, .text = "The document is not the one that If-Match names."}, false);
            break;
        case Precondition::kMet:
            break;
    }
    return response;
}

std::optional<Response> toResponse(Host::ProviderCall call, TSKHTTPRequest& request,
                                   const Host::Client& client, bool isHttps) {
    using enum Host::ProviderCall::Outcome;
    switch (call.outcome) {
        case kNotFound:
            return notFound(request, client);
        case kNotAuthenticated:
            return finished(authenticationChallenge(), request);
        case kNoRoom:
            if (isSafe(request))
                return std::nullopt;
            return errorResponse({.status = 503, .text = Http::kNoRoom}, false);
        case kResponse:
            break;
    }
    std::optional<Response> response = Response::make(std::move(call.response));
    if (!response)
        return fail(request, "no HTTP response was written");
    if (isHttps)
        publishHttps(*response);
    return finished(conditional(std::move(*response), request), request);
}

}  // namespace

std::optional<Response> Dispatcher::respond(TSKHTTPRequest& request, const Peer& peer,
                                            ResponseMemory::Share& memory) const {
    if (published_)
        request.setHeaderField("Host", TSKString(std::string_view(published_->host)), false);
    if (isHttps(peer))
        request.setHeaderField("X-Forwarded-Proto", "https", false);
    std::size_t written = 0;
    const auto mayTake = [&](std::size_t bytes) {
        written = bytes;
        return memory.growTo(bytes);
    };
    std::optional<Response> response = makeResponse(request, peer, mayTake);
    // The provider may have written more.
    if (response)
        memory.shrinkTo(response->memorySize());
    if (written >= kLarge)
        malloc_trim(0);
    return response;
}

std::optional<Response> Dispatcher::makeResponse(TSKHTTPRequest& request, const Peer& peer,
                                                 const Host::MayTake& mayTake) const {
    try {
        if (std::optional<Response> response = respondToMethod(request))
            return response;
        const Host::Client client = {.address = toUriHost(peer.endpoint.address()),
                                     .port = std::to_string(peer.endpoint.port())};
        return toResponse(Host::callProvider(manager_, request, client, mayTake), request, client,
                          isHttps(peer));
    } catch (const TeskBaseException& exception) {
        return fail(request, exception.what());  // with the place in the provider
    } catch (const std::exception& exception) {
        return fail(request, Base::reasonOf(exception));
    } catch (...) {
        return fail(request, "an exception of unknown type");
    }
}

// Whether documents say so.
bool Dispatcher::isHttps(const Peer& peer) const noexcept {
    return published_ ? published_->isHttps : peer.usesTls;
}

// The response to a request that its provider is not called for.
std::optional<Response> Dispatcher::respondToMethod(const TSKHTTPRequest& request) const {
    const TSKString& method = request.getMethod();
    const std::vector<TSKString> methods = manager_.getMethods(request.getUri());
    if (std::ranges::find(methods, method) != methods.end())
        return std::nullopt;
    if (std::ranges::find(kKnownMethods, method) == kKnownMethods.end())
        return errorResponse({.status = 501, .text = "This method is not implemented."}, false);
    std::string allowed;
    for (const TSKString& each : methods)
        allowed += std::string(each) + ", ";
    allowed += "OPTIONS";
    if (method == "OPTIONS")
        return optionsResponse(allowed);
    return errorResponse(
        {.status = 405, .text = "This method is not allowed here.", .allow = allowed},
        isHead(request));
}

}  // namespace Http
