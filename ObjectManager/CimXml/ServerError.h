#pragma once

#include <string>

#include "Platform/Util/TeskBaseException.h"

namespace CimXml {

/// Why a server did not give what it was asked for. getMessage() begins with the server and the
/// request: "https://cim.example.com:5989: EnumerateClasses of root/cimv2: ...". What the server
/// says itself is part of it, without bytes that a terminal would obey.
///
/// Thread safety: immutable, may be used by several threads at once.
class ServerError : public TeskBaseException {
  public:
    enum class Kind {
        kOptions,       ///< the address, a namespace name or a file of the options is wrong
        kConnection,    ///< no connection, or it broke, or the time is over
        kTls,           ///< a certificate is wrong, or TLS did not come about
        kUnauthorized,  ///< 401: user and password are missing or wrong
        kHttpStatus,    ///< another status than 200, redirects included
        kCimError,      ///< the operation failed; getErrorCode() tells how (DSP0200)
        kNotCimXml,     ///< the response is no CIM-XML, not whole, or of another operation
        kLimit,         ///< the response passes one of the Limits
        kStopped,       ///< the caller has asked for it
    };

    /// `code` is a CIM status code for kCimError.
    ServerError(Kind kind, const std::string& message, int code = kFailed);

    [[nodiscard]] Kind kind() const noexcept { return kind_; }

    /// The same error of a request: "WHERE: MESSAGE".
    [[nodiscard]] ServerError at(const std::string& where) const;

  private:
    static constexpr int kFailed = 1;

    Kind kind_;
};

/// "CIM_ERR_INVALID_CLASS (5)"; "status 99" for one that DSP0200 does not know.
[[nodiscard]] std::string statusText(int code);

}  // namespace CimXml
