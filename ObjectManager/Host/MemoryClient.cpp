#include "ObjectManager/Host/MemoryClient.h"

#include <algorithm>
#include <utility>

#include "ObjectManager/Base/Ascii.h"
#include "ObjectManager/Host/ProviderCall.h"
#include "Platform/Http/TSKHTTPException.h"
#include "Platform/Util/TeskBaseException.h"
#include "Platform/Util/TeskStatusCode.h"

namespace Host {

namespace {

class LocalToken : public urma::security::ISecurityToken {
  public:
    [[nodiscard]] TSKString getUserName() const override { return "local"; }
};

}  // namespace

MemoryClient::Response::Response(std::string bytes, bool isHttps)
    : bytes_(std::move(bytes)), headerLength_(headerLength(bytes_)) {
    if (const auto insertion = isHttps ? findHttpsInsertion(body()) : std::nullopt)
        bytes_.insert(headerLength_ + *insertion, kHttpsInsertion);
}

std::string_view MemoryClient::Response::status() const noexcept {
    constexpr std::string_view kProtocol = "HTTP/1.1 ";  // or 1.0
    constexpr std::size_t kLength = 3;
    const std::string_view header = std::string_view(bytes_).substr(0, headerLength_);
    if (!header.starts_with("HTTP/1.") || header.find(' ') + 1 != kProtocol.size())
        return {};
    const std::string_view status = header.substr(kProtocol.size(), kLength);
    const bool isNumber =
        status.size() == kLength && std::all_of(status.begin(), status.end(), Base::isDigit);
    return isNumber ? status : std::string_view();
}

std::string_view MemoryClient::Response::body() const noexcept {
    return headerLength_ == 0 ? std::string_view() : std::string_view(bytes_).substr(headerLength_);
}

MemoryClient::MemoryClient(const TeskProviderPluginManager& manager, PublishedAddress address)
    : manager_(manager), address_(std::move(address)) {}

MemoryClient::Response MemoryClient::get(const TSKString& path) const {
    TSKHTTPRequest request("GET", path, "HTTP/1.1");
    request.setHeaderField("Host", TSKString(std::string_view(address_.host)), false);
    ProviderCall call = callProvider(manager_, request, {.address = "localhost", .port = "0"});
    switch (call.outcome) {
        case ProviderCall::Outcome::kNotFound:
            throw TeskBaseException("MemoryClient::get", "no provider serves " + path,
                                    CIM_ERR_NOT_FOUND);
        case ProviderCall::Outcome::kNotAuthenticated:
            throw TSKHTTPException("MemoryClient::get", "Authentication failed",
                                   TSKHTTPException::kAuthenticationFailed);
        case ProviderCall::Outcome::kNoRoom:  // only where memory is limited
        case ProviderCall::Outcome::kResponse:
            break;
    }
    return Response(std::move(call.response), address_.isHttps);
}

bool LocalAuthenticator::authenticateRequest(TSKHTTPRequest& /*request*/,
                                             TSKGenericHTTPIStream& /*istr*/,
                                             TSKGenericHTTPOStream& /*ostr*/,
                                             TSKSmrPtr<urma::security::ISecurityToken>& token) {
    token = TSKSmrPtr<LocalToken>::make();
    return true;
}

}  // namespace Host
