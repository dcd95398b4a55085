#include "ObjectManager/Security/PasswordFile.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <unordered_map>
#include <utility>

#include "ObjectManager/Base/Files.h"
#include "ObjectManager/Base/Text.h"
#include "ObjectManager/Security/Credentials.h"
#include "ObjectManager/Security/PasswordHash.h"
#include "ObjectManager/Security/PrivateFile.h"
#include "Platform/Util/TeskBaseException.h"
#include "Platform/Util/TeskStatusCode.h"

namespace Security {

namespace {

// More than 100,000 users need.
constexpr std::size_t kMaxFileSize = 16'000'000;

[[noreturn]] void fail(const std::string& message) {
    throw TeskBaseException("Security::PasswordFile", TSKString(message), CIM_ERR_FAILED);
}

[[noreturn]] void fail(const std::string& path, std::string_view what,
                       const std::error_code& reason) {
    fail(path + ": " + std::string(what) + ": " + reason.message());
}

// The permissions of the file, as far as safe ones go; for a new file those of the owner alone.
mode_t permissionsFor(const std::filesystem::path& path) noexcept {
    struct stat status = {};
    const mode_t group = stat(path.c_str(), &status) == 0 ? status.st_mode & S_IRGRP : 0;
    return S_IRUSR | S_IWUSR | group;
}

// Waits until no other process or thread holds the lock of that directory. The lock is held as long
// as the result is open; the system releases it when the process crashes.
Base::FileDescriptor lockDirectory(const std::string& path, const LockWait& wait) {
    constexpr std::chrono::milliseconds kInterval(20);
    try {
        Base::FileDescriptor directory = Base::openDirectory(path);
        const auto deadline = std::chrono::steady_clock::now() + wait.timeout;
        for (bool isTold = false; flock(directory.get(), LOCK_EX | LOCK_NB) != 0; isTold = true) {
            if (errno != EWOULDBLOCK && errno != EINTR)
                throw std::system_error(errno, std::generic_category());
            if (std::chrono::steady_clock::now() >= deadline) {
                fail(path + ": another process, perhaps another \"tesk passwd\", has locked this " +
                     "directory and does not release it");
            }
            if (!isTold && wait.tell)
                wait.tell(path);
            std::this_thread::sleep_for(kInterval);
        }
        return directory;
    } catch (const std::system_error& error) {
        fail(path, "cannot be locked", error.code());
    }
}

}  // namespace

PasswordFile::PasswordFile(std::string name, std::string_view text) : name_(std::move(name)) {
    std::unordered_map<std::string_view, std::size_t> places;  // of each user in lines_
    while (!text.empty()) {
        const std::string_view line = text.substr(0, text.find('\n'));
        lines_.push_back(parseLine(line));
        const auto [other, isNew] =
            places.emplace(line.substr(0, lines_.back().nameLength), lines_.size());
        if (!isNew && lines_.back().nameLength != 0) {
            fail(name_ + ":" + std::to_string(lines_.size()) + ": the user " +
                 Base::quoted(other->first) + " is already in line " +
                 std::to_string(other->second));
        }
        text.remove_prefix(std::min(line.size() + 1, text.size()));
    }
}

PasswordFile PasswordFile::read(const std::string& path) {
    return {path, readPrivateFile(path, kMaxFileSize)};
}

PasswordFile PasswordFile::readForChange(const std::string& path) {
    std::error_code error;
    const auto type = std::filesystem::symlink_status(path, error).type();
    if (type != std::filesystem::file_type::not_found)
        return {path, readPrivateFile(path, kMaxFileSize, FileReader::kAdministrator)};
    requireSafeDirectory(path, FileReader::kAdministrator);
    return {path, ""};
}

void PasswordFile::change(const std::string& path, const std::function<void(PasswordFile&)>& change,
                          const LockWait& wait) {
    const std::filesystem::path target = withoutLinks(path);
    const std::filesystem::path parent = target.parent_path();
    const Base::FileDescriptor directory =
        lockDirectory(parent.empty() ? "." : parent.string(), wait);
    PasswordFile file = readForChange(target);
    change(file);
    const mode_t mode = permissionsFor(target);
    try {
        Base::replaceFile(directory, target.filename(), file.text(),
                          {.mode = mode, .keepsOwner = true, .isDurable = true});
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
    return {.text = std::string(text), .nameLength = colon};
}

std::vector<PasswordFile::Line>::iterator PasswordFile::find(std::string_view user) {
    return std::ranges::find(lines_, user, &Line::user);
}

void PasswordFile::failAtNextLine(std::string_view message) const {
    fail(name_ + ":" + std::to_string(lines_.size() + 1) + ": " + std::string(message));
}

}  // namespace Security
