#include "ObjectManager/Mof/SourceFiles.h"

#include <algorithm>
#include <filesystem>
#include <functional>
#include <set>
#include <utility>

#include "ObjectManager/Base/Ascii.h"

namespace Mof {

namespace {

namespace fs = std::filesystem;

bool isNamedMof(const fs::path& path) {
    return Base::equalsIgnoringCase(path.extension().native(), ".mof");
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
        for (const fs::directory_entry& entry : fs::directory_iterator(directory)) {
            if (entry.is_symlink() || isNamedMof(entry.path()))
                add(entry);
            else if (entry.is_directory())
                directories_.push_back(entry.path());
        }
    }

    void add(const fs::directory_entry& entry) {
        const Base::FileVersion target = Base::FileVersion::of(entry.path());
        if (target.isDirectory()) {
            (entry.is_symlink() ? links_ : directories_).push_back(entry.path());
        } else if (isNamedMof(entry.path())) {
            files_.push_back({.path = entry.path(), .identity = target.identity});
        }
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
