#pragma once

#include <chrono>
#include <cstddef>
#include <ctime>
#include <string>
#include <string_view>

#include "ObjectManager/Base/LogFile.h"
#include "ObjectManager/Http/ClientAddress.h"
#include "Platform/Http/TSKHTTPRequest.h"

namespace Http {

/// A response and what it responds to. The texts are valid during a call only.
///
/// Thread safety: belongs to one thread.
struct Exchange {
    ClientAddress client;
    std::string_view requestLine;             ///< as it came, without its line end; may be empty
    const TSKHTTPRequest* request = nullptr;  ///< null if the request was refused unread
    unsigned status = 0;
    std::size_t bodyBytes = 0;  ///< of the response's body, as far as they were sent
    /// From the end of the header section until now; 0 for a request that was refused unread.
    std::chrono::steady_clock::duration duration = {};
};

/// The line of an access log in the Combined Log Format, with its line end:
///
///     CLIENT - USER [DAY/MONTH/YEAR:TIME +0000] "REQUEST LINE" STATUS BYTES "REFERER" "USER AGENT"
///
/// What is missing is "-", and so is 0 as the number of bytes. Quotation marks, backslashes,
/// control characters and bytes that are not ASCII become \xHH, in the name of the user spaces,
/// too: no request can forge a line or a column. A text of more than 4,096 bytes is cut and ends
/// with "...". Errors: std::bad_alloc. May be called by several threads at once.
[[nodiscard]] std::string accessLogLine(const Exchange& exchange, std::string_view user,
                                        std::time_t time);

/// The access log: a line for each response.
///
/// Thread safety: may be used by several threads at once.
class AccessLog {
  public:
    /// Appends to the file at `path`, see Base::LogFile, or writes to standard output for "-".
    /// Errors: TeskBaseException when the file cannot be written.
    explicit AccessLog(const std::string& path);

    /// `user` is empty if the request had no credentials. Lines that could not be written are
    /// counted in the log of the process once one can be written again.
    /// Errors: std::bad_alloc; the line is lost.
    void write(const Exchange& exchange, std::string_view user);

    /// Opens the file by its name again, after a log rotation has renamed it.
    /// Errors: TeskBaseException when it cannot be written; the log goes on as before then.
    void reopen() { file_.reopen(); }

  private:
    Base::LogFile file_;
};

}  // namespace Http
