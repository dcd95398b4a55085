#include "ObjectManager/Commands/OutputFolder.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

#include "ObjectManager/Commands/TemporaryName.h"

namespace Commands {

namespace {

[[noreturn]] void fail(const std::string& what, const std::filesystem::path& path) {
    throw std::system_error(errno, std::generic_category(), what + " " + path.string());
}

// An open file or folder; none when negative.
class Descriptor {
  public:
    explicit Descriptor(int number) noexcept : number_(number) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() { (void)close(); }

    [[nodiscard]] int number() const noexcept { return number_; }
    [[nodiscard]] bool isOpen() const noexcept { return number_ >= 0; }
    [[nodiscard]] int release() noexcept { return std::exchange(number_, -1); }

    // Whether it went well: some file systems tell only now that a write failed.
    [[nodiscard]] bool close() noexcept { return !isOpen() || ::close(release()) == 0; }

  private:
    int number_;
};

// Up to `length` bytes; fewer at the end of the file or when it cannot be read.
std::size_t readUpTo(const Descriptor& file, char* buffer, std::size_t length) noexcept {
    std::size_t count = 0;
    while (count < length) {
        const ssize_t more = ::read(file.number(), buffer + count, length - count);
        if (more == 0 || (more < 0 && errno != EINTR))
            break;
        count += more < 0 ? 0 : static_cast<std::size_t>(more);
    }
    return count;
}

bool writeAll(const Descriptor& file, std::string_view bytes) noexcept {
    while (!bytes.empty()) {
        const ssize_t count = ::write(file.number(), bytes.data(), bytes.size());
        if (count < 0 && errno != EINTR)
            return false;
        bytes.remove_prefix(count < 0 ? 0 : static_cast<std::size_t>(count));
    }
    return true;
}

// Does not wait for the other end of a pipe of that name.
int openToRead(int folder, const std::string& name) noexcept {
    return openat(folder, name.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
}

// The size of a file proper, -1 of anything else.
off_t sizeOf(const Descriptor& file) noexcept {
    struct stat status = {};
    return file.isOpen() && fstat(file.number(), &status) == 0 && S_ISREG(status.st_mode)
               ? status.st_size
               : -1;
}

// Makes a file that was not there; a name that is taken was left behind by a process that was
// killed, or is in use by another machine.
int makeNewFile(int folder, std::string& name) {
    int descriptor = -1;
    do {
        name = makeTemporaryName();
        descriptor = openat(folder, name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    } while (descriptor < 0 && errno == EEXIST);
    return descriptor;
}

// A new file in a folder, which is removed again unless it gets a name.
class TemporaryFile {
  public:
    explicit TemporaryFile(int folder) : folder_(folder), file_(makeNewFile(folder, name_)) {
        isThere_ = file_.isOpen();
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    ~TemporaryFile() {
        if (isThere_)
            unlinkat(folder_, name_.c_str(), 0);
    }

    // Whether all of `content` stands under `name` now; errno says why not.
    [[nodiscard]] bool finish(std::string_view content, const std::string& name) noexcept {
        if (!isThere_ || !writeAll(file_, content) || !file_.close() ||
            renameat(folder_, name_.c_str(), folder_, name.c_str()) != 0)
            return false;
        isThere_ = false;
        return true;
    }

  private:
    int folder_;
    std::string name_;
    Descriptor file_;
    bool isThere_;
};

constexpr int kOpenFolder = O_RDONLY | O_DIRECTORY | O_CLOEXEC;

}  // namespace

OutputFolder::OutputFolder(int descriptor, std::filesystem::path path)
    : descriptor_(descriptor), path_(std::move(path)) {}

OutputFolder::OutputFolder(OutputFolder&& other) noexcept
    : descriptor_(std::exchange(other.descriptor_, -1)), path_(std::move(other.path_)) {}

OutputFolder& OutputFolder::operator=(OutputFolder&& other) noexcept {
    std::swap(descriptor_, other.descriptor_);
    std::swap(path_, other.path_);
    return *this;
}

OutputFolder::~OutputFolder() {
    if (descriptor_ >= 0)
        ::close(descriptor_);
}

OutputFolder OutputFolder::create(const std::filesystem::path& path) {
    std::error_code failure;
    std::filesystem::create_directories(path, failure);
    // What is there already is told by opening it.
    const int descriptor = open(path.c_str(), kOpenFolder);
    if (descriptor >= 0)
        return {descriptor, path};
    if (failure)
        errno = failure.value();
    fail("cannot make the folder", path);
}

OutputFolder OutputFolder::createBelow(std::string_view name) const {
    const std::string folder(name);
    const std::filesystem::path path = path_ / folder;
    if (mkdirat(descriptor_, folder.c_str(), 0777) != 0 && errno != EEXIST)
        fail("cannot make the folder", path);
    const int descriptor = openat(descriptor_, folder.c_str(), kOpenFolder | O_NOFOLLOW);
    if (descriptor >= 0)
        return {descriptor, path};
    if (std::filesystem::is_symlink(path))
        fail("documents are not written through a symbolic link:", path);
    fail("cannot make the folder", path);
}

OutputFolder::Outcome OutputFolder::put(std::string_view name, std::string_view content) const {
    if (holds(name, content))
        return Outcome::kUnchanged;
    TemporaryFile file(descriptor_);
    if (!file.finish(content, std::string(name)))
        fail("cannot write", path_ / name);
    return Outcome::kWritten;
}

bool OutputFolder::holds(std::string_view name, std::string_view content) const {
    const Descriptor file(openToRead(descriptor_, std::string(name)));
    if (sizeOf(file) != static_cast<off_t>(content.size()))
        return false;
    char buffer[32 * 1024];
    while (!content.empty()) {
        const std::size_t length = std::min(content.size(), sizeof buffer);
        if (readUpTo(file, buffer, length) != length ||
            std::string_view(buffer, length) != content.substr(0, length))
            return false;
        content.remove_prefix(length);
    }
    return true;
}

void OutputFolder::remove(std::string_view name) const {
    if (unlinkat(descriptor_, std::string(name).c_str(), 0) != 0)
        fail("cannot remove", path_ / name);
}

std::vector<std::string> OutputFolder::files() const {
    // A descriptor of its own, since reading moves it.
    Descriptor folder(openat(descriptor_, ".", kOpenFolder));
    const std::unique_ptr<DIR, int (*)(DIR*)> entries(
        folder.isOpen() ? fdopendir(folder.number()) : nullptr, &closedir);
    if (entries == nullptr)
        fail("cannot read the folder", path_);
    (void)folder.release();
    std::vector<std::string> names;
    errno = 0;
    while (const dirent* entry = readdir(entries.get())) {
        struct stat status = {};
        if (fstatat(descriptor_, entry->d_name, &status, AT_SYMLINK_NOFOLLOW) == 0 &&
            S_ISREG(status.st_mode))
            names.emplace_back(entry->d_name);
        errno = 0;
    }
    if (errno != 0)
        fail("cannot read the folder", path_);
    std::sort(names.begin(), names.end());
    return names;
}

std::string OutputFolder::head(std::string_view name, std::size_t length) const {
    const Descriptor file(openToRead(descriptor_, std::string(name)));
    std::string bytes;
    if (sizeOf(file) < 0)
        return bytes;
    bytes.resize(length);
    bytes.resize(readUpTo(file, bytes.data(), length));
    return bytes;
}

}  // namespace Commands
