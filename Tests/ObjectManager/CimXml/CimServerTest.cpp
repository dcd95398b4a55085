#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "ObjectManager/CimXml/CimServer.h"
#include "Tests/ObjectManager/CimXml/Collected.h"
#include "Tests/Support/StandInCimServer.h"

namespace {

using CimXml::ServerError;
using Kind = ServerError::Kind;

// A server with canned responses: by operation, namespace and, for GetClass, class:
// "GetClass root/test A_B". An operation without one fails with CIM_ERR_NOT_FOUND.
class CimXmlCimServer : public testing::Test {
  protected:
    void respond(const std::string& request, const std::string& response) {
        server_.respond(request, response);
    }

    void respondWithResults(const std::string& operation, const std::string& results) {
        respond(operation + " root/test", responseTo(operation, results));
    }

    void respondWithError(const std::string& operation, const std::string& code) {
        respond(operation + " root/test", errorResponseTo(operation, code, "no"));
    }

    // The declarations and the diagnostics, or the error.
    std::string read(const std::vector<std::string>& patterns = {},
                     CimXml::ServerOptions options = {}) {
        const std::size_t before = server_.requests().size();
        options.url = server_.url();
        try {
            CimXml::CimServer client(options);
            const Mof::Compilation compilation = client.read("root/test", patterns).compilation;
            requests_ = requestsSince(before);
            return textOf(compilation) + withoutServer(diagnosticsOf(compilation));
        } catch (const ServerError& error) {
            kind_ = error.kind();
            code_ = error.getErrorCode();
            requests_ = requestsSince(before);
            return withoutServer(error.getMessage().data());
        }
    }

    std::vector<std::string> namespaces() {
        CimXml::CimServer client({.url = server_.url()});
        return client.namespaces();
    }

    // The requests of the last read(), by operation and class.
    [[nodiscard]] std::string requests() const {
        std::string text;
        for (const StandInServer::Request& request : requests_)
            text += StandInCimServer::nameOf(request) + "\n";
        return text;
    }

    std::vector<StandInServer::Request> requests_;
    Kind kind_ = Kind::kOptions;
    int code_ = 0;

  private:
    [[nodiscard]] std::vector<StandInServer::Request> requestsSince(std::size_t before) const {
        std::vector<StandInServer::Request> requests = server_.requests();
        requests.erase(requests.begin(), requests.begin() + static_cast<std::ptrdiff_t>(before));
        return requests;
    }

    [[nodiscard]] std::string withoutServer(std::string text) const {
        const std::string name = server_.url();
        for (std::size_t at = text.find(name); at != std::string::npos; at = text.find(name))
            text.replace(at, name.size(), "SERVER");
        return text;
    }

    StandInCimServer server_;
};

const std::string kFoo = cimClass("A_Foo", "", property("P", qualifier("Note", "x")));
const std::string kBar = cimClass("A_Bar", "A_Foo", "");
const std::string kDeclarations =
    std::string(kNoteAndMineText) + "class A_Foo\n  [Note(\"x\")] string P\n";

TEST_F(CimXmlCimServer, ReadsQualifiersAndClasses) {
    respondWithResults("EnumerateQualifiers", kNoteAndMine);
    respondWithResults("EnumerateClasses", kFoo + kBar);
    EXPECT_EQ(read(), kDeclarations + "class A_Bar : A_Foo\n");
    EXPECT_EQ(requests(), "EnumerateQualifiers root/test\nEnumerateClasses root/test\n");
    const std::string body = requests_.back().body;
    for (const char* const parameter :
         {"<NAMESPACE NAME=\"root\"/><NAMESPACE NAME=\"test\"/>",
          "NAME=\"DeepInheritance\"><VALUE>TRUE<", "NAME=\"LocalOnly\"><VALUE>FALSE<",
          "NAME=\"IncludeQualifiers\"><VALUE>TRUE<", "NAME=\"IncludeClassOrigin\"><VALUE>TRUE<"})
        EXPECT_NE(body.find(parameter), std::string::npos) << parameter;
}

TEST_F(CimXmlCimServer, AsksForLocalMembersWhenItIsTold) {
    respondWithResults("EnumerateQualifiers", kNoteAndMine);
    respondWithResults("EnumerateClasses", kFoo);
    EXPECT_EQ(read({}, {.url = "", .localOnly = true}), kDeclarations);
    EXPECT_NE(requests_.back().body.find("NAME=\"LocalOnly\"><VALUE>TRUE<"), std::string::npos);
}

TEST_F(CimXmlCimServer, ANamespaceMayHaveNoClass) {
    respondWithResults("EnumerateQualifiers", "");
    respondWithResults("EnumerateClasses", "");
    EXPECT_EQ(read(), "");
}

TEST_F(CimXmlCimServer, AsksForEachClassWhereAllAtOnceAreRefused) {
    for (const char* const code : {"1", "7", "27"}) {
        respondWithResults("EnumerateQualifiers", kNoteAndMine);
        respondWithError("EnumerateClasses", code);
        respondWithResults("EnumerateClassNames",
                           "<CLASSNAME NAME=\"A_Foo\"/><CLASSNAME NAME=\"A_Bar\"/>"
                           "<CLASSNAME NAME=\"a_bar\"/>");
        respond("GetClass root/test A_Foo", responseTo("GetClass", kFoo));
        respond("GetClass root/test A_Bar", responseTo("GetClass", kBar));
        const std::string text = read();
        EXPECT_NE(text.find("class A_Foo\n  [Note(\"x\")] string P\n"), std::string::npos) << text;
        EXPECT_NE(text.find("class A_Bar : A_Foo\n"), std::string::npos) << text;
        EXPECT_EQ(requests_.size(), 5U) << requests();
    }
}

TEST_F(CimXmlCimServer, SuperclassesAreAskedForWithTheClassesThatFit) {
    respondWithResults("EnumerateQualifiers", kNoteAndMine);
    respondWithError("EnumerateClasses", "7");
    respondWithResults("EnumerateClassNames",
                       "<CLASSNAME NAME=\"A_Foo\"/><CLASSNAME NAME=\"A_Bar\"/>"
                       "<CLASSNAME NAME=\"B_Other\"/>");
    respond("GetClass root/test A_Foo", responseTo("GetClass", kFoo));
    respond("GetClass root/test A_Bar", responseTo("GetClass", kBar));
    EXPECT_EQ(read({"*_bar"}), std::string(kNoteAndMineText) +
                                   "class A_Bar : A_Foo\n"
                                   "class A_Foo\n  [Note(\"x\")] string P\n");
    EXPECT_EQ(requests(),
              "EnumerateQualifiers root/test\nEnumerateClasses root/test\n"
              "EnumerateClassNames root/test\nGetClass root/test A_Bar\n"
              "GetClass root/test A_Foo\n");
}

TEST_F(CimXmlCimServer, AClassThatIsGoneIsMissingForItsSubclassesAlone) {
    respondWithResults("EnumerateQualifiers", kNoteAndMine);
    respondWithError("EnumerateClasses", "7");
    respondWithResults("EnumerateClassNames", "<CLASSNAME NAME=\"A_Bar\"/>");
    respond("GetClass root/test A_Bar", responseTo("GetClass", kBar));
    EXPECT_EQ(read(),
              std::string(kNoteAndMineText) +
                  "SERVER: root/test: A_Bar: warning: the superclass \"A_Foo\" of \"A_Bar\" "
                  "is not declared; the class is left out\n");
}

TEST_F(CimXmlCimServer, AClassUnderAnothersNameIsRefused) {
    respondWithResults("EnumerateQualifiers", "");
    respondWithError("EnumerateClasses", "7");
    respondWithResults("EnumerateClassNames", "<CLASSNAME NAME=\"A_Bar\"/>");
    respond("GetClass root/test A_Bar", responseTo("GetClass", kFoo));
    EXPECT_EQ(read(),
              "SERVER: GetClass of root/test: asked for the class \"A_Bar\", the server sends "
              "\"A_Foo\"");
    EXPECT_EQ(kind_, Kind::kNotCimXml);
    respondWithResults("EnumerateClassNames", "<CLASSNAME NAME=\"a&quot;/>\"/>");
    EXPECT_EQ(read(),
              "SERVER: EnumerateClassNames of root/test: \"a\"/>\" is not the name of a "
              "class");
}

TEST_F(CimXmlCimServer, AnEndlessLineOfSuperclassesIsLimited) {
    respondWithResults("EnumerateQualifiers", "");
    respondWithError("EnumerateClasses", "7");
    respondWithResults("EnumerateClassNames", "<CLASSNAME NAME=\"A_0\"/>");
    for (int number = 0; number < 20; ++number) {
        const std::string name = "A_" + std::to_string(number);
        respond("GetClass root/test " + name,
                responseTo("GetClass", cimClass(name, "A_" + std::to_string(number + 1), "")));
    }
    CimXml::ServerOptions options;
    options.limits.maxResults = 10;
    EXPECT_EQ(read({}, options), "SERVER: GetClass of root/test: there are more than 10 classes");
    EXPECT_EQ(kind_, Kind::kLimit);
}

TEST_F(CimXmlCimServer, AnEndlessResponseIsLimited) {
    const std::string whole = responseTo("EnumerateQualifiers", "*");
    StandInServer::Response response = StandInServer::ok("");
    response.bytes =
        "HTTP/1.1 200 OK\r\nContent-Type: text/xml\r\n\r\n" + whole.substr(0, whole.find('*'));
    const auto messageWith = [&](const std::string& endless, const CimXml::Limits& limits) {
        response.endless = endless;
        const StandInServer server([&](const StandInServer::Request&) { return response; });
        try {
            CimXml::CimServer client({.url = server.url(), .limits = limits});
            (void)client.read("root/test");
            return std::string("none");
        } catch (const ServerError& error) {
            EXPECT_EQ(error.kind(), Kind::kLimit);
            const std::string message = error.getMessage().data();
            return message.substr(message.rfind(": ") + 2);
        }
    };
    CimXml::Limits limits;
    limits.maxResponseSize = 1'000'000;
    EXPECT_EQ(messageWith("<!-- -->\n", limits), "the response has more than 1.0 MB");
    limits.maxResults = 1000;
    EXPECT_EQ(messageWith(kNoteAndMine, limits), "the response holds more than 1,000 results");
    EXPECT_EQ(messageWith("<QUALIFIER.DECLARATION>", {}),
              "elements are nested in more than 24 others");
}

TEST_F(CimXmlCimServer, QualifiersMayBeUndeclared) {
    respondWithError("EnumerateQualifiers", "7");
    respondWithResults("EnumerateClasses", kFoo);
    EXPECT_EQ(read(),
              "class A_Foo\n  [Note(\"x\")] string P\n"
              "SERVER: root/test: A_Foo.P: warning: the qualifier \"Note\" is not declared\n");
}

TEST_F(CimXmlCimServer, AnErrorOfTheServerNamesTheOperation) {
    respondWithError("EnumerateQualifiers", "3");
    EXPECT_EQ(read(),
              "SERVER: EnumerateQualifiers of root/test: CIM_ERR_INVALID_NAMESPACE (3): no");
    EXPECT_EQ(kind_, Kind::kCimError);
    EXPECT_EQ(code_, 3);
    respondWithResults("EnumerateQualifiers", "");
    respondWithError("EnumerateClasses", "2");
    EXPECT_EQ(read(), "SERVER: EnumerateClasses of root/test: CIM_ERR_ACCESS_DENIED (2): no");
}

TEST_F(CimXmlCimServer, AResponseToAnotherOperationIsRefused) {
    respondWithResults("EnumerateQualifiers", "");
    respond("EnumerateClasses root/test", responseTo("EnumerateQualifiers", ""));
    EXPECT_EQ(read(),
              "SERVER: EnumerateClasses of root/test: the response is not CIM-XML: it is a "
              "response to the operation \"EnumerateQualifiers\"");
}

TEST_F(CimXmlCimServer, ANamespaceNeedsAName) {
    for (const char* const name :
         {"", "/root", "root/", "root//x", "..", "root/../x", "a b", "-x"}) {
        CimXml::CimServer server({.url = "http://127.0.0.1:1"});
        try {
            (void)server.read(name);
            ADD_FAILURE() << name;
        } catch (const ServerError& error) {
            EXPECT_EQ(error.kind(), Kind::kOptions) << error.what();
        }
    }
}

// Namespaces.

std::string instanceName(const std::string& nameSpace) {
    return "<INSTANCENAME CLASSNAME=\"CIM_Namespace\"><KEYBINDING NAME=\"SystemName\"><KEYVALUE>s"
           "</KEYVALUE></KEYBINDING><KEYBINDING NAME=\"name\"><KEYVALUE VALUETYPE=\"string\">" +
           nameSpace + "</KEYVALUE></KEYBINDING></INSTANCENAME>";
}

TEST_F(CimXmlCimServer, NamesItsNamespacesInAnInteropNamespace) {
    respond("EnumerateInstanceNames root/interop CIM_Namespace",
            responseTo("EnumerateInstanceNames",
                       instanceName("root/cimv2") + instanceName("root/interop") +
                           instanceName("../etc") + instanceName("ROOT/interop") +
                           "<INSTANCENAME CLASSNAME=\"X\"/>" + instanceName("a")));
    EXPECT_EQ(namespaces(), (std::vector<std::string>{"a", "root/cimv2", "root/interop"}));
}

TEST_F(CimXmlCimServer, AServerWithoutInteropNamespaceNamesNone) {
    try {
        (void)namespaces();
        FAIL();
    } catch (const ServerError& error) {
        EXPECT_EQ(error.kind(), Kind::kCimError);
        EXPECT_NE(std::string(error.getMessage())
                      .find(": the server has none of the namespaces interop, root/interop and "
                            "root/PG_InterOp that would name the others"),
                  std::string::npos)
            << error.what();
    }
}

}  // namespace
