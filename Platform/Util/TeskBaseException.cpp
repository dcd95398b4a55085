#include "Platform/Util/TeskBaseException.h"

TeskBaseException::TeskBaseException(const TSKString& where, const TSKString& message, int code)
    : where_(where),
      message_(message),
      description_(where + ": " + message + " (" + TSKString().itoa(code, 10) + ")"),
      code_(code) {}

TeskBaseException::~TeskBaseException() = default;
