#include "ObjectManager/Mof/FolderFiles.h"

#include <algorithm>
#include <filesystem>
#include <functional>
#include <optional>
#include <set>
#include <string_view>
#include <sys/stat.h>
#include <utility>

#include "ObjectManager/Mof/CaseInsensitive.h"

namespace Mof {

namespace {

namespace fs = std::filesystem;

bool isNamedMof(const fs::path& path) {
    constexpr std::string_view kExtension = ".mof";
    const std::string extension = path.extension();
    return std::ranges::equal(extension, kExtension, {}, foldedCase);
}

// Of what a path leads to, over links.
struct Target {
    InputFile::Identity identity;
    bool isFolder;
};

std::optional<Target> targetOf(const std::string& path) {
    struct stat status = {};
    if (stat(path.c_str(), &status) != 0)
        return std::nullopt;
    return Target{.identity = {.device = status.st_dev, .number = status.st_ino},
                  .isFolder = S_ISDIR(status.st_mode)};
}

// Looks into folders without recursion: they are as deep as their maker likes.
class Listing {
  public:
    std::vector<FolderFile> list(const std::string& path) {
        folders_.push_back(path);
        while (!folders_.empty()) {
            const std::string folder = std::move(folders_.back());
            folders_.pop_back();
            const std::optional<Target> target = targetOf(folder);
            if (!target || seen_.insert(target->identity).second)
                lookInto(folder);
            if (folders_.empty())
                followLinks();
        }
        std::ranges::sort(files_, {}, &FolderFile::path);
        return std::move(files_);
    }

  private:
    void lookInto(const std::string& folder) {
        for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
            if (entry.is_symlink() || isNamedMof(entry.path()))
                lookAt(entry);
            else if (entry.is_directory())
                folders_.push_back(entry.path());
        }
    }

    void lookAt(const fs::directory_entry& entry) {
        const std::optional<Target> target = targetOf(entry.path());
        if (target && target->isFolder) {
            (entry.is_symlink() ? links_ : folders_).push_back(entry.path());
        } else if (isNamedMof(entry.path())) {
            files_.push_back({.path = entry.path(),
                              .identity = target ? target->identity : InputFile::Identity()});
        }
    }

    // The first by name comes last, for it is taken from the end.
    void followLinks() {
        std::ranges::sort(links_, std::greater<>());
        folders_ = std::exchange(links_, {});
    }

    std::vector<std::string> folders_;  // not looked into yet
    std::vector<std::string> links_;    // to folders, for when all that is no link is read
    std::set<InputFile::Identity> seen_;
    std::vector<FolderFile> files_;
};

}  // namespace

std::vector<FolderFile> filesOfFolder(const std::string& path) {
    return Listing().list(path);
}

}  // namespace Mof
