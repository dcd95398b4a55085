#pragma once

#include "ObjectManager/Commands/Action.h"

namespace CLI {
class App;
}

namespace Commands {

/// Adds the subcommand `export` to the command line; when it is named, `action` becomes what it
/// does. `action` must live until the command line is parsed.
void addExportCommand(CLI::App& program, Action& action);

}  // namespace Commands
