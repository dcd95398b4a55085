#pragma once

#include <cstdint>

namespace CLI {
class App;
}

namespace Commands {

enum class OutputFormat : std::uint8_t { kText, kJson };

/// Adds the option `--format text|json`, which fills in `format`; it must live until the command
/// line is parsed.
void addFormatOption(CLI::App& command, OutputFormat& format);

}  // namespace Commands
