// Sizes that are found without making documents, compared with those of the documents themselves.

#include <gtest/gtest.h>
#include <limits>
#include <ostream>
#include <sstream>
#include <string>

#include "ObjectManager/Loading/RepositoryLoader.h"
#include "ObjectManager/Repository/DocumentSize.h"
#include "Providers/WsdlWebProvider/WsdlUtil.h"
#include "Tests/Support/CimSchema.h"
#include "Tests/Support/MofModel.h"

namespace {

using Repository::documentSizeOf;

constexpr Repository::Options kNoLimit = {.maxDocumentSize =
                                              std::numeric_limits<std::uint64_t>::max()};

// The WSDL of a class, which holds its schema.
std::uint64_t realSizeOf(const TSKSmrPtr<Repository::CimClass>& cimClass) {
    const TSKSmrPtr<WsdlUtil::ClassList> classes(new WsdlUtil::ClassList);
    classes->append(TSKSmrPtr<ITeskClass>(cimClass));
    std::stringstream document;
    WsdlUtil::streamDefinitions(document, "http://wsman.example.com:5985/", "root/test", classes);
    return document.str().size();
}

// Never too small, and close to the truth.
void expectIsClose(const TSKSmrPtr<Repository::CimClass>& cimClass, const std::string& what) {
    const std::uint64_t real = realSizeOf(cimClass);
    const std::uint64_t found = documentSizeOf(*cimClass);
    EXPECT_GE(found, real) << what;
    EXPECT_LE(found, real + real / 4) << what;
}

std::string repeated(const std::string& text, int times) {
    std::string result;
    for (int count = 0; count < times; ++count)
        result += text;
    return result;
}

std::string valueMapOf(const std::string& entries, const std::string& type) {
    return "class TST_A { [ValueMap{" + entries + "}] " + type + " P; };";
}

std::string methodsOf(int count) {
    std::string mof = "class TST_A {\n";
    for (int number = 0; number < count; ++number)
        mof += "[Description(\"<" + std::to_string(number) + ">\")] uint16 M" +
               std::to_string(number) + "([In, Out, MaxLen(7)] string A);\n";
    return mof + "};";
}

std::string numbers(int first, int last) {
    std::string entries;
    for (int number = first; number <= last; ++number)
        entries += "\"" + std::to_string(number) + "\", ";
    return entries;
}

struct NamedModel {
    const char* name;
    std::string mof;
};

std::ostream& operator<<(std::ostream& stream, const NamedModel& model) {
    return stream << model.name;
}

class DocumentSize : public testing::TestWithParam<NamedModel> {};

TEST_P(DocumentSize, IsThatOfTheDocumentOrALittleMore) {
    const MofModel model(GetParam().mof, kNoLimit);
    for (const TSKSmrPtr<Repository::CimClass>& cimClass : model.nameSpace().classes())
        expectIsClose(cimClass, std::string(cimClass->name().substr(0, 100)));
}

INSTANTIATE_TEST_SUITE_P(
    OfModels, DocumentSize,
    testing::Values(
        NamedModel{"NoMembers", "class TST_A {};"},
        NamedModel{"LongName", "class TST_" + std::string(100'000, 'a') + " {};"},
        NamedModel{"LongNameAndMethods", "class TST_" + std::string(10'000, 'a') +
                                             " { uint8 A(); uint8 B(); uint8 C(); };"},
        NamedModel{"LongPropertyName", "class TST_A { uint8 " + std::string(100'000, 'a') + "; };"},
        NamedModel{"LongMethodName", "class TST_A { uint8 " + std::string(100'000, 'a') + "(); };"},
        NamedModel{"LongParameterName",
                   "class TST_A { uint8 M([In, Out] uint8 " + std::string(100'000, 'a') + "); };"},
        NamedModel{"LongDescriptions", "[Description(\"" + repeated("a<b&", 10'000) +
                                           "\")] class TST_A { [Description(\"" +
                                           repeated("a<b&", 10'000) + "\")] uint8 M(); };"},
        NamedModel{"ManyMethods", methodsOf(1'000)},
        NamedModel{"LongValues",
                   valueMapOf("\"" + repeated("a<b&\\\"\\n", 10'000) + "\"", "string")},
        NamedModel{"LongMaxLen",
                   "class TST_A { [MaxLen(4294967295)] string P; uint8 M([In, Out, MaxLen(9), "
                   "ValueMap{\"a\"}] string Q); };"},
        NamedModel{"Gaps", valueMapOf("\"100000\", \"..\"", "uint32")},
        NamedModel{"GapsOfHexadecimal", valueMapOf("\"0x1FFFF\", \"..\"", "uint32")},
        NamedModel{"GapsOfSigned", valueMapOf("\"+100000\", \"..\", \"-5\"", "uint32")},
        NamedModel{"GapsAfterARange",
                   valueMapOf("\"1\", \"100000..200000\", \"..\", \"..5\"", "uint64")},
        NamedModel{
            "GapsBetweenListed",
            valueMapOf(numbers(1, 500) + numbers(600, 900) + "\"..\", \"1\", \"..\"", "uint16")},
        NamedModel{"NoGapsWhereAllIsListed",
                   valueMapOf(numbers(0, 5'000) + "\"..\", \"65535\"", "uint16")},
        NamedModel{"SeveralLoneDotDots",
                   valueMapOf("\"9000\", \"..\", \"7000\", \"..\", \"9000\", \"..\"", "uint32")},
        NamedModel{"LoneDotDotsInARow", valueMapOf(repeated("\"..\", ", 999) + "\"..\"", "uint8")},
        NamedModel{"LargestNumber", valueMapOf("\"9223372036854775807\", \"..\"", "uint64")},
        NamedModel{"Ranges",
                   valueMapOf(repeated("\"1..2\", \"..3\", \"4..\", ", 500) + "\"5\"", "uint64")},
        NamedModel{"StringsAndRanges",
                   valueMapOf(repeated("\"Max\", \"a\", \"b..c\", ", 500) + "\"..\"", "string")},
        NamedModel{"GapsOfParameters",
                   "class TST_A { uint8 M([In, Out, ValueMap{\"50000\", \"..\"}] uint32 P); };"},
        NamedModel{"ReferencesAndArrays",
                   "class TST_A { TST_A REF P; uint16 Q[]; TST_A REF M([In] TST_A REF R); };"},
        NamedModel{"Inherited",
                   "class TST_A { [MaxLen(3)] string P; [ValueMap{\"9999\", \"..\"}] uint32 Q;\n"
                   "  uint8 M([In, MaxLen(5)] string R); };\n"
                   "class TST_B : TST_A {};\n"
                   "class TST_C : TST_B { [Override(\"P\")] string P; [Override(\"Q\")] uint32 Q;\n"
                   "  [Override(\"M\")] uint8 M([In] string R); };\n"
                   "class TST_D : TST_C { uint8 N(); };"}),
    [](const testing::TestParamInfo<NamedModel>& model) { return model.param.name; });

TEST(DocumentSizes, OfTheDmtfSchemaAreThoseOfTheDocumentsOrALittleMore) {
    if (cimSchemaFile().empty())
        GTEST_SKIP() << kNoCimSchema;
    const Loading::LoadedRepository loaded =
        Loading::loadRepository({{.name = "root/cimv2", .paths = {cimSchemaFile()}}}, {}, kNoLimit);
    for (const auto& cimClass : loaded.repository->namespaces().front().classes())
        expectIsClose(cimClass, std::string(cimClass->name()));
}

// Values that no machine could write down.
TEST(DocumentSizes, StopAtTheLargestNumber) {
    const MofModel model(valueMapOf("\"9223372036854775806\", \"..\"", "uint64"), kNoLimit);
    EXPECT_EQ(documentSizeOf(model.cimClass("TST_A")), std::numeric_limits<std::uint64_t>::max());
}

// As documents that cannot be made are compared with those that can: by the values that they would
// have, some fifty bytes each.
TEST(DocumentSizes, CountTheValuesThatALoneDotDotStandsFor) {
    constexpr std::uint64_t kBytesOfValue = 59;  // with ten digits
    const auto sizeOf = [](const std::string& entries) {
        return documentSizeOf(MofModel(valueMapOf(entries, "uint64"), kNoLimit).cimClass("TST_A"));
    };
    EXPECT_GE(sizeOf(R"("4294967295", "..")"), kBytesOfValue * 4'294'967'295U);
    EXPECT_LE(sizeOf(R"("4294967295", "..")"), kBytesOfValue * 4'294'967'295U + 15'000);
    EXPECT_GE(sizeOf(R"("0xFFFFFFFF", "..")"), kBytesOfValue * 4'294'967'295U);
    EXPECT_GE(sizeOf(R"("+4294967295", "..")"), kBytesOfValue * 4'294'967'295U);
    EXPECT_GE(sizeOf(R"("4294967295", "..", "4294967295", "..")"),
              2 * kBytesOfValue * 4'294'967'294U);
    for (const char* const none : {R"("..", "4294967295")", R"("-4294967295", "..")",
                                   R"("18446744073709551615", "..")", R"("0", "..")"})
        EXPECT_LE(sizeOf(none), 15'000U) << none;
}

TEST(DocumentSizes, ThatADotDotRepeatsAreFoundInAMoment) {
    std::string entries;
    for (int number = 0; number < 50'000; ++number)
        entries += "\"" + std::to_string(2 * number) + "\", \"..\", ";
    const MofModel model(valueMapOf(entries + "\"1\"", "uint64"), kNoLimit);
    EXPECT_GE(documentSizeOf(model.cimClass("TST_A")), 50'000'000'000U);
}

TEST(DocumentSizes, NameWhatIsLarge) {
    const auto largestOf = [](const std::string& mof) {
        const MofModel model(mof, kNoLimit);
        return largestPartOf(*model.nameSpace().classes().back()).description;
    };
    EXPECT_EQ(largestOf("class TST_A { string P; [ValueMap{\"9\", \"..\"}] uint32 Q; };"),
              "the property \"Q\"");
    EXPECT_EQ(largestOf("class TST_A { string P; uint8 M(); };"), "the method \"M\"");
    EXPECT_EQ(largestOf("class TST_" + std::string(999, 'a') + " { string P; };"),
              "the name of the class");
    EXPECT_EQ(largestOf("[Description(\"" + std::string(999, 'a') + "\")] class TST_A {};"),
              "the description of the class");
    EXPECT_EQ(largestOf("class TST_A { string " + std::string(99'999, 'a') + "; };"),
              "the property \"" + std::string(100, 'a') + "\"...");
}

}  // namespace
