#pragma once

#include <cstddef>
#include <iterator>
#include <string>
#include <vector>

#include "Fuzz/Support/Require.h"
#include "ObjectManager/Mof/Compiler.h"
#include "ObjectManager/Mof/DeclarationChecker.h"
#include "ObjectManager/Mof/Diagnostics.h"
#include "ObjectManager/Mof/FileParser.h"

/// Does with texts what Mof::compile does with files.
inline Mof::Compilation compileTexts(const std::vector<std::string>& texts) {
    const auto moveInto = [](auto& all, auto& more) {
        all.insert(all.end(), std::make_move_iterator(more.begin()),
                   std::make_move_iterator(more.end()));
    };
    Mof::Compilation compilation;
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
