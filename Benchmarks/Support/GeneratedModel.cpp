#include "Benchmarks/Support/GeneratedModel.h"

#include <fstream>
#include <string>

namespace {

constexpr std::size_t kClassesInBranch = 50;
constexpr std::size_t kSubclasses = 2;  // of each class: five levels in a branch

constexpr const char* kQualifiers = R"(
Qualifier Abstract : boolean = false, Scope (class, association, indication), Flavor (Restricted);
Qualifier Description : string = null, Scope (any), Flavor (EnableOverride, ToSubclass, Translatable);
Qualifier In : boolean = true, Scope (parameter), Flavor (DisableOverride, ToSubclass);
Qualifier Key : boolean = false, Scope (property, reference), Flavor (DisableOverride, ToSubclass);
Qualifier MaxLen : uint32 = null, Scope (property, method, parameter);
Qualifier ValueMap : string[], Scope (property, method, parameter);
Qualifier Values : string[], Scope (property, method, parameter), Flavor (EnableOverride, ToSubclass, Translatable);
Qualifier Version : string = null, Scope (class, association, indication), Flavor (EnableOverride, Restricted, Translatable);
)";

constexpr const char* kDescription = R"(Description (
          "What the element is for, as a person would say it who has a few lines for it, "
          "in several pieces of text that a compiler puts together. It says which values "
          "there are, what they mean for those who read them, and what happens to those "
          "who write them. Some texts have \"quotes\" in them, and a line feed.\n" ))";

std::string nameOf(std::size_t number) {
    return "TST_" + std::to_string(number);
}

// Each class of a branch but the first one has a superclass in it, and each two subclasses.
std::string superclassOf(std::size_t number) {
    const std::size_t place = number % kClassesInBranch;
    if (place == 0)
        return "";
    return " : " + nameOf(number - place + (place - 1) / kSubclasses);
}

std::string classText(std::size_t number) {
    const std::string name = nameOf(number);
    const std::string id = std::to_string(number);
    const std::string description = kDescription;
    // Only the first class of a branch has a key.
    const std::string key = number % kClassesInBranch == 0 ? "Key, " : "";
    return "[Version ( \"2.41.0\" ),\n" + description + "]\nclass " + name + superclassOf(number) +
           " {\n"
           "    [" +
           key + description + ", MaxLen ( 256 )]\n  string Name" + id + ";\n" + "    [" +
           description + "]\n  uint64 Count" + id + ";\n" + "    [" + description +
           "]\n  datetime Since" + id + ";\n" + "    [" + description +
           ",\n"
           "     ValueMap { \"0\", \"1\", \"2\", \"3\", \"4\", \"5\", \"..\", \"32768..65535\" },\n"
           "     Values { \"Unknown\", \"Other\", \"Good\", \"Bad\", \"Starting\", \"Stopping\",\n"
           "       \"DMTF Reserved\", \"Vendor Reserved\" }]\n  uint16 State" +
           id + ";\n" + "    [" + description + "]\n  string Notes" + id + "[];\n" + "    [" +
           description + "]\n  uint32 Stop" + id + "(\n    [In, " + description +
           "] boolean Force);\n};\n";
}

void writeFile(const std::filesystem::path& file, const std::string& text) {
    std::ofstream stream;
    stream.exceptions(std::ios::failbit | std::ios::badbit);
    stream.open(file, std::ios::binary);
    stream << text;
    stream.close();
}

}  // namespace

std::filesystem::path writeGeneratedModel(const std::filesystem::path& directory,
                                          std::size_t count) {
    std::string main = kQualifiers;
    for (std::size_t number = 0; number < count; ++number) {
        const std::string file = nameOf(number) + ".mof";
        writeFile(directory / file, classText(number));
        main += "#pragma include (\"" + file + "\")\n";
    }
    std::filesystem::path mainFile = directory / "model.mof";
    writeFile(mainFile, main);
    return mainFile;
}
