#include "Platform/ProviderFramework/ProviderLibrary.h"

#include <algorithm>
#include <cerrno>
#include <dirent.h>
#include <dlfcn.h>
#include <filesystem>
#include <memory>
#include <string_view>
#include <system_error>

#include "Platform/Util/TeskBaseException.h"
#include "Platform/Util/TeskStatusCode.h"

namespace {

constexpr std::string_view kPrefix = "lib";
constexpr std::string_view kSuffix = ".so";

using Factory = urma::pf::Provider* (*)();

[[noreturn]] void fail(const TSKString& message) {
    throw TeskBaseException("ProviderLibrary::load", message, CIM_ERR_FAILED);
}

TSKString fileNameOf(const TSKString& file) {
    return file.right(file.length() - static_cast<unsigned long>(file.reverseFind('/') + 1));
}

TSKString factoryNameOf(const TSKString& fileName) {
    const std::string_view name = fileName;
    return TSKString("getTesk") +
           TSKString(name.substr(kPrefix.size(), name.size() - kPrefix.size() - kSuffix.size()));
}

}  // namespace

urma::pf::Provider& ProviderLibrary::load(const TSKString& file) {
    const TSKString fileName = fileNameOf(file);
    if (!isLibraryName(fileName))
        fail("The name of the file is not libNAME.so");

    // The path must hold a slash, or the system would look for the name in its own directories.
    const TSKString path = file.find('/') < 0 ? "./" + file : file;
    // Opening a pipe, for one, would wait for its other end.
    std::error_code ignored;
    const std::filesystem::file_status status = std::filesystem::status(path.data(), ignored);
    if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status))
        fail("It is no regular file");
    void* library = dlopen(path.data(), RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr)
        fail(dlerror());

    const TSKString factoryName = factoryNameOf(fileName);
    const auto factory = reinterpret_cast<Factory>(dlsym(library, factoryName.data()));
    if (factory == nullptr)
        fail("The library does not export the function " + factoryName);
    urma::pf::Provider* provider = factory();
    if (provider == nullptr)
        fail("The function " + factoryName + " returned no provider");
    return *provider;
}

bool ProviderLibrary::isLibraryName(const TSKString& fileName) {
    const std::string_view name = fileName;
    return name.size() > kPrefix.size() + kSuffix.size() && name.starts_with(kPrefix) &&
           name.ends_with(kSuffix);
}

// An iterator of <filesystem> would end the process when memory runs out.
std::vector<std::string> ProviderLibrary::filesIn(const TSKString& directory) {
    const std::unique_ptr<DIR, int (*)(DIR*)> entries(opendir(directory.data()), &closedir);
    if (entries == nullptr)
        throw std::system_error(errno, std::generic_category());
    std::vector<std::string> files;
    errno = 0;
    while (const dirent* const entry = readdir(entries.get())) {
        if (isLibraryName(entry->d_name))
            files.push_back(std::filesystem::path(directory.data()) / entry->d_name);
        errno = 0;
    }
    if (errno != 0)
        throw std::system_error(errno, std::generic_category());
    std::ranges::sort(files);
    return files;
}
