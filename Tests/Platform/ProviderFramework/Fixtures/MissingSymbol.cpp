#include "Platform/ProviderFramework/Provider.h"

int nobodyDefinesThis();

// A library that needs what no other library has.
extern "C" __attribute__((visibility("default"))) urma::pf::Provider* getTeskMissingSymbol() {
    nobodyDefinesThis();
    return nullptr;
}
