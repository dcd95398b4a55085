#pragma once

#include <utility>

#include "Platform/ProviderFramework/ITeskNamespaceList.h"

/// An object manager's namespaces, given once and for all.
class FixedNamespaces : public ITeskNamespaceList {
  public:
    explicit FixedNamespaces(TSKValSlist<TSKString> names) : names_(std::move(names)) {}
    [[nodiscard]] TSKValSlist<TSKString> getNamespaceList() const override { return names_; }

  private:
    TSKValSlist<TSKString> names_;
};
