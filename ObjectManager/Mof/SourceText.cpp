#include "ObjectManager/Mof/SourceText.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace Mof {

namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

bool isContinuation(char byte) noexcept {
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

// The bytes that a well-formed character begins with (Unicode, table 3-7): a range of first bytes,
// the range of the second one, and how many there are in all.
struct Utf8Form {
    unsigned firstLow;
    unsigned firstHigh;
    unsigned secondLow;
    unsigned secondHigh;
    std::size_t length;
};

constexpr Utf8Form kUtf8Forms[] = {
    {0xC2, 0xDF, 0x80, 0xBF, 2}, {0xE0, 0xE0, 0xA0, 0xBF, 3}, {0xE1, 0xEC, 0x80, 0xBF, 3},
    {0xED, 0xED, 0x80, 0x9F, 3}, {0xEE, 0xEF, 0x80, 0xBF, 3}, {0xF0, 0xF0, 0x90, 0xBF, 4},
    {0xF1, 0xF3, 0x80, 0xBF, 4}, {0xF4, 0xF4, 0x80, 0x8F, 4},
};

bool begins(std::string_view text, const Utf8Form& form) noexcept {
    const auto isBetween = [&](std::size_t index, unsigned low, unsigned high) {
        const unsigned byte = static_cast<unsigned char>(text[index]);
        return byte >= low && byte <= high;
    };
    return text.size() >= form.length && isBetween(0, form.firstLow, form.firstHigh) &&
           isBetween(1, form.secondLow, form.secondHigh) &&
           std::all_of(text.begin() + 2, text.begin() + static_cast<std::ptrdiff_t>(form.length),
                       isContinuation);
}

// The length of the well-formed character at the front of `text`, 0 if it is none.
std::size_t characterLength(std::string_view text) noexcept {
    if (static_cast<unsigned char>(text.front()) < 0x80)
        return 1;
    for (const Utf8Form& form : kUtf8Forms) {
        if (begins(text, form))
            return form.length;
    }
    return 0;
}

bool isUtf8(std::string_view text) noexcept {
    while (!text.empty()) {
        const std::size_t length = characterLength(text);
        if (length == 0)
            return false;
        text.remove_prefix(length);
    }
    return true;
}

std::string fromLatin1(std::string_view bytes) {
    std::string text;
    text.reserve(bytes.size() + bytes.size() / 8);
    for (const char byte : bytes) {
        const auto code = static_cast<unsigned char>(byte);
        if (code < 0x80) {
            text += byte;
        } else {
            text += static_cast<char>(0xC0U | code >> 6U);
            text += static_cast<char>(0x80U | (code & 0x3FU));
        }
    }
    return text;
}

std::string toUtf8(std::string_view bytes) {
    if (bytes.starts_with(kByteOrderMark))
        bytes.remove_prefix(kByteOrderMark.size());
    return isUtf8(bytes) ? std::string(bytes) : fromLatin1(bytes);
}

// A file that is open for reading. There may be more than a thousand of them, for which the streams
// of the standard library take too long.
class File {
  public:
    explicit File(const std::string& path)
        : path_(path), descriptor_(open(path.c_str(), O_RDONLY | O_CLOEXEC)) {
        if (descriptor_ < 0)
            fail();
    }
    File(const File&) = delete;
    File& operator=(const File&) = delete;
    ~File() { close(descriptor_); }

    [[nodiscard]] std::size_t size() const {
        struct stat status = {};
        if (fstat(descriptor_, &status) != 0)
            fail();
        return static_cast<std::size_t>(status.st_size);
    }

    // How many bytes were read; 0 at the end.
    std::size_t read(char* buffer, std::size_t length) const {
        ssize_t count = 0;
        do {
            count = ::read(descriptor_, buffer, length);
        } while (count < 0 && errno == EINTR);
        if (count < 0)
            fail();
        return static_cast<std::size_t>(count);
    }

  private:
    [[noreturn]] void fail() const {
        throw std::system_error(errno, std::generic_category(), path_);
    }

    const std::string& path_;
    int descriptor_;
};

}  // namespace

SourceText::SourceText(std::string name, std::string_view bytes)
    : name_(std::move(name)), text_(toUtf8(bytes)) {}

SourceText SourceText::read(const std::string& path) {
    const File file(path);
    std::string bytes(file.size(), '\0');
    std::size_t length = 0;
    while (length < bytes.size()) {
        const std::size_t count = file.read(bytes.data() + length, bytes.size() - length);
        if (count == 0)
            break;
        length += count;
    }
    bytes.resize(length);
    return {path, bytes};
}

LineAndColumn SourceText::locate(std::size_t offset) const noexcept {
    const std::string_view before = text().substr(0, offset);
    const std::size_t lineStart = startOfLine(offset);
    const std::string_view inLine = before.substr(lineStart);
    return {
        .line = 1 + static_cast<std::size_t>(std::count(before.begin(), before.end(), '\n')),
        .column =
            1 + static_cast<std::size_t>(std::count_if(
                    inLine.begin(), inLine.end(), [](char byte) { return !isContinuation(byte); })),
    };
}

std::string_view SourceText::lineAt(std::size_t offset) const noexcept {
    std::string_view line = text().substr(startOfLine(offset));
    line = line.substr(0, line.find('\n'));
    if (line.ends_with('\r'))
        line.remove_suffix(1);
    return line;
}

std::size_t SourceText::startOfLine(std::size_t offset) const noexcept {
    const std::string_view before = text().substr(0, offset);
    const std::size_t newline = before.rfind('\n');
    return newline == std::string_view::npos ? 0 : newline + 1;
}

}  // namespace Mof
