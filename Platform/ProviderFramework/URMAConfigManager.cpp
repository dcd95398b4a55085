#include "Platform/ProviderFramework/URMAConfigManager.h"

#include "Platform/Internal/TSKInstalled.h"
#include "Platform/Util/TeskBaseException.h"
#include "Platform/Util/TeskStatusCode.h"

namespace {

constinit TSKInstalled<ITeskInstallation> installedInstallation;

}  // namespace

void URMAConfigManager::cvtToAbsolutePath(TSKString& path) {
    if (path.find('/') == 0)
        return;
    const TSKSmrPtr<ITeskInstallation> installation = installedInstallation.get();
    if (!installation)
        throw TeskBaseException("URMAConfigManager::cvtToAbsolutePath",
                                "The installation directory is not known", CIM_ERR_FAILED);
    path = installation->getInstallationDirectory() + "/" + path;
}

TSKSmrPtr<ITeskInstallation> URMAConfigManager::setInstallation(
    TSKSmrPtr<ITeskInstallation> installation) {
    return installedInstallation.install(std::move(installation));
}
