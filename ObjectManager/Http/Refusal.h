#pragma once

#include <string>

namespace Http {

/// Why the front end answers a request itself, without asking a provider.
///
/// Thread safety: belongs to one thread.
struct Refusal {
    unsigned status = 400;  ///< of the answer, RFC 9110 section 15
    std::string text;       ///< one sentence for the person at the other end
};

}  // namespace Http
