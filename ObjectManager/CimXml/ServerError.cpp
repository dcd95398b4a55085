#include "ObjectManager/CimXml/ServerError.h"

#include <iterator>

#include "Platform/Util/TeskStatusCode.h"

namespace CimXml {

ServerError::ServerError(Kind kind, const std::string& message, int code)
    : TeskBaseException("CimXml", TSKString(message), code), kind_(kind) {
    static_assert(kFailed == CIM_ERR_FAILED);
}

ServerError ServerError::at(const std::string& where) const {
    return {kind_, where + ": " + getMessage().data(), getErrorCode()};
}

std::string statusText(int code) {
    static constexpr const char* kNames[] = {
        nullptr,
        "CIM_ERR_FAILED",
        "CIM_ERR_ACCESS_DENIED",
        "CIM_ERR_INVALID_NAMESPACE",
        "CIM_ERR_INVALID_PARAMETER",
        "CIM_ERR_INVALID_CLASS",
        "CIM_ERR_NOT_FOUND",
        "CIM_ERR_NOT_SUPPORTED",
        "CIM_ERR_CLASS_HAS_CHILDREN",
        "CIM_ERR_CLASS_HAS_INSTANCES",
        "CIM_ERR_INVALID_SUPERCLASS",
        "CIM_ERR_ALREADY_EXISTS",
        "CIM_ERR_NO_SUCH_PROPERTY",
        "CIM_ERR_TYPE_MISMATCH",
        "CIM_ERR_QUERY_LANGUAGE_NOT_SUPPORTED",
        "CIM_ERR_INVALID_QUERY",
        "CIM_ERR_METHOD_NOT_AVAILABLE",
        "CIM_ERR_METHOD_NOT_FOUND",
        nullptr,
        nullptr,
        "CIM_ERR_NAMESPACE_NOT_EMPTY",
        "CIM_ERR_INVALID_ENUMERATION_CONTEXT",
        "CIM_ERR_INVALID_OPERATION_TIMEOUT",
        "CIM_ERR_PULL_HAS_BEEN_ABANDONED",
        "CIM_ERR_PULL_CANNOT_BE_ABANDONED",
        "CIM_ERR_FILTERED_ENUMERATION_NOT_SUPPORTED",
        "CIM_ERR_CONTINUATION_ON_ERROR_NOT_SUPPORTED",
        "CIM_ERR_SERVER_LIMITS_EXCEEDED",
        "CIM_ERR_SERVER_IS_SHUTTING_DOWN",
    };
    if (code < 0 || code >= static_cast<int>(std::size(kNames)) || kNames[code] == nullptr)
        return "status " + std::to_string(code);
    return std::string(kNames[code]) + " (" + std::to_string(code) + ")";
}

}  // namespace CimXml
