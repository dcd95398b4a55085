#pragma once

#include <string_view>
#include <vector>

#include "ObjectManager/Inspection/Finding.h"

namespace Inspection {

/// A ".." of a ValueMap that stands for more values is a finding.
constexpr unsigned long kMaxGaps = 10'000;

// What is wrong with a document of a class. The caller fills in the namespace and the class; `name`
// is the document's, such as "CIM_Foo.xsd", for messages. Both functions may be called by several
// threads at once.

[[nodiscard]] std::vector<Finding> inspectSchema(std::string_view name, std::string_view text);

/// The schema in the document is not inspected: it is the one of the class's own document.
[[nodiscard]] std::vector<Finding> inspectWsdl(std::string_view name, std::string_view text);

}  // namespace Inspection
