#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "ObjectManager/Host/MemoryClient.h"
#include "ObjectManager/Inspection/Finding.h"
#include "ObjectManager/Repository/ClassRepository.h"

namespace Commands {

/// What the check of all documents has found.
struct CheckResult {
    std::size_t namespaces = 0;
    std::size_t classes = 0;    ///< those that are left out included
    std::size_t documents = 0;  ///< that the provider has made
    std::size_t bytes = 0;      ///< of all documents
    double seconds = 0;
    std::vector<Inspection::Finding> findings;  ///< the most serious first

    [[nodiscard]] std::size_t countErrors() const;
};

/// Lets the provider make both documents of every class, in `jobs` threads, and inspects them. A
/// class that its namespace leaves out is a finding.
/// Calls `onClassDone` after each class, in any thread.
[[nodiscard]] CheckResult checkDocuments(const Repository::ClassRepository& repository,
                                         const Host::MemoryClient& client, unsigned jobs,
                                         const std::function<void()>& onClassDone);

/// The findings, a line each, and a summary.
[[nodiscard]] std::string toText(const CheckResult& result);

/// An object with the numbers and an array of findings, with a newline at its end.
[[nodiscard]] std::string toJson(const CheckResult& result);

}  // namespace Commands
