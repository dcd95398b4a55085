#include "ObjectManager/Security/PrivateFile.h"

#include <cerrno>
#include <string_view>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

#include "ObjectManager/Base/Files.h"
#include "ObjectManager/Base/Text.h"
#include "Platform/Util/TeskBaseException.h"
#include "Platform/Util/TeskStatusCode.h"

namespace Security {

namespace {

[[noreturn]] void fail(const std::string& message) {
    throw TeskBaseException("Security::PrivateFile", TSKString(message), CIM_ERR_FAILED);
}

[[noreturn]] void fail(const std::string& path, std::string_view what,
                       const std::error_code& reason) {
    fail(path + ": " + std::string(what) + ": " + reason.message());
}

bool isTrusted(uid_t owner) noexcept {
    return owner == 0 || owner == geteuid();
}

void requireSafe(const std::string& path, const struct stat& status, FileReader reader) {
    if (!S_ISREG(status.st_mode))
        fail(path + ": is not a regular file");
    const bool isRoot = reader == FileReader::kAdministrator && geteuid() == 0;
    // The group of the service may read a file that belongs to root. Which that is, root does not
    // know.
    const bool mayGroupRead = isRoot || status.st_gid == getegid();
    const mode_t forbidden = S_IWGRP | S_IROTH | S_IWOTH | (mayGroupRead ? mode_t{0} : S_IRGRP);
    if ((status.st_mode & forbidden) != 0) {
        fail(path + ": others than its owner can read or write it; correct that with: " +
             "chmod 600 " + Base::shellQuoted(path));
    }
    if (!isRoot && !isTrusted(status.st_uid))
        fail(path + ": must belong to root or to the user of this process");
}

}  // namespace

std::filesystem::path withoutLinks(const std::string& path) {
    std::error_code error;
    std::filesystem::path target = std::filesystem::canonical(path, error);
    return error ? std::filesystem::path(path) : target;
}

void requireSafeDirectory(const std::filesystem::path& file, FileReader reader) {
    const std::filesystem::path parent = file.parent_path();
    const std::string path = parent.empty() ? "." : parent.string();
    struct stat status = {};
    if (stat(path.c_str(), &status) != 0)
        fail(path, "cannot be examined", std::error_code(errno, std::generic_category()));
    const bool isSticky = (status.st_mode & S_ISVTX) != 0;
    if ((status.st_mode & (S_IWGRP | S_IWOTH)) != 0 && !isSticky) {
        fail(path +
             ": others than its owner can replace the password file in it; correct that with: "
             "chmod go-w " +
             Base::shellQuoted(path));
    }
    const bool isRoot = reader == FileReader::kAdministrator && geteuid() == 0;
    if (!isRoot && !isTrusted(status.st_uid))
        fail(path + ": the directory of a password file must belong to root or to the user of " +
             "this process");
}

std::string readPrivateFile(const std::string& path, std::size_t maxSize, FileReader reader) {
    try {
        const Base::FileDescriptor file = Base::openForReading(path);
        struct stat status = {};
        if (fstat(file.get(), &status) != 0)
            throw std::system_error(errno, std::generic_category());
        // The one to which links lead as well.
        requireSafeDirectory(path, reader);
        requireSafeDirectory(withoutLinks(path), reader);
        requireSafe(path, status, reader);
        return Base::readAll(file, maxSize);
    } catch (const std::system_error& error) {
        if (error.code() == std::errc::not_supported || error.code() == std::errc::is_a_directory)
            fail(path + ": is not a regular file");
        if (error.code() == std::errc::file_too_large)
            fail(path + ": is larger than " + Base::bytesText(maxSize));
        fail(path, "cannot be read", error.code());
    }
}

}  // namespace Security
