#pragma once

#include <cstddef>
#include <memory>

#include "ObjectManager/Mof/FileDeclarations.h"
#include "ObjectManager/Mof/ParserContext.h"
#include "ObjectManager/Mof/SourceText.h"

namespace Mof {

/// Reads what texts declare, one after the other. Faults are reported, and what they spoil is left
/// out; the rest is read nevertheless.
///
/// Thread safety: belongs to one thread.
class FileParser {
  public:
    FileParser(ReportFault onError, ReportFault onWarning);
    FileParser(const FileParser&) = delete;
    FileParser& operator=(const FileParser&) = delete;
    ~FileParser();

    /// `file` is the number of the text, for positions.
    [[nodiscard]] FileDeclarations parse(const SourceText& source, std::size_t file);

  private:
    struct Implementation;

    std::unique_ptr<Implementation> implementation_;
};

}  // namespace Mof
