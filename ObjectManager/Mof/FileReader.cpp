#include "ObjectManager/Mof/FileReader.h"

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <optional>
#include <set>
#include <system_error>
#include <utility>

#include "ObjectManager/Mof/FileParser.h"
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
        for (const std::string& file : filesAt(path)) {
            try {
                readUnlessIncluded(file);
            } catch (const std::system_error& error) {
                addUnreadable(file, error);
            }
        }
    }

  private:
    // A file that is being read, and the one that includes it.
    struct Reading {
        InputFile::Identity identity;
        const Reading* includedBy;
        std::size_t depth;
    };

    std::vector<std::string> filesAt(const std::string& path) {
        std::vector<std::string> files;
        try {
            if (!fs::is_directory(path))
                return {path};
            for (const fs::directory_entry& entry : fs::recursive_directory_iterator(path)) {
                if (entry.path().extension() == ".mof" && !entry.is_directory())
                    files.push_back(entry.path());
            }
        } catch (const std::system_error& error) {
            addUnreadable(path, error);
        }
        std::sort(files.begin(), files.end());
        return files;
    }

    void addUnreadable(const std::string& path, const std::system_error& error) {
        reporter_.errorOfFile(path, "cannot be read: " + error.code().message());
    }

    void readUnlessIncluded(const std::string& path) {
        const std::optional<InputFile> file = InputFile::openIfThere(path);
        if (!file)
            throw fs::filesystem_error(path,
                                       std::make_error_code(std::errc::no_such_file_or_directory));
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
                                                  "\" cannot be read: " + error.code().message());
        }
    }

    void findAndRead(const Include& include, const Reading& includedBy) {
        const std::string& includingFile = compilation_.files[include.position.file].name();
        std::string path = besides(includingFile, include.path);
        std::optional<InputFile> file = InputFile::openIfThere(path);
        for (const std::string& folder : options_.includePath) {
            if (file)
                break;
            path = besides(folder + "/", include.path);
            file = InputFile::openIfThere(path);
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
            reporter_.warning(include.position, "the file \"" + include.path +
                                                    "\" is included already and not read again");
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

    // Whatever is parsed, it is the file that was added last.
    [[nodiscard]] Position lastFile(std::size_t offset) const {
        return {.file = compilation_.files.size() - 1, .offset = offset};
    }

    const CompilerOptions& options_;
    Compilation& compilation_;
    Reporter& reporter_;
    FileParser parser_;
    std::set<InputFile::Identity> read_;
};

}  // namespace

void readFiles(const std::vector<std::string>& paths, const CompilerOptions& options,
               Compilation& compilation, Reporter& reporter) {
    FileReader reader(options, compilation, reporter);
    for (const std::string& path : paths)
        reader.readAll(path);
}

}  // namespace Mof
