#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "ObjectManager/Mof/Diagnostics.h"
#include "Tests/Support/TemporaryDirectory.h"

/// MOF files of a test, in a directory of their own.
class MofDirectory {
  public:
    /// Writes a file, in directorys that are made for it; returns its path.
    std::string write(std::string_view name, std::string_view mof) const;

    /// The path of what has that name.
    [[nodiscard]] std::string path(std::string_view name) const;

    /// Diagnostics as they are shown, with the names of files as they were written.
    [[nodiscard]] std::string shown(const std::vector<Mof::Diagnostic>& diagnostics) const;

  private:
    TemporaryDirectory directory_;
};
