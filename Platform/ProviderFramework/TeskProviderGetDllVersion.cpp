#include "Platform/ProviderFramework/TeskProviderGetDllVersion.h"

bool TeskProviderGetDllVersion(TSKString& version) {
    version = TESK_VERSION;
    return true;
}
