#include "ObjectManager/Host/ProviderCall.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "Platform/Http/TSKHTTPException.h"
#include "Platform/ProviderFramework/AuthenticationHelper.h"
#include "Platform/Util/TeskBaseException.h"
#include "Platform/Util/TeskStatusCode.h"

namespace Host {

namespace {

class NoBody final : public TSKGenericHTTPIStream {
  public:
    unsigned long read(char* /*buffer*/, unsigned long /*length*/) override { return 0; }
};

// Keeps the response in memory, so that the provider never waits for the client.
class ResponseBuffer final : public TSKGenericHTTPOStream {
  public:
    ResponseBuffer(const Client& client, MayTake mayTake)
        : client_(client), mayTake_(std::move(mayTake)) {}

    void write(const char* data, unsigned long length) override {
        const std::size_t needed = bytes_.size() + length;
        if (needed > bytes_.capacity())
            reserve(std::max(needed, 2 * bytes_.capacity()));
        bytes_.append(data, length);
    }

    void getPeerAddressString(TSKString& peerHost, TSKString& peerPort) const override {
        peerHost = TSKString(std::string_view(client_.address));
        peerPort = TSKString(std::string_view(client_.port));
    }

    [[nodiscard]] bool lacksRoom() const { return lacksRoom_; }

    [[nodiscard]] std::string take() && { return std::move(bytes_); }

  private:
    void reserve(std::size_t capacity) {
        lacksRoom_ = lacksRoom_ || (mayTake_ && !mayTake_(capacity));
        if (lacksRoom_) {
            throw TeskBaseException("ResponseBuffer::write", "there is no room for the response",
                                    CIM_ERR_FAILED);
        }
        bytes_.reserve(capacity);
    }

    const Client& client_;
    MayTake mayTake_;
    bool lacksRoom_ = false;
    std::string bytes_;
};

}  // namespace

ProviderCall callProvider(const TeskProviderPluginManager& manager, TSKHTTPRequest& request,
                          const Client& client, const MayTake& mayTake) {
    using enum ProviderCall::Outcome;
    urma::pf::Provider* const provider = manager.findProvider(request.getUri());
    if (provider == nullptr)
        return {.outcome = kNotFound, .response = {}};
    NoBody input;
    ResponseBuffer output(client, mayTake);
    bool handled = true;
    try {
        provider->processHTTPRequest(input, output, request, handled, nullptr);
    } catch (const TSKHTTPException& exception) {
        if (exception.getErrorCode() != TSKHTTPException::kAuthenticationFailed)
            throw;
        return {.outcome = kNotAuthenticated, .response = {}};
    } catch (...) {
        if (!output.lacksRoom())
            throw;
    }
    if (output.lacksRoom())
        return {.outcome = kNoRoom, .response = {}};
    if (!handled)
        return {.outcome = kNotFound, .response = {}};
    return {.outcome = kResponse, .response = std::move(output).take()};
}

bool isAuthenticated(TSKHTTPRequest& request, const Client& client) {
    NoBody input;
    ResponseBuffer output(client, nullptr);
    TSKSmrPtr<urma::security::ISecurityToken> token;
    return AuthenticationHelper::authenticateRequest(request, input, output, token);
}

std::size_t headerLength(std::string_view response) noexcept {
    constexpr std::string_view kHeaderEnd = "\r\n\r\n";
    const std::size_t end = response.find(kHeaderEnd);
    return end == std::string_view::npos ? 0 : end + kHeaderEnd.size();
}

}  // namespace Host
