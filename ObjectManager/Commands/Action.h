#pragma once

#include <functional>

namespace Commands {

/// What the command line asks for. Returns the exit status of the program: 0 done, 1 the work
/// failed, after a message that says why; 128 and the number of the signal that stopped it.
using Action = std::function<int()>;

}  // namespace Commands
