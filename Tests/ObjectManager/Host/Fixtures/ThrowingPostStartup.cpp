#include "Platform/ProviderFramework/Provider.h"
#include "Platform/Util/TeskBaseException.h"
#include "Platform/Util/TeskStatusCode.h"

namespace {

class ThrowingPostStartup : public urma::pf::Provider {
  public:
    TSKString getProviderName() override { return "ThrowingPostStartup"; }
    void postStartup() override {
        throw TeskBaseException("ThrowingPostStartup", "The hardware does not answer",
                                CIM_ERR_FAILED);
    }
};

}  // namespace

extern "C" __attribute__((visibility("default"))) urma::pf::Provider* getTeskThrowingPostStartup() {
    static ThrowingPostStartup provider;
    return &provider;
}
