#include "ObjectManager/Security/FileReplacement.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

#include "Platform/Util/TeskBaseException.h"
#include "Platform/Util/TeskStatusCode.h"

namespace Security {

namespace {

void require(bool done, const std::string& path) {
    if (!done) {
        throw TeskBaseException("Security::replacePrivateFile",
                                TSKString(path + ": cannot be written: ") + std::strerror(errno),
                                CIM_ERR_FAILED);
    }
}

// An open file that is closed at the end.
class Descriptor {
  public:
    explicit Descriptor(int descriptor) : descriptor_(descriptor) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() {
        if (isOpen())
            ::close(descriptor_);
    }

    [[nodiscard]] bool isOpen() const noexcept { return descriptor_ >= 0; }
    [[nodiscard]] int get() const noexcept { return descriptor_; }
    [[nodiscard]] bool close() noexcept { return ::close(std::exchange(descriptor_, -1)) == 0; }

  private:
    int descriptor_;
};

bool writeAll(int descriptor, std::string_view content) {
    while (!content.empty()) {
        const ssize_t count = write(descriptor, content.data(), content.size());
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            return false;
        content.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
}

void keepOwner(int descriptor, const std::string& path) {
    struct stat old = {};
    if (stat(path.c_str(), &old) != 0)
        return;
    // Only root may do this. For everybody else the file is now theirs, as a new one would be.
    [[maybe_unused]] const int result = fchown(descriptor, old.st_uid, old.st_gid);
}

// The file under a name of its own until it is complete; removed unless it got its right name.
class NewFile {
  public:
    explicit NewFile(const std::string& path)
        : path_(path),
          temporaryPath_(path + ".XXXXXX"),
          // Such a file is readable for its owner alone from the beginning.
          file_(mkostemp(temporaryPath_.data(), O_CLOEXEC)) {
        require(file_.isOpen(), path_);
    }
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;
    ~NewFile() {
        if (!isInPlace_)
            unlink(temporaryPath_.c_str());
    }

    void write(std::string_view content) {
        keepOwner(file_.get(), path_);
        require(writeAll(file_.get(), content), path_);
        require(fsync(file_.get()) == 0, path_);
        require(file_.close(), path_);
    }

    void moveIntoPlace() {
        require(std::rename(temporaryPath_.c_str(), path_.c_str()) == 0, path_);
        isInPlace_ = true;
    }

  private:
    const std::string& path_;
    std::string temporaryPath_;
    Descriptor file_;
    bool isInPlace_ = false;
};

void bringFolderToDisk(const std::string& path) {
    const std::filesystem::path parent = std::filesystem::path(path).parent_path();
    const std::string folder = parent.empty() ? "." : parent.string();
    const Descriptor descriptor(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    require(descriptor.isOpen() && fsync(descriptor.get()) == 0, folder);
}

}  // namespace

void replacePrivateFile(const std::string& path, std::string_view content) {
    NewFile file(path);
    file.write(content);
    file.moveIntoPlace();
    bringFolderToDisk(path);
}

}  // namespace Security
