#pragma once

#include <string>

#include "Platform/Util/TSKSmrPtr.h"

class SOAPQName {
  public:
    explicit SOAPQName(const char* localName);
    SOAPQName(const char* localName, const char* prefix);

    TSKSmrPtr<std::string> getPrefix() const;
    void setPrefix(TSKSmrPtr<std::string> prefix);
};
