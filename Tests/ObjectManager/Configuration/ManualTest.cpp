// The manual page of the configuration file beside what is read.

#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>

#include "Tests/ObjectManager/Configuration/SettingsText.h"

namespace {

using Configuration::parseSettings;
using Configuration::Settings;
using Configuration::SettingsReading;

std::string page() {
    std::ifstream stream(DOCS_DIRECTORY "/man/tesk.toml.5");
    return {std::istreambuf_iterator<char>(stream), {}};
}

// "\(dqname\(dq" as it is shown.
std::string shown(const std::string& source) {
    return std::regex_replace(source, std::regex(R"(\\\(dq)"), "\"");
}

// The lines "KEY = DEFAULT" of the page, by table; "" for those above all tables.
std::map<std::string, std::map<std::string, std::string>> documentedDefaults() {
    const std::regex heading(R"(\.Ss \[([a-zA-Z.]+)\]\\&)");
    const std::regex item("\\.It Va ([a-z_]+) No = (.+)");
    std::map<std::string, std::map<std::string, std::string>> found;
    std::string table;
    std::istringstream lines(page());
    for (std::string line; std::getline(lines, line);) {
        std::smatch match;
        if (std::regex_match(line, match, heading))
            found[table = match[1]];
        else if (std::regex_match(line, match, item))
            found[table][match[1]] = shown(match[2]);
    }
    return found;
}

// What is known in a table, as the message about an unknown key lists it.
std::set<std::string> knownKeys(const std::string& table) {
    const std::string heading = table.empty() ? "" : "[" + table + "]\n";
    const std::string message = errorsOf(parseSettings("tesk.toml", heading + "x-unknown-x = 1\n"));
    const std::size_t begin = message.find("; known are ");
    EXPECT_NE(begin, std::string::npos) << message;
    const std::regex quoted("\"([a-z_]+)\"");
    std::set<std::string> keys;
    for (std::sregex_iterator
             match(message.begin() + static_cast<std::ptrdiff_t>(begin), message.end(), quoted),
         end;
         match != end; ++match)
        keys.insert((*match)[1]);
    return keys;
}

TEST(SettingsManual, HasEveryTableAndEveryKeyAndNoOthers) {
    const auto documented = documentedDefaults();
    std::set<std::string> above;
    for (const auto& [table, defaults] : documented) {
        std::set<std::string> keys;
        for (const auto& [key, value] : defaults)
            keys.insert(key);
        if (table.empty()) {
            above.insert(keys.begin(), keys.end());
            continue;
        }
        above.insert(table.substr(0, table.find('.')));
        // Names of namespaces are the user's choice.
        if (table != "namespaces") {
            EXPECT_EQ(keys, knownKeys(table)) << table;
        }
    }
    EXPECT_EQ(above, knownKeys(""));
}

TEST(SettingsManual, HasTheDefaults) {
    for (const auto& [table, defaults] : documentedDefaults()) {
        for (const auto& [key, value] : defaults) {
            // A server must have an address.
            const std::string required =
                table == "servers.NAME" && key != "url" ? "url = \"https://HOST\"\n" : "";
            const std::string text = (table.empty() ? "" : "[" + table + "]\n") + required;
            const SettingsReading reading =
                parseSettings("tesk.toml", text + key + " = " + value + "\n");
            EXPECT_EQ(errorsOf(reading), "");
            if (key == "url")
                continue;
            EXPECT_EQ(textOf(reading.settings), textOf(parseSettings("tesk.toml", text).settings))
                << key;
        }
    }
}

TEST(SettingsManual, ShowsAFileThatIsRead) {
    const std::string text = page();
    const std::size_t section = text.find("\n.Sh EXAMPLES\n");
    const std::string begin = ".Bd -literal -offset indent\n";
    const std::size_t start = text.find(begin, section) + begin.size();
    Settings expected;
    expected.includePath = {"schema/common"};
    expected.namespaces = {
        {.name = "root/cimv2", .paths = {"schema/cim.mof"}},
        {.name = "interop", .paths = {"schema/interop", "schema/local/profiles.mof"}}};
    expected.server.listen = {{.address = "0.0.0.0", .port = 5985},
                              {.address = "::", .port = 5985}};
    expected.security.passwordFile = "users";
    expected.log.file = "/var/log/tesk.log";
    const SettingsReading reading =
        parseSettings("tesk.toml", text.substr(start, text.find(".Ed\n", start) - start));
    EXPECT_EQ(errorsOf(reading), "");
    EXPECT_EQ(textOf(reading.settings), textOf(expected));
}

}  // namespace
