#include "ObjectManager/Commands/Export/OutputDirectory.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

#include "ObjectManager/Base/Ascii.h"

namespace Commands {

namespace {

using Base::FileDescriptor;

// Temporary files are named ".tesk-export-PROCESS-NUMBER".
constexpr std::string_view kTemporaryPrefix = ".tesk-export-";

constexpr int kOpenDirectory = O_RDONLY | O_DIRECTORY | O_CLOEXEC;

[[noreturn]] void fail(const std::string& what, const std::filesystem::path& path) {
    throw std::system_error(errno, std::generic_category(), what + " " + path.string());
}

// As a positive number is written: not "0" and not "07".
bool isNumber(std::string_view text) noexcept {
    return !text.empty() && text.front() != '0' && std::ranges::all_of(text, Base::isDigit);
}

// Whether no process has that number any more. One that took over the number of an ended process
// counts as the first: its files stay until it ends, too.
bool isGone(std::string_view process) noexcept {
    pid_t id = 0;
    const auto result = std::from_chars(process.data(), process.data() + process.size(), id);
    return result.ec == std::errc() && kill(id, 0) != 0 && errno == ESRCH;
}

bool isUnfinished(std::string_view file) noexcept {
    if (!file.starts_with(kTemporaryPrefix))
        return false;
    const std::string_view numbers = file.substr(kTemporaryPrefix.size());
    const std::size_t hyphen = numbers.find('-');
    if (hyphen == std::string_view::npos)
        return false;
    const std::string_view process = numbers.substr(0, hyphen);
    return isNumber(process) && isNumber(numbers.substr(hyphen + 1)) && isGone(process);
}

// None when the file cannot be opened or is not a regular one. Does not wait for the other end of a
// pipe of that name.
FileDescriptor openRegularFile(const FileDescriptor& directory, const std::string& name) {
    FileDescriptor file(
        openat(directory.get(), name.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (!file.isOpen() || !Base::FileVersion::of(file).isRegular())
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

OutputDirectory::OutputDirectory(FileDescriptor descriptor, std::filesystem::path path)
    : descriptor_(std::move(descriptor)), path_(std::move(path)) {}

OutputDirectory OutputDirectory::create(const std::filesystem::path& path) {
    std::error_code failure;
    std::filesystem::create_directories(path, failure);
    // If it was there before, opening it tells whether it is a directory.
    FileDescriptor descriptor(open(path.c_str(), kOpenDirectory));
    if (descriptor.isOpen())
        return {std::move(descriptor), path};
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
        return {std::move(descriptor), path};
    if (std::filesystem::is_symlink(path))
        fail("documents are not written through a symbolic link:", path);
    fail("cannot make the directory", path);
}

OutputDirectory::Outcome OutputDirectory::put(std::string_view name,
                                              std::string_view content) const {
    if (contains(name, content))
        return Outcome::kUnchanged;
    try {
        Base::replaceFile(descriptor_, std::string(name), content,
                          {.temporaryPrefix = kTemporaryPrefix});
    } catch (const std::system_error& error) {
        throw std::system_error(error.code(), "cannot write " + (path_ / name).string());
    }
    return Outcome::kWritten;
}

bool OutputDirectory::contains(std::string_view name, std::string_view content) const {
    const FileDescriptor file = openRegularFile(descriptor_, std::string(name));
    if (!file.isOpen() || Base::FileVersion::of(file).size != static_cast<off_t>(content.size()))
        return false;
    char buffer[32 * 1024];
    while (!content.empty()) {
        const std::size_t length = std::min(content.size(), sizeof buffer);
        if (Base::readUpTo(file, {buffer, length}) != length ||
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

std::size_t OutputDirectory::removeUnfinishedFiles() const {
    std::size_t removed = 0;
    for (const std::string& file : files()) {
        if (!isUnfinished(file))
            continue;
        remove(file);
        ++removed;
    }
    return removed;
}

std::vector<std::string> OutputDirectory::files() const {
    // Another descriptor, since reading moves it.
    FileDescriptor directory(openat(descriptor_.get(), ".", kOpenDirectory));
    const std::unique_ptr<DIR, int (*)(DIR*)> entries(
        directory.isOpen() ? fdopendir(directory.get()) : nullptr, &closedir);
    if (entries == nullptr)
        fail("cannot read the directory", path_);
    (void)directory.release();
    std::vector<std::string> names;
    errno = 0;
    while (const dirent* entry = readdir(entries.get())) {
        struct stat status = {};
        if (fstatat(descriptor_.get(), entry->d_name, &status, AT_SYMLINK_NOFOLLOW) == 0 &&
            S_ISREG(status.st_mode))
            names.emplace_back(entry->d_name);
        errno = 0;
    }
    if (errno != 0)
        fail("cannot read the directory", path_);
    std::ranges::sort(names);
    return names;
}

std::string OutputDirectory::startOf(std::string_view name, std::size_t length) const {
    const FileDescriptor file = openRegularFile(descriptor_, std::string(name));
    std::string bytes;
    if (!file.isOpen())
        return bytes;
    bytes.resize(length);
    bytes.resize(Base::readUpTo(file, bytes));
    return bytes;
}

}  // namespace Commands
