#pragma once

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <string>
#include <vector>

namespace CimXml {

/// What a server may send and how long it may take. All is bounded: a server can be anybody.
struct Limits {
    /// A response in bytes: four times that of the DMTF's whole schema with all that each class
    /// inherits.
    std::size_t maxResponseSize = std::size_t{128} << 20U;

    /// The header sections of a response in bytes.
    std::size_t maxHeaderSize = std::size_t{64} << 10U;

    /// Classes of a namespace, or other results of an operation. The DMTF's schema has 1,438
    /// classes.
    std::size_t maxResults = 20'000;

    /// A class in bytes, with all that it inherits; the DMTF's largest have less than 100 KB.
    std::size_t maxClassSize = std::size_t{4} << 20U;

    /// Properties, methods, parameters, qualifiers and values that all classes of a namespace have
    /// together, each counted once. The DMTF's schema has 90,000. Each takes some 200 bytes.
    std::size_t maxElements = 1'000'000;

    /// How deep elements may be nested; a value of a qualifier of a parameter is at level 11.
    std::size_t maxDepth = 24;

    /// An attribute in bytes; attributes are names, types and truth values.
    std::size_t maxAttributeSize = 1000;

    /// Until a connection stands, TLS included.
    std::chrono::milliseconds connectTimeout = std::chrono::seconds(10);

    /// Without a byte from the server; a large server thinks for seconds before its first one.
    std::chrono::milliseconds stallTimeout = std::chrono::seconds(60);

    /// All requests that reading a namespace takes.
    std::chrono::milliseconds totalTimeout = std::chrono::minutes(5);

    /// Sets totalTimeout, and lowers the other times to it.
    void setTotalTimeout(std::chrono::milliseconds time) noexcept {
        totalTimeout = time;
        connectTimeout = std::min(connectTimeout, time);
        stallTimeout = std::min(stallTimeout, time);
    }

    friend bool operator==(const Limits&, const Limits&) = default;
};

/// A CIM server and how to talk to it.
struct ServerOptions {
    /// "https://HOST[:PORT][/PATH]" or "http://..."; the port is 5989 or 5988 and the path "/cimom"
    /// unless said otherwise. Without user or password.
    std::string url;

    /// HTTP Basic authentication; none without a user.
    std::string user = {};
    std::string password = {};

    /// Where user and password are looked up by the name of the host (netrc) when there is no
    /// `user`; none when empty.
    std::string netrcFile = {};

    /// Certificates of authorities, in PEM, instead of those that the system trusts.
    std::string authoritiesFile = {};

    /// The client's own certificate and its key, in PEM, for servers that ask for one.
    std::string certificateFile = {};
    std::string keyFile = {};

    /// Whether the server must prove who it is. Without that, anybody on the way can pretend to be
    /// the server, and gets the password.
    bool verifiesCertificate = true;

    /// Asks for classes without what they inherit, which is a fifth of the bytes. Some servers
    /// leave out what a class overrides as well.
    bool localOnly = false;

    /// How many classes are asked for at once where a server does not send them all in one
    /// response.
    std::size_t parallelRequests = 4;

    /// The namespaces in which servers describe themselves, looked into in this order.
    std::vector<std::string> interopNamespaces = {"interop", "root/interop", "root/PG_InterOp"};

    Limits limits = {};

    friend bool operator==(const ServerOptions&, const ServerOptions&) = default;
};

}  // namespace CimXml
