#include "ObjectManager/Host/ProviderCall.h"

#include <string_view>
#include <utility>

#include "Platform/Http/TSKHTTPException.h"

namespace Host {

namespace {

class NoBody final : public TSKGenericHTTPIStream {
  public:
    unsigned long read(char* /*buffer*/, unsigned long /*length*/) override { return 0; }
};

// Keeps the response in memory, so that the provider never waits for the client.
class ResponseBuffer final : public TSKGenericHTTPOStream {
  public:
    explicit ResponseBuffer(const Client& client) : client_(client) {}

    void write(const char* data, unsigned long length) override { bytes_.append(data, length); }

    void getPeerAddressString(TSKString& peerHost, TSKString& peerPort) const override {
        peerHost = TSKString(std::string_view(client_.address));
        peerPort = TSKString(std::string_view(client_.port));
    }

    [[nodiscard]] std::string take() && { return std::move(bytes_); }

  private:
    const Client& client_;
    std::string bytes_;
};

}  // namespace

ProviderCall callProvider(const TeskProviderPluginManager& manager, TSKHTTPRequest& request,
                          const Client& client) {
    using enum ProviderCall::Outcome;
    urma::pf::Provider* const provider = manager.findProvider(request.getUri());
    if (provider == nullptr)
        return {.outcome = kNotFound, .response = {}};
    NoBody input;
    ResponseBuffer output(client);
    bool handled = true;
    try {
        provider->processHTTPRequest(input, output, request, handled, nullptr);
    } catch (const TSKHTTPException& exception) {
        if (exception.getErrorCode() != TSKHTTPException::kAuthenticationFailed)
            throw;
        return {.outcome = kNotAuthenticated, .response = {}};
    }
    if (!handled)
        return {.outcome = kNotFound, .response = {}};
    return {.outcome = kResponse, .response = std::move(output).take()};
}

}  // namespace Host
