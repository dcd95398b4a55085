#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "ObjectManager/Commands/Diff/AcceptedChanges.h"
#include "ObjectManager/Commands/Diff/VersionDocuments.h"
#include "ObjectManager/Comparison/Change.h"

namespace Commands {

/// What changes for the clients of a model from one version to another.
struct VersionDiff {
    std::size_t classes = 0;                  ///< that are in either version
    std::size_t accepted = 0;                 ///< changes that are not in the list
    std::vector<Comparison::Change> changes;  ///< the breaking ones first

    [[nodiscard]] std::size_t countBreaking() const;
};

/// Compares all classes, in `jobs` threads. An address that changes alike in several classes is one
/// change, of the class "*".
/// Errors: TeskBaseException that names the class whose document is not understood.
[[nodiscard]] VersionDiff compareVersions(const VersionDocuments& before,
                                          const VersionDocuments& after, AcceptedChanges& accepted,
                                          unsigned jobs);

/// The changes, a line each, and a summary.
[[nodiscard]] std::string toText(const VersionDiff& diff);

/// An object with the numbers and an array of changes, with a newline at its end.
[[nodiscard]] std::string toJson(const VersionDiff& diff);

}  // namespace Commands
