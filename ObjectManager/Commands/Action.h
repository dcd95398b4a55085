#pragma once

#include <functional>

namespace Commands {

/// What the command line asks for. Returns the exit status of the program: 0 done, 1 the work
/// failed, after a message that says why.
using Action = std::function<int()>;

}  // namespace Commands
