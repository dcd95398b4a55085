#include "ObjectManager/Security/FileLock.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

#include "Platform/Util/TeskBaseException.h"
#include "Platform/Util/TeskStatusCode.h"

namespace Security {

FileLock::FileLock(const std::string& path) : lockPath_(path + ".lock") {
    while (!tryLock()) {
    }
}

FileLock::~FileLock() {
    // Removed while it is held: who waited for it finds it gone, and makes a new one.
    unlink(lockPath_.c_str());
    close(descriptor_);
}

// Whether the lock is held now; it is not when the file that was waited for is no longer the lock.
bool FileLock::tryLock() {
    const auto fail = [this] {
        throw TeskBaseException(
            "Security::FileLock",
            TSKString(lockPath_ + ": cannot be locked: ") + std::strerror(errno), CIM_ERR_FAILED);
    };
    constexpr int kFlags = O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC;
    descriptor_ = open(lockPath_.c_str(), kFlags, S_IRUSR | S_IWUSR);
    if (descriptor_ < 0)
        fail();
    int result = 0;
    do {
        result = flock(descriptor_, LOCK_EX);
    } while (result != 0 && errno == EINTR);

    struct stat held = {};
    struct stat named = {};
    if (result == 0 && fstat(descriptor_, &held) == 0 && stat(lockPath_.c_str(), &named) == 0 &&
        held.st_dev == named.st_dev && held.st_ino == named.st_ino)
        return true;
    const int error = errno;
    close(std::exchange(descriptor_, -1));
    errno = error;
    if (result != 0)
        fail();
    return false;
}

}  // namespace Security
