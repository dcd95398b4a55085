#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "ObjectManager/Base/Ascii.h"
#include "ObjectManager/Mof/Declarations.h"
#include "ObjectManager/Mof/Diagnostics.h"
#include "ObjectManager/Mof/Parser.h"
#include "Platform/Util/TSKString.h"

namespace Mof {

/// Whether a name may begin with a byte: a letter, an underscore, or a part of a character that is
/// not ASCII.
[[nodiscard]] constexpr bool beginsName(char byte) noexcept {
    return Base::isLetter(byte) || byte == '_' || static_cast<unsigned char>(byte) >= 0x80;
}

/// Splits texts into tokens, one text after the other. Spaces, comments and pragmas that are not
/// complete are left out.
///
/// Thread safety: belongs to one thread.
class Scanner {
  public:
    /// Both functions must outlive this object.
    Scanner(const ReportFault& onError, const ReportFault& onWarning);
    Scanner(const Scanner&) = delete;
    Scanner& operator=(const Scanner&) = delete;
    ~Scanner();

    /// Starts with the next text. It holds no zero byte, has less than 2 GiB, and must live until
    /// it is read.
    void begin(std::string_view text);

    /// The next token; not to be called again after that of the end of the text.
    [[nodiscard]] Parser::symbol_type next() { return scan(flex_); }

  private:
    // The function that flex generates of the rules.
    Parser::symbol_type scan(void* yyscanner);

    void scanFrom(std::size_t offset);
    void extendToken(std::size_t length);
    Parser::symbol_type stringToken();
    std::size_t appendStrings(TSKString& value, std::size_t begin) const;
    [[nodiscard]] std::string_view tokenText() const noexcept;
    [[nodiscard]] TSKString word() const { return TSKString(tokenText()); }
    void reportIncompletePragma(const Pragma& pragma) const;

    const ReportFault& onError_;
    const ReportFault& onWarning_;
    std::string_view text_;
    Range token_;  // the place of the current token

    void* flex_ = nullptr;
    std::string buffer_;           // the text and two zero bytes; flex changes it while it reads
    void* bufferState_ = nullptr;  // of flex, what of the buffer is still to be read
};

}  // namespace Mof
