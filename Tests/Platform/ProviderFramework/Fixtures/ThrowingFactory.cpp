#include "Platform/ProviderFramework/Provider.h"
#include "Platform/Util/TeskBaseException.h"
#include "Platform/Util/TeskStatusCode.h"

// A library whose factory fails.
extern "C" __attribute__((visibility("default"))) urma::pf::Provider* getTeskThrowingFactory() {
    throw TeskBaseException("getTeskThrowingFactory", "There is no hardware to manage",
                            CIM_ERR_FAILED);
}
