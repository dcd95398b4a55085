#include "Platform/ProviderFramework/Provider.h"
#include "Platform/Util/TeskBaseException.h"
#include "Platform/Util/TeskStatusCode.h"

namespace {

class ThrowingStartup : public urma::pf::Provider {
  public:
    TSKString getProviderName() override { return "ThrowingStartup"; }
    void startup() override {
        throw TeskBaseException("ThrowingStartup", "The hardware does not answer", CIM_ERR_FAILED);
    }
};

}  // namespace

extern "C" __attribute__((visibility("default"))) urma::pf::Provider* getTeskThrowingStartup() {
    static ThrowingStartup provider;
    return &provider;
}
