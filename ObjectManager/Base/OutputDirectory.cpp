#include "ObjectManager/Base/OutputDirectory.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

#include "ObjectManager/Base/Ascii.h"

namespace Base {

namespace {

constexpr int kOpenDirectory = O_RDONLY | O_DIRECTORY | O_CLOEXEC;

[[noreturn]] void fail(const std::string& what, const std::filesystem::path& path) {
    throw std::system_error(errno, std::generic_category(), what + " " + path.string());
}

[[noreturn]] void failToWrite(const std::filesystem::path& path, const std::system_error& error) {
    throw std::system_error(error.code(), "cannot write " + path.string());
}

// As a positive number is written: not "0" and not "07".
bool isNumber(std::string_view text) noexcept {
    return !text.empty() && text.front() != '0' && std::ranges::all_of(text, isDigit);
}

// Whether a name is that of a temporary file: ".tesk-export-PROCESS-NUMBER".
bool isTemporary(std::string_view file, std::string_view prefix) noexcept {
    if (!file.starts_with(prefix))
        return false;
    const std::string_view numbers = file.substr(prefix.size());
    const std::size_t hyphen = numbers.find('-');
    if (hyphen == std::string_view::npos)
        return false;
    return isNumber(numbers.substr(0, hyphen)) && isNumber(numbers.substr(hyphen + 1));
}

// None when the file cannot be opened or is not a regular one. Does not wait for the other end of a
// pipe of that name.
FileDescriptor openRegularFile(const FileDescriptor& directory, const std::string& name) {
    FileDescriptor file(
        openat(directory.get(), name.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (!file.isOpen() || !FileVersion::of(file).isRegular())
        return {};
    return file;
}

}  // namespace

std::string_view OutputDirectory::validateName(std::string_view name) noexcept {
    constexpr std::size_t kMaxNameLength = 255;  // of the file systems of Linux (NAME_MAX)
    if (name.empty())
        return "is empty";
    if (name == ".")
        return "is \".\"";
    if (name == "..")
        return "is \"..\"";
    if (name.find('/') != std::string_view::npos)
        return "has a \"/\"";
    if (name.find('\0') != std::string_view::npos)
        return "has a zero byte";
    if (name.size() > kMaxNameLength)
        return "is longer than 255 bytes";
    return {};
}

OutputDirectory::OutputDirectory(FileDescriptor descriptor, std::filesystem::path path,
                                 std::string temporaryPrefix)
    : descriptor_(std::move(descriptor)),
      path_(std::move(path)),
      temporaryPrefix_(std::move(temporaryPrefix)) {}

OutputDirectory OutputDirectory::create(const std::filesystem::path& path,
                                        std::string_view command) {
    std::error_code failure;
    std::filesystem::create_directories(path, failure);
    // If it was there before, opening it tells whether it is a directory.
    FileDescriptor descriptor(open(path.c_str(), kOpenDirectory));
    if (descriptor.isOpen())
        return {std::move(descriptor), path, ".tesk-" + std::string(command) + "-"};
    if (failure)
        errno = failure.value();
    fail("cannot make the directory", path);
}

OutputDirectory OutputDirectory::createBelow(std::string_view name) const {
    const std::string directory(name);
    const std::filesystem::path path = path_ / directory;
    if (mkdirat(descriptor_.get(), directory.c_str(), 0777) != 0 && errno != EEXIST)
        fail("cannot make the directory", path);
    FileDescriptor descriptor(
        openat(descriptor_.get(), directory.c_str(), kOpenDirectory | O_NOFOLLOW));
    if (descriptor.isOpen())
        return {std::move(descriptor), path, temporaryPrefix_};
    if (std::filesystem::is_symlink(path))
        fail("files are not written through a symbolic link:", path);
    fail("cannot make the directory", path);
}

OutputDirectory OutputDirectory::createPath(std::string_view path) const {
    const std::vector<std::string> names = namesIn(path);
    OutputDirectory directory = createBelow(names.front());
    for (auto below = names.begin() + 1; below != names.end(); ++below)
        directory = directory.createBelow(*below);
    return directory;
}

std::vector<std::string> OutputDirectory::namesIn(std::string_view path) {
    std::vector<std::string> names;
    while (true) {
        const std::size_t end = path.find('/');
        names.emplace_back(path.substr(0, end));
        if (end == std::string_view::npos)
            return names;
        path.remove_prefix(end + 1);
    }
}

OutputDirectory::Outcome OutputDirectory::put(std::string_view name,
                                              std::string_view content) const {
    const std::unique_ptr<StagedFile> file = stage(name, content);
    if (file == nullptr)
        return Outcome::kUnchanged;
    file->publish();
    return Outcome::kWritten;
}

std::unique_ptr<OutputDirectory::StagedFile> OutputDirectory::stage(
    std::string_view name, std::string_view content) const {
    if (contains(name, content))
        return nullptr;
    return std::make_unique<StagedFile>(*this, name, content);
}

OutputDirectory::StagedFile::StagedFile(const OutputDirectory& directory, std::string_view name,
                                        std::string_view content) try
    : path_(directory.path_ / name),
      file_(directory.descriptor_, std::string(name), content,
            {.temporaryPrefix = directory.temporaryPrefix_}) {
} catch (const std::system_error& error) {
    failToWrite(directory.path_ / name, error);
}

void OutputDirectory::StagedFile::publish() {
    try {
        file_.moveIntoPlace();
    } catch (const std::system_error& error) {
        failToWrite(path_, error);
    }
}

bool OutputDirectory::contains(std::string_view name, std::string_view content) const {
    const FileDescriptor file = openRegularFile(descriptor_, std::string(name));
    if (!file.isOpen() || FileVersion::of(file).size != static_cast<off_t>(content.size()))
        return false;
    char buffer[32 * 1024];
    while (!content.empty()) {
        const std::size_t length = std::min(content.size(), sizeof buffer);
        if (readUpTo(file, {buffer, length}) != length ||
            std::string_view(buffer, length) != content.substr(0, length))
            return false;
        content.remove_prefix(length);
    }
    return true;
}

void OutputDirectory::remove(std::string_view name) const {
    if (unlinkat(descriptor_.get(), std::string(name).c_str(), 0) != 0)
        fail("cannot remove", path_ / name);
}

void OutputDirectory::lock() {
    FileDescriptor lock(openat(descriptor_.get(), ".", kOpenDirectory));
    if (!lock.isOpen())
        fail("cannot lock the directory", path_);
    if (flock(lock.get(), LOCK_EX | LOCK_NB) == 0)
        lock_ = std::move(lock);
    else if (errno == EWOULDBLOCK)
        fail("another export or import is at work in", path_);
}

std::size_t OutputDirectory::removeUnfinishedFiles() const {
    std::size_t removed = 0;
    if (!lock_.isOpen())
        return removed;
    for (const std::string& file : files()) {
        if (!isTemporary(file, temporaryPrefix_))
            continue;
        remove(file);
        ++removed;
    }
    return removed;
}

std::vector<std::string> OutputDirectory::files() const {
    std::vector<std::string> names;
    try {
        for (DirectoryEntry& entry : entriesOf(descriptor_)) {
            if (entry.kind == DirectoryEntry::Kind::kRegular)
                names.push_back(std::move(entry.name));
        }
    } catch (const std::system_error& error) {
        throw std::system_error(error.code(), "cannot read the directory " + path_.string());
    }
    std::ranges::sort(names);
    return names;
}

std::string OutputDirectory::contentOf(std::string_view name, std::size_t maxBytes) const {
    const FileDescriptor file(openat(descriptor_.get(), std::string(name).c_str(),
                                     O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (!file.isOpen() && errno == ENOENT)
        return {};
    if (!file.isOpen())
        throw std::system_error(errno, std::generic_category());
    if (!FileVersion::of(file).isRegular())
        throw std::system_error(std::make_error_code(std::errc::not_supported));
    return readAll(file, maxBytes);
}

bool OutputDirectory::isTemporaryName(std::string_view name) const noexcept {
    return name.starts_with(temporaryPrefix_);
}

}  // namespace Base
