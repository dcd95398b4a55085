// Docs/integrating.md, held against the stub host, which the plug-in is compiled with, and against
// the examples that it quotes.

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using Words = std::set<std::string>;

std::string contentOf(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    if (!stream)
        throw std::runtime_error("cannot open " + file.string());
    return {std::istreambuf_iterator<char>(stream), {}};
}

std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

Words matches(const std::string& text, const char* expression) {
    const std::regex regex(expression);
    Words words;
    for (std::sregex_iterator match(text.begin(), text.end(), regex), end; match != end; ++match)
        words.insert((*match)[1]);
    return words;
}

// The operations that a header declares: what stands in front of a parenthesis.
Words operationsOf(const std::string& header) {
    return matches(header, R"((operator(?:\(\)|\s*bool|[-+*=<>!&]+)|\w+)\s*\()");
}

// What the guide's table lists, by header.
std::map<std::string, Words> listedOperations() {
    std::map<std::string, Words> listed;
    for (const std::string& line : linesOf(contentOf(GUIDE_FILE))) {
        std::smatch row;
        if (std::regex_match(line, row, std::regex(R"(\| `(\w+/\w+\.h)` \| (.*) \|)")))
            listed[row[1]] = matches(row[2], "`([^`]+)`");
    }
    return listed;
}

TEST(IntegratingGuide, ListsWhatTheStubHostDeclaresAndNothingElse) {
    const std::filesystem::path directory = STUB_HOST_DIRECTORY "/Platform";
    std::map<std::string, Words> listed = listedOperations();
    for (const auto& entry : std::filesystem::recursive_directory_iterator(directory)) {
        if (!entry.is_regular_file())
            continue;
        const std::string header = entry.path().lexically_relative(directory).string();
        const std::string content = contentOf(entry.path());
        Words declared = operationsOf(content);
        // Only its destructor is declared.
        if (header == "ProviderFramework/Provider.h")
            declared.erase("Provider");
        if (header == "Util/TSKLog.h")
            declared.insert("CIMOMLOG");
        EXPECT_EQ(listed[header], declared) << header;
        listed.erase(header);
    }
    for (const auto& [header, operations] : listed)
        ADD_FAILURE() << header << " is listed, and the stub host does not have it";
}

// Whether a text holds the lines, indented by four spaces any number of times.
bool holdsIndented(const std::string& text, const std::vector<std::string>& lines) {
    for (std::size_t spaces = 0; spaces <= 12; spaces += 4) {
        std::string indented;
        for (const std::string& line : lines)
            indented += (line.empty() ? "" : std::string(spaces, ' ') + line) + '\n';
        if (text.find('\n' + indented) != std::string::npos)
            return true;
    }
    return false;
}

// A quotation is an indented block after a line that ends with the name of its file and a colon.
TEST(IntegratingGuide, QuotesTheExamplesAsTheyAre) {
    int quotations = 0;
    const std::vector<std::string> lines = linesOf(contentOf(GUIDE_FILE));
    for (std::size_t index = 0; index < lines.size(); ++index) {
        std::smatch source;
        if (!std::regex_search(lines[index], source, std::regex(R"(`(Examples/\S+)`:$)")))
            continue;
        std::vector<std::string> quotation;
        for (index += 2; lines.at(index).empty() || lines[index].starts_with("    "); ++index)
            quotation.push_back(lines[index].empty() ? "" : lines[index].substr(4));
        quotation.pop_back();
        const std::string file =
            contentOf(std::filesystem::path(PROJECT_DIRECTORY) / source[1].str());
        EXPECT_TRUE(holdsIndented(file, quotation))
            << source[1] << " does not hold what is quoted from it, from \"" << quotation.at(0)
            << "\" on";
        ++quotations;
    }
    EXPECT_EQ(quotations, 4);
}

}  // namespace
