#pragma once

#include <string>
#include <string_view>

namespace Commands {

/// A name for a file that is not finished, ".tesk-export-PROCESS-NUMBER": another one each time in
/// this process, and one that no other process of this machine takes while this one runs.
/// May be called by several threads at once.
[[nodiscard]] std::string makeTemporaryName();

/// Whether `file` is such a name of a process that is gone, so that nobody will finish the file.
/// Not of one that runs: not even when it is another one with the number of the first.
[[nodiscard]] bool isAbandonedName(std::string_view file) noexcept;

}  // namespace Commands
