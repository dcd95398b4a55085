#include "ObjectManager/Mof/IncludeReader.h"

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <optional>
#include <set>
#include <string_view>
#include <system_error>
#include <utility>

#include "ObjectManager/Base/Files.h"
#include "ObjectManager/Base/Text.h"
#include "ObjectManager/Mof/FileParser.h"
#include "ObjectManager/Mof/SourceFiles.h"

namespace Mof {

namespace {

namespace fs = std::filesystem;

template <typename Element>
void moveInto(std::vector<Element>& all, std::vector<Element>& more) {
    all.insert(all.end(), std::make_move_iterator(more.begin()),
               std::make_move_iterator(more.end()));
}

// The path of `name`, which is relative to the directory of `file`. Text and no
// std::filesystem::path, which takes too long for the thousands of files of a schema.
std::string siblingPath(std::string_view file, const std::string& name) {
    const std::size_t directoryEnd = file.rfind('/');
    if (name.starts_with('/') || directoryEnd == std::string_view::npos)
        return name;
    return std::string(file.substr(0, directoryEnd + 1)) + name;
}

// A file that is open for reading.
struct OpenFile {
    std::string path;
    Base::FileDescriptor descriptor;
    Base::FileVersion version;
};

// None if no file has that path.
std::optional<OpenFile> openSource(std::string path) {
    std::optional<Base::FileDescriptor> descriptor = Base::openIfThere(path);
    if (!descriptor)
        return std::nullopt;
    const Base::FileVersion version = Base::FileVersion::of(*descriptor);
    return OpenFile{
        .path = std::move(path), .descriptor = *std::move(descriptor), .version = version};
}

// The directories below which files may be read. A model that comes from a stranger must not lead
// to other files, whose lines would appear in messages.
class ReadableDirectories {
  public:
    // One that is not there or closed holds nothing that could be read.
    void add(const std::string& path) {
        try {
            std::string location = Base::locationOf(Base::openDirectory(path));
            if (std::ranges::find(locations_, location) == locations_.end())
                locations_.push_back(std::move(location));
        } catch (const std::system_error& error) {
            if (error.code() != std::errc::no_such_file_or_directory &&
                error.code() != std::errc::not_a_directory &&
                error.code() != std::errc::permission_denied)
                throw;
        }
    }

    // Where the file itself is counts, not by which path and links it was reached, nor what has
    // happened to these since.
    [[nodiscard]] bool contain(const OpenFile& file) const {
        const std::string location = Base::locationOf(file.descriptor);
        return std::ranges::any_of(locations_, [&](std::string_view directory) {
            return location.starts_with(directory) &&
                   (directory.ends_with('/') || location.substr(directory.size()).starts_with('/'));
        });
    }

    // As a message says what to do about a file elsewhere.
    [[nodiscard]] std::string advice() const {
        std::vector<std::string> shown;
        std::ranges::transform(locations_, std::back_inserter(shown), &Base::quoted);
        return "files are read below " + Base::joined(shown, ", ", " and ") +
               " only; include_path and --include-path add directories";
    }

  private:
    std::vector<std::string> locations_;
};

std::string directoryOf(const std::string& path) {
    if (Base::FileVersion::of(path).isDirectory())
        return path;
    const std::size_t end = path.rfind('/');
    return end == std::string::npos ? "." : path.substr(0, end + 1);
}

// Reads files and what they include. Since declarations may have any order, an included file is
// read after the one that includes it.
class IncludeReader {
  public:
    IncludeReader(const CompilerOptions& options, Compilation& compilation, Reporter& reporter)
        : options_(options),
          compilation_(compilation),
          reporter_(reporter),
          parser_(
              [this](std::size_t offset, const std::string& message) {
                  reporter_.error(inLastFile(offset), message);
              },
              [this](std::size_t offset, const std::string& message) {
                  reporter_.warning(inLastFile(offset), message);
              }) {}

    // Allows to read below what is given here.
    void addReadable(const std::string& path) {
        try {
            readable_.add(path);
        } catch (const std::system_error& error) {
            addUnreadable(path, error);
        }
    }

    // Reads a file or a directory.
    void readAll(const std::string& path) {
        try {
            if (Base::FileVersion::of(path).isDirectory())
                readDirectory(path);
            else
                readGiven(path);
        } catch (const fs::filesystem_error& error) {
            addUnreadable(error.path1(), error);
        } catch (const std::system_error& error) {
            addUnreadable(path, error);
        }
    }

  private:
    // A file that is being read, and the one that includes it.
    struct Reading {
        Base::FileIdentity identity;
        const Reading* includedBy;
        std::size_t depth;
    };

    void readDirectory(const std::string& path) {
        const std::vector<DirectoryFile> files = mofFilesIn(path);
        for (const DirectoryFile& file : files)
            inDirectories_.insert(file.identity);
        for (const DirectoryFile& file : files) {
            try {
                readFound(file.path);
            } catch (const std::system_error& error) {
                addUnreadable(file.path, error);
            }
        }
    }

    void addUnreadable(const std::string& path, const std::system_error& error) {
        reporter_.errorOfFile(path, "cannot be read: " + Base::readFailure(error));
    }

    // A path that is compiled. Whoever gives it may link to wherever they like.
    void readGiven(const std::string& path) {
        const OpenFile file = openExisting(path);
        if (!read_.contains(file.version.identity))
            read(file, nullptr);
    }

    // A file in a directory that is compiled.
    void readFound(const std::string& path) {
        const OpenFile file = openExisting(path);
        if (read_.contains(file.version.identity))
            return;
        if (readable_.contain(file))
            read(file, nullptr);
        else
            reporter_.errorOfFile(path, "is a link that leads elsewhere: " + readable_.advice());
    }

    static OpenFile openExisting(const std::string& path) {
        std::optional<OpenFile> file = openSource(path);
        if (!file)
            throw std::system_error(std::make_error_code(std::errc::no_such_file_or_directory));
        return *std::move(file);
    }

    void read(const OpenFile& file, const Reading* includedBy) {
        const std::size_t number = compilation_.files.size();
        const std::size_t left = options_.maxTotalSize - compilation_.bytesRead;
        if (!fits(file, left))
            return;
        std::string bytes = Base::readAll(file.descriptor, std::min(options_.maxFileSize, left));
        compilation_.bytesRead += bytes.size();
        compilation_.files.emplace_back(file.path, std::move(bytes));
        read_.insert(file.version.identity);
        FileDeclarations declarations = parser_.parse(compilation_.files.back(), number);
        moveInto(compilation_.qualifiers, declarations.qualifiers);
        moveInto(compilation_.classes, declarations.classes);
        const Reading reading{.identity = file.version.identity,
                              .includedBy = includedBy,
                              .depth = includedBy == nullptr ? 0 : includedBy->depth + 1};
        for (const Include& include : declarations.includes)
            readIncluded(include, reading);
    }

    // Reports if not.
    bool fits(const OpenFile& file, std::size_t left) {
        if (static_cast<std::size_t>(file.version.size) <= left)
            return true;
        reporter_.errorOfFile(file.path,
                              "is not read: with it the model would be larger than "
                              "repository.max_model_size");
        return false;
    }

    void readIncluded(const Include& include, const Reading& includedBy) {
        try {
            findAndRead(include, includedBy);
        } catch (const std::system_error& error) {
            reporter_.error(include.position, "the included file " + Base::quoted(include.path) +
                                                  " cannot be read: " + Base::readFailure(error));
        }
    }

    void findAndRead(const Include& include, const Reading& includedBy) {
        const std::optional<OpenFile> file = find(include);
        if (!file) {
            reporter_.error(include.position,
                            "the included file " + Base::quoted(include.path) + " is not there");
        } else if (mayBeRead(include, *file, includedBy)) {
            read(*file, &includedBy);
        }
    }

    [[nodiscard]] std::optional<OpenFile> find(const Include& include) const {
        const std::string& includingFile = compilation_.files[include.position.file].name();
        std::optional<OpenFile> file = openSource(siblingPath(includingFile, include.path));
        for (const std::string& directory : options_.includePath) {
            if (file)
                break;
            file = openSource(siblingPath(directory + "/", include.path));
        }
        return file;
    }

    // Reports why not, if not.
    bool mayBeRead(const Include& include, const OpenFile& file, const Reading& includedBy) {
        for (const Reading* reading = &includedBy; reading != nullptr;
             reading = reading->includedBy) {
            if (reading->identity == file.version.identity) {
                reporter_.error(include.position,
                                "the file " + Base::quoted(include.path) + " includes itself" +
                                    (reading == &includedBy ? "" : " by way of others"));
                return false;
            }
        }
        if (read_.contains(file.version.identity)) {
            warnUnlessInDirectory(include, file);
            return false;
        }
        if (!readable_.contain(file)) {
            reporter_.error(include.position, "the included file " + Base::quoted(include.path) +
                                                  " is elsewhere: " + readable_.advice());
            return false;
        }
        if (includedBy.depth == options_.maxIncludeDepth) {
            reporter_.error(include.position, "more than " +
                                                  std::to_string(options_.maxIncludeDepth) +
                                                  " files include each other in a row");
            return false;
        }
        return true;
    }

    // A directory may hold a file that includes the others, which may be read before it.
    void warnUnlessInDirectory(const Include& include, const OpenFile& file) {
        if (!inDirectories_.contains(file.version.identity)) {
            reporter_.warning(include.position, "the file " + Base::quoted(include.path) +
                                                    " is included already and not read again");
        }
    }

    // The file that is parsed is the one that was added last.
    [[nodiscard]] Position inLastFile(std::size_t offset) const {
        return {.file = compilation_.files.size() - 1, .offset = offset};
    }

    const CompilerOptions& options_;
    Compilation& compilation_;
    Reporter& reporter_;
    FileParser parser_;
    ReadableDirectories readable_;
    std::set<Base::FileIdentity> read_;
    std::set<Base::FileIdentity> inDirectories_;  // of those given: read, or about to be
};

}  // namespace

void readFiles(const std::vector<std::string>& paths, const CompilerOptions& options,
               Compilation& compilation, Reporter& reporter) {
    IncludeReader reader(options, compilation, reporter);
    for (const std::string& path : paths)
        reader.addReadable(directoryOf(path));
    for (const std::string& directory : options.includePath)
        reader.addReadable(directory);
    for (const std::string& path : paths)
        reader.readAll(path);
}

}  // namespace Mof
