#include "ObjectManager/Security/PasswordFile.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <sys/file.h>
#include <system_error>
#include <utility>

#include "ObjectManager/Base/Files.h"
#include "ObjectManager/Security/Credentials.h"
#include "ObjectManager/Security/PasswordHash.h"
#include "Platform/Util/TeskBaseException.h"
#include "Platform/Util/TeskStatusCode.h"

namespace Security {

namespace {

// More than a million users need.
constexpr std::size_t kMaxFileSize = 256UL * 1024 * 1024;

[[noreturn]] void fail(const std::string& message) {
    throw TeskBaseException("Security::PasswordFile", TSKString(message), CIM_ERR_FAILED);
}

[[noreturn]] void fail(const std::string& path, std::string_view what,
                       const std::error_code& reason) {
    fail(path + ": " + std::string(what) + ": " + reason.message());
}

// A path as one word of a shell command.
std::string shellQuoted(const std::string& path) {
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

std::string readPrivateFile(const std::string& path) {
    try {
        const Base::FileDescriptor file = Base::openForReading(path);
        const Base::FileVersion version = Base::FileVersion::of(file);
        if (version.isAccessibleToOthers()) {
            fail(path + ": others than its owner can read or write it; correct that with: " +
                 "chmod 600 " + shellQuoted(path));
        }
        return Base::readAll(file, kMaxFileSize);
    } catch (const std::system_error& error) {
        if (error.code() == std::errc::not_supported || error.code() == std::errc::is_a_directory)
            fail(path + ": is not a regular file");
        fail(path, "cannot be read", error.code());
    }
}

// The file itself, so that a symbolic link to it stays one when the file is replaced.
std::filesystem::path withoutLinks(const std::string& path) {
    std::error_code error;
    std::filesystem::path target = std::filesystem::canonical(path, error);
    return error ? std::filesystem::path(path) : target;
}

// Waits until no other process or thread holds the lock of that directory. The lock is held as long
// as the result is open; the system releases it when the process crashes.
Base::FileDescriptor lockDirectory(const std::string& path) {
    try {
        Base::FileDescriptor directory = Base::openDirectory(path);
        while (flock(directory.get(), LOCK_EX) != 0) {
            if (errno != EINTR)
                throw std::system_error(errno, std::generic_category());
        }
        return directory;
    } catch (const std::system_error& error) {
        fail(path, "cannot be locked", error.code());
    }
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
    return {path, readPrivateFile(path)};
}

void PasswordFile::change(const std::string& path,
                          const std::function<void(PasswordFile&)>& change) {
    const std::filesystem::path target = withoutLinks(path);
    const std::filesystem::path parent = target.parent_path();
    const Base::FileDescriptor directory = lockDirectory(parent.empty() ? "." : parent.string());
    const bool isThere = std::filesystem::exists(std::filesystem::symlink_status(target));
    PasswordFile file = isThere ? read(target) : PasswordFile(target, "");
    change(file);
    try {
        Base::replaceFile(directory, target.filename(), file.text(),
                          {.mode = 0600, .keepsOwner = true, .isDurable = true});
    } catch (const std::system_error& error) {
        fail(target, "cannot be written", error.code());
    }
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
        failAtNextLine("there is no colon between user name and hash");
    const std::string_view user = text.substr(0, colon);
    if (const std::string_view fault = validateUserName(user); !fault.empty())
        failAtNextLine("the user name cannot be used: " + std::string(fault));
    if (!isPasswordHash(text.substr(colon + 1)))
        failAtNextLine("this system cannot check such a password hash");
    const auto earlier = std::ranges::find(lines_, user, &Line::user);
    if (earlier != lines_.end()) {
        failAtNextLine("the user \"" + std::string(user) + "\" is already in line " +
                       std::to_string(earlier - lines_.begin() + 1));
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
