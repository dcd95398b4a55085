#include "Platform/ProviderFramework/Provider.h"

// A library whose factory has no provider to give.
extern "C" __attribute__((visibility("default"))) urma::pf::Provider* getTeskNullFactory() {
    return nullptr;
}
