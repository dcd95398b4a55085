#include "ObjectManager/Mof/InputFile.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace Mof {

namespace {

[[noreturn]] void fail() {
    throw std::system_error(errno, std::generic_category());
}

void requireFits(std::size_t length, std::size_t mostBytes) {
    if (length > mostBytes)
        throw std::system_error(std::make_error_code(std::errc::file_too_large));
}

}  // namespace

std::optional<InputFile> InputFile::openIfThere(const std::string& path, Kind kind) {
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
    // Of a folder, the attempt to read it says what it is.
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

std::string InputFile::readAll(std::size_t mostBytes) const {
    constexpr std::size_t kLeastRoom = 4096;
    requireFits(expectedSize_, mostBytes);
    std::string bytes;
    std::size_t length = 0;
    // One byte more than expected, so that the end is seen without growing.
    bytes.resize(expectedSize_ == 0 ? kLeastRoom : expectedSize_ + 1);
    while (true) {
        const std::size_t count = read(bytes.data() + length, bytes.size() - length);
        if (count == 0)
            break;
        length += count;
        requireFits(length, mostBytes);
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

}  // namespace Mof
