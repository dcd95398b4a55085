// The destructors of the interfaces stand here, so that each interface has its virtual table and
// its type information in this library alone: casts then work across libraries.

#include "Platform/ProviderFramework/ISecurityToken.h"
#include "Platform/ProviderFramework/ITeskAuthenticator.h"
#include "Platform/ProviderFramework/ITeskInstallation.h"
#include "Platform/ProviderFramework/ITeskInstanceManager.h"
#include "Platform/ProviderFramework/ITeskNamespaceList.h"
#include "Platform/ProviderFramework/ITeskProviderContext.h"
#include "Platform/ProviderFramework/ITeskTransaction.h"

urma::security::ISecurityToken::~ISecurityToken() = default;
ITeskAuthenticator::~ITeskAuthenticator() = default;
ITeskInstallation::~ITeskInstallation() = default;
ITeskInstanceManager::~ITeskInstanceManager() = default;
ITeskNamespaceList::~ITeskNamespaceList() = default;
ITeskProviderContext::~ITeskProviderContext() = default;
ITeskTransaction::~ITeskTransaction() = default;
