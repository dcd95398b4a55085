#include "Platform/Http/TSKHTTPException.h"

TSKHTTPException::TSKHTTPException(const TSKString& where, const TSKString& message, int code)
    : TeskBaseException(where, message, code) {}

TSKHTTPException::~TSKHTTPException() = default;
