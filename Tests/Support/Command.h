#pragma once

#include <string>

/// What a shell command writes to its standard output.
std::string outputOf(const std::string& command);
