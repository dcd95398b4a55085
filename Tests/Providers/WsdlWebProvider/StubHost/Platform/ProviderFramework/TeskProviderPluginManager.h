#pragma once

#include "Platform/Cim/ITeskRepository.h"

class TeskProviderPluginManager {
  public:
    static TSKSmrPtr<TeskProviderPluginManager> getTeskProviderPluginManager();

    TSKValSlist<TSKString> getNamespaceList() const;
    TSKSmrPtr<ITeskRepository> getRepository() const;
    bool registerURI(const TSKString& providerName, const TSKString& uri);
};
