#pragma once

#include <exception>

#include "Platform/Util/Export.h"
#include "Platform/Util/TSKString.h"

/// What every failure that the platform reports derives from.
///
/// Thread safety: immutable, may be used by several threads at once.
class TESK_PLATFORM_EXPORT TeskBaseException : public std::exception {
  public:
    /// `where` names the operation that failed, `message` says what was wrong, `code` is a
    /// TeskStatusCode unless a derived class gives its codes a meaning of their own.
    TeskBaseException(const TSKString& where, const TSKString& message, int code);
    TeskBaseException(const TeskBaseException&) noexcept = default;
    TeskBaseException& operator=(const TeskBaseException&) noexcept = default;
    ~TeskBaseException() override;

    [[nodiscard]] int getErrorCode() const noexcept { return code_; }
    [[nodiscard]] const TSKString& getWhere() const noexcept { return where_; }
    [[nodiscard]] const TSKString& getMessage() const noexcept { return message_; }

    /// "WHERE: MESSAGE (CODE)".
    [[nodiscard]] const char* what() const noexcept override { return description_.data(); }

  private:
    TSKString where_;
    TSKString message_;
    TSKString description_;
    int code_;
};
