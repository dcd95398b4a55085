#include "ObjectManager/Mof/SourceFiles.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <set>
#include <string_view>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

#include "ObjectManager/Mof/CaseInsensitive.h"

namespace Mof {

namespace {

namespace fs = std::filesystem;

[[noreturn]] void fail() {
    throw std::system_error(errno, std::generic_category());
}

void requireFits(std::size_t length, std::size_t maxBytes) {
    if (length > maxBytes)
        throw std::system_error(std::make_error_code(std::errc::file_too_large));
}

bool isNamedMof(const fs::path& path) {
    constexpr std::string_view kExtension = ".mof";
    const std::string extension = path.extension();
    return std::ranges::equal(extension, kExtension, {}, foldedCase);
}

// The file at the end of the links that a path leads over.
struct Target {
    InputFile::Identity identity;
    bool isDirectory;
};

std::optional<Target> targetOf(const std::string& path) {
    struct stat status = {};
    if (stat(path.c_str(), &status) != 0)
        return std::nullopt;
    return Target{.identity = {.device = status.st_dev, .number = status.st_ino},
                  .isDirectory = S_ISDIR(status.st_mode)};
}

// Reads directories without recursion: they may be nested to any depth.
class DirectoryListing {
  public:
    std::vector<DirectoryFile> list(const std::string& path) {
        directories_.push_back(path);
        while (!directories_.empty()) {
            const std::string directory = std::move(directories_.back());
            directories_.pop_back();
            const std::optional<Target> target = targetOf(directory);
            if (!target || seen_.insert(target->identity).second)
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
        const std::optional<Target> target = targetOf(entry.path());
        if (target && target->isDirectory) {
            (entry.is_symlink() ? links_ : directories_).push_back(entry.path());
        } else if (isNamedMof(entry.path())) {
            files_.push_back({.path = entry.path(),
                              .identity = target ? target->identity : InputFile::Identity()});
        }
    }

    // In descending order, since the next directory is taken from the end.
    void followLinks() {
        std::ranges::sort(links_, std::greater<>());
        directories_ = std::exchange(links_, {});
    }

    std::vector<std::string> directories_;  // still to be read
    std::vector<std::string> links_;        // to directories, read when no other directory is left
    std::set<InputFile::Identity> seen_;
    std::vector<DirectoryFile> files_;
};

}  // namespace

std::optional<InputFile> InputFile::openIfExists(const std::string& path, Kind kind) {
    const int waiting = kind == Kind::kRegular ? O_NONBLOCK : 0;
    const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | waiting);
    if (descriptor < 0 && (errno == ENOENT || errno == ENOTDIR))
        return std::nullopt;
    if (descriptor < 0)
        fail();
    InputFile file(descriptor);
    struct stat status = {};
    if (fstat(descriptor, &status) != 0)
        fail();
    // Reading a directory fails with a message that says what it is.
    if (kind == Kind::kRegular && !S_ISREG(status.st_mode) && !S_ISDIR(status.st_mode))
        throw std::system_error(std::make_error_code(std::errc::not_supported));
    file.identity_ = {.device = status.st_dev, .number = status.st_ino};
    if (S_ISREG(status.st_mode))
        file.expectedSize_ = static_cast<std::size_t>(status.st_size);
    return file;
}

InputFile::InputFile(InputFile&& other) noexcept
    : descriptor_(std::exchange(other.descriptor_, -1)),
      identity_(other.identity_),
      expectedSize_(other.expectedSize_) {}

InputFile& InputFile::operator=(InputFile&& other) noexcept {
    std::swap(descriptor_, other.descriptor_);
    identity_ = other.identity_;
    expectedSize_ = other.expectedSize_;
    return *this;
}

InputFile::~InputFile() {
    if (descriptor_ >= 0)
        close(descriptor_);
}

std::string InputFile::readAll(std::size_t maxBytes) const {
    constexpr std::size_t kMinRoom = 4096;
    requireFits(expectedSize_, maxBytes);
    std::string bytes;
    std::size_t length = 0;
    // One byte more than expected, so that the end is seen without growing.
    bytes.resize(expectedSize_ == 0 ? kMinRoom : expectedSize_ + 1);
    while (true) {
        const std::size_t count = read(bytes.data() + length, bytes.size() - length);
        if (count == 0)
            break;
        length += count;
        requireFits(length, maxBytes);
        if (length == bytes.size())
            bytes.resize(2 * length);
    }
    bytes.resize(length);
    return bytes;
}

std::size_t InputFile::read(char* buffer, std::size_t length) const {
    ssize_t count = 0;
    do {
        count = ::read(descriptor_, buffer, length);
    } while (count < 0 && errno == EINTR);
    if (count < 0)
        fail();
    return static_cast<std::size_t>(count);
}

std::vector<DirectoryFile> mofFilesIn(const std::string& directory) {
    return DirectoryListing().list(directory);
}

}  // namespace Mof
