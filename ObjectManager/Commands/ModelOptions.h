#pragma once

#include <iosfwd>
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
/// sample model's are filled in. What is wrong with the file is written to `faults`.
/// Errors: TeskBaseException when there is something, or for an option that is wrong.
[[nodiscard]] Configuration::Settings settingsOf(const ModelOptions& options, std::ostream& faults);

/// The same for a person at a terminal: faults go to standard error.
[[nodiscard]] Configuration::Settings settingsOf(const ModelOptions& options);

/// Compiles the classes, and writes what is wrong with them, or that there are none, to `faults`.
/// Errors: TeskBaseException when there are errors in them.
[[nodiscard]] TSKSmrPtr<Repository::ClassRepository> loadModel(
    const Configuration::Settings& settings, std::ostream& faults);

/// The same for a person at a terminal: faults go to standard error.
[[nodiscard]] TSKSmrPtr<Repository::ClassRepository> loadModel(
    const Configuration::Settings& settings);

/// "1,438 classes in 1 namespace".
[[nodiscard]] std::string contentText(const Repository::ClassRepository& repository);

}  // namespace Commands
