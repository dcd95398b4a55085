#pragma once

#include <functional>
#include <string_view>

#include "ObjectManager/Base/OutputDirectory.h"
#include "ObjectManager/Commands/Export/ClassSelection.h"

namespace Commands {

/// Puts the page of each selected class into the directory of its namespace: CIM_Foo.html. A class
/// whose name cannot be that of a file is left out; exportDocuments reports it. `service` is where
/// the pages say that the service is, such as "https://cim.example.org:5986". Ends early when
/// `isStopped` returns true, which it is asked before each page, in any thread. Errors:
/// std::system_error when a file cannot be written; the export ends then.
void exportPages(const ClassSelection& selection, const Base::OutputDirectory& directory,
                 std::string_view service, unsigned jobs, const std::function<bool()>& isStopped);

}  // namespace Commands
