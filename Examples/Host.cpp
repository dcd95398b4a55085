// A host for providers: reads one HTTP request from standard input and writes the response to
// standard output, as a program behind inetd does.
//
//     printf 'GET /greeting HTTP/1.1\r\nHost: localhost\r\n\r\n' | Host /usr/local/lib/tesk
//     providers
//
// The first argument is the directory that holds "providers", the others hold further providers.

#include <iostream>
#include <sstream>
#include <string>

#include "Platform/Cim/ITeskRepository.h"
#include "Platform/Http/TSKHTTPException.h"
#include "Platform/Http/TSKHTTPResponse.h"
#include "Platform/ProviderFramework/AuthenticationHelper.h"
#include "Platform/ProviderFramework/TeskProviderPluginManager.h"
#include "Platform/ProviderFramework/URMAConfigManager.h"
#include "Platform/Util/TSKLog.h"
#include "Platform/Util/TeskStatusCode.h"

#include "GreetingClass.h"

namespace {

// What providers ask for.

class Repository : public ITeskRepository {
  public:
    [[nodiscard]] TSKSmrPtr<ITeskClass> getClass(const TSKString& nameSpace,
                                                 const TSKString& className) const override {
        if (!nameSpace.equalsIgnoreCase("root/cimv2"))
            throw TeskBaseException("Repository::getClass", "There is no such namespace",
                                    CIM_ERR_INVALID_NAMESPACE);
        if (!className.equalsIgnoreCase("EX_Greeting"))
            return nullptr;
        return TSKSmrPtr<GreetingClass::Greeting>::make();
    }
};

class Namespaces : public ITeskNamespaceList {
  public:
    [[nodiscard]] TSKValSlist<TSKString> getNamespaceList() const override {
        return {"root/cimv2"};
    }
};

class Guest : public urma::security::ISecurityToken {
  public:
    [[nodiscard]] TSKString getUserName() const override { return "guest"; }
};

// Lets the guest in without a password. A host that is reachable by others checks the credentials.
class Authenticator : public ITeskAuthenticator {
  public:
    bool authenticateRequest(TSKHTTPRequest& /*request*/, TSKGenericHTTPIStream& /*istr*/,
                             TSKGenericHTTPOStream& /*ostr*/,
                             TSKSmrPtr<urma::security::ISecurityToken>& token) override {
        token = TSKSmrPtr<Guest>::make();
        return true;
    }
};

class Installation : public ITeskInstallation {
  public:
    explicit Installation(const char* directory) : directory_(directory) {}

    [[nodiscard]] TSKString getInstallationDirectory() const override { return directory_; }

  private:
    TSKString directory_;
};

// A request and its response.

class Input : public TSKGenericHTTPIStream {
  public:
    unsigned long read(char* buffer, unsigned long length) override {
        std::cin.read(buffer, static_cast<std::streamsize>(length));
        return static_cast<unsigned long>(std::cin.gcount());
    }
};

// Keeps the response until it is complete, so that an exception can still replace it.
class Output : public TSKGenericHTTPOStream {
  public:
    void write(const char* data, unsigned long length) override { response.append(data, length); }
    void getPeerAddressString(TSKString& peerHost, TSKString& peerPort) const override {
        peerHost = "127.0.0.1";
        peerPort = "0";
    }

    std::string response;
};

std::string emptyResponse(const char* status, const char* reason) {
    Output output;
    TSKHTTPResponse response("HTTP/1.1", status, reason);
    response.setContentLength(0);
    response.writeResponseTo(output);
    return output.response;
}

std::string nextLine() {
    std::string line;
    std::getline(std::cin, line);
    if (line.ends_with('\r'))
        line.pop_back();
    return line;
}

// A front end that strangers reach refuses what HTTP does not allow, above all in "Host", which
// becomes a part of documents, and decodes the path. This one takes what comes.
TSKHTTPRequest readRequest() {
    std::istringstream requestLine(nextLine());
    std::string method;
    std::string path;
    std::string protocol;
    requestLine >> method >> path >> protocol;
    TSKHTTPRequest request(method.c_str(), path.c_str(), protocol.c_str());
    for (std::string line = nextLine(); !line.empty(); line = nextLine()) {
        const std::size_t colon = line.find(':');
        if (colon == std::string::npos)
            continue;
        TSKString value = line.substr(colon + 1).c_str();
        value.trim(" \t");
        request.setHeaderField(line.substr(0, colon).c_str(), value, true);
    }
    return request;
}

std::string respond(const TeskProviderPluginManager& manager, TSKHTTPRequest& request) {
    urma::pf::Provider* const provider = manager.findProvider(request.getUri());
    if (provider == nullptr)
        return emptyResponse("404", "Not Found");
    try {
        Input input;
        Output output;
        bool handled = true;
        provider->processHTTPRequest(input, output, request, handled, nullptr);
        return handled ? output.response : emptyResponse("404", "Not Found");
    } catch (const TSKHTTPException& exception) {
        if (exception.getErrorCode() == TSKHTTPException::kAuthenticationFailed)
            return emptyResponse("401", "Unauthorized");
    } catch (...) {
    }
    return emptyResponse("500", "Internal Server Error");
}

bool succeeded(const TeskProviderPluginManager::Failures& failures) {
    for (const TeskProviderFailure& failure : failures)
        std::cerr << failure.file << ": " << failure.reason << '\n';
    return failures.empty();
}

}  // namespace

int main(int count, char** arguments) {
    if (count < 2) {
        std::cerr << "Usage: Host INSTALLATION [DIRECTORY...]\n";
        return 2;
    }
    TSKLog::setLevel(TeskTraceLog::SeverityError);

    const auto manager = TSKSmrPtr<TeskProviderPluginManager>::make();
    TeskProviderPluginManager::setTeskProviderPluginManager(manager);
    manager->setNamespaceList(TSKSmrPtr<Namespaces>::make());
    manager->setRepository(TSKSmrPtr<Repository>::make());
    AuthenticationHelper::setAuthenticator(TSKSmrPtr<Authenticator>::make());
    URMAConfigManager::setInstallation(TSKSmrPtr<Installation>::make(arguments[1]));

    if (!succeeded(manager->loadProviders(TSKString(arguments[1]) + "/providers")))
        return 1;
    for (int index = 2; index < count; ++index) {
        if (!succeeded(manager->loadProviders(arguments[index])))
            return 1;
    }
    if (!succeeded(manager->startup()) || !succeeded(manager->postStartup()))
        return 1;

    TSKHTTPRequest request = readRequest();
    std::cout << respond(*manager, request);

    return succeeded(manager->shutdown()) ? 0 : 1;
}
