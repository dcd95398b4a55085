#pragma once

#include <string>
#include <string_view>

namespace Security {

/// Writes a file that only its owner may read and write (mode 0600). It takes the place of the one
/// at `path`, if there is one, and gets its owner where this process may give files away. It
/// appears complete, and is safe on the disk, or not at all.
/// Errors: TeskBaseException; the file at `path` is as before then, and nothing else is left. The
/// one exception: that the folder could not be brought to the disk is noticed after the file was
/// replaced.
void replacePrivateFile(const std::string& path, std::string_view content);

}  // namespace Security
