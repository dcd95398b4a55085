#pragma once

#include "Platform/Util/Export.h"
#include "Platform/Util/TeskBaseException.h"

/// Thrown where a null pointer is dereferenced, or an iterator that has no current element is read.
/// Its code is CIM_ERR_FAILED.
///
/// Thread safety: immutable, may be used by several threads at once.
class TESK_PLATFORM_EXPORT TSKNullPointerException : public TeskBaseException {
  public:
    explicit TSKNullPointerException(const TSKString& where);
    TSKNullPointerException(const TSKNullPointerException&) noexcept = default;
    TSKNullPointerException& operator=(const TSKNullPointerException&) noexcept = default;
    ~TSKNullPointerException() override;

    /// Throws one. Keeps the cold path of the pointer types out of their callers' code.
    [[noreturn]] static void raise(const char* where);
};
