#pragma once

#include "ObjectManager/Commands/Action.h"

namespace CLI {
class App;
}

namespace Commands {

/// Adds the subcommand `classes` to the command line; when it is named, `action` becomes what it
/// does. `action` must live until the command line is parsed.
void addClassesCommand(CLI::App& program, Action& action);

}  // namespace Commands
