#pragma once

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

/// Whether this machine has IPv6: whether a socket can be bound to its loopback address.
inline bool hasIPv6() {
    const int descriptor = socket(AF_INET6, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (descriptor < 0)
        return false;
    sockaddr_in6 address{};
    address.sin6_family = AF_INET6;
    address.sin6_addr = in6addr_loopback;
    const bool binds =
        bind(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    close(descriptor);
    return binds;
}
