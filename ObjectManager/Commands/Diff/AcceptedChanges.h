#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "ObjectManager/Comparison/Change.h"

namespace Commands {

/// Changes that somebody has looked at and accepted, as a file lists them: "RULE PLACE" a line,
/// such as "type-changed root/cimv2:CIM_Foo.Bar". Lines without anything and lines that begin with
/// "#" say nothing.
///
/// Thread safety: belongs to one thread.
class AcceptedChanges {
  public:
    /// Lists nothing.
    AcceptedChanges() = default;

    /// Reads `text`, which is in the file `name`.
    /// Errors: TeskBaseException with name and line where a line is none of these.
    AcceptedChanges(const std::string& name, std::string_view text);

    /// Takes the accepted ones out of `changes`. Returns how many they were.
    std::size_t removeFrom(std::vector<Comparison::Change>& changes);

    /// The entries that removeFrom() has not found: "FILE:3: no such change: ENTRY".
    [[nodiscard]] std::vector<std::string> unused() const;

  private:
    struct Use {
        std::size_t line;
        bool isUsed = false;
    };

    std::string name_;
    std::map<std::string, Use, std::less<>> entries_;
};

}  // namespace Commands
