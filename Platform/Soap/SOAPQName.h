#pragma once

#include <string>

#include "Platform/Util/Export.h"
#include "Platform/Util/TSKReferenceCount.h"
#include "Platform/Util/TSKSmrPtr.h"
#include "Platform/Util/TSKString.h"

/// A qualified name of XML (Namespaces in XML 1.0): a local name and an optional prefix. Both are
/// taken as they are; whether they are valid names is their maker's business.
///
/// Thread safety: belongs to one thread while it is changed; may be read by several at once.
class TESK_PLATFORM_EXPORT SOAPQName final : public TSKReferenceCount {
  public:
    /// A name without a prefix.
    explicit SOAPQName(const char* localName);
    SOAPQName(const char* localName, const char* prefix);
    ~SOAPQName() override;

    static void* operator new(std::size_t size);
    static void operator delete(void* memory) noexcept;

    [[nodiscard]] const TSKString& getLocalName() const noexcept { return localName_; }

    /// The prefix, null when there is none. Names may share it.
    [[nodiscard]] const TSKSmrPtr<std::string>& getPrefix() const noexcept { return prefix_; }

    /// A null or empty `prefix` makes a name without one. The name shares the text, so changing it
    /// afterwards changes every name that has it.
    void setPrefix(TSKSmrPtr<std::string> prefix) noexcept { prefix_.swap(prefix); }

  private:
    TSKString localName_;
    TSKSmrPtr<std::string> prefix_;
};
