#pragma once

#include <string>
#include <vector>

#include "ObjectManager/Repository/ClassRepository.h"
#include "ObjectManager/Repository/RepositoryLoader.h"
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

/// Where the classes are declared: by the options, else by the configuration, else the sample
/// model.
[[nodiscard]] std::vector<NamespaceSource> sourcesOf(const ModelOptions& options);

/// Compiles the classes, and writes what is wrong with them, or that there are none, to standard
/// error.
/// Errors: TeskBaseException when there are errors in them.
[[nodiscard]] TSKSmrPtr<ClassRepository> loadModel(const ModelOptions& options);

}  // namespace Commands
