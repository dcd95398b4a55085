#include "Tests/Support/MofModel.h"

#include <stdexcept>
#include <string>

#include "ObjectManager/Loading/RepositoryLoader.h"
#include "Tests/Support/TemporaryDirectory.h"

MofModel::MofModel(std::string_view mof, const Repository::Options& options) {
    const TemporaryDirectory directory;
    const std::string file = directory.write("test.mof", mof);
    const Loading::LoadedRepository loaded = Loading::loadRepository(
        {{.name = "root/test", .paths = {MODELS_DIRECTORY "/qualifiers.mof", file}}}, {}, options);
    std::string faults;
    for (const Mof::Diagnostic& diagnostic : loaded.diagnostics)
        faults += diagnostic.toString();
    if (!faults.empty())
        throw std::invalid_argument(faults);
    repository_ = loaded.repository;
}

const Repository::CimClass& MofModel::cimClass(const char* name) const {
    const TSKSmrPtr<Repository::CimClass> found = nameSpace().findClass(name);
    if (!found)
        throw std::invalid_argument(name);
    return *found;
}
