// Compiles bytes as a MOF file, makes class definitions of its declarations and reads them back.
// Files that it includes are not read.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Fuzz/ObjectManager/Repository/ReadBack.h"
#include "Fuzz/Support/Require.h"
#include "ObjectManager/Base/NameMap.h"
#include "ObjectManager/Mof/Compiler.h"
#include "ObjectManager/Mof/DeclarationChecker.h"
#include "ObjectManager/Mof/Declarations.h"
#include "ObjectManager/Mof/Diagnostics.h"
#include "ObjectManager/Mof/FileParser.h"

namespace {

using Mof::Compilation;

template <typename Element>
void moveInto(std::vector<Element>& all, std::vector<Element>& more) {
    all.insert(all.end(), std::make_move_iterator(more.begin()),
               std::make_move_iterator(more.end()));
}

// Does with texts what Mof::compile does with files.
Compilation compile(const std::vector<std::string>& texts) {
    Compilation compilation;
    Mof::Reporter reporter(compilation.files, compilation.diagnostics);
    const auto inLastFile = [&](std::size_t offset) {
        return Mof::Position{.file = compilation.files.size() - 1, .offset = offset};
    };
    Mof::FileParser parser(
        [&](std::size_t offset, const std::string& message) {
            reporter.error(inLastFile(offset), message);
        },
        [&](std::size_t offset, const std::string& message) {
            reporter.warning(inLastFile(offset), message);
        });
    try {
        for (const std::string& text : texts) {
            compilation.files.emplace_back("fuzzed.mof", text);
            Mof::FileDeclarations declared =
                parser.parse(compilation.files.back(), compilation.files.size() - 1);
            moveInto(compilation.qualifiers, declared.qualifiers);
            moveInto(compilation.classes, declared.classes);
        }
        if (!compilation.hasErrors())
            Mof::checkDeclarations(compilation, reporter);
    } catch (const Mof::TooManyErrors&) {
        require(compilation.hasErrors(), "too many errors are some");
    }
    return compilation;
}

// The size of the line end at `at`: CR LF, CR or LF.
std::size_t lengthOfLineEnd(std::string_view text, std::size_t at) {
    return text.substr(at, 2) == "\r\n" ? 2 : 1;
}

// Line `number` of a text, counted from 1; requires that there is one.
std::string_view lineOf(std::string_view text, std::size_t number) {
    constexpr std::string_view kLineEnds = "\r\n";
    for (; number > 1; --number) {
        const std::size_t end = text.find_first_of(kLineEnds);
        require(end != std::string_view::npos, "a diagnostic is about a line of the text");
        text.remove_prefix(end + lengthOfLineEnd(text, end));
    }
    const std::size_t end = text.find_first_of(kLineEnds);
    // A place may be between the two bytes of a line end.
    return end == std::string_view::npos ? text
                                         : text.substr(0, end + lengthOfLineEnd(text, end) - 1);
}

void checkDiagnostic(const Mof::Diagnostic& diagnostic, const Mof::SourceText& source) {
    require(diagnostic.place.line > 0 && diagnostic.place.column > 0,
            "lines and columns are counted from 1");
    const std::string_view line = lineOf(source.text(), diagnostic.place.line);
    require(diagnostic.place.column <= line.size() + 1,
            "a diagnostic is about a place in its line");
    require(line.find(diagnostic.sourceLine) != std::string_view::npos,
            "a diagnostic shows its line");
    require(diagnostic.skipped < diagnostic.place.column &&
                diagnostic.sourceLine.size() <= Mof::SourceText::kMaxExcerpt,
            "a diagnostic shows its place in a long line");
    require(!diagnostic.message.empty(), "a diagnostic says something");
    const std::string shown = diagnostic.toString();
    require(shown.starts_with("fuzzed.mof:") &&
                shown.ends_with("^\n") == !diagnostic.sourceLine.empty(),
            "a diagnostic shows where it is");
}

// The promises of a compilation without errors.
void checkPromises(const Compilation& compilation) {
    Base::NameSet names;
    for (const Mof::ClassDeclaration& declaration : compilation.classes)
        require(names.insert(declaration.name.text).second, "no class is declared twice");
    for (const Mof::ClassDeclaration& declaration : compilation.classes) {
        const TSKString& superclass = declaration.superclass.text;
        require(superclass.isEmpty() || names.contains(superclass), "every superclass is there");
    }
}

template <typename Declaration>
bool areSame(const std::vector<Declaration>& left, const std::vector<Declaration>& right) {
    return std::equal(
        left.begin(), left.end(), right.begin(), right.end(),
        [](const Declaration& one, const Declaration& other) { return Mof::isSame(one, other); });
}

// A text declares the same when the same parser reads it again.
void checkSecondReading(const std::string& text, const Compilation& compilation) {
    const Compilation twice = compile({text, text});
    require(!twice.hasErrors(), "a text does not contradict itself");
    require(areSame(twice.qualifiers, compilation.qualifiers) &&
                areSame(twice.classes, compilation.classes),
            "a text declares the same when it is read again");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    Compilation compilation = compile({text});
    for (const Mof::Diagnostic& diagnostic : compilation.diagnostics)
        checkDiagnostic(diagnostic, compilation.files.front());
    if (compilation.hasErrors())
        return 0;
    checkPromises(compilation);
    checkSecondReading(text, compilation);
    std::vector<Repository::CimNamespace> namespaces;
    namespaces.emplace_back("root/cimv2", std::move(compilation.classes), Repository::Options());
    readBack(Repository::ClassRepository(std::move(namespaces)));
    return 0;
}
