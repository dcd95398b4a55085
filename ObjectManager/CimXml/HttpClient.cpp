#include "ObjectManager/CimXml/HttpClient.h"

#include <algorithm>
#include <chrono>
#include <curl/curl.h>
#include <exception>
#include <list>
#include <mutex>
#include <new>
#include <utility>

#include "ObjectManager/Base/Ascii.h"
#include "ObjectManager/Base/Text.h"
#include "ObjectManager/CimXml/ServerError.h"

namespace CimXml {

namespace {

using Clock = std::chrono::steady_clock;
using Kind = ServerError::Kind;
using std::chrono::milliseconds;

constexpr long kOk = 200;
constexpr long kUnauthorized = 401;

// The two kinds of failures that functions of libcurl give back.
void require(CURLcode code) {
    if (code == CURLE_OUT_OF_MEMORY)
        throw std::bad_alloc();
    if (code != CURLE_OK)
        throw ServerError(Kind::kOptions, curl_easy_strerror(code));
}

void require(CURLMcode code) {
    if (code == CURLM_OUT_OF_MEMORY)
        throw std::bad_alloc();
    if (code != CURLM_OK)
        throw ServerError(Kind::kConnection, curl_multi_strerror(code));
}

void setUpLibrary() {
    static std::once_flag once;
    std::call_once(once, [] {
        if (curl_global_init(CURL_GLOBAL_DEFAULT) != CURLE_OK)
            throw std::bad_alloc();
    });
}

struct Free {
    void operator()(CURL* handle) const noexcept { curl_easy_cleanup(handle); }
    void operator()(CURLU* handle) const noexcept { curl_url_cleanup(handle); }
    void operator()(curl_slist* list) const noexcept { curl_slist_free_all(list); }
    void operator()(char* text) const noexcept { curl_free(text); }
};
struct FreeMulti {
    void operator()(CURLM* handle) const noexcept { curl_multi_cleanup(handle); }
};
using Easy = std::unique_ptr<CURL, Free>;
using Multi = std::unique_ptr<CURLM, FreeMulti>;
using Url = std::unique_ptr<CURLU, Free>;
using HeaderList = std::unique_ptr<curl_slist, Free>;

// Empty for a part that is not there.
std::string partOf(CURLU* url, CURLUPart part) {
    char* text = nullptr;
    const CURLUcode code = curl_url_get(url, part, &text, 0);
    const std::unique_ptr<char, Free> owner(text);
    if (code == CURLUE_OUT_OF_MEMORY)
        throw std::bad_alloc();
    return code == CURLUE_OK ? text : "";
}

// Where requests go.
struct Address {
    std::string url;     // with port and path
    std::string server;  // without path
    bool isSecure;
};

Address addressOf(const std::string& text) {
    const auto wrong = [&](const std::string& reason) {
        return ServerError(Kind::kOptions,
                           "the address " + Base::quoted(Base::logText(text)) + " " + reason);
    };
    setUpLibrary();
    const Url url(curl_url());
    if (!url)
        throw std::bad_alloc();
    const CURLUcode code = curl_url_set(url.get(), CURLUPART_URL, text.c_str(), 0);
    if (code == CURLUE_OUT_OF_MEMORY)
        throw std::bad_alloc();
    const std::string scheme = partOf(url.get(), CURLUPART_SCHEME);
    if (code != CURLUE_OK || (scheme != "http" && scheme != "https"))
        throw wrong("must be like https://HOST:5989 or http://HOST:5988");
    if (!partOf(url.get(), CURLUPART_USER).empty() ||
        !partOf(url.get(), CURLUPART_PASSWORD).empty())
        throw ServerError(Kind::kOptions, "the address must not hold a user or a password");
    if (!partOf(url.get(), CURLUPART_QUERY).empty() ||
        !partOf(url.get(), CURLUPART_FRAGMENT).empty())
        throw wrong("must end with the path");
    const std::string given = partOf(url.get(), CURLUPART_PORT);
    const std::string port = !given.empty() ? given : scheme == "https" ? "5989" : "5988";
    const std::string path = partOf(url.get(), CURLUPART_PATH);
    const std::string server = scheme + "://" + partOf(url.get(), CURLUPART_HOST) + ":" + port;
    return {.url = server + (path.size() > 1 ? path : "/cimom"),
            .server = server,
            .isSecure = scheme == "https"};
}

// A field of a header section; the name is empty for what is none.
struct Field {
    std::string_view name;
    std::string_view value;
};

std::string_view withoutSpaces(std::string_view text) noexcept {
    while (!text.empty() && Base::isSpace(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && Base::isSpace(text.back()))
        text.remove_suffix(1);
    return text;
}

Field fieldOf(std::string_view line) noexcept {
    const std::size_t colon = line.find(':');
    if (colon == std::string_view::npos)
        return {};
    return {.name = line.substr(0, colon), .value = withoutSpaces(line.substr(colon + 1))};
}

std::string shown(std::string_view text) {
    return Base::quoted(Base::logText(text));
}

// Throws unless a body of that type is XML in UTF-8, which it is without a charset.
void checkContentType(std::string_view value) {
    const std::size_t end = std::min(value.find(';'), value.size());
    const std::string_view type = withoutSpaces(value.substr(0, end));
    if (!Base::equalsIgnoringCase(type, "application/xml") &&
        !Base::equalsIgnoringCase(type, "text/xml"))
        throw ServerError(Kind::kNotCimXml, "the response is of the type " + shown(value));
    for (std::string_view rest = value.substr(end); !rest.empty();) {
        rest.remove_prefix(1);
        const std::size_t next = std::min(rest.find(';'), rest.size());
        std::string_view parameter = withoutSpaces(rest.substr(0, next));
        rest.remove_prefix(next);
        constexpr std::string_view kCharset = "charset=";
        if (!Base::startsWithIgnoringCase(parameter, kCharset))
            continue;
        parameter.remove_prefix(kCharset.size());
        if (!Base::equalsIgnoringCase(parameter, "utf-8") &&
            !Base::equalsIgnoringCase(parameter, "\"utf-8\""))
            throw ServerError(Kind::kNotCimXml,
                              "the charset of the response is " + shown(parameter));
    }
}

// A request under way.
class Transfer {
  public:
    Transfer(HttpClient::Call&& call, const Address& address, const ServerOptions& options)
        : call_(std::move(call)), address_(address), limits_(options.limits) {
        if (!easy_)
            throw std::bad_alloc();
        setRequest();
        setServer(options);
        set(CURLOPT_WRITEFUNCTION, &writeBody);
        set(CURLOPT_WRITEDATA, this);
        set(CURLOPT_HEADERFUNCTION, &writeHeader);
        set(CURLOPT_HEADERDATA, this);
        set(CURLOPT_ERRORBUFFER, errorText_);
        set(CURLOPT_PRIVATE, this);
    }
    Transfer(const Transfer&) = delete;
    Transfer& operator=(const Transfer&) = delete;
    ~Transfer() {
        if (multi_ != nullptr)
            (void)curl_multi_remove_handle(multi_, easy_.get());
    }

    void startOn(CURLM* multi) {
        require(curl_multi_add_handle(multi, easy_.get()));
        multi_ = multi;
    }

    [[nodiscard]] const CURL* handle() const noexcept { return easy_.get(); }
    [[nodiscard]] Clock::time_point lastProgress() const noexcept { return lastProgress_; }

    // "EnumerateClasses of root/cimv2".
    [[nodiscard]] std::string name() const {
        return call_.request.operation + " of " + call_.request.nameSpace;
    }

    // Throws unless the response is there and whole.
    void finish(CURLcode code) {
        if (failure_)
            std::rethrow_exception(failure_);
        if (code != CURLE_OK)
            throwFailure(code);
        checkResponse();
        call_.onEnd();
    }

  private:
    template <typename Value>
    void set(CURLoption option, Value value) {
        require(curl_easy_setopt(easy_.get(), option, value));
    }

    void setText(CURLoption option, const std::string& text) {
        if (!text.empty())
            set(option, text.c_str());
    }

    void addHeader(const std::string& line) {
        curl_slist* const longer = curl_slist_append(headers_.get(), line.c_str());
        if (longer == nullptr)
            throw std::bad_alloc();
        (void)headers_.release();
        headers_.reset(longer);
    }

    void setRequest() {
        const Request& request = call_.request;
        addHeader("Content-Type: application/xml; charset=\"utf-8\"");
        addHeader("Accept: application/xml, text/xml");
        addHeader("CIMOperation: MethodCall");
        addHeader("CIMMethod: " + request.operation);
        addHeader("CIMObject: " + request.nameSpace);
        addHeader("Expect:");
        set(CURLOPT_HTTPHEADER, headers_.get());
        set(CURLOPT_POST, 1L);
        set(CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(request.body.size()));
        set(CURLOPT_POSTFIELDS, request.body.c_str());
        set(CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1));
    }

    void setServer(const ServerOptions& options) {
        set(CURLOPT_URL, address_.url.c_str());
        set(CURLOPT_PROTOCOLS_STR, address_.isSecure ? "https" : "http");
        set(CURLOPT_FOLLOWLOCATION, 0L);
        set(CURLOPT_PROXY, "");
        set(CURLOPT_NOSIGNAL, 1L);
        set(CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(limits_.connectTimeout.count()));
        if (!options.user.empty()) {
            set(CURLOPT_HTTPAUTH, static_cast<long>(CURLAUTH_BASIC));
            set(CURLOPT_USERNAME, options.user.c_str());
            set(CURLOPT_PASSWORD, options.password.c_str());
        } else if (!options.netrcFile.empty()) {
            set(CURLOPT_HTTPAUTH, static_cast<long>(CURLAUTH_BASIC));
            set(CURLOPT_NETRC, static_cast<long>(CURL_NETRC_OPTIONAL));
            set(CURLOPT_NETRC_FILE, options.netrcFile.c_str());
        }
        if (!address_.isSecure)
            return;
        set(CURLOPT_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2));
        set(CURLOPT_SSL_VERIFYPEER, options.verifiesCertificate ? 1L : 0L);
        set(CURLOPT_SSL_VERIFYHOST, options.verifiesCertificate ? 2L : 0L);
        setText(CURLOPT_CAINFO, options.authoritiesFile);
        if (!options.authoritiesFile.empty())
            set(CURLOPT_CAPATH, static_cast<const char*>(nullptr));
        setText(CURLOPT_SSLCERT, options.certificateFile);
        setText(CURLOPT_SSLKEY, options.keyFile);
    }

    // What libcurl calls; no exception may pass through it. A smaller number than it has given ends
    // the transfer.
    template <typename Action>
    std::size_t guarded(std::size_t size, const Action& action) noexcept {
        lastProgress_ = Clock::now();
        try {
            action();
            return size;
        } catch (...) {
            failure_ = std::current_exception();
            return 0;
        }
    }

    static std::size_t writeHeader(const char* bytes, std::size_t /*one*/, std::size_t size,
                                   void* transfer) noexcept {
        Transfer& self = *static_cast<Transfer*>(transfer);
        return self.guarded(size, [&] { self.readHeaderLine({bytes, size}); });
    }

    static std::size_t writeBody(const char* bytes, std::size_t /*one*/, std::size_t size,
                                 void* transfer) noexcept {
        Transfer& self = *static_cast<Transfer*>(transfer);
        return self.guarded(size, [&] {
            self.checkResponse();
            self.call_.onBytes({bytes, size});
        });
    }

    void readHeaderLine(std::string_view line) {
        headerSize_ += line.size();
        if (headerSize_ > limits_.maxHeaderSize) {
            throw ServerError(Kind::kLimit, "the header section of the response has more than " +
                                                Base::bytesText(limits_.maxHeaderSize));
        }
        // Of an interim response nothing counts for the one that follows.
        if (line.starts_with("HTTP/")) {
            contentType_.clear();
            location_.clear();
            cimError_.clear();
        }
        const auto [name, value] = fieldOf(line);
        const auto isField = [&field = name](std::string_view wanted) {
            return Base::equalsIgnoringCase(field, wanted);
        };
        if (isField("Content-Type"))
            contentType_ = value;
        else if (isField("Location"))
            location_ = value;
        else if (isField("CIMError"))
            cimError_ = value;
        else if ((isField("Content-Encoding") && !Base::equalsIgnoringCase(value, "identity")) ||
                 (isField("Transfer-Encoding") && !Base::equalsIgnoringCase(value, "chunked")))
            throw ServerError(Kind::kNotCimXml, "the response has the encoding " + shown(value));
    }

    // By its header section.
    void checkResponse() const {
        long status = 0;
        require(curl_easy_getinfo(easy_.get(), CURLINFO_RESPONSE_CODE, &status));
        if (status == kUnauthorized)
            throw ServerError(Kind::kUnauthorized,
                              "the user or the password is not accepted (401)");
        constexpr long kFirstRedirect = 300;
        constexpr long kFirstError = 400;
        const std::string number = "the server responds with the status " + std::to_string(status);
        if (status >= kFirstRedirect && status < kFirstError && !location_.empty()) {
            throw ServerError(Kind::kHttpStatus, number + ", a redirect to " + shown(location_) +
                                                     ", which is not followed");
        }
        if (status != kOk) {
            throw ServerError(Kind::kHttpStatus,
                              cimError_.empty() ? number : number + ": " + shown(cimError_));
        }
        checkContentType(contentType_);
    }

    [[noreturn]] void throwFailure(CURLcode code) const {
        if (code == CURLE_OUT_OF_MEMORY)
            throw std::bad_alloc();
        const std::string text = *errorText_ == '\0' ? curl_easy_strerror(code) : errorText_;
        throw ServerError(kindOf(code, text), Base::logText(text));
    }

    [[nodiscard]] Kind kindOf(CURLcode code, const std::string& text) const {
        switch (code) {
            case CURLE_SSL_CONNECT_ERROR:
            case CURLE_SSL_ENGINE_NOTFOUND:
            case CURLE_SSL_ENGINE_SETFAILED:
            case CURLE_SSL_CERTPROBLEM:
            case CURLE_SSL_CIPHER:
            case CURLE_PEER_FAILED_VERIFICATION:
            case CURLE_SSL_ENGINE_INITFAILED:
            case CURLE_SSL_CACERT_BADFILE:
            case CURLE_SSL_SHUTDOWN_FAILED:
            case CURLE_SSL_CRL_BADFILE:
            case CURLE_SSL_ISSUER_ERROR:
            case CURLE_SSL_PINNEDPUBKEYNOTMATCH:
            case CURLE_SSL_INVALIDCERTSTATUS:
            case CURLE_SSL_CLIENTCERT:
                return Kind::kTls;
            case CURLE_UNSUPPORTED_PROTOCOL:
            case CURLE_WEIRD_SERVER_REPLY:
            case CURLE_BAD_CONTENT_ENCODING:
                return Kind::kNotCimXml;
            default:
                // TLS 1.3 refuses a client after the handshake, while it reads.
                return address_.isSecure && text.find("SSL") != std::string::npos
                           ? Kind::kTls
                           : Kind::kConnection;
        }
    }

    const HttpClient::Call call_;
    const Address& address_;
    const Limits& limits_;
    HeaderList headers_;
    Easy easy_{curl_easy_init()};
    CURLM* multi_ = nullptr;
    char errorText_[CURL_ERROR_SIZE] = {};
    std::exception_ptr failure_;
    Clock::time_point lastProgress_ = Clock::now();
    std::size_t headerSize_ = 0;
    std::string contentType_;
    std::string location_;
    std::string cimError_;
};

}  // namespace

class HttpClient::Implementation {
  public:
    explicit Implementation(const ServerOptions& options)
        : options_(options), address_(addressOf(options.url)), multi_(curl_multi_init()) {
        if (!multi_)
            throw std::bad_alloc();
        if (options.user.find(':') != std::string::npos)
            throw ServerError(Kind::kOptions, "the user must not hold a colon");
    }

    [[nodiscard]] const std::string& serverName() const noexcept { return address_.server; }

    void restartTime() noexcept { deadline_ = Clock::now() + options_.limits.totalTimeout; }

    void perform(const NextCall& next, const std::stop_token& stop) {
        const std::stop_callback wakeUp(stop, [this] { (void)curl_multi_wakeup(multi_.get()); });
        std::list<Transfer> transfers;
        while (startMore(next, transfers)) {
            int running = 0;
            require(curl_multi_perform(multi_.get(), &running));
            if (finishOne(transfers))
                continue;
            checkTime(transfers, stop);
            const auto wait =
                std::chrono::ceil<milliseconds>(nextDeadline(transfers) - Clock::now());
            constexpr milliseconds kMostWait{1000};
            require(curl_multi_poll(
                multi_.get(), nullptr, 0,
                static_cast<int>(std::clamp(wait, milliseconds{0}, kMostWait).count()), nullptr));
        }
    }

  private:
    // Whether anything is under way.
    bool startMore(const NextCall& next, std::list<Transfer>& transfers) {
        while (transfers.size() < std::max<std::size_t>(options_.parallelRequests, 1)) {
            std::optional<Call> call = next();
            if (!call)
                break;
            Transfer& added = transfers.emplace_back(std::move(*call), address_, options_);
            added.startOn(multi_.get());
        }
        return !transfers.empty();
    }

    // Whether a transfer has ended.
    bool finishOne(std::list<Transfer>& transfers) {
        int left = 0;
        const CURLMsg* const message = curl_multi_info_read(multi_.get(), &left);
        if (message == nullptr || message->msg != CURLMSG_DONE)
            return false;
        const CURLcode code = message->data.result;
        const auto ended = std::ranges::find(transfers, message->easy_handle, &Transfer::handle);
        try {
            ended->finish(code);
        } catch (const ServerError& error) {
            throw error.at(ended->name());
        }
        transfers.erase(ended);
        return true;
    }

    [[nodiscard]] Clock::time_point nextDeadline(const std::list<Transfer>& transfers) const {
        Clock::time_point first = deadline_;
        for (const Transfer& transfer : transfers)
            first = std::min(first, transfer.lastProgress() + options_.limits.stallTimeout);
        return first;
    }

    void checkTime(const std::list<Transfer>& transfers, const std::stop_token& stop) const {
        const std::string name = transfers.front().name();
        if (stop.stop_requested())
            throw ServerError(Kind::kStopped, name + ": stopped");
        const Clock::time_point now = Clock::now();
        if (now >= deadline_) {
            throw ServerError(Kind::kConnection,
                              name + ": not complete after " + text(options_.limits.totalTimeout));
        }
        for (const Transfer& transfer : transfers) {
            if (now >= transfer.lastProgress() + options_.limits.stallTimeout) {
                throw ServerError(Kind::kConnection, transfer.name() + ": nothing has come for " +
                                                         text(options_.limits.stallTimeout));
            }
        }
    }

    static std::string text(milliseconds time) {
        return Base::secondsText(std::chrono::duration<double>(time).count());
    }

    const ServerOptions& options_;
    const Address address_;
    const Multi multi_;
    Clock::time_point deadline_ = Clock::now() + options_.limits.totalTimeout;
};

HttpClient::HttpClient(const ServerOptions& options)
    : implementation_(std::make_unique<Implementation>(options)) {}

HttpClient::~HttpClient() = default;

const std::string& HttpClient::serverName() const noexcept {
    return implementation_->serverName();
}

void HttpClient::restartTime() noexcept {
    implementation_->restartTime();
}

void HttpClient::perform(const NextCall& next, const std::stop_token& stop) {
    try {
        implementation_->perform(next, stop);
    } catch (const ServerError& error) {
        throw error.at(serverName());
    }
}

}  // namespace CimXml
