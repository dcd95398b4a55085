#pragma once

#include <cstdio>
#include <cstdlib>

/// Ends the process, which a fuzzer takes for a finding, unless `condition` is met. `rule` is what
/// was broken.
inline void require(bool condition, const char* rule) {
    if (condition)
        return;
    (void)std::fprintf(stderr, "broken: %s\n", rule);
    std::abort();
}
