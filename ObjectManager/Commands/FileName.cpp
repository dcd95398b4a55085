#include "ObjectManager/Commands/FileName.h"

#include <cstddef>

namespace Commands {

namespace {

// What the file systems of Linux take (NAME_MAX).
constexpr std::size_t kLongestName = 255;

}  // namespace

std::string_view faultOfFileName(std::string_view name) noexcept {
    if (name.empty())
        return "is empty";
    if (name == ".")
        return "is \".\"";
    if (name == "..")
        return "is \"..\"";
    if (name.find('/') != std::string_view::npos)
        return "holds a \"/\"";
    if (name.find('\0') != std::string_view::npos)
        return "holds a zero byte";
    if (name.size() > kLongestName)
        return "is longer than 255 bytes";
    return {};
}

}  // namespace Commands
