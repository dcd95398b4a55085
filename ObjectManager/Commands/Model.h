#pragma once

#include <iosfwd>
#include <string>

#include "ObjectManager/Commands/SharedOptions.h"
#include "ObjectManager/Configuration/Settings.h"
#include "ObjectManager/Loading/RepositoryLoader.h"
#include "ObjectManager/Repository/ClassRepository.h"
#include "Platform/Util/TSKSmrPtr.h"

// From the options of a command to the classes that it works on.

namespace Commands {

/// What the configuration file says, where the command line does not say otherwise. Without any
/// namespace those of the sample model are filled in. Errors in the file are written to `messages`.
/// Errors: TeskBaseException when the file has errors, or for an option that is wrong.
[[nodiscard]] Configuration::Settings readSettings(const ModelOptions& options,
                                                   std::ostream& messages);

/// Loads the classes. Errors in them and warnings are written to `messages`.
/// Errors: those of Loading::loadSources(); TeskBaseException when the classes have errors.
[[nodiscard]] Loading::LoadedRepository loadModel(const Configuration::Settings& settings,
                                                  std::ostream& messages,
                                                  const Loading::LoadOptions& how = {});

/// The classes that the options of a command name; messages go to standard error.
/// Errors: those of both.
[[nodiscard]] TSKSmrPtr<Repository::ClassRepository> loadModel(const ModelOptions& options);

/// "1,438 classes in 1 namespace".
[[nodiscard]] std::string contentText(const Repository::ClassRepository& repository);

}  // namespace Commands
