#include "ObjectManager/Commands/Export/PageExport.h"

#include <string>

#include "ObjectManager/Commands/Export/DocumentExport.h"
#include "ObjectManager/Commands/ParallelWork.h"
#include "ObjectManager/Pages/ClassPage.h"

namespace Commands {

void exportPages(const ClassSelection& selection, const Base::OutputDirectory& directory,
                 std::string_view service, unsigned jobs, const std::function<bool()>& isStopped) {
    const Pages::ClassRelations relations(*selection.nameSpace);
    workInParallel(selection.classes.size(), jobs, [&](std::size_t number) {
        const Repository::CimClass& cimClass = *selection.classes[number];
        const std::string file = std::string(cimClass.name()) + kPageExtension;
        if (isStopped() || !Base::OutputDirectory::validateName(file).empty())
            return;
        directory.put(file,
                      Pages::makeClassPage(cimClass, relations, Pages::Layout::kExported, service));
    });
}

}  // namespace Commands
