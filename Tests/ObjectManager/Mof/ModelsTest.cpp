// Whole schemas: the sample model, and the DMTF's schema where it is there.

#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>

#include "ObjectManager/Mof/Compiler.h"
#include "Tests/ObjectManager/Mof/DeclarationText.h"
#include "Tests/Support/CimSchema.h"

namespace {

using Mof::Compilation;

bool declares(const Compilation& compilation, const char* className) {
    return std::any_of(compilation.classes.begin(), compilation.classes.end(),
                       [&](const Mof::ClassDeclaration& declaration) {
                           return declaration.name.text.equals(className);
                       });
}

// Its two parts share files of the directory above them.
Compilation compileSample(const std::string& file) {
    Mof::CompilerOptions options;
    options.includePath = {MODELS_DIRECTORY};
    return Mof::compile({MODELS_DIRECTORY + file}, options);
}

TEST(Models, TheSampleModelOfCimv2HasNoFaults) {
    const Compilation compilation = compileSample("/cimv2/cimv2.mof");
    EXPECT_EQ(diagnosticsOf(compilation), "");
    EXPECT_EQ(compilation.classes.size(), 38U);
    EXPECT_TRUE(declares(compilation, "CIM_ComputerSystem"));
}

TEST(Models, TheSampleModelOfInteropHasNoFaults) {
    const Compilation compilation = compileSample("/interop/interop.mof");
    EXPECT_EQ(diagnosticsOf(compilation), "");
    EXPECT_EQ(compilation.classes.size(), 21U);
    EXPECT_TRUE(declares(compilation, "CIM_RegisteredProfile"));
}

// The schema has a main file, two files of qualifiers, and one file a class.
TEST(Models, TheDmtfSchemaHasNoFaults) {
    const std::string schema = cimSchemaFile();
    if (schema.empty())
        GTEST_SKIP() << kNoCimSchema;
    const Compilation compilation = Mof::compile({schema});
    EXPECT_EQ(diagnosticsOf(compilation), "");
    EXPECT_EQ(compilation.files.size(), 1441U);
    EXPECT_EQ(compilation.classes.size(), compilation.files.size() - 3);
    EXPECT_TRUE(declares(compilation, "CIM_StorageVolume"));
}

}  // namespace
