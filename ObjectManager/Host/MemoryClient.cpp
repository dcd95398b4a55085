#include "ObjectManager/Host/MemoryClient.h"

#include <algorithm>
#include <utility>

#include "Platform/Util/TeskBaseException.h"
#include "Platform/Util/TeskStatusCode.h"

namespace Host {

namespace {

constexpr std::string_view kHeadEnd = "\r\n\r\n";

constexpr bool isDigit(char character) {
    return character >= '0' && character <= '9';
}

class NothingToRead : public TSKGenericHTTPIStream {
  public:
    unsigned long read(char* /*buffer*/, unsigned long /*length*/) override { return 0; }
};

class MemoryStream : public TSKGenericHTTPOStream {
  public:
    void write(const char* data, unsigned long length) override { bytes_.append(data, length); }
    void getPeerAddressString(TSKString& peerHost, TSKString& peerPort) const override {
        peerHost = "localhost";
        peerPort = "0";
    }

    [[nodiscard]] std::string takeBytes() { return std::move(bytes_); }

  private:
    std::string bytes_;
};

}  // namespace

MemoryClient::Answer::Answer(std::string bytes)
    : bytes_(std::move(bytes)), bodyStart_(bytes_.find(kHeadEnd)) {
    bodyStart_ = bodyStart_ == std::string::npos ? bytes_.size() : bodyStart_ + kHeadEnd.size();
}

std::string_view MemoryClient::Answer::status() const noexcept {
    constexpr std::string_view kProtocol = "HTTP/1.1 ";  // or 1.0
    constexpr std::size_t kLength = 3;
    const std::string_view head = std::string_view(bytes_).substr(0, bodyStart_);
    if (!head.starts_with("HTTP/1.") || !head.ends_with(kHeadEnd) ||
        head.find(' ') + 1 != kProtocol.size())
        return {};
    const std::string_view status = head.substr(kProtocol.size(), kLength);
    const bool isNumber =
        status.size() == kLength && std::all_of(status.begin(), status.end(), isDigit);
    return isNumber ? status : std::string_view();
}

std::string_view MemoryClient::Answer::body() const noexcept {
    return std::string_view(bytes_).substr(bodyStart_);
}

MemoryClient::MemoryClient(const TeskProviderPluginManager& manager, TSKString host)
    : manager_(manager), host_(std::move(host)) {}

MemoryClient::Answer MemoryClient::get(const TSKString& path) const {
    urma::pf::Provider* const provider = manager_.findProvider(path);
    if (provider == nullptr) {
        throw TeskBaseException("MemoryClient::get", "no provider serves " + path,
                                CIM_ERR_NOT_FOUND);
    }
    TSKHTTPRequest request("GET", path, "HTTP/1.1");
    request.setHeaderField("Host", host_, false);
    NothingToRead input;
    MemoryStream output;
    bool handled = true;
    provider->processHTTPRequest(input, output, request, handled, nullptr);
    return Answer(output.takeBytes());
}

}  // namespace Host
