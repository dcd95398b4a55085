#pragma once

#include <boost/asio/ip/tcp.hpp>
#include <string>

#include "Platform/Http/TSKGenericHTTPOStream.h"

namespace Http {

/// Keeps the response that a provider writes, so that the provider never waits for the client.
///
/// Thread safety: belongs to one thread.
class MemoryResponse final : public TSKGenericHTTPOStream {
  public:
    /// `client` is what getPeerAddressString tells of.
    explicit MemoryResponse(const boost::asio::ip::tcp::endpoint& client) : client_(client) {}

    /// Errors: std::bad_alloc; nothing is appended then.
    void write(const char* data, unsigned long length) override;
    void getPeerAddressString(TSKString& peerHost, TSKString& peerPort) const override;

    /// All that was written, which leaves nothing here.
    [[nodiscard]] std::string take() noexcept;

  private:
    boost::asio::ip::tcp::endpoint client_;
    std::string bytes_;
};

}  // namespace Http
