#include "ObjectManager/Mof/FileReader.h"

#include <filesystem>
#include <iterator>
#include <optional>
#include <set>
#include <system_error>
#include <utility>

#include "ObjectManager/Mof/FileParser.h"
#include "ObjectManager/Mof/FolderFiles.h"
#include "ObjectManager/Mof/InputFile.h"

namespace Mof {

namespace {

namespace fs = std::filesystem;

template <typename Element>
void moveInto(std::vector<Element>& all, std::vector<Element>& more) {
    all.insert(all.end(), std::make_move_iterator(more.begin()),
               std::make_move_iterator(more.end()));
}

// The path of a file that is named beside another one. Plain text: a schema has thousands.
std::string besides(std::string_view file, const std::string& name) {
    const std::size_t folderEnd = file.rfind('/');
    if (name.starts_with('/') || folderEnd == std::string_view::npos)
        return name;
    return std::string(file.substr(0, folderEnd + 1)) + name;
}

std::string reasonOf(const std::system_error& error) {
    return error.code() == std::errc::not_supported ? "it is no regular file"
                                                    : error.code().message();
}

// Reads a file and what it includes. Since declarations may stand in any order, an included file is
// read after the one that includes it.
class FileReader {
  public:
    FileReader(const CompilerOptions& options, Compilation& compilation, Reporter& reporter)
        : options_(options),
          compilation_(compilation),
          reporter_(reporter),
          parser_(
              [this](std::size_t offset, const std::string& message) {
                  reporter_.error(lastFile(offset), message);
              },
              [this](std::size_t offset, const std::string& message) {
                  reporter_.warning(lastFile(offset), message);
              }) {}

    // Reads a file or a folder.
    void readAll(const std::string& path) {
        try {
            if (fs::is_directory(path))
                readFolder(path);
            else
                readUnlessIncluded(path, InputFile::Kind::kAny);
        } catch (const fs::filesystem_error& error) {
            addUnreadable(error.path1(), error);
        } catch (const std::system_error& error) {
            addUnreadable(path, error);
        }
    }

  private:
    // A file that is being read, and the one that includes it.
    struct Reading {
        InputFile::Identity identity;
        const Reading* includedBy;
        std::size_t depth;
    };

    void readFolder(const std::string& path) {
        const std::vector<FolderFile> files = filesOfFolder(path);
        for (const FolderFile& file : files)
            ofFolders_.insert(file.identity);
        for (const FolderFile& file : files) {
            try {
                readUnlessIncluded(file.path, InputFile::Kind::kRegular);
            } catch (const std::system_error& error) {
                addUnreadable(file.path, error);
            }
        }
    }

    void addUnreadable(const std::string& path, const std::system_error& error) {
        reporter_.errorOfFile(path, "cannot be read: " + reasonOf(error));
    }

    void readUnlessIncluded(const std::string& path, InputFile::Kind kind) {
        const std::optional<InputFile> file = InputFile::openIfThere(path, kind);
        if (!file)
            throw std::system_error(std::make_error_code(std::errc::no_such_file_or_directory));
        if (!read_.contains(file->identity()))
            read(path, *file, nullptr);
    }

    void read(const std::string& path, const InputFile& file, const Reading* includedBy) {
        const std::size_t number = compilation_.files.size();
        compilation_.files.emplace_back(path, file.readAll(options_.largestFile));
        read_.insert(file.identity());
        FileDeclarations declarations = parser_.parse(compilation_.files.back(), number);
        moveInto(compilation_.qualifiers, declarations.qualifiers);
        moveInto(compilation_.classes, declarations.classes);
        const Reading reading{.identity = file.identity(),
                              .includedBy = includedBy,
                              .depth = includedBy == nullptr ? 0 : includedBy->depth + 1};
        for (const Include& include : declarations.includes)
            readIncluded(include, reading);
    }

    void readIncluded(const Include& include, const Reading& includedBy) {
        try {
            findAndRead(include, includedBy);
        } catch (const std::system_error& error) {
            reporter_.error(include.position, "the included file \"" + include.path +
                                                  "\" cannot be read: " + reasonOf(error));
        }
    }

    void findAndRead(const Include& include, const Reading& includedBy) {
        constexpr auto kKind = InputFile::Kind::kRegular;
        const std::string& includingFile = compilation_.files[include.position.file].name();
        std::string path = besides(includingFile, include.path);
        std::optional<InputFile> file = InputFile::openIfThere(path, kKind);
        for (const std::string& folder : options_.includePath) {
            if (file)
                break;
            path = besides(folder + "/", include.path);
            file = InputFile::openIfThere(path, kKind);
        }
        if (!file) {
            reporter_.error(include.position,
                            "the included file \"" + include.path + "\" is not there");
        } else if (mayBeRead(include, *file, includedBy)) {
            read(path, *file, &includedBy);
        }
    }

    // Reports why not.
    bool mayBeRead(const Include& include, const InputFile& file, const Reading& includedBy) {
        for (const Reading* reading = &includedBy; reading != nullptr;
             reading = reading->includedBy) {
            if (reading->identity == file.identity()) {
                reporter_.error(include.position,
                                "the file \"" + include.path + "\" includes itself" +
                                    (reading == &includedBy ? "" : " by way of others"));
                return false;
            }
        }
        if (read_.contains(file.identity())) {
            warnUnlessOfFolder(include, file);
            return false;
        }
        if (includedBy.depth == options_.deepestInclude) {
            reporter_.error(include.position, "more than " +
                                                  std::to_string(options_.deepestInclude) +
                                                  " files include each other in a row");
            return false;
        }
        return true;
    }

    // A folder may hold a file that includes the others, in whatever order they are read.
    void warnUnlessOfFolder(const Include& include, const InputFile& file) {
        if (!ofFolders_.contains(file.identity())) {
            reporter_.warning(include.position, "the file \"" + include.path +
                                                    "\" is included already and not read again");
        }
    }

    // Whatever is parsed, it is the file that was added last.
    [[nodiscard]] Position lastFile(std::size_t offset) const {
        return {.file = compilation_.files.size() - 1, .offset = offset};
    }

    const CompilerOptions& options_;
    Compilation& compilation_;
    Reporter& reporter_;
    FileParser parser_;
    std::set<InputFile::Identity> read_;
    std::set<InputFile::Identity> ofFolders_;  // read, or about to be
};

}  // namespace

void readFiles(const std::vector<std::string>& paths, const CompilerOptions& options,
               Compilation& compilation, Reporter& reporter) {
    FileReader reader(options, compilation, reporter);
    for (const std::string& path : paths)
        reader.readAll(path);
}

}  // namespace Mof
