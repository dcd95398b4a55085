#pragma once

#include "Platform/Util/Export.h"
#include "Platform/Util/TSKString.h"
#include "Platform/Util/TSKValSlist.h"

/// The CIM namespaces that the object manager holds. Install one with
/// TeskProviderPluginManager::setNamespaceList.
///
/// Thread safety: implementations must be usable by several threads at once.
class TESK_PLATFORM_EXPORT ITeskNamespaceList {
  public:
    virtual ~ITeskNamespaceList();

    /// The names, such as "root/cimv2", without a `/` at either end.
    [[nodiscard]] virtual TSKValSlist<TSKString> getNamespaceList() const = 0;
};
