#pragma once

#include <string_view>

#include "Providers/WsdlWebProvider/WsdlUtil.h"

/// Calls `visit` with each row of IntrinsicMethodsInfo.
template <typename Visit>
void forEachIntrinsicMethod(const Visit& visit) {
    for (const IntrinsicMethodInfo* method = IntrinsicMethodsInfo; method->name != nullptr;
         ++method)
        visit(*method);
}

/// Whether the body of a message holds an element of the class's own, named after the operation.
[[nodiscard]] inline bool isOwnElement(const char* message) noexcept {
    return message != nullptr && std::string_view(message) == "*";
}

/// What follows the name of an operation or method in the names of its body elements.
inline constexpr const char* kInputSuffix = "_INPUT";
inline constexpr const char* kOutputSuffix = "_OUTPUT";
