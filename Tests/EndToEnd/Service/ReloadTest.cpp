// SIGHUP: classes, namespaces and users change while clients are served, and none of them notices.

#include <csignal>
#include <filesystem>
#include <gtest/gtest.h>
#include <optional>

#include "Tests/EndToEnd/Service/Hammer.h"
#include "Tests/EndToEnd/Service/RunningService.h"
#include "Tests/ObjectManager/Security/Files.h"
#include "Tests/ObjectManager/Security/Hashes.h"
#include "Tests/Support/DirectoryContent.h"

namespace {

// Every test begins with a service under load, and ends with the load having got right responses
// alone.
class ServiceReload : public RunningService {
  protected:
    void SetUp() override {
        start();
        hammer_.emplace(port(), get("/root/test/TST_Nothing.wsdl"),
                        found(expected("TST_Nothing.wsdl")));
        hammer_->waitForResponses(20);
    }

    void TearDown() override {
        hammer_->waitForResponses(20);
        EXPECT_EQ(hammer_->stop(), Lines());
        RunningService::TearDown();
    }

    void expectServedAsBefore() const {
        EXPECT_EQ(response(get("/root/test/TST_One.wsdl")), found(expected("OneClass.wsdl")));
    }

    std::optional<Hammer> hammer_;
};

TEST_F(ServiceReload, ClassesComeAndGo) {
    expectServedAsBefore();
    EXPECT_EQ(response(get("/root/test/TST_Two.wsdl")), kNotFound);
    writeModel("test.mof", "class TST_Nothing {};\nclass TST_Two {};\n");
    reload();
    EXPECT_EQ(response(get("/root/test/TST_One.wsdl")), kNotFound);
    EXPECT_EQ(response(get("/root/test/TST_Two.wsdl")).substr(0, 15), "HTTP/1.1 200 OK");
    EXPECT_NE(process().log().find("information tesk: Reloaded: 2 classes in 1 namespace\n"),
              std::string::npos)
        << process().log();
}

// One request of such a document would take all memory.
TEST_F(ServiceReload, AClassWithTooLargeDocumentsIsLeftOutWithAWarning) {
    writeModel("test.mof",
               "Qualifier ValueMap : string[], Scope(property);\n"
               "class TST_Nothing {};\n"
               "class TST_One { [ValueMap {\"4294967295\", \"..\"}] uint32 q; };\n");
    reload();
    for (const char* const document : {"TST_One.wsdl", "TST_One.xsd"})
        EXPECT_EQ(response(get(std::string("/root/test/") + document)), kNotFound);
    EXPECT_EQ(response(get("/")).find("TST_One"), std::string::npos);
    expectedLog_ = {
        "warning tesk: the class root/test:TST_One is left out: its "
        "documents would have up to 253.4 GB, the property \"q\" alone 253.4 GB; at "
        "most 67.1 MB are allowed (repository.max_document_size)"};
}

TEST_F(ServiceReload, NamespacesComeAndGo) {
    const std::string request = get("/root/new/TST_One.wsdl");
    EXPECT_EQ(response(request), refusal("404 Not Found", "There is nothing at this path."));
    EXPECT_EQ(response(get("/TST_One.wsdl")),
              refusal("404 Not Found", "There is nothing at this path."));
    namespaces_["Root/New"] = "test.mof";
    namespaces_["interop"] = "test.mof";
    writeConfiguration();
    reload();
    const std::string new1 = response(request);
    EXPECT_EQ(new1, found(expected("OneClass.wsdl")));
    EXPECT_EQ(response(get("/TST_One.xsd")), found(expected("OneClass.xsd")));

    namespaces_.erase("Root/New");
    writeConfiguration();
    reload();
    EXPECT_EQ(response(request), kNotFound);
    expectedLog_ = {"error WsdlAdapter::processInput: Exception while writing response. err=3"};

    namespaces_["root/new"] = "test.mof";
    writeConfiguration();
    reload();
    EXPECT_EQ(response(request), new1);
}

TEST_F(ServiceReload, UsersComeAndGo) {
    const auto ofBob = [](const std::string& password) {
        return request(
            "GET /root/test/TST_Nothing.wsdl HTTP/1.1",
            "Host: " + std::string(kHost) + "\r\nAuthorization: Basic " + password + "\r\n");
    };
    const std::string bobSecret = "Ym9iOnNlY3JldA==";
    EXPECT_EQ(response(ofBob(bobSecret)), kChallenge);
    const std::string alice = "alice:" + std::string(kSha512OfSecret) + "\n";
    writeUsers(alice + "bob:" + kSha512OfSecret + "\n");
    reload();
    EXPECT_EQ(response(ofBob(bobSecret)), found(expected("TST_Nothing.wsdl")));
    writeUsers(alice);
    reload();
    EXPECT_EQ(response(ofBob(bobSecret)), kChallenge);
}

TEST_F(ServiceReload, ABrokenModelKeepsTheOldOne) {
    const std::string file =
        directory_.write("test.mof", "class TST_Nothing {};\nclass TST_One { x };");
    reload();
    expectServedAsBefore();
    expectedLog_ = {
        "error tesk: " + file + ":2:19: error: found \"}\", expected \"ref\"",
        "error tesk: class TST_One { x };", "error tesk:                   ^",
        "error tesk: Not reloaded, the service goes on as before: the classes have errors and are "
        "not used"};
}

TEST_F(ServiceReload, AMissingModelKeepsTheOldOneUntilItIsBack) {
    const std::string file = directory_ / "test.mof";
    std::filesystem::rename(file, file + ".away");
    reload();
    expectServedAsBefore();
    expectedLog_ = {
        "error tesk: " + file + ": error: cannot be read: No such file or directory",
        "error tesk: Not reloaded, the service goes on as before: the classes have errors and are "
        "not used"};
    writeModel("test.mof", "class TST_Nothing {};\n");
    reload();
    EXPECT_EQ(response(get("/root/test/TST_One.wsdl")), kNotFound);
}

TEST_F(ServiceReload, ABrokenConfigurationKeepsTheOldOne) {
    writeModel("test.mof", "class TST_Nothing {};\n");
    serverKeys_["max_conections"] = "3";
    writeConfiguration();
    reload();
    expectServedAsBefore();
    expectedLog_ = {
        "error tesk: " + (directory_ / "tesk.toml").string() +
            ":6:1: error: unknown key \"max_conections\" in [server]; did you mean "
            "\"max_connections\"?",
        "error tesk: Not reloaded, the service goes on as before: the configuration has errors and "
        "is not used"};
}

TEST_F(ServiceReload, WhatNeedsAStartIsTold) {
    serverKeys_["max_connections"] = "3";
    writeConfiguration();
    reload();
    expectServedAsBefore();
    expectedLog_ = {
        "warning tesk: Changes of [server], [log] and credential_lifetime take effect at the next "
        "start"};
}

TEST_F(ServiceReload, WithoutAPasswordFileTheUsersStay) {
    const std::string file = directory_ / "tesk.toml";
    std::string text = contentOfFile(file);
    const std::string key = "password_file = \"users\"\n";
    ASSERT_NE(text.find(key), std::string::npos);
    directory_.write("tesk.toml", text.erase(text.find(key), key.size()));
    reload();
    expectServedAsBefore();
    expectedLog_ = {
        "warning tesk: No password file is configured any more; the users stay until the next "
        "start"};
}

// Neither is changed if one of the two cannot be.
TEST_F(ServiceReload, AnUnsafePasswordFileKeepsOldUsersAndClasses) {
    writeModel("test.mof", "class TST_Nothing {};\n");
    const std::string users = directory_ / "users";
    std::filesystem::permissions(users, std::filesystem::perms(0644));
    process().waitForLog("The users stay as they were: ");  // as the file has changed
    reload();
    expectServedAsBefore();
    const std::string reason =
        users + ": others than its owner can read or write it; correct that with: chmod 600 " +
        users;
    expectedLog_ = {"error tesk: The users stay as they were: " + reason,
                    "error tesk: Not reloaded, the service goes on as before: " + reason};
}

TEST_F(ServiceReload, ManySignalsInARowDoNoHarm) {
    for (int count = 0; count < 200; ++count)
        process().signal(SIGHUP);
    process().waitForLog("Reloaded");
    writeModel("test.mof", "class TST_Nothing {};\nclass TST_Two {};\n");
    process().signal(SIGHUP);
    waitForResponse(get("/root/test/TST_Two.wsdl"), "HTTP/1.1 200 OK");
}

}  // namespace
