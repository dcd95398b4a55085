#include "Platform/Util/TSKNullPointerException.h"

#include "Platform/Util/TeskStatusCode.h"

TSKNullPointerException::TSKNullPointerException(const TSKString& where)
    : TeskBaseException(where, "There is no object behind the pointer", CIM_ERR_FAILED) {}

TSKNullPointerException::~TSKNullPointerException() = default;

void TSKNullPointerException::raise(const char* where) {
    throw TSKNullPointerException(where);
}
