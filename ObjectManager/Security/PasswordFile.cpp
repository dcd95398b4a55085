#include "ObjectManager/Security/PasswordFile.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

#include "ObjectManager/Security/CredentialText.h"
#include "ObjectManager/Security/FileLock.h"
#include "ObjectManager/Security/FileReplacement.h"
#include "ObjectManager/Security/PasswordHash.h"
#include "Platform/Util/TeskBaseException.h"
#include "Platform/Util/TeskStatusCode.h"

namespace Security {

namespace {

[[noreturn]] void fail(const std::string& message) {
    throw TeskBaseException("Security::PasswordFile", TSKString(message), CIM_ERR_FAILED);
}

[[noreturn]] void failToRead(const std::string& path) {
    fail(path + ": cannot be read: " + std::strerror(errno));
}

// As a shell takes it for one word.
std::string quoted(const std::string& path) {
    constexpr std::string_view kPlain =
        "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_-./";
    if (path.find_first_not_of(kPlain) == std::string::npos)
        return path;
    std::string text = "'";
    for (const char byte : path) {
        if (byte == '\'')
            text += "'\\''";
        else
            text += byte;
    }
    return text + "'";
}

// A file that is open for reading.
class OpenFile {
  public:
    explicit OpenFile(const std::string& path)
        : path_(path),
          // O_NONBLOCK: a named pipe would keep us waiting for somebody to write to it.
          descriptor_(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)) {
        if (descriptor_ < 0)
            failToRead(path_);
    }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;
    ~OpenFile() { close(descriptor_); }

    void requirePrivate() const {
        struct stat status = {};
        if (fstat(descriptor_, &status) != 0)
            failToRead(path_);
        if (!S_ISREG(status.st_mode))
            fail(path_ + ": is not a regular file");
        if ((status.st_mode & (S_IRGRP | S_IWGRP | S_IROTH | S_IWOTH)) != 0) {
            fail(path_ +
                 ": others than its owner can read or write it; mend that with: chmod 600 " +
                 quoted(path_));
        }
    }

    [[nodiscard]] std::string readAll() const {
        std::string text;
        std::array<char, 4096> buffer = {};
        for (;;) {
            const ssize_t count = ::read(descriptor_, buffer.data(), buffer.size());
            if (count < 0 && errno == EINTR)
                continue;
            if (count < 0)
                failToRead(path_);
            if (count == 0)
                return text;
            text.append(buffer.data(), static_cast<std::size_t>(count));
        }
    }

  private:
    const std::string& path_;
    int descriptor_;
};

// The file itself, so that a symbolic link to it stays one when it is replaced.
std::string withoutLinks(const std::string& path) {
    std::error_code error;
    const std::filesystem::path target = std::filesystem::canonical(path, error);
    return error ? path : target.string();
}

bool exists(const std::string& path) {
    struct stat status = {};
    return lstat(path.c_str(), &status) == 0 || errno != ENOENT;
}

}  // namespace

PasswordFile::PasswordFile(std::string name, std::string_view text) : name_(std::move(name)) {
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        lines_.push_back(parseLine(text.substr(0, end)));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
}

PasswordFile PasswordFile::read(const std::string& path) {
    const OpenFile file(path);
    file.requirePrivate();
    return {path, file.readAll()};
}

void PasswordFile::change(const std::string& path,
                          const std::function<void(PasswordFile&)>& change) {
    const std::string target = withoutLinks(path);
    const FileLock lock(target);
    PasswordFile file = exists(target) ? read(target) : PasswordFile(target, "");
    change(file);
    replacePrivateFile(target, file.text());
}

UserTable PasswordFile::users() const {
    std::vector<User> users;
    for (const Line& line : lines_) {
        if (line.nameLength != 0)
            users.push_back({std::string(line.user()), line.text.substr(line.nameLength + 1)});
    }
    return UserTable(std::move(users));
}

bool PasswordFile::set(std::string_view user, const std::string& passwordHash) {
    Line line{.text = std::string(user) + ":" + passwordHash, .nameLength = user.size()};
    const auto old = find(user);
    const bool isNew = old == lines_.end();
    if (isNew)
        lines_.push_back(std::move(line));
    else
        *old = std::move(line);
    return isNew;
}

bool PasswordFile::remove(std::string_view user) {
    const auto line = find(user);
    if (line == lines_.end())
        return false;
    lines_.erase(line);
    return true;
}

std::string PasswordFile::text() const {
    std::string text;
    for (const Line& line : lines_)
        text += line.text + "\n";
    return text;
}

PasswordFile::Line PasswordFile::parseLine(std::string_view text) const {
    if (text.empty() || text.starts_with('#'))
        return {.text = std::string(text)};
    const std::size_t colon = text.find(':');
    if (colon == std::string_view::npos)
        failAtNextLine("there is no colon between name and hash");
    const std::string_view user = text.substr(0, colon);
    if (const std::string_view fault = faultOfUserName(user); !fault.empty())
        failAtNextLine("the name of the user cannot be used: " + std::string(fault));
    if (!isPasswordHash(text.substr(colon + 1)))
        failAtNextLine("the hash is none that this system can check");
    const auto earlier = std::ranges::find(lines_, user, &Line::user);
    if (earlier != lines_.end()) {
        failAtNextLine("the user \"" + std::string(user) + "\" is in line " +
                       std::to_string(earlier - lines_.begin() + 1) + " already");
    }
    return {.text = std::string(text), .nameLength = colon};
}

std::vector<PasswordFile::Line>::iterator PasswordFile::find(std::string_view user) {
    return std::ranges::find(lines_, user, &Line::user);
}

void PasswordFile::failAtNextLine(std::string_view message) const {
    fail(name_ + ":" + std::to_string(lines_.size() + 1) + ": " + std::string(message));
}

}  // namespace Security
