#include "ObjectManager/Commands/Export/ClassSelection.h"

#include <algorithm>
#include <utility>

#include "ObjectManager/Base/NamePattern.h"
#include "ObjectManager/Base/Text.h"
#include "Platform/Util/TeskBaseException.h"
#include "Platform/Util/TeskStatusCode.h"

namespace Commands {

namespace {

// Tells which of several names fit a class, and which have fitted none so far.
class NameFilter {
  public:
    explicit NameFilter(const std::vector<std::string>& names)
        : names_(names), patterns_(names.begin(), names.end()), isUsed_(names.size(), false) {}

    [[nodiscard]] bool fits(const Repository::CimClass& cimClass) {
        bool isFound = false;
        for (std::size_t index = 0; index < patterns_.size(); ++index) {
            if (patterns_[index].fits(cimClass.name().data()))
                isUsed_[index] = isFound = true;
        }
        return isFound;
    }

    void requireAllUsed() const {
        std::vector<std::string> unused;
        for (std::size_t index = 0; index < names_.size(); ++index) {
            if (!isUsed_[index])
                unused.push_back(Base::quoted(names_[index]));
        }
        if (unused.empty())
            return;
        const std::string message =
            "there is no class " + Base::joined(unused, ", ") + "; \"tesk classes\" lists them";
        throw TeskBaseException("Commands::selectClasses", TSKString(message), CIM_ERR_NOT_FOUND);
    }

  private:
    const std::vector<std::string>& names_;
    std::vector<Base::NamePattern> patterns_;
    std::vector<bool> isUsed_;
};

}  // namespace

std::vector<ClassSelection> selectAllClasses(const Repository::ClassRepository& repository) {
    std::vector<ClassSelection> selections;
    for (const Repository::CimNamespace& nameSpace : repository.namespaces()) {
        ClassSelection& selection =
            selections.emplace_back(ClassSelection{.nameSpace = &nameSpace, .classes = {}});
        for (const TSKSmrPtr<Repository::CimClass>& cimClass : nameSpace.classes())
            selection.classes.push_back(cimClass.get());
    }
    return selections;
}

std::vector<ClassSelection> selectClasses(const Repository::ClassRepository& repository,
                                          const std::vector<std::string>& names) {
    NameFilter filter(names);
    std::vector<ClassSelection> selections = selectAllClasses(repository);
    for (ClassSelection& selection : selections) {
        std::erase_if(selection.classes, [&](const Repository::CimClass* cimClass) {
            return !filter.fits(*cimClass);
        });
    }
    filter.requireAllUsed();
    std::erase_if(selections,
                  [](const ClassSelection& selection) { return selection.classes.empty(); });
    return selections;
}

}  // namespace Commands
