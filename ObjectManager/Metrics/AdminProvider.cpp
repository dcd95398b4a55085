#include "ObjectManager/Metrics/AdminProvider.h"

#include <string>
#include <utility>

#include "Platform/Http/TSKHTTPResponse.h"

namespace Metrics {

namespace {

struct Content {
    const char* status = "200";
    const char* reason = "OK";
    const char* type = "text/plain; charset=utf-8";
    std::string body;
};

Content readiness(AdminProvider::State state) {
    switch (state) {
        case AdminProvider::State::kReady:
            return {.body = "The service is ready.\n"};
        case AdminProvider::State::kLoading:
            return {.status = "503",
                    .reason = "Service Unavailable",
                    .body = "The classes are being loaded.\n"};
        case AdminProvider::State::kStopping:
            break;
    }
    return {.status = "503",
            .reason = "Service Unavailable",
            .body = "The service is being stopped.\n"};
}

}  // namespace

TSKString AdminProvider::getProviderName() {
    return "AdminProvider";
}

void AdminProvider::processHTTPRequest(TSKGenericHTTPIStream& /*istr*/, TSKGenericHTTPOStream& ostr,
                                       TSKHTTPRequest& request, bool& /*handled*/,
                                       TSKSmrPtr<ITeskTransaction> /*transaction*/) {
    const TSKString& path = request.getUri();
    Content content;
    if (path == "/healthy")
        content.body = "The service is healthy.\n";
    else if (path == "/ready")
        content = readiness(state_);
    else if (path == "/metrics")
        content = {.type = "text/plain; version=0.0.4; charset=utf-8", .body = metrics_.text()};
    else
        content = {.status = "404",
                   .reason = "Not Found",
                   .body = "There are /healthy, /ready and /metrics.\n"};
    TSKHTTPResponse response(request.getProtocol(), content.status, content.reason);
    response.setHeaderField("Connection", "close", false);
    response.setHeaderField("Cache-Control", "no-store", false);
    response.setContentLength(content.body.size());
    response.setContentType(content.type);
    response.writeResponseTo(ostr);
    ostr.write(content.body.data(), content.body.size());
}

}  // namespace Metrics
