// Models that were made to do harm, each of which once took more memory or time than there is, or
// is of a kind that does so in other compilers. The program lists their classes, checks them and
// exports their documents in a process that may take a few times of what an honest model of the
// same size takes.

#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <ostream>
#include <string>
#include <sys/resource.h>
#include <vector>

#include "Tests/Support/RunningProgram.h"
#include "Tests/Support/TemporaryDirectory.h"

namespace {

constexpr rlim_t kMaxMemory = rlim_t{3} << 30U;  // of addresses
constexpr rlim_t kMaxSeconds = 60;               // of the processor

struct HostileModel {
    std::string name;
    // What is in "main.mof" and in files that it includes.
    std::function<std::map<std::string, std::string>()> files;
    const char* checkEnd;      // 1 for errors in the MOF, and where classes are left out
    const char* documentsEnd;  // 1 for errors in the MOF
};

std::ostream& operator<<(std::ostream& stream, const HostileModel& model) {
    return stream << model.name;
}

constexpr const char* kQualifiers =
    "Qualifier Description : string, Scope(any);\n"
    "Qualifier Override : string, Scope(property, method);\n"
    "Qualifier MaxLen : uint32, Scope(property, parameter);\n"
    "Qualifier ValueMap : string[], Scope(property, parameter), Flavor(ToSubclass);\n";

std::string times(int count, const std::function<std::string(const std::string&)>& make) {
    std::string text;
    for (int number = 0; number < count; ++number)
        text += make(std::to_string(number));
    return text;
}

std::string repeated(const std::string& text, int count) {
    return times(count, [&](const std::string&) { return text; });
}

std::string withValueMap(const std::string& entries) {
    return "class TST_A { [ValueMap {" + entries + "}] uint64 Q; };\n";
}

// One file, after the declarations of qualifiers.
HostileModel model(const char* name, std::function<std::string()> mof, const char* checkEnd,
                   const char* documentsEnd) {
    return {.name = name,
            .files =
                [mof = std::move(mof)] {
                    return std::map<std::string, std::string>{{"main.mof", kQualifiers + mof()}};
                },
            .checkEnd = checkEnd,
            .documentsEnd = documentsEnd};
}

// The classes are honest enough to be served.
HostileModel served(const char* name, std::function<std::string()> mof) {
    return model(name, std::move(mof), "status 0", "status 0");
}

// Classes are left out.
HostileModel leftOut(const char* name, std::function<std::string()> mof) {
    return model(name, std::move(mof), "status 1", "status 0");
}

HostileModel wrong(const char* name, std::function<std::string()> mof) {
    return model(name, std::move(mof), "status 1", "status 1");
}

std::map<std::string, std::string> includesInARow() {
    std::map<std::string, std::string> files = {{"main.mof", "#pragma include (\"0.mof\")\n"}};
    for (int number = 0; number < 1'000; ++number)
        files[std::to_string(number) + ".mof"] =
            "#pragma include (\"" + std::to_string(number + 1) + ".mof\")\n";
    return files;
}

std::vector<HostileModel> models() {
    return {
        leftOut("ADotDotAfterALargeNumber", [] { return withValueMap(R"("4294967295", "..")"); }),
        leftOut("ADotDotAfterAHexadecimalNumber",
                [] { return withValueMap(R"("0xFFFFFFFF", "..")"); }),
        leftOut("ADotDotAfterANumberWithASign",
                [] { return withValueMap(R"("+4294967295", "..")"); }),
        leftOut("ADotDotAfterARange", [] { return withValueMap(R"("4294967295..", "..")"); }),
        leftOut("ADotDotAfterTheLargestNumberButOne",
                [] { return withValueMap(R"("9223372036854775806", "..")"); }),
        leftOut("ADotDotOfAParameter",
                [] {
                    return "Qualifier In : boolean = true, Scope(parameter);\n"
                           "class TST_A { uint8 M([In, ValueMap {\"4294967295\", \"..\"}] "
                           "uint32 P); };\n";
                }),
        leftOut("ADotDotThatManyInherit",
                [] {
                    return withValueMap(R"("4294967295", "..")") +
                           times(5'000, [](const std::string& number) {
                               return "class TST_" + number + " : TST_A {};\n";
                           });
                }),
        leftOut("SeveralDotDots",
                [] { return withValueMap(repeated(R"("900000", "..", )", 99) + R"("1")"); }),
        served("ADotDotAfterTheLargestNumber",
               [] { return withValueMap(R"("9223372036854775807", "..")"); }),
        served("DotDotsAfterEachOfManyNumbers",
               [] {
                   return withValueMap(times(20'000,
                                             [](const std::string& number) {
                                                 return "\"" + number + "\", \"..\", ";
                                             }) +
                                       "\"7\"");
               }),
        served("DotDotsThatEachHaveOneValue",
               [] {
                   return withValueMap(
                       times(5'000,
                             [](const std::string& number) {
                                 return "\"" + std::to_string(std::stoi(number) + 1) + "\", ";
                             }) +
                       repeated("\"5000\", \"..\", ", 5'000) + "\"1\"");
               }),
        leftOut("AVeryLongNameOfAClass",
                [] { return "class TST_" + std::string(10'000'000, 'a') + " {};\n"; }),
        leftOut("AVeryLongNameOfAMethod",
                [] { return "class TST_A { uint8 " + std::string(10'000'000, 'a') + "(); };\n"; }),
        leftOut("AVeryLongDescription",
                [] {
                    return "[Description (\"" + std::string(17'000'000, '<') +
                           "\")] class TST_A {};\n";
                }),
        leftOut("VeryManyMethods",
                [] {
                    return "class TST_A {\n" +
                           times(100'000,
                                 [](const std::string& number) {
                                     return "uint8 M" + number + "();\n";
                                 }) +
                           "};\n";
                }),
        served("VeryManyProperties",
               [] {
                   return "class TST_A {\n" +
                          times(50'000,
                                [](const std::string& number) {
                                    return "uint8 P" + number + ";\n";
                                }) +
                          "};\n";
               }),
        served("VeryManyClasses",
               [] {
                   return times(500, [](const std::string& number) {
                       return "class TST_" + number + " {};\n";
                   });
               }),
        served("AWideClassWithManySubclasses",
               [] {
                   return "class TST_A {\n" +
                          times(300,
                                [](const std::string& number) {
                                    return "uint8 P" + number + ";\n";
                                }) +
                          "};\n" + times(300, [](const std::string& number) {
                              return "class TST_" + number + " : TST_A {};\n";
                          });
               }),
        wrong("SuperclassesThatAreNeverOver",
              [] {
                  return "class TST_0 {};\n" + times(5'000, [](const std::string& number) {
                             return "class TST_" + std::to_string(std::stoi(number) + 1) +
                                    " : TST_" + number + " {};\n";
                         });
              }),
        wrong("SuperclassesInACircle",
              [] { return "class TST_A : TST_B {};\nclass TST_B : TST_A {};\n"; }),
        wrong("VeryManyErrors", [] { return repeated("class { uint8 ;\n", 500'000); }),
        wrong("VeryManyOpenBrackets", [] { return std::string(2'000'000, '['); }),
        wrong("VeryManyOpenBraces", [] { return "class A" + std::string(2'000'000, '{'); }),
        served("VeryManyOpenComments", [] { return repeated("#pragma a (/*\n", 100'000); }),
        wrong("AnOpenString", [] { return "class \"" + std::string(5'000'000, 'a'); }),
        wrong("ZeroBytes", [] { return std::string(2'000'000, '\0'); }),
        {.name = "IncludesInACircle",
         .files =
             [] {
                 return std::map<std::string, std::string>{
                     {"main.mof", "#pragma include (\"a.mof\")\n"},
                     {"a.mof", "#pragma include (\"main.mof\")\n"}};
             },
         .checkEnd = "status 1",
         .documentsEnd = "status 1"},
        {.name = "VeryManyIncludesInARow",
         .files = includesInARow,
         .checkEnd = "status 1",
         .documentsEnd = "status 1"},
    };
}

class HostileModels : public testing::TestWithParam<HostileModel> {
  protected:
    void SetUp() override {
        if (TESK_IS_SANITIZED)
            GTEST_SKIP() << "sanitizers need more addresses than a limit of these allows";
        for (const auto& [name, text] : GetParam().files())
            directory_.write(name, text);
    }

    [[nodiscard]] ProgramRun run(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), PROGRAM);
        arguments.insert(arguments.end(),
                         {"--namespace", "root/test=" + (directory_ / "main.mof").string()});
        return RunningProgram(
                   arguments,
                   [] {
                       const rlimit memory = {.rlim_cur = kMaxMemory, .rlim_max = kMaxMemory};
                       const rlimit seconds = {.rlim_cur = kMaxSeconds, .rlim_max = kMaxSeconds};
                       setrlimit(RLIMIT_AS, &memory);
                       setrlimit(RLIMIT_CPU, &seconds);
                   })
            .waitForEnd();
    }

    static void expectEnd(const ProgramRun& run, const char* end) {
        constexpr std::size_t kShown = 2'000;
        EXPECT_EQ(run.end, end) << run.errors.substr(0, kShown);
        EXPECT_EQ(run.errors.find("not enough memory"), std::string::npos)
            << run.errors.substr(0, kShown);
        EXPECT_LT(run.errors.size(), 100'000U) << run.errors.substr(0, kShown);
    }

    TemporaryDirectory directory_;
};

TEST_P(HostileModels, TakeNeitherAllMemoryNorAllTime) {
    expectEnd(run({"classes"}), GetParam().documentsEnd);
    expectEnd(run({"check", "--jobs", "2"}), GetParam().checkEnd);
    expectEnd(run({"export", "--jobs", "2", "--output", directory_ / "out"}),
              GetParam().documentsEnd);
}

INSTANTIATE_TEST_SUITE_P(All, HostileModels, testing::ValuesIn(models()),
                         [](const testing::TestParamInfo<HostileModel>& hostile) {
                             return hostile.param.name;
                         });

}  // namespace
