// Compiles bytes as a MOF file, makes class definitions of its declarations and reads them back.
// Files that it includes are not read.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Fuzz/ObjectManager/Mof/CompileTexts.h"
#include "Fuzz/ObjectManager/Repository/ReadBack.h"
#include "Fuzz/Support/Require.h"
#include "ObjectManager/Base/NameMap.h"
#include "ObjectManager/Mof/Compiler.h"
#include "ObjectManager/Mof/Declarations.h"
#include "ObjectManager/Mof/Diagnostics.h"
#include "ObjectManager/Mof/MofWriter.h"

namespace {

using Mof::Compilation;

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
    const Compilation twice = compileTexts({text, text});
    require(!twice.hasErrors(), "a text does not contradict itself");
    require(areSame(twice.qualifiers, compilation.qualifiers) &&
                areSame(twice.classes, compilation.classes),
            "a text declares the same when it is read again");
}

// What is written of declarations declares the same.
void checkWriting(const Compilation& compilation) {
    std::string text;
    for (const Mof::QualifierDeclaration& declaration : compilation.qualifiers)
        text += Mof::mofOf(declaration);
    for (const Mof::ClassDeclaration& declaration : compilation.classes)
        text += Mof::mofOf(declaration);
    const Compilation again = compileTexts({text});
    require(!again.hasErrors(), "what is written has no errors");
    require(areSame(again.qualifiers, compilation.qualifiers) &&
                areSame(again.classes, compilation.classes),
            "what is written declares the same");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    Compilation compilation = compileTexts({text});
    for (const Mof::Diagnostic& diagnostic : compilation.diagnostics)
        checkDiagnostic(diagnostic, compilation.files.front());
    if (compilation.hasErrors())
        return 0;
    checkPromises(compilation);
    checkSecondReading(text, compilation);
    checkWriting(compilation);
    std::vector<Repository::CimNamespace> namespaces;
    namespaces.emplace_back("root/cimv2", std::move(compilation.classes), Repository::Options());
    readBack(Repository::ClassRepository(std::move(namespaces)));
    return 0;
}
