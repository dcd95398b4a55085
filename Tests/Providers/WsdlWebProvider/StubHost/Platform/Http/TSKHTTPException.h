#pragma once

#include "Platform/Util/TSKString.h"
#include "Platform/Util/TeskBaseException.h"

class TSKHTTPException : public TeskBaseException {
  public:
    TSKHTTPException(const TSKString& where, const TSKString& message, int code);
};
