#pragma once

#include <iosfwd>

#include "Platform/Soap/SOAPQName.h"
#include "Platform/Util/TSKSmrPtr.h"

class SOAPElement {
  public:
    static TSKSmrPtr<SOAPElement> makeElement(const TSKSmrPtr<SOAPQName>& name);

    TSKSmrPtr<SOAPQName> getQname() const;
    void addAttribute(const TSKSmrPtr<SOAPQName>& name, const char* value);
    void addChildElement(TSKSmrPtr<SOAPElement>& child);
    void printXML(std::ostream& stream, unsigned long depth) const;
};
