#include "ObjectManager/Commands/Diff/VersionDocuments.h"

#include <cstddef>
#include <filesystem>
#include <iostream>
#include <system_error>
#include <vector>

#include "ObjectManager/Base/Files.h"
#include "ObjectManager/Commands/DocumentRequest.h"
#include "ObjectManager/Commands/Model.h"
#include "ObjectManager/Commands/ParallelWork.h"
#include "ObjectManager/Host/InstallationPaths.h"
#include "ObjectManager/Host/MemoryClient.h"
#include "ObjectManager/Host/ProviderHost.h"
#include "Platform/Util/TeskBaseException.h"
#include "Platform/Util/TeskStatusCode.h"

namespace Commands {

namespace {

namespace fs = std::filesystem;

constexpr const char* kExtension = ".wsdl";

TeskBaseException unusable(const std::string& reason) {
    return {"tesk diff", TSKString(reason), CIM_ERR_FAILED};
}

std::string readDocument(const fs::path& file) {
    // Exports of any version and any limit.
    constexpr std::size_t kMaxBytes = std::size_t{256} << 20U;
    try {
        return Base::readFile(file.string(), kMaxBytes);
    } catch (const std::system_error& error) {
        throw unusable(file.string() + " cannot be read: " + error.code().message());
    }
}

}  // namespace

// All at once, since the providers know one repository at a time.
VersionDocuments makeDocuments(ModelOptions model, const AddressArguments& address, unsigned jobs) {
    struct Making {
        const Repository::CimNamespace* nameSpace;
        TSKString document;
        std::string* target;
    };
    askForPassword(model.server);
    const Configuration::Settings settings = readSettings(model, std::cerr);
    const TSKSmrPtr<Repository::ClassRepository> repository =
        loadModel(settings, std::cerr).repository;
    const Host::ProviderHost providers(repository, TSKSmrPtr<Host::LocalAuthenticator>::make(),
                                       Host::InstallationPaths::ofThisProgram().installation);
    const Host::MemoryClient client(providers.manager(), addressOf(address, settings));
    VersionDocuments documents;
    std::vector<Making> makings;
    for (const Repository::CimNamespace& nameSpace : repository->namespaces()) {
        for (const TSKSmrPtr<Repository::CimClass>& cimClass : nameSpace.classes()) {
            std::string& target = documents[{nameSpace.name().data(), cimClass->name().data()}];
            makings.push_back({&nameSpace, cimClass->name() + kExtension, &target});
        }
    }
    workInParallel(makings.size(), jobs, [&](std::size_t number) {
        const Making& making = makings[number];
        const RequestedDocument made = requestDocument(client, *making.nameSpace, making.document);
        if (!made.response)
            throw unusable(made.failure);
        *making.target = made.response->body();
    });
    return documents;
}

VersionDocuments readExport(const std::string& directory) {
    VersionDocuments documents;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(directory)) {
        const fs::path& file = entry.path();
        if (file.extension() != kExtension || !entry.is_regular_file())
            continue;
        const fs::path nameSpace = file.parent_path().lexically_relative(directory);
        documents[{nameSpace.generic_string(), file.stem().string()}] = readDocument(file);
    }
    return documents;
}

}  // namespace Commands
