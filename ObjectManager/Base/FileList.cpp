#include "ObjectManager/Base/FileList.h"

#include <algorithm>
#include <system_error>
#include <vector>

#include "ObjectManager/Base/Ascii.h"

namespace Base {

namespace {

constexpr std::size_t kMaxListSize = std::size_t{256} << 20U;

// Whether `file`, one of the sorted `files`, is not one that is made now. Where it differs from the
// one that is made in nothing but case, it is stale only beside that: a file system that ignores
// case lists one file, and that is the present one.
bool isStale(const std::vector<std::string>& files, const std::string& file,
             const std::string& presentName) {
    return presentName.empty() ||
           (presentName != file && std::ranges::binary_search(files, presentName));
}

}  // namespace

FileList FileList::read(const OutputDirectory& directory, const Kind& kind) {
    FileList list(kind);
    std::string text;
    try {
        text = directory.contentOf(kind.file, kMaxListSize);
    } catch (const std::system_error& error) {
        list.fault_ = readFailure(error);
        return list;
    }
    std::string_view rest = text;
    while (!rest.empty()) {
        const std::size_t end = rest.find('\n');
        const std::string_view line = rest.substr(0, end);
        if (end == std::string_view::npos || !(line.starts_with('#') || list.mayHold(line))) {
            list.files_.clear();
            list.fault_ = "it has a line that is no name of " + kind.content;
            break;
        }
        if (!line.starts_with('#'))
            list.files_.emplace(line);
        rest.remove_prefix(end + 1);
    }
    return list;
}

void FileList::add(const std::string& file) {
    if (mayHold(file))
        files_.insert(file);
}

std::size_t FileList::removeStale(const OutputDirectory& directory,
                                  const PresentName& presentName) {
    std::size_t removed = 0;
    const std::vector<std::string> files = directory.files();
    std::erase_if(files_, [&](const std::string& file) {
        const std::string present = presentName(file);
        if (!std::ranges::binary_search(files, file))
            return present.empty();
        if (!isStale(files, file, present))
            return false;
        directory.remove(file);
        ++removed;
        return true;
    });
    return removed;
}

void FileList::write(const OutputDirectory& directory) const {
    std::string text = kind_->heading;
    for (const std::string& file : files_)
        text += file + "\n";
    directory.put(kind_->file, text);
}

// A name that stays in the directory, on a line of its own.
bool FileList::mayHold(std::string_view name) const {
    return kind_->isOfKind(name) && OutputDirectory::validateName(name).empty() &&
           !name.starts_with('#') && std::ranges::none_of(name, isControl);
}

}  // namespace Base
