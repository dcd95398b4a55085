#include "Platform/ProviderFramework/Provider.h"

namespace {

class GoodProvider : public urma::pf::Provider {
  public:
    TSKString getProviderName() override { return "GoodProvider"; }
};

}  // namespace

// A library as it should be.
extern "C" __attribute__((visibility("default"))) urma::pf::Provider* getTeskGoodProvider() {
    static GoodProvider provider;
    return &provider;
}
