#pragma once

#include <atomic>
#include <functional>
#include <string_view>
#include <utility>

#include "Platform/ProviderFramework/TeskProviderPluginManager.h"

/// A provider whose responses a test states as a function.
class FunctionProvider : public urma::pf::Provider {
  public:
    using Function = std::function<void(TSKHTTPRequest&, TSKGenericHTTPOStream&)>;

    explicit FunctionProvider(Function function = nullptr) : respond(std::move(function)) {}

    TSKString getProviderName() override { return "FunctionProvider"; }

    void processHTTPRequest(TSKGenericHTTPIStream& istr, TSKGenericHTTPOStream& ostr,
                            TSKHTTPRequest& request, bool& handled,
                            TSKSmrPtr<ITeskTransaction> /*transaction*/) override {
        char byte = 0;
        bodyBytes += istr.read(&byte, 1);
        respond(request, ostr);
        handled = handled && !leavesAnswer;
    }

    /// Adds it to `manager` for all paths that begin with "/test", and POST besides GET and HEAD.
    void addTo(TeskProviderPluginManager& manager) {
        (void)manager.addProvider(*this, "test");
        (void)manager.registerURI(getProviderName(), "/test");
        (void)manager.registerMethods(getProviderName(), {"GET", "HEAD", "POST"});
    }

    Function respond;
    bool leavesAnswer = false;  ///< to the front end
    std::atomic<unsigned long> bodyBytes = 0;
};

inline void writeTo(TSKGenericHTTPOStream& ostr, std::string_view text) {
    ostr.write(text.data(), text.size());
}
