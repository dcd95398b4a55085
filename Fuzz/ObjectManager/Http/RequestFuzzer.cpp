// Feeds what a client may send through all that happens to it between the socket and the response:
// scanner, parser, routing, a provider that routes by the path, and the answer.

#include <boost/asio/ip/tcp.hpp>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <variant>

#include "ObjectManager/Http/Dispatcher.h"
#include "ObjectManager/Http/HostField.h"
#include "ObjectManager/Http/OwnAnswers.h"
#include "ObjectManager/Http/RequestHead.h"
#include "ObjectManager/Http/RequestHeadScanner.h"
#include "Platform/Http/TSKHTTPException.h"
#include "Platform/Http/TSKHTTPResponse.h"
#include "Platform/ProviderFramework/TeskProviderPluginManager.h"
#include "Platform/Util/TSKLog.h"

namespace {

using Http::RequestHead;
using Http::RequestHeadScanner;
using Progress = RequestHeadScanner::Progress;

constexpr Http::RequestLimits kLimits{
    .mostHeadBytes = 2048, .mostRequestLineBytes = 1024, .mostFields = 20};

// Also where assert does nothing.
void require(bool holds) {
    if (!holds)
        std::abort();
}

// Answers by the path, in the ways in which a provider may.
class RoutingProvider : public urma::pf::Provider {
  public:
    TSKString getProviderName() override { return "RoutingProvider"; }

    void processHTTPRequest(TSKGenericHTTPIStream& /*istr*/, TSKGenericHTTPOStream& ostr,
                            TSKHTTPRequest& request, bool& handled,
                            TSKSmrPtr<ITeskTransaction> /*transaction*/) override {
        const TSKString& uri = request.getUri();
        if (uri.contains("private", 1))
            throw TSKHTTPException("here", uri, TSKHTTPException::kAuthenticationFailed);
        if (uri.contains("broken", 1))
            throw TeskBaseException("here", uri, 1);
        if (uri.contains("garbage", 1))
            return ostr.write(uri.data(), uri.length());
        handled = !uri.contains("nothing", 1);

        const TSKString body = "http://" + hostOf(request, ostr) + uri;
        TSKHTTPResponse response(request.getProtocol(), "200", "OK");
        response.setHeaderField("Connection", "close", false);
        response.setContentLength(body.length());
        response.writeResponseTo(ostr);
        ostr.write(body.data(), body.length());
    }

  private:
    static TSKString hostOf(const TSKHTTPRequest& request, const TSKGenericHTTPOStream& ostr) {
        if (const TSKString* host = request.getHost())
            return *host;
        TSKString host;
        TSKString port;
        ostr.getPeerAddressString(host, port);
        return host;
    }
};

class Host {
  public:
    Host() {
        TSKLog::setLevel(TeskTraceLog::SeverityOff);
        (void)manager_.addProvider(provider_, "fuzzer");
        for (const char* const uri : {"/", "/interop", "/root/cimv2"})
            require(manager_.registerURI(provider_.getProviderName(), uri));
    }

    [[nodiscard]] const Http::Dispatcher& dispatcher() const { return dispatcher_; }

  private:
    TeskProviderPluginManager manager_;
    RoutingProvider provider_;
    Http::Dispatcher dispatcher_{manager_};
};

// What a client gets: a head, each line of which ends properly, and a body only where there may be
// one.
void checkAnswer(const Http::Answer& answer, bool headOnly) {
    std::string text;
    for (const boost::asio::const_buffer& part : answer.unsent())
        text.append(static_cast<const char*>(part.data()), part.size());
    require(text.starts_with("HTTP/1."));
    const std::size_t headEnd = text.find("\r\n\r\n");
    require(headEnd != std::string::npos);
    require(text.find("\r\nDate: ") < headEnd);
    require(text.find("\r\nConnection: close\r\n") <= headEnd);
    require(!headOnly || headEnd + 4 == text.size());
}

void checkPath(std::string_view path) {
    require(path.starts_with('/'));
    for (const char character : path) {
        const auto byte = static_cast<unsigned char>(character);
        require(byte >= 0x20 && byte != 0x7f);
    }
    const std::string whole = std::string(path) + "/";
    require(whole.find("/./") == std::string::npos);
    require(whole.find("/../") == std::string::npos);
}

void checkRequest(const TSKHTTPRequest& request) {
    checkPath(request.getUri());
    require(request.getMethod() != "CONNECT" && request.getMethod() != "TRACE");
    require(request.getHeaderFields().size() <= kLimits.mostFields + 1);
    if (const TSKString* host = request.getHost())
        require(Http::isHostField(*host));
    else
        require(request.getProtocol() == "HTTP/1.0");
    std::size_t hosts = 0;
    for (const auto& field : request.getHeaderFields()) {
        require(std::string_view(field.value).find_first_of("\r\n") == std::string_view::npos);
        hosts += field.name.equalsIgnoreCase("Host") ? 1 : 0;
    }
    require(hosts <= 1);
}

void answerHead(std::string_view head) {
    static const Host host;
    auto parsed = Http::parseRequestHead(head, kLimits);
    if (const auto* refusal = std::get_if<Http::Refusal>(&parsed)) {
        checkAnswer(Http::answerOf(*refusal, head.starts_with("HEAD ")), head.starts_with("HEAD "));
        return;
    }
    TSKHTTPRequest& request = std::get<RequestHead>(parsed).request;
    checkRequest(request);
    const bool headOnly = request.getMethod() == "HEAD";
    checkAnswer(host.dispatcher().answer(request, {}), headOnly);
}

// However the bytes come in, the scanner finds the same.
void checkPieces(std::string_view bytes, Progress whole, std::size_t end) {
    RequestHeadScanner scanner(kLimits);
    Progress progress = Progress::kIncomplete;
    for (std::size_t length = 0; length <= bytes.size() && progress == Progress::kIncomplete;
         ++length)
        progress = scanner.scan(bytes.substr(0, length));
    require(progress == whole);
    require(whole != Progress::kComplete || scanner.end() == end);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    RequestHeadScanner scanner(kLimits);
    const Progress progress = scanner.scan(bytes);
    checkPieces(bytes, progress, scanner.end());
    switch (progress) {
        case Progress::kIncomplete:
            break;
        case Progress::kComplete:
            require(scanner.end() <= kLimits.mostHeadBytes);
            answerHead(scanner.headIn(bytes));
            break;
        case Progress::kRefused:
            checkAnswer(Http::answerOf(scanner.refusal(), scanner.isHeadRequest(bytes)),
                        scanner.isHeadRequest(bytes));
            break;
    }
    // The parser does not rely on the scanner.
    if (progress != Progress::kComplete)
        answerHead(bytes);
    return 0;
}
