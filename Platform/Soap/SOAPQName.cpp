#include "Platform/Soap/SOAPQName.h"

SOAPQName::SOAPQName(const char* localName) : localName_(localName) {}

SOAPQName::SOAPQName(const char* localName, const char* prefix)
    : localName_(localName),
      prefix_(prefix == nullptr ? nullptr : TSKSmrPtr<std::string>::make(prefix)) {}

SOAPQName::~SOAPQName() = default;
