#pragma once

#include <string>
#include <vector>

#include "ObjectManager/Configuration/Settings.h"
#include "ObjectManager/Repository/ClassRepository.h"
#include "Platform/Util/TSKSmrPtr.h"

namespace CLI {
class App;
}

namespace Commands {

/// The options by which a command is told about the classes that it works on.
struct ModelOptions {
    std::vector<std::string> namespaces;  ///< "NAME=PATH" each, without a fault
    std::string configuration;            ///< the file; empty for none
};

/// Adds the options to a command; its parsing fills in `options`, which must live until then.
void addModelOptions(CLI::App& command, ModelOptions& options);

/// What the configuration file says, and the command line in its place. Without any namespace the
/// sample model's are filled in.
/// Errors: TeskBaseException for an option that is wrong, or after what is wrong with the file was
/// written to standard error.
[[nodiscard]] Configuration::Settings settingsOf(const ModelOptions& options);

/// Compiles the classes, and writes what is wrong with them, or that there are none, to standard
/// error.
/// Errors: TeskBaseException when there are errors in them.
[[nodiscard]] TSKSmrPtr<ClassRepository> loadModel(const Configuration::Settings& settings);

}  // namespace Commands
