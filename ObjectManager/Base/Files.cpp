#include "ObjectManager/Base/Files.h"

#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <dirent.h>
#include <fcntl.h>
#include <filesystem>
#include <memory>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace Base {

namespace {

[[noreturn]] void fail() {
    throw std::system_error(errno, std::generic_category());
}

[[noreturn]] void fail(std::errc reason) {
    throw std::system_error(std::make_error_code(reason));
}

void require(bool isDone) {
    if (!isDone)
        fail();
}

std::int64_t nanosecondsOf(const timespec& time) noexcept {
    constexpr std::int64_t kNanosecondsPerSecond = 1'000'000'000;
    return std::int64_t{time.tv_sec} * kNanosecondsPerSecond + time.tv_nsec;
}

FileVersion versionOf(const struct stat& status) noexcept {
    return {.identity = {.device = status.st_dev, .number = status.st_ino},
            .size = status.st_size,
            .modifiedNanoseconds = nanosecondsOf(status.st_mtim),
            .changedNanoseconds = nanosecondsOf(status.st_ctim),
            .mode = status.st_mode};
}

// A name that no other process of this machine uses while this one runs, another one each time.
std::string temporaryName(std::string_view prefix) {
    static std::atomic<std::uint64_t> lastNumber = 0;
    return std::string(prefix) + std::to_string(getpid()) + "-" + std::to_string(++lastNumber);
}

// Makes a file and finds a name for it that is free in the directory.
FileDescriptor createTemporary(const FileDescriptor& directory, std::string_view prefix,
                               mode_t mode, std::string& name) {
    constexpr int kFlags = O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC;
    FileDescriptor file;
    // A name that is taken was left behind by a process that was killed, or is in use on another
    // machine.
    do {
        name = temporaryName(prefix);
        file = FileDescriptor(openat(directory.get(), name.c_str(), kFlags, mode));
    } while (!file.isOpen() && errno == EEXIST);
    require(file.isOpen());
    return file;
}

// Not all file systems tell the type along with the name.
DirectoryEntry::Kind kindOf(const FileDescriptor& directory, const dirent& entry) noexcept {
    using Kind = DirectoryEntry::Kind;
    struct stat status = {};
    auto mode = static_cast<mode_t>(DTTOIF(entry.d_type));
    if (entry.d_type == DT_UNKNOWN &&
        fstatat(directory.get(), entry.d_name, &status, AT_SYMLINK_NOFOLLOW) == 0)
        mode = status.st_mode;
    if (S_ISREG(mode))
        return Kind::kRegular;
    if (S_ISDIR(mode))
        return Kind::kDirectory;
    return S_ISLNK(mode) ? Kind::kLink : Kind::kOther;
}

void takeOwner(const FileDescriptor& file, const FileDescriptor& directory,
               const std::string& name) {
    struct stat old = {};
    if (fstatat(directory.get(), name.c_str(), &old, 0) != 0)
        return;
    // Only root may do this. For everybody else the file is now theirs, as a new one would be.
    [[maybe_unused]] const int result = fchown(file.get(), old.st_uid, old.st_gid);
}

}  // namespace

FileDescriptor& FileDescriptor::operator=(FileDescriptor&& other) noexcept {
    FileDescriptor old(std::exchange(number_, other.release()));
    return *this;
}

FileDescriptor::~FileDescriptor() {
    if (!isOpen())
        return;
    const int reason = errno;
    (void)::close(number_);
    errno = reason;
}

int FileDescriptor::release() noexcept {
    return std::exchange(number_, -1);
}

void FileDescriptor::close() {
    require(!isOpen() || ::close(release()) == 0);
}

FileVersion FileVersion::of(const std::string& path) noexcept {
    struct stat status = {};
    return stat(path.c_str(), &status) == 0 ? versionOf(status) : FileVersion();
}

FileVersion FileVersion::of(const FileDescriptor& file) {
    struct stat status = {};
    require(fstat(file.get(), &status) == 0);
    return versionOf(status);
}

bool FileVersion::isRegular() const noexcept {
    return S_ISREG(mode);
}

bool FileVersion::isDirectory() const noexcept {
    return S_ISDIR(mode);
}

std::optional<FileDescriptor> openIfThere(const std::string& path) {
    // Without O_NONBLOCK the call waits until another process writes to a pipe.
    FileDescriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK));
    if (!file.isOpen() && (errno == ENOENT || errno == ENOTDIR))
        return std::nullopt;
    if (!file.isOpen() && errno == ENXIO)  // a socket, or a device that is not there
        fail(std::errc::not_supported);
    require(file.isOpen());
    const FileVersion version = FileVersion::of(file);
    if (version.isDirectory())
        fail(std::errc::is_a_directory);
    if (!version.isRegular())
        fail(std::errc::not_supported);
    require(fcntl(file.get(), F_SETFL, 0) == 0);
    return file;
}

FileDescriptor openForReading(const std::string& path) {
    std::optional<FileDescriptor> file = openIfThere(path);
    if (!file)
        fail(std::errc::no_such_file_or_directory);
    return *std::move(file);
}

std::string readFailure(const std::system_error& error) {
    if (error.code() == std::errc::not_supported)
        return "it is not a regular file; a pipe or a device could not be read again at a reload";
    return error.code() == std::errc::is_a_directory ? "it is a directory" : error.code().message();
}

std::string locationOf(const FileDescriptor& file) {
    const std::string link = "/proc/self/fd/" + std::to_string(file.get());
    std::string location(PATH_MAX, '\0');
    const ssize_t length = readlink(link.c_str(), location.data(), location.size());
    require(length >= 0);
    location.resize(static_cast<std::size_t>(length));
    return location;
}

FileDescriptor openDirectory(const std::string& path) {
    FileDescriptor directory(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    require(directory.isOpen());
    return directory;
}

std::vector<DirectoryEntry> entriesOf(const FileDescriptor& directory) {
    // Another descriptor, since reading moves it.
    FileDescriptor opened(openat(directory.get(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    require(opened.isOpen());
    const std::unique_ptr<DIR, int (*)(DIR*)> stream(fdopendir(opened.get()), &closedir);
    require(stream != nullptr);
    (void)opened.release();
    std::vector<DirectoryEntry> entries;
    while (true) {
        errno = 0;
        const dirent* const entry = readdir(stream.get());
        if (entry == nullptr)
            break;
        const std::string_view name = entry->d_name;
        if (name != "." && name != "..")
            entries.push_back({.name = std::string(name), .kind = kindOf(directory, *entry)});
    }
    require(errno == 0);
    return entries;
}

std::size_t readUpTo(const FileDescriptor& file, std::span<char> buffer) {
    std::size_t length = 0;
    while (length < buffer.size()) {
        const ssize_t count = ::read(file.get(), buffer.data() + length, buffer.size() - length);
        if (count < 0 && errno == EINTR)
            continue;
        require(count >= 0);
        if (count == 0)
            break;
        length += static_cast<std::size_t>(count);
    }
    return length;
}

std::string readAll(const FileDescriptor& file, std::size_t maxBytes) {
    constexpr std::size_t kFirstRoom = 4096;
    const FileVersion version = FileVersion::of(file);
    const std::size_t expected = version.isRegular() ? static_cast<std::size_t>(version.size) : 0;
    const auto requireFits = [maxBytes](std::size_t length) {
        if (length > maxBytes)
            fail(std::errc::file_too_large);
    };
    requireFits(expected);
    // One byte more than expected, so that the end is seen without growing.
    std::string bytes(expected == 0 ? kFirstRoom : expected + 1, '\0');
    std::size_t length = 0;
    while (true) {
        length += readUpTo(file, std::span(bytes).subspan(length));
        requireFits(length);
        if (length < bytes.size())
            break;
        bytes.resize(2 * length);
    }
    bytes.resize(length);
    return bytes;
}

std::string readFile(const std::string& path, std::size_t maxBytes) {
    return readAll(openForReading(path), maxBytes);
}

void writeAll(const FileDescriptor& file, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t count = ::write(file.get(), bytes.data(), bytes.size());
        require(count >= 0 || errno == EINTR);
        bytes.remove_prefix(count < 0 ? 0 : static_cast<std::size_t>(count));
    }
}

PreparedFile::PreparedFile(const FileDescriptor& directory, std::string name,
                           std::string_view content, const ReplaceOptions& options)
    : directory_(directory.get()), name_(std::move(name)) {
    const std::string prefix =
        options.temporaryPrefix.empty() ? name_ + "." : std::string(options.temporaryPrefix);
    std::string temporaryName;
    FileDescriptor file = createTemporary(directory, prefix, options.mode, temporaryName);
    try {
        if (options.keepsOwner)
            takeOwner(file, directory, name_);
        writeAll(file, content);
        require(!options.isDurable || fsync(file.get()) == 0);
        file.close();
    } catch (...) {
        unlinkat(directory_, temporaryName.c_str(), 0);
        throw;
    }
    temporaryName_ = std::move(temporaryName);
}

PreparedFile::~PreparedFile() {
    if (!temporaryName_.empty())
        unlinkat(directory_, temporaryName_.c_str(), 0);
}

void PreparedFile::moveIntoPlace() {
    require(renameat(directory_, temporaryName_.c_str(), directory_, name_.c_str()) == 0);
    temporaryName_.clear();
}

void replaceFile(const FileDescriptor& directory, const std::string& name, std::string_view content,
                 const ReplaceOptions& options) {
    PreparedFile(directory, name, content, options).moveIntoPlace();
    require(!options.isDurable || fsync(directory.get()) == 0);
}

void replaceFile(const std::string& path, std::string_view content, const ReplaceOptions& options) {
    const std::filesystem::path file(path);
    const std::filesystem::path parent = file.parent_path();
    if (!file.has_filename())
        fail(std::errc::is_a_directory);
    replaceFile(openDirectory(parent.empty() ? "." : parent.string()), file.filename().string(),
                content, options);
}

}  // namespace Base
