#include "ObjectManager/Commands/FileStamp.h"

#include <sys/stat.h>

namespace Commands {

FileStamp FileStamp::of(const std::string& path) noexcept {
    FileStamp stamp;
    struct stat status = {};
    if (stat(path.c_str(), &status) != 0)
        return stamp;
    stamp.device_ = status.st_dev;
    stamp.number_ = status.st_ino;
    stamp.size_ = status.st_size;
    stamp.seconds_ = status.st_mtim.tv_sec;
    stamp.nanoseconds_ = status.st_mtim.tv_nsec;
    return stamp;
}

}  // namespace Commands
