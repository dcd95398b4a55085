#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "ObjectManager/Mof/Declarations.h"
#include "ObjectManager/Mof/Diagnostics.h"
#include "ObjectManager/Mof/FileParser.h"
#include "ObjectManager/Mof/Parser.h"
#include "ObjectManager/Mof/Pragma.h"
#include "ObjectManager/Mof/Scanner.h"

// What the grammar in Parser.yy works with; FileParser.cpp holds the code.

namespace Mof {

/// Passes on the faults of a text, except those in the parts that are skipped after a syntax error.
///
/// Thread safety: belongs to one thread.
class FaultFilter {
  public:
    FaultFilter(ReportFault onError, ReportFault onWarning);
    FaultFilter(const FaultFilter&) = delete;
    FaultFilter& operator=(const FaultFilter&) = delete;
    ~FaultFilter() = default;

    /// Starts with the next text.
    void begin() noexcept;

    /// The functions to report to. Valid as long as this object.
    [[nodiscard]] const ReportFault& onError() const noexcept { return onError_; }
    [[nodiscard]] const ReportFault& onWarning() const noexcept { return onWarning_; }

    void setSkipping(bool isSkipping) noexcept { isSkipping_ = isSkipping; }

    /// Whether the last error is one at `offset`.
    [[nodiscard]] bool isLastErrorAt(std::size_t offset) const noexcept {
        return lastError_ == offset;
    }

  private:
    ReportFault onError_;
    ReportFault onWarning_;
    bool isSkipping_ = false;
    std::optional<std::size_t> lastError_;
};

/// Gives the parser the tokens of a text. After a syntax error it skips those up to the next
/// declaration or member, where the parser goes on.
///
/// Thread safety: belongs to one thread.
class TokenStream {
  public:
    /// Reports to `faults`, which must outlive this object.
    explicit TokenStream(FaultFilter& faults);

    /// Starts with the next text, which must live until it is parsed.
    void begin(std::string_view text);

    [[nodiscard]] Parser::symbol_type next();

    /// Reports a token that the grammar does not expect, and the expected ones if they are few.
    /// Reports nothing if the scanner has reported an error at the token.
    void reportSyntaxError(const Parser::context& place);

    /// Whether the unexpected token is the end of the text.
    [[nodiscard]] bool failedAtEnd() const noexcept;

    /// Makes the next token the first one of a declaration, or of a member of a class or instance.
    /// That may be the unexpected token itself.
    void resumeAtDeclaration() noexcept { resumption_ = Resumption::kDeclaration; }
    void resumeAtMember() noexcept { resumption_ = Resumption::kMember; }

  private:
    enum class Resumption : std::uint8_t { kNone, kDeclaration, kMember };

    // The last token that the grammar did not expect.
    struct SyntaxError {
        Parser::symbol_type token;
        bool isSemicolonExpected = false;
    };

    Parser::symbol_type scan();
    Parser::symbol_type resume();
    Parser::symbol_type skipToDeclaration();
    Parser::symbol_type skipToMember();
    [[nodiscard]] bool failedAtDeclaration() const;
    [[nodiscard]] bool failedAtMember() const;
    [[nodiscard]] bool beginsDeclaration(const Parser::symbol_type& token) const;
    [[nodiscard]] bool isFirstOnLine(const Range& token) const;
    [[nodiscard]] bool isFollowedByName(const Range& token) const;

    FaultFilter& faults_;
    Scanner scanner_;
    std::string_view text_;
    std::size_t openBraces_ = 0;  // after the last token
    std::optional<SyntaxError> error_;
    Resumption resumption_ = Resumption::kNone;
    bool skippedToEnd_ = false;
};

/// Collects what a text declares.
///
/// Thread safety: belongs to one thread.
class DeclarationBuilder {
  public:
    /// Reports to `faults`, which must outlive this object.
    explicit DeclarationBuilder(const FaultFilter& faults) : faults_(faults) {}

    /// Starts with the next text; `file` is its number for positions.
    void begin(std::size_t file);
    [[nodiscard]] FileDeclarations takeDeclarations();

    void add(ClassDeclaration declaration);
    void add(QualifierDeclaration declaration);
    void add(const Pragma& pragma, const Range& range);

    [[nodiscard]] Position position(const Range& range) const noexcept {
        return {.file = file_, .offset = range.begin};
    }
    [[nodiscard]] Literal textLiteral(const Range& range, Literal::Kind kind, TSKString text) const;
    [[nodiscard]] Value scalar(const Range& range, Literal literal) const;
    [[nodiscard]] Value array(const Range& range, std::vector<Literal> literals) const;
    /// An array type of a fixed size; an error for a size that is not positive.
    [[nodiscard]] Type arrayOfSize(const Range& range, const Literal& size) const;
    /// All flavors of both; an error where they contradict each other.
    [[nodiscard]] Flavors combined(const Range& range, Flavors flavors, const Flavors& more) const;

    void reportError(const Range& range, const std::string& message) const {
        faults_.onError()(range.begin, message);
    }

  private:
    const FaultFilter& faults_;
    std::size_t file_ = 0;
    FileDeclarations declarations_;
};

}  // namespace Mof
