#pragma once

#include <string_view>
#include <vector>

#include "ObjectManager/Inspection/Finding.h"

namespace Inspection {

/// As many values a ".." of a ValueMap may stand for without being remarkable.
constexpr unsigned long kMostGaps = 10'000;

// What is wrong with a document of a class. The namespace and the class are left for the caller to
// fill in; `name` is the document's, such as "CIM_Foo.xsd", for messages.

[[nodiscard]] std::vector<Finding> inspectSchema(std::string_view name, std::string_view text);

/// The schema inside is not looked at again: it says the same as the class's own.
[[nodiscard]] std::vector<Finding> inspectWsdl(std::string_view name, std::string_view text);

}  // namespace Inspection
