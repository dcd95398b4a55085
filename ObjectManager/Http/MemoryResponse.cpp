#include "ObjectManager/Http/MemoryResponse.h"

#include <string_view>
#include <utility>

#include "ObjectManager/Http/UriHost.h"

namespace Http {

void MemoryResponse::write(const char* data, unsigned long length) {
    bytes_.append(data, length);
}

void MemoryResponse::getPeerAddressString(TSKString& peerHost, TSKString& peerPort) const {
    peerHost = TSKString(std::string_view(toUriHost(client_.address())));
    peerPort = TSKString(std::string_view(std::to_string(client_.port())));
}

std::string MemoryResponse::take() noexcept {
    return std::exchange(bytes_, {});
}

}  // namespace Http
