// The real program, tesk serve, beside a real CIM server that goes away and comes back.

#include <csignal>
#include <gtest/gtest.h>
#include <string>

#include "Tests/EndToEnd/Service/RunningService.h"
#include "Tests/Support/KillingRelay.h"
#include "Tests/Support/RealCimServer.h"

namespace {

// Adds a class without members to the namespace "root", which has none by itself.
void createClass(const RealCimServer& server, const std::string& name) {
    const std::string body =
        "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
        "<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\"><MESSAGE ID=\"1\" PROTOCOLVERSION=\"1.0\">"
        "<SIMPLEREQ><IMETHODCALL NAME=\"CreateClass\"><LOCALNAMESPACEPATH>"
        "<NAMESPACE NAME=\"root\"/></LOCALNAMESPACEPATH><IPARAMVALUE NAME=\"NewClass\">"
        "<CLASS NAME=\"" +
        name + "\"/></IPARAMVALUE></IMETHODCALL></SIMPLEREQ></MESSAGE></CIM>\n";
    const Client client("127.0.0.1", server.port());
    EXPECT_TRUE(
        client.send("POST /cimom HTTP/1.1\r\nHost: 127.0.0.1\r\nConnection: close\r\n"
                    "Content-Type: application/xml; charset=\"utf-8\"\r\n"
                    "CIMOperation: MethodCall\r\nCIMMethod: CreateClass\r\n"
                    "CIMObject: root\r\nContent-Length: " +
                    std::to_string(body.size()) + "\r\n\r\n" + body));
    const std::string response = client.readAll();
    EXPECT_NE(response.find("<IMETHODRESPONSE NAME=\"CreateClass\">"), std::string::npos)
        << response;
    EXPECT_EQ(response.find("<ERROR"), std::string::npos) << response;
}

TEST_F(RunningService, GoesOnWhenItsCimServerIsKilledAmidARefreshAndTakesWhatIsNewThen) {
    if (cimServerProgram().empty())
        GTEST_SKIP() << kNoCimServer;
    RealCimServer server;
    createClass(server, "TST_Nothing");
    KillingRelay relay(server);
    directory_.write("tesk.toml",
                     "[servers.real]\nurl = \"" + relay.url() +
                         "\"\n[namespaces]\n"
                         "\"root/test\" = { server = \"real\", namespace = \"root\" }\n"
                         "[repository]\nrefresh = 0.1\n"
                         "[server]\nlisten = \"127.0.0.1:0\"\n"
                         "[security]\npassword_file = \"users\"\n");
    startWith({"serve", "--config", directory_ / "tesk.toml"});
    const std::string nothing = get("/root/test/TST_Nothing.wsdl");
    const std::string added = get("/root/test/TST_Added.wsdl");
    EXPECT_EQ(response(nothing), found(expected("TST_Nothing.wsdl")));
    EXPECT_EQ(response(added), kNotFound);

    relay.killAmidClasses();
    process().waitForLog("transfer closed with ");
    EXPECT_TRUE(relay.hasKilled());
    EXPECT_EQ(response(nothing), found(expected("TST_Nothing.wsdl")));

    const Lines lines = unusualLines(process().log());
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_TRUE(lines[0].starts_with("warning tesk: " + relay.url() +
                                     ": EnumerateClasses of root: transfer closed with "))
        << lines[0];
    EXPECT_TRUE(lines[0].ends_with("; its classes stay as they were")) << lines[0];

    server.restart();
    createClass(server, "TST_Added");
    process().signal(SIGHUP);
    waitForResponse(added, "HTTP/1.1 200 OK");
    EXPECT_EQ(response(nothing), kNotFound);
    // On a slow machine the service asks in vain once more before the class is there.
    expectedLog_ = unusualLines(process().log());
}

}  // namespace
