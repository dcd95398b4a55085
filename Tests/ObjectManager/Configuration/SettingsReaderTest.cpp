#include <chrono>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <sstream>
#include <string>
#include <sys/stat.h>

#include "ObjectManager/Configuration/SettingsReader.h"
#include "Tests/ObjectManager/Configuration/SettingsText.h"
#include "Tests/Support/TemporaryDirectory.h"

namespace {

using Configuration::parseSettings;
using Configuration::readSettings;
using Configuration::Settings;
using Configuration::SettingsReading;

const std::string kServerKeys =
    "\"listen\", \"tls_listen\", \"tls_certificate\", \"tls_key\", \"tls_client_ca\", "
    "\"admin_listen\", \"published_address\", \"authentication\", \"trusted_proxies\", "
    "\"workers\", "
    "\"max_header_size\", \"max_request_line\", \"header_timeout\", \"request_timeout\", "
    "\"response_timeout\", \"shutdown_timeout\", \"max_connections\", "
    "\"max_connections_per_client\" and \"max_response_memory\"";

// The settings of a file "tesk.toml" in the current directory, which must have no errors.
Settings settingsOf(const std::string& text) {
    const SettingsReading reading = parseSettings("tesk.toml", text);
    EXPECT_EQ(errorsOf(reading), "") << text;
    return reading.settings;
}

// What is wrong with a line in the given table, without the name and the line number.
std::string errorIn(const std::string& table, const std::string& line) {
    const std::string heading = table.empty() ? "\n" : "[" + table + "]\n";
    const SettingsReading reading = parseSettings("tesk.toml", heading + line);
    // What is wrong changes nothing.
    EXPECT_EQ(textOf(reading.settings), textOf(Settings())) << line;
    const std::string errors = errorsOf(reading);
    const std::string before = "tesk.toml:2:";
    return errors.starts_with(before) ? errors.substr(before.size()) : errors;
}

TEST(SettingsReader, AnEmptyFileMeansTheDefaults) {
    EXPECT_EQ(textOf(parseSettings("tesk.toml", "")),
              "include_path:\n"
              "property_order: name\n"
              "escape_descriptions: true\n"
              "max_document_size: 67108864\n"
              "max_model_size: 268435456\n"
              "refresh: 0 ms\n"
              "cache:\n"
              "listen: 127.0.0.1:5985\n"
              "tls_listen:\n"
              "tls_certificate:\n"
              "tls_key:\n"
              "tls_client_ca:\n"
              "admin_listen:\n"
              "published_address:\n"
              "authentication: basic\n"
              "trusted_proxies:\n"
              "workers: 0\n"
              "max_header_size: 16384\n"
              "max_request_line: 8192\n"
              "header_timeout: 10000 ms\n"
              "request_timeout: 60000 ms\n"
              "response_timeout: 30000 ms\n"
              "shutdown_timeout: 10000 ms\n"
              "max_connections: 4096\n"
              "max_connections_per_client: 1024\n"
              "max_response_memory: 268435456\n"
              "password_file:\n"
              "credential_lifetime: 300000 ms\n"
              "level: 3\n"
              "file:\n"
              "access:\n");
    EXPECT_EQ(settingsOf(""), Settings());
    EXPECT_EQ(settingsOf("\xEF\xBB\xBF# nothing\n[server]\n[namespaces]\n"), Settings());
}

TEST(SettingsReader, EveryKeyIsRead) {
    EXPECT_EQ(textOf(parseSettings("tesk.toml", R"(
include_path = ["common", "/usr/share/mof"]
[namespaces]
"/root/cimv2/" = "cim.mof"
Interop = ["interop", "extra.mof"]
[repository]
property_order = "declaration"
escape_descriptions = false
max_document_size = 16384
max_model_size = 1099511627776
refresh = 300
cache = "cache"
[server]
listen = ["127.0.0.1:0", "[::1]:5986"]
tls_listen = ["0.0.0.0:5986", "[::]:5986"]
tls_certificate = "tls/certificate.pem"
tls_key = "/etc/key.pem"
tls_client_ca = "authorities.pem"
admin_listen = "[::1]:9187"
published_address = "https://cim.example.org:5986"
authentication = "none"
trusted_proxies = ["10.0.0.0/8", "::1"]
workers = 3
max_header_size = 1000
max_request_line = 100
header_timeout = 1
request_timeout = 0
response_timeout = 2.5
shutdown_timeout = 0.25
max_connections = 7
max_connections_per_client = 0
max_response_memory = 2000000
[security]
password_file = "users"
credential_lifetime = 60
[log]
level = 4
file = "tesk.log"
access = "access.log"
)")),
              "namespace root/cimv2: cim.mof\n"
              "namespace Interop: interop extra.mof\n"
              "include_path: common /usr/share/mof\n"
              "property_order: declaration\n"
              "escape_descriptions: false\n"
              "max_document_size: 16384\n"
              "max_model_size: 1099511627776\n"
              "refresh: 300000 ms\n"
              "cache: cache\n"
              "listen: 127.0.0.1:0 ::1:5986\n"
              "tls_listen: 0.0.0.0:5986 :::5986\n"
              "tls_certificate: tls/certificate.pem\n"
              "tls_key: /etc/key.pem\n"
              "tls_client_ca: authorities.pem\n"
              "admin_listen: ::1:9187\n"
              "published_address: https://cim.example.org:5986\n"
              "authentication: none\n"
              "trusted_proxies: 10.0.0.0/8 ::1/128\n"
              "workers: 3\n"
              "max_header_size: 1000\n"
              "max_request_line: 100\n"
              "header_timeout: 1000 ms\n"
              "request_timeout: 0 ms\n"
              "response_timeout: 2500 ms\n"
              "shutdown_timeout: 250 ms\n"
              "max_connections: 7\n"
              "max_connections_per_client: 0\n"
              "max_response_memory: 2000000\n"
              "password_file: users\n"
              "credential_lifetime: 60000 ms\n"
              "level: 4\n"
              "file: tesk.log\n"
              "access: access.log\n");
}

TEST(SettingsReader, OneTextStandsForAListOfOne) {
    EXPECT_EQ(settingsOf("include_path = 'a'").includePath, std::vector<std::string>{"a"});
    EXPECT_EQ(settingsOf("include_path = []").includePath, std::vector<std::string>{});
    EXPECT_EQ(settingsOf("[server]\nlisten = '[::]:80'").server.listen,
              (std::vector<Http::ListenAddress>{{.address = "::", .port = 80}}));
}

TEST(SettingsReader, PathsAreRelativeToTheDirectoryOfTheFile) {
    const SettingsReading reading = parseSettings("/etc/tesk/tesk.toml", R"(
include_path = ["common", "../mof", "/mof"]
[namespaces]
a = ["a.mof", "/b.mof"]
[security]
password_file = "users"
[log]
file = "logs/tesk.log"
access = "logs/access.log"
)");
    EXPECT_EQ(errorsOf(reading), "");
    const Settings& settings = reading.settings;
    EXPECT_EQ(settings.includePath,
              (std::vector<std::string>{"/etc/tesk/common", "/etc/tesk/../mof", "/mof"}));
    EXPECT_EQ(settings.namespaces.at(0).paths,
              (std::vector<std::string>{"/etc/tesk/a.mof", "/b.mof"}));
    EXPECT_EQ(settings.security.passwordFile, "/etc/tesk/users");
    EXPECT_EQ(settings.log.file, "/etc/tesk/logs/tesk.log");
    EXPECT_EQ(settings.log.access, "/etc/tesk/logs/access.log");
}

TEST(SettingsReader, AnEmptyNameOfAFileMeansNone) {
    const Settings settings =
        parseSettings("/etc/tesk.toml",
                      "security.password_file = ''\nlog.file = ''\nlog.access = ''")
            .settings;
    EXPECT_EQ(settings, Settings());
}

TEST(SettingsReader, ADashAsAccessLogMeansStandardOutput) {
    EXPECT_EQ(parseSettings("/etc/tesk.toml", "log.access = '-'").settings.log.access, "-");
    EXPECT_EQ(errorIn("log", "access = 1"),
              "10: error: \"access\" in [log] must be a path or \"-\", not 1\n");
}

TEST(SettingsReader, NumbersHaveTheirLimits) {
    const auto rangeError = [](const std::string& key, const std::string& column,
                               const std::string& range, const std::string& value) {
        return column + ": error: \"" + key + "\" in [server] must be a whole number from " +
               range + ", not " + value + "\n";
    };
    EXPECT_EQ(settingsOf("[server]\nworkers = 1024").server.workers, 1024U);
    EXPECT_EQ(errorIn("server", "workers = 1025"),
              rangeError("workers", "11", "0 to 1024", "1025"));
    EXPECT_EQ(errorIn("server", "workers = -1"), rangeError("workers", "11", "0 to 1024", "-1"));
    EXPECT_EQ(settingsOf("[server]\nmax_header_size = 256").server.maxHeaderSize, 256U);
    EXPECT_EQ(settingsOf("[server]\nmax_header_size = 1048576").server.maxHeaderSize, 1048576U);
    EXPECT_EQ(errorIn("server", "max_header_size = 255"),
              rangeError("max_header_size", "19", "256 to 1048576", "255"));
    EXPECT_EQ(errorIn("server", "max_header_size = 1048577"),
              rangeError("max_header_size", "19", "256 to 1048576", "1048577"));
    EXPECT_EQ(settingsOf("[server]\nmax_request_line = 64").server.maxRequestLine, 64U);
    EXPECT_EQ(settingsOf("[server]\nmax_request_line = 1048576").server.maxRequestLine, 1048576U);
    EXPECT_EQ(errorIn("server", "max_request_line = 63"),
              rangeError("max_request_line", "20", "64 to 1048576", "63"));
    EXPECT_EQ(errorIn("server", "max_request_line = 1048577"),
              rangeError("max_request_line", "20", "64 to 1048576", "1048577"));
    EXPECT_EQ(settingsOf("[server]\nmax_connections = 1").server.maxConnections, 1U);
    EXPECT_EQ(settingsOf("[server]\nmax_connections = 1000000").server.maxConnections, 1000000U);
    EXPECT_EQ(errorIn("server", "max_connections = 0"),
              rangeError("max_connections", "19", "1 to 1000000", "0"));
    EXPECT_EQ(errorIn("server", "max_connections = 1000001"),
              rangeError("max_connections", "19", "1 to 1000000", "1000001"));
    EXPECT_EQ(errorIn("server", "max_connections = 9223372036854775807"),
              rangeError("max_connections", "19", "1 to 1000000", "9223372036854775807"));
    EXPECT_EQ(settingsOf("[server]\nmax_response_memory = 1048576").server.maxResponseMemory,
              1048576U);
    EXPECT_EQ(settingsOf("[server]\nmax_response_memory = 1099511627776").server.maxResponseMemory,
              1099511627776U);
    EXPECT_EQ(errorIn("server", "max_response_memory = 1048575"),
              rangeError("max_response_memory", "23", "1048576 to 1099511627776", "1048575"));
    EXPECT_EQ(errorIn("server", "max_response_memory = 1099511627777"),
              rangeError("max_response_memory", "23", "1048576 to 1099511627776", "1099511627777"));
    EXPECT_EQ(settingsOf("[log]\nlevel = 1").log.level, 1);
    EXPECT_EQ(errorIn("log", "level = 0"),
              "9: error: \"level\" in [log] must be a whole number from 1 to 4, not 0\n");
    EXPECT_EQ(errorIn("log", "level = 5"),
              "9: error: \"level\" in [log] must be a whole number from 1 to 4, not 5\n");
}

TEST(SettingsReader, SecondsHaveTheirLimits) {
    using std::chrono::milliseconds;
    for (const std::string key : {"header_timeout", "response_timeout", "shutdown_timeout"}) {
        const std::string place = std::to_string(key.size() + 4);
        for (const std::string value :
             {"0", "0.0", "0.0009", "-1", "86401", "86400.001", "nan", "inf", "-inf", "1e300"}) {
            const std::string error = errorIn("server", key + " = " + value);
            EXPECT_TRUE(error.starts_with(place + ": error: \"" + key +
                                          "\" in [server] must be a number of seconds from 0.001 "
                                          "to 86400, not "))
                << error;
        }
        settingsOf("[server]\n" + key + " = 0.001");
        settingsOf("[server]\n" + key + " = 86400");
    }
    EXPECT_EQ(settingsOf("[server]\nheader_timeout = 0.001").server.headerTimeout, milliseconds(1));
    EXPECT_EQ(settingsOf("[server]\nheader_timeout = 86400.0").server.headerTimeout,
              milliseconds(86'400'000));
    EXPECT_EQ(errorIn("server", "header_timeout = -1.5"),
              "18: error: \"header_timeout\" in [server] must be a number of seconds from 0.001 to "
              "86400, not -1.5\n");
    EXPECT_EQ(settingsOf("[security]\ncredential_lifetime = 0").security.credentialLifetime,
              milliseconds(0));
    EXPECT_EQ(errorIn("security", "credential_lifetime = -1"),
              "23: error: \"credential_lifetime\" in [security] must be a number of seconds from 0 "
              "to 86400, not -1\n");
}

TEST(SettingsReader, ValuesOfAWrongTypeAreRefused) {
    EXPECT_EQ(
        errorIn("server", "workers = '4'"),
        "11: error: \"workers\" in [server] must be a whole number from 0 to 1024, not \"4\"\n");
    EXPECT_EQ(errorIn("server", "workers = 4.0"),
              "11: error: \"workers\" in [server] must be a whole number from 0 to 1024, not 4\n");
    EXPECT_EQ(
        errorIn("server", "workers = true"),
        "11: error: \"workers\" in [server] must be a whole number from 0 to 1024, not true\n");
    EXPECT_EQ(errorIn("server", "header_timeout = '10 s'"),
              "18: error: \"header_timeout\" in [server] must be a number of seconds from 0.001 to "
              "86400, not \"10 s\"\n");
    EXPECT_EQ(errorIn("server", "listen = 5985"),
              "10: error: \"listen\" in [server] must be an address with a port or a list of such, "
              "not 5985\n");
    EXPECT_EQ(errorIn("server", "listen = [['127.0.0.1:1']]"),
              "11: error: \"listen\" in [server] must be an address with a port, not a list\n");
    EXPECT_EQ(errorIn("repository", "escape_descriptions = 'false'"),
              "23: error: \"escape_descriptions\" in [repository] must be true or false, not "
              "\"false\"\n");
    EXPECT_EQ(
        errorIn("repository", "escape_descriptions = 1979-05-27"),
        "23: error: \"escape_descriptions\" in [repository] must be true or false, not a date "
        "or time\n");
    EXPECT_EQ(errorIn("repository", "property_order = 'Name'"),
              "18: error: \"property_order\" in [repository] must be \"name\" or \"declaration\", "
              "not \"Name\"\n");
    EXPECT_EQ(errorIn("repository", "property_order = {}"),
              "18: error: \"property_order\" in [repository] must be \"name\" or \"declaration\", "
              "not a table\n");
    EXPECT_EQ(errorIn("security", "password_file = ['users']"),
              "17: error: \"password_file\" in [security] must be a path, not a list\n");
    EXPECT_EQ(errorIn("log", "file = false"),
              "8: error: \"file\" in [log] must be a path, not false\n");
    EXPECT_EQ(errorIn("", "include_path = 1"),
              "16: error: \"include_path\" must be a directory or a list of such, not 1\n");
    EXPECT_EQ(errorIn("", "include_path = [1]"),
              "17: error: \"include_path\" must be a directory, not 1\n");
    EXPECT_EQ(errorIn("", "server = 1"), "10: error: \"server\" must be a table, not 1\n");
    EXPECT_EQ(errorIn("", "[[log]]\nlevel = 1"), "1: error: \"log\" must be a table, not a list\n");
}

TEST(SettingsReader, StringsThatWouldSpoilAMessageAreNotShown) {
    EXPECT_EQ(errorIn("repository", "property_order = \"a\\nb\""),
              "18: error: \"property_order\" in [repository] must be \"name\" or \"declaration\", "
              "not such a string\n");
    EXPECT_EQ(errorIn("log", "level = '" + std::string(60, 'x') + "'"),
              "9: error: \"level\" in [log] must be a whole number from 1 to 4, not \"" +
                  std::string(60, 'x') + "\"\n");
    EXPECT_EQ(
        errorIn("log", "level = '" + std::string(61, 'x') + "'"),
        "9: error: \"level\" in [log] must be a whole number from 1 to 4, not such a string\n");
}

TEST(SettingsReader, WrongAddressesAreRefused) {
    EXPECT_EQ(
        errorIn("server", "listen = 'localhost:80'"),
        "10: error: \"listen\" in [server]: \"localhost:80\" is not an address with a port, such "
        "as \"127.0.0.1:5985\", \"0.0.0.0:5985\" or \"[::1]:5985\"\n");
    EXPECT_EQ(errorIn("server", "listen = []"),
              "10: error: \"listen\" in [server] must be an address with a port or a list of such, "
              "not a list\n");
}

TEST(SettingsReader, WrongNetworksOfProxiesAreRefused) {
    EXPECT_EQ(settingsOf("[server]\ntrusted_proxies = '::1'").server.trustedProxies,
              std::vector{Http::Network::parse("::1")});
    EXPECT_EQ(settingsOf("[server]\ntrusted_proxies = []"), Settings());
    EXPECT_EQ(errorIn("server", "trusted_proxies = ['10.0.0.0/40']"),
              "20: error: \"trusted_proxies\" in [server]: \"10.0.0.0/40\" is not a network or an "
              "address, such as \"10.0.0.0/8\", \"fd00::/8\" or \"::1\"\n");
    EXPECT_EQ(errorIn("server", "trusted_proxies = 10"),
              "19: error: \"trusted_proxies\" in [server] must be a network or a list of such, not "
              "10\n");
}

TEST(SettingsReader, WrongPathsAreRefused) {
    const std::string expected = ": a path must have at least one character, and no zero byte\n";
    EXPECT_EQ(errorIn("", "include_path = ['']"), "17: error: \"include_path\"" + expected);
    EXPECT_EQ(errorIn("log", "file = \"a\\u0000b\""), "8: error: \"file\" in [log]" + expected);
    EXPECT_EQ(errorIn("security", "password_file = \"\\u0000\""),
              "17: error: \"password_file\" in [security]" + expected);
}

TEST(SettingsReader, WrongNamespacesAreRefused) {
    const auto errorsIn = [](const std::string& lines) {
        return errorsOf(parseSettings("tesk.toml", "[namespaces]\n" + lines));
    };
    EXPECT_EQ(errorsIn("'root//cimv2' = 'a.mof'"),
              "tesk.toml:2:1: error: \"root//cimv2\" is not the name of a namespace, such as "
              "\"root/cimv2\": letters, digits, \"_\", \"-\" and \".\", in parts with a \"/\" "
              "between them\n");
    EXPECT_EQ(errorsIn("a = 'a.mof'\nA = 'b.mof'\n'/a/' = 'c.mof'"),
              "tesk.toml:3:1: error: the namespace \"A\" is listed twice\n"
              "tesk.toml:4:1: error: the namespace \"a\" is listed twice\n");
    EXPECT_EQ(
        errorsIn("a = []"),
        "tesk.toml:2:5: error: \"a\" in [namespaces] must be a MOF file, a directory or a list of "
        "such, not a list\n");
    EXPECT_EQ(
        errorsIn("a = ['a.mof', 5]"),
        "tesk.toml:2:15: error: \"a\" in [namespaces] must be a MOF file or a directory, not 5\n");
    EXPECT_EQ(errorsIn("a = ['a.mof', '']"),
              "tesk.toml:2:15: error: \"a\" in [namespaces]: a path must have at least one "
              "character, and no zero byte\n");
    EXPECT_EQ(errorsIn("root.cimv2 = 'a.mof'"),
              "tesk.toml:2:1: error: \"root\" in [namespaces] must be a MOF file, a directory, a "
              "list of such, or a table with a \"server\"\n");
    EXPECT_EQ(errorsIn("a = 'a.mof'\ninclude_path = ['b']"),
              "tesk.toml:3:1: error: \"include_path\" must stand above [namespaces] and all other "
              "tables\n");
}

TEST(SettingsReader, UnknownKeysAreRefusedWithTheNearestOne) {
    EXPECT_EQ(errorIn("server", "lisen = 1"),
              "1: error: unknown key \"lisen\" in [server]; did you mean \"listen\"?\n");
    EXPECT_EQ(errorIn("server", "max-connection = 1"),
              "1: error: unknown key \"max-connection\" in [server]; did you mean "
              "\"max_connections\"?\n");
    EXPECT_EQ(errorIn("repository", "order = 1"),
              "1: error: unknown key \"order\" in [repository]; known are \"property_order\", "
              "\"escape_descriptions\", \"max_document_size\", \"max_model_size\", \"refresh\" and "
              "\"cache\"\n");
    EXPECT_EQ(errorIn("", "includepath = 1"),
              "1: error: unknown key \"includepath\"; did you mean \"include_path\"?\n");
    EXPECT_EQ(errorIn("", "listen = 1"),
              "1: error: unknown key \"listen\"; known are \"include_path\", \"servers\", "
              "\"namespaces\", "
              "\"repository\", \"server\", \"security\" and \"log\"\n");
    EXPECT_EQ(errorIn("", "[sever]"),
              "2: error: unknown table [sever]; did you mean \"server\"?\n");
    EXPECT_EQ(
        errorIn("", "[http]"),
        "2: error: unknown table [http]; known are \"include_path\", \"servers\", \"namespaces\", "
        "\"repository\", \"server\", \"security\" and \"log\"\n");
    EXPECT_EQ(errorIn("server", "tls.key = 1"),
              "1: error: unknown key \"tls\" in [server]; known are " + kServerKeys + "\n");
}

TEST(SettingsReader, NamespacesMayBeThoseOfServers) {
    const Settings settings = settingsOf(R"(
[namespaces]
"root/a" = "a.mof"
"/root/b/" = { server = "one" }
"root/c" = { server = "one", namespace = "/root/x/", classes = "CIM_*" }
"*" = { server = "the other", classes = ["A_?", "B_*"] }
[servers."the other"]
url = "http://h"
[servers.one]
url = "https://cim.example.com:1234/cim"
user = "alice"
password_file = "password"
cacert = "/etc/ca.pem"
certificate = "me.pem"
key = "key.pem"
verify = false
timeout = 2.5
local_only = true
interop_namespaces = "root/interop/"
)");
    Settings expected;
    expected.namespaces = {
        {.name = "root/a", .paths = {"a.mof"}},
        {.name = "root/b", .server = "one", .remoteName = "root/b"},
        {.name = "root/c", .server = "one", .remoteName = "root/x", .patterns = {"CIM_*"}},
        {.name = "", .server = "the other", .patterns = {"A_?", "B_*"}}};
    CimXml::ServerOptions one = {.url = "https://cim.example.com:1234/cim"};
    one.user = "alice";
    one.authoritiesFile = "/etc/ca.pem";
    one.certificateFile = "me.pem";
    one.keyFile = "key.pem";
    one.verifiesCertificate = false;
    one.localOnly = true;
    one.interopNamespaces = {"root/interop"};
    one.limits.setTotalTimeout(std::chrono::milliseconds(2500));
    expected.servers = {{.name = "the other", .options = {.url = "http://h"}},
                        {.name = "one", .options = one, .passwordFile = "password"}};
    EXPECT_EQ(textOf(settings), textOf(expected));
    EXPECT_EQ(settings, expected);
}

TEST(SettingsReader, WhatIsWrongWithAServerIsReported) {
    EXPECT_EQ(errorsOf(parseSettings("tesk.toml", R"([namespaces]
a = { server = "two" }
b = { server = "one", prot = 1 }
c = { namespace = "x" }
d = { server = "one", namespace = "x y" }
"*" = "a.mof"
[servers]
one = { url = "http://h" }
three = { user = "alice" }
four = { url = "https://u:secret@h" }
five = { url = "http://h", user = "a:b", password_file = "p" }
six = { url = "http://h", timeout = 0 }
seven = 7
)")),
              R"(tesk.toml:2:16: error: "server" in [namespaces.a]: there is no table [servers.two]
tesk.toml:3:23: error: unknown key "prot" in [namespaces.b]; known are "server", "namespace" and "classes"
tesk.toml:4:1: error: "c" in [namespaces] must be a MOF file, a directory, a list of such, or a table with a "server"
tesk.toml:5:35: error: "namespace" in [namespaces.d]: "x y" is not the name of a namespace of a CIM server
tesk.toml:6:1: error: "*" is not the name of a namespace, such as "root/cimv2": letters, digits, "_", "-" and ".", in parts with a "/" between them
tesk.toml:9:1: error: [servers.three] must have a "url"
tesk.toml:9:1: error: [servers.three] must have both a "user" and a "password_file", or neither
tesk.toml:10:16: error: "url" in [servers.four]: the address must not hold a user or a password
tesk.toml:11:1: error: [servers.five] must have both a "user" and a "password_file", or neither
tesk.toml:11:35: error: "user" in [servers.five]: a user has at least one character, and no colon
tesk.toml:12:37: error: "timeout" in [servers.six] must be a number of seconds from 0.001 to 86400, not 0
tesk.toml:13:9: error: "seven" in [servers] must be a table, not 7
)");
}

TEST(SettingsReader, AllErrorsAreReportedInTheOrderOfTheLines) {
    const SettingsReading reading = parseSettings("tesk.toml", R"([log]
level = 9
colour = true
[server]
workers = 'all'
max_connections = 10
prot = 1
[namespaces]
a = 1
)");
    EXPECT_EQ(errorsOf(reading),
              "tesk.toml:2:9: error: \"level\" in [log] must be a whole number from 1 to 4, not 9\n"
              "tesk.toml:3:1: error: unknown key \"colour\" in [log]; known are \"level\", "
              "\"file\" and \"access\"\n"
              "tesk.toml:5:11: error: \"workers\" in [server] must be a whole number from 0 to "
              "1024, not \"all\"\n"
              "tesk.toml:7:1: error: unknown key \"prot\" in [server]; known are " +
                  kServerKeys +
                  "\n"
                  "tesk.toml:9:5: error: \"a\" in [namespaces] must be a MOF file, a directory or "
                  "a list of "
                  "such, not 1\n");
    EXPECT_EQ(reading.settings.server.maxConnections, 10U);
}

TEST(SettingsReader, AnErrorInTheLanguageIsReportedWithItsPlace) {
    EXPECT_EQ(errorsOf(parseSettings("tesk.toml", "[server]\nworkers = \n")),
              "tesk.toml:2:11: error: while parsing key-value pair: expected value, saw '\\n'\n");
    EXPECT_EQ(errorsOf(parseSettings("tesk.toml", "[server]\nworkers = 1\nworkers = 2\n")),
              "tesk.toml:3:11: error: while parsing key-value pair: cannot redefine existing "
              "integer 'workers'\n");
    EXPECT_EQ(errorsOf(parseSettings("tesk.toml", "a = '\xFC'")),
              "tesk.toml:1:5: error: Encountered invalid utf-8 sequence\n");
}

class SettingsFileTest : public testing::Test {
  protected:
    const TemporaryDirectory directory_;
    const std::string path_ = directory_ / "tesk.toml";
};

TEST_F(SettingsFileTest, IsRead) {
    directory_.write("tesk.toml", "log.level = 1\nsecurity.password_file = 'users'\n");
    Settings expected;
    expected.log.level = 1;
    expected.security.passwordFile = directory_ / "users";
    const SettingsReading reading = readSettings(path_);
    EXPECT_EQ(errorsOf(reading), "");
    EXPECT_EQ(textOf(reading.settings), textOf(expected));
}

TEST_F(SettingsFileTest, AMissingOneIsReported) {
    EXPECT_EQ(errorsOf(readSettings(path_)),
              path_ + ": error: cannot be read: No such file or directory\n");
}

// To which no process ever writes.
TEST_F(SettingsFileTest, APipeIsReportedAtOnce) {
    const std::string pipe = directory_ / "pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(errorsOf(readSettings(pipe)),
              pipe +
                  ": error: cannot be read: it is not a regular file; a pipe or a device could "
                  "not be read again at a reload\n");
}

TEST_F(SettingsFileTest, ADirectoryIsReported) {
    EXPECT_EQ(errorsOf(readSettings(directory_.path())),
              directory_.path().string() + ": error: cannot be read: it is a directory\n");
}

TEST_F(SettingsFileTest, HasUpToOneMebibyte) {
    directory_.write("tesk.toml", std::string(1'048'576, '\n'));
    EXPECT_EQ(errorsOf(readSettings(path_)), "");
    directory_.write("tesk.toml", std::string(1'048'577, '\n'));
    EXPECT_EQ(errorsOf(readSettings(path_)),
              path_ + ": error: cannot be read: it is longer than 1 MiB\n");
}

class DocumentedSettings : public testing::Test {
  protected:
    // The file that the document shows.
    static std::string example() {
        std::ifstream stream(DOCS_DIRECTORY "/configuration.md");
        const std::string document(std::istreambuf_iterator<char>(stream), {});
        const std::string begin = "```toml\n";
        const std::size_t start = document.find(begin) + begin.size();
        const std::size_t end = document.find("```\n", start);
        EXPECT_LT(end, document.size());
        return document.substr(start, end - start);
    }
};

TEST_F(DocumentedSettings, AreReadAndAreTheDefaultsButForPaths) {
    Settings expected;
    expected.includePath = {"schema/common"};
    expected.namespaces = {
        {.name = "root/cimv2", .paths = {"schema/cim.mof"}},
        {.name = "interop", .paths = {"schema/interop", "schema/local/profiles.mof"}},
        {.name = "root/array",
         .server = "array",
         .remoteName = "root/cimv2",
         .patterns = {"CIM_*", "ACME_*"}}};
    expected.servers = {{.name = "array", .options = {.url = "https://array.example.com:5989"}}};
    expected.security.passwordFile = "users";
    const SettingsReading reading = parseSettings("tesk.toml", example());
    EXPECT_EQ(errorsOf(reading), "");
    EXPECT_EQ(textOf(reading.settings), textOf(expected));
}

TEST_F(DocumentedSettings, AreAllThatThereAre) {
    // A line for each setting, of which namespaces have names of their own.
    const std::string text = example();
    std::istringstream lines(textOf(Settings()));
    int count = 0;
    for (std::string line; std::getline(lines, line); ++count) {
        const std::string key = line.substr(0, line.find(':'));
        EXPECT_NE(text.find("\n" + key + " = "), std::string::npos) << key;
    }
    EXPECT_EQ(count, 31);
}

TEST_F(DocumentedSettings, CutAnywhereAreReadOrReportedWithoutFurtherHarm) {
    const std::string text = example();
    for (std::size_t length = 0; length < text.size(); ++length) {
        const SettingsReading reading = parseSettings("tesk.toml", text.substr(0, length));
        for (const Configuration::SettingsError& error : reading.errors) {
            EXPECT_FALSE(error.message.empty()) << length;
            EXPECT_GT(error.line, 0U) << length;
        }
    }
}

TEST_F(DocumentedSettings, TheErrorsAreThoseThatAreShown) {
    std::ifstream stream(DOCS_DIRECTORY "/configuration.md");
    const std::string document(std::istreambuf_iterator<char>(stream), {});
    const SettingsReading reading =
        parseSettings("tesk.toml", "\n\n\n[server]\nlisen = '127.0.0.1:80'\nworkers = \"4\"\n");
    EXPECT_EQ(reading.errors.size(), 2U);
    for (const Configuration::SettingsError& error : reading.errors)
        EXPECT_NE(document.find("\n    " + error.toString()), std::string::npos)
            << error.toString();
}

}  // namespace
