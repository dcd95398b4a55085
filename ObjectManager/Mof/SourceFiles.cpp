#include "ObjectManager/Mof/SourceFiles.h"

#include <algorithm>
#include <filesystem>
#include <functional>
#include <set>
#include <string_view>
#include <system_error>
#include <utility>

#include "ObjectManager/Base/Ascii.h"

namespace Mof {

namespace {

namespace fs = std::filesystem;
using Kind = Base::DirectoryEntry::Kind;

bool isNamedMof(std::string_view name) {
    constexpr std::string_view kExtension = ".mof";
    return name.size() > kExtension.size() &&
           Base::equalsIgnoringCase(name.substr(name.size() - kExtension.size()), kExtension);
}

std::vector<Base::DirectoryEntry> entriesOf(const std::string& directory) {
    try {
        return Base::entriesOf(Base::openDirectory(directory));
    } catch (const std::system_error& error) {
        throw fs::filesystem_error("cannot read", directory, error.code());
    }
}

// Reads directories without recursion: they may be nested to any depth.
class DirectoryListing {
  public:
    std::vector<DirectoryFile> list(const std::string& path) {
        directories_.push_back(path);
        while (!directories_.empty()) {
            const std::string directory = std::move(directories_.back());
            directories_.pop_back();
            const Base::FileVersion target = Base::FileVersion::of(directory);
            // Reading a directory that does not exist says so.
            if (target == Base::FileVersion() || seen_.insert(target.identity).second)
                read(directory);
            if (directories_.empty())
                followLinks();
        }
        std::ranges::sort(files_, {}, &DirectoryFile::path);
        return std::move(files_);
    }

  private:
    void read(const std::string& directory) {
        const std::string prefix = directory.ends_with('/') ? directory : directory + "/";
        for (const auto& [name, kind] : entriesOf(directory)) {
            if (kind == Kind::kLink || isNamedMof(name))
                add(prefix, name, kind);
            else if (kind == Kind::kDirectory)
                directories_.push_back(prefix + name);
        }
    }

    void add(const std::string& prefix, const std::string& name, Kind kind) {
        std::string path = prefix + name;
        const Base::FileVersion target = Base::FileVersion::of(path);
        if (target.isDirectory())
            (kind == Kind::kLink ? links_ : directories_).push_back(std::move(path));
        else if (isNamedMof(name))
            files_.push_back({.path = std::move(path), .identity = target.identity});
    }

    // In descending order, since the next directory is taken from the end.
    void followLinks() {
        std::ranges::sort(links_, std::greater<>());
        directories_ = std::exchange(links_, {});
    }

    std::vector<std::string> directories_;  // still to be read
    std::vector<std::string> links_;        // to directories, read when no other directory is left
    std::set<Base::FileIdentity> seen_;
    std::vector<DirectoryFile> files_;
};

}  // namespace

std::vector<DirectoryFile> mofFilesIn(const std::string& directory) {
    return DirectoryListing().list(directory);
}

}  // namespace Mof
