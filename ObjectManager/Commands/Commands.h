#pragma once

#include "ObjectManager/Commands/CommandLine.h"

// The commands of `tesk`. Each stands in a directory of its own, with its options in the file of
// its name: Serve/Serve.cpp.

namespace Commands {

/// `tesk serve` publishes the documents over HTTP.
[[nodiscard]] Command serveCommand();

/// `tesk export` writes the documents into a directory.
[[nodiscard]] Command exportCommand();

/// `tesk import` writes the classes of a CIM server as MOF files.
[[nodiscard]] Command importCommand();

/// `tesk check` looks for what is wrong with the documents.
[[nodiscard]] Command checkCommand();

/// `tesk diff` says what changes between two versions of a model.
[[nodiscard]] Command diffCommand();

/// `tesk classes` lists classes or describes one.
[[nodiscard]] Command classesCommand();

/// `tesk passwd` changes the users of a password file.
[[nodiscard]] Command passwdCommand();

}  // namespace Commands
