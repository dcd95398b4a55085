#include "ObjectManager/Http/UriHost.h"

namespace Http {

std::string toUriHost(const boost::asio::ip::address& address) {
    using namespace boost::asio::ip;
    if (address.is_v4())
        return address.to_string();
    address_v6 bare = address.to_v6();
    if (bare.is_v4_mapped())
        return make_address_v4(v4_mapped, bare).to_string();
    bare.scope_id(0);
    std::string host = "[";
    host += bare.to_string();
    host += ']';
    return host;
}

}  // namespace Http
