#pragma once

#include <functional>
#include <string>

#include "Platform/Util/TeskBaseException.h"

namespace Commands {

/// A check of an option's value for CLI11: the value is right when `parse` takes it, and else wrong
/// for the reason that its TeskBaseException gives.
template <typename Parse>
[[nodiscard]] std::function<std::string(const std::string&)> checkedBy(Parse parse) {
    return [parse](const std::string& value) -> std::string {
        try {
            (void)parse(value);
            return {};
        } catch (const TeskBaseException& error) {
            return error.getMessage().data();
        }
    };
}

}  // namespace Commands
