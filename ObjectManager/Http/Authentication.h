#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "Platform/Http/TSKHTTPRequest.h"

namespace Http {

/// What a server must know of the authentication of requests, which is done by the providers:
/// hashing a password takes long, so the server has it done before it calls a provider, in a queue
/// of its own (see HashQueue). Each function may be empty.
///
/// Thread safety: immutable, may be used by several threads at once.
struct Authentication {
    /// Credentials that a provider could check only by hashing a password that was never verified.
    struct Login {
        std::string user;
        std::string credentials;  ///< equal for equal credentials, and says nothing else of them
    };

    /// Makes the request that the other functions and the provider get. It may be of a derived
    /// class, which carries what they would find out for themselves, such as parsed credentials.
    /// `certificateUser` is the subject of the certificate by which the client has proved who it
    /// is, see Stream::clientSubject(); empty if it has not. Called by the I/O thread, so it must
    /// be fast. If it throws, the connection is closed.
    std::function<std::unique_ptr<TSKHTTPRequest>(const TSKHTTPRequest& request,
                                                  const std::string& certificateUser)>
        prepare = nullptr;

    /// The credentials of a request that need a hash; nothing for all other requests. Called by the
    /// I/O thread and by workers, as prepare().
    std::function<std::optional<Login>(const TSKHTTPRequest& request)> unverifiedLogin = nullptr;

    /// Does the hash, for all requests with equal credentials that live at the time. Returns
    /// whether the password is right. Called by a worker. If it throws, the provider is called
    /// nevertheless, and fails likewise.
    std::function<bool(TSKHTTPRequest& request)> verify = nullptr;
};

}  // namespace Http
