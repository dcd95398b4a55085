#include "ObjectManager/Mof/Compiler.h"

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <optional>
#include <set>
#include <system_error>
#include <utility>

#include "ObjectManager/Mof/FileParser.h"

namespace Mof {

namespace {

namespace fs = std::filesystem;

template <typename Element>
void moveInto(std::vector<Element>& all, std::vector<Element>& more) {
    all.insert(all.end(), std::make_move_iterator(more.begin()),
               std::make_move_iterator(more.end()));
}

// Reads a file and what it includes. Since declarations may stand in any order, an included file is
// read after the one that includes it.
class FileReader {
  public:
    explicit FileReader(const CompilerOptions& options) : options_(options) {}

    // Reads a file or a folder.
    Compilation readAll(const fs::path& path) {
        try {
            for (const fs::path& file : filesAt(path))
                readUnlessIncluded(file);
        } catch (const TooManyErrors&) {
        } catch (const std::system_error& error) {
            addUnreadable(path, error);
        }
        return std::move(compilation_);
    }

  private:
    struct TooManyErrors {};

    static std::vector<fs::path> filesAt(const fs::path& path) {
        if (!fs::is_directory(path))
            return {path};
        std::vector<fs::path> files;
        for (const fs::directory_entry& entry : fs::recursive_directory_iterator(path)) {
            if (entry.path().extension() == ".mof" && !entry.is_directory())
                files.push_back(entry.path());
        }
        std::sort(files.begin(), files.end());
        return files;
    }

    void readUnlessIncluded(const fs::path& file) {
        if (read_.contains(fs::weakly_canonical(file)))
            return;
        try {
            read(file, nullptr);
        } catch (const std::system_error& error) {
            addUnreadable(file, error);
        }
    }

    void addUnreadable(const fs::path& path, const std::system_error& error) {
        compilation_.diagnostics.push_back({
            .severity = Severity::kError,
            .file = path.string(),
            .place = {.line = 0, .column = 0},
            .message = "cannot be read: " + error.code().message(),
            .sourceLine = "",
        });
    }

    // A file that is being read, and the one that includes it.
    struct Reading {
        fs::path path;  // canonical
        const Reading* includedBy;
    };

    void read(const fs::path& path, const Reading* includedBy) {
        const std::size_t file = compilation_.files.size();
        compilation_.files.push_back(SourceText::read(path.string()));
        const Reading reading{.path = fs::weakly_canonical(path), .includedBy = includedBy};
        read_.insert(reading.path);
        FileDeclarations declarations = parseFile(
            compilation_.files.back(), file,
            [&](std::size_t offset, const std::string& message) {
                addError({.file = file, .offset = offset}, message);
            },
            [&](std::size_t offset, const std::string& message) {
                compilation_.addDiagnostic(Severity::kWarning, {.file = file, .offset = offset},
                                           message);
            });
        moveInto(compilation_.qualifiers, declarations.qualifiers);
        moveInto(compilation_.classes, declarations.classes);
        for (const Include& include : declarations.includes)
            readIncluded(include, reading);
    }

    void readIncluded(const Include& include, const Reading& includedBy) {
        const std::optional<fs::path> path = find(include, includedBy);
        if (!path) {
            addError(include.position, "the included file \"" + include.path + "\" is not there");
            return;
        }
        const fs::path canonical = fs::weakly_canonical(*path);
        for (const Reading* file = &includedBy; file != nullptr; file = file->includedBy) {
            if (file->path == canonical) {
                addError(include.position, "the file \"" + include.path + "\" includes itself" +
                                               (file == &includedBy ? "" : " by way of others"));
                return;
            }
        }
        if (read_.contains(canonical)) {
            compilation_.addDiagnostic(
                Severity::kWarning, include.position,
                "the file \"" + include.path + "\" is included already and not read again");
            return;
        }
        try {
            read(*path, &includedBy);
        } catch (const std::system_error& error) {
            addError(include.position, "the included file \"" + include.path +
                                           "\" cannot be read: " + error.code().message());
        }
    }

    [[nodiscard]] std::optional<fs::path> find(const Include& include,
                                               const Reading& includedBy) const {
        std::vector<fs::path> folders = {includedBy.path.parent_path()};
        folders.insert(folders.end(), options_.includePath.begin(), options_.includePath.end());
        for (const fs::path& folder : folders) {
            const fs::path candidate = folder / include.path;
            if (std::error_code ignored; fs::exists(candidate, ignored))
                return candidate;
        }
        return std::nullopt;
    }

    void addError(const Position& position, const std::string& message) {
        compilation_.addDiagnostic(Severity::kError, position, message);
        if (++errors_ == options_.mostErrors) {
            compilation_.diagnostics.back().message += " (too many errors, the rest is not read)";
            throw TooManyErrors();
        }
    }

    const CompilerOptions& options_;
    Compilation compilation_;
    std::set<fs::path> read_;  // canonical paths
    std::size_t errors_ = 0;
};

}  // namespace

bool Compilation::hasErrors() const noexcept {
    return std::any_of(diagnostics.begin(), diagnostics.end(), [](const Diagnostic& diagnostic) {
        return diagnostic.severity == Severity::kError;
    });
}

void Compilation::addDiagnostic(Severity severity, const Position& position, std::string message) {
    const SourceText& file = files.at(position.file);
    diagnostics.push_back({
        .severity = severity,
        .file = file.name(),
        .place = file.locate(position.offset),
        .message = std::move(message),
        .sourceLine = std::string(file.lineAt(position.offset)),
    });
}

Compilation compile(const std::string& path, const CompilerOptions& options) {
    return FileReader(options).readAll(path);
}

}  // namespace Mof
