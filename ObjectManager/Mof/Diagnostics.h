#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "ObjectManager/Mof/Declarations.h"
#include "ObjectManager/Mof/SourceText.h"

namespace Mof {

enum class Severity { kWarning, kError };

/// An error or a warning about a file.
struct Diagnostic {
    Severity severity = Severity::kError;
    std::string file;
    LineAndColumn place;  ///< line 0 for a file that could not be read
    std::string message;
    std::string sourceLine;  ///< the line at the place, empty if there is none; the text around the
                             ///< place if the line is long
    std::size_t skipped = 0;  ///< the number of characters of the line before sourceLine
    bool continues = false;   ///< whether the line goes on after sourceLine

    /// The text for a person, with the line and a caret below the place, and a newline at the end.
    /// Control characters are shown as question marks, and "..." stands for what is left out.
    ///
    ///     schema/CIM_Foo.mof:12:8: error: expected a property or method name, found ";"
    ///         uint8 ;
    ///               ^
    [[nodiscard]] std::string toString() const;
};

/// How much a compilation reports.
struct DiagnosticLimits {
    /// Compiling stops at this error: further ones are likely to be consequences of the first ones.
    std::size_t maxErrors = 20;

    /// Further warnings are not shown. More than anybody reads, and each costs a pass over its
    /// file.
    std::size_t maxWarnings = 100;

    /// The rest of a longer message, in bytes, is left out. Only names that were made to do harm
    /// lead to one.
    std::size_t maxMessageSize = 1000;
};

/// Receives a fault in a text, and its offset in bytes.
using ReportFault = std::function<void(std::size_t offset, const std::string& message)>;

/// Thrown when the last error that the limits allow is reported. Never leaves the compiler.
struct TooManyErrors {};

/// Names the places of declarations in messages.
///
/// Thread safety: as the derived class says.
class Places {
  public:
    Places() = default;
    Places(const Places&) = delete;
    Places& operator=(const Places&) = delete;
    virtual ~Places() = default;

    /// A diagnostic about a place, without severity and message.
    [[nodiscard]] virtual Diagnostic diagnosticAt(const Position& position) const = 0;

    /// To name a place in a message about another one.
    [[nodiscard]] virtual std::string nameOf(const Position& position) const = 0;
};

/// Turns faults into diagnostics, up to the limits.
///
/// Thread safety: belongs to one thread.
class Reporter {
  public:
    /// Appends to `diagnostics`, which must outlive the reporter.
    Reporter(std::unique_ptr<const Places> places, std::vector<Diagnostic>& diagnostics,
             const DiagnosticLimits& limits = {})
        : places_(std::move(places)), diagnostics_(diagnostics), limits_(limits) {}

    /// `files` are those that positions refer to; places are "file:line:column". Both must outlive
    /// the reporter, and files may be added to `files` in the meantime.
    Reporter(const std::vector<SourceText>& files, std::vector<Diagnostic>& diagnostics,
             const DiagnosticLimits& limits = {});

    /// Errors: TooManyErrors with the last error that is reported.
    void error(const Position& position, const std::string& message);
    /// An error about a file as a whole, such as one that cannot be read.
    /// Errors: TooManyErrors with the last error that is reported.
    void errorOfFile(const std::string& file, const std::string& message);
    void warning(const Position& position, std::string message);

    /// To name a place in a message about another one.
    [[nodiscard]] std::string nameOf(const Position& position) const {
        return places_->nameOf(position);
    }

  private:
    void add(Severity severity, const Position& position, const std::string& message);
    void countError();
    [[nodiscard]] std::string shortened(const std::string& message) const;

    std::unique_ptr<const Places> places_;
    std::vector<Diagnostic>& diagnostics_;
    DiagnosticLimits limits_;
    std::size_t errors_ = 0;
    std::size_t warnings_ = 0;
};

}  // namespace Mof
