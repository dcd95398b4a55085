#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "ObjectManager/Mof/Declarations.h"
#include "ObjectManager/Mof/Diagnostics.h"
#include "ObjectManager/Mof/SourceText.h"

namespace Mof {

/// A `#pragma include`.
struct Include {
    std::string path;  ///< as it is written, with `/` between directories
    Position position;
};

/// What one file declares, in its order.
struct FileDeclarations {
    std::vector<Include> includes;
    std::vector<QualifierDeclaration> qualifiers;
    std::vector<ClassDeclaration> classes;
};

/// Parses texts, one after the other. After a fault it goes on with the next member of the class or
/// with the next declaration, so that one fault is one error and the rest is read nevertheless.
/// What a fault spoils is left out of the result.
///
/// Thread safety: belongs to one thread.
class FileParser {
  public:
    /// What `onError` and `onWarning` throw ends the parsing.
    FileParser(ReportFault onError, ReportFault onWarning);
    FileParser(const FileParser&) = delete;
    FileParser& operator=(const FileParser&) = delete;
    ~FileParser();

    /// `file` is the number that the positions in the result have.
    [[nodiscard]] FileDeclarations parse(const SourceText& source, std::size_t file);

  private:
    struct Implementation;

    std::unique_ptr<Implementation> implementation_;
};

}  // namespace Mof
