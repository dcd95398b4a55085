#include "Platform/Soap/SOAPQName.h"

#include "Platform/Internal/TSKObjectPool.h"

SOAPQName::SOAPQName(const char* localName) : localName_(localName) {}

SOAPQName::SOAPQName(const char* localName, const char* prefix)
    : localName_(localName),
      prefix_(prefix == nullptr ? nullptr : TSKSmrPtr<std::string>::make(prefix)) {}

SOAPQName::~SOAPQName() = default;

void* SOAPQName::operator new(std::size_t /*size*/) {
    return TSKObjectPool<SOAPQName>::allocate();
}

void SOAPQName::operator delete(void* memory) noexcept {
    TSKObjectPool<SOAPQName>::release(memory);
}
