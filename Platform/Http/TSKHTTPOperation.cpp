#include "Platform/Http/TSKHTTPOperation.h"

#include <algorithm>
#include <charconv>
#include <string>
#include <string_view>

namespace {

constexpr const char* kContentLength = "Content-Length";
constexpr const char* kContentType = "Content-Type";

auto isNamed(const TSKString& name) {
    return [&name](const TSKHTTPOperation::HeaderField& field) {
        return field.name.equalsIgnoreCase(name);
    };
}

}  // namespace

TSKHTTPOperation::~TSKHTTPOperation() = default;

void TSKHTTPOperation::setHeaderField(const TSKString& name, const TSKString& value,
                                      bool keepExisting) {
    const HeaderField field{.name = name, .value = value};
    const auto first = std::ranges::find_if(fields_, isNamed(name));
    if (keepExisting || first == fields_.end()) {
        fields_.push_back(field);
        return;
    }
    *first = field;
    fields_.erase(std::remove_if(first + 1, fields_.end(), isNamed(field.name)), fields_.end());
}

const TSKString* TSKHTTPOperation::getHeaderField(const TSKString& name) const noexcept {
    const auto field = std::ranges::find_if(fields_, isNamed(name));
    return field == fields_.end() ? nullptr : &field->value;
}

void TSKHTTPOperation::setContentLength(unsigned long length) {
    setHeaderField(kContentLength, std::to_string(length).c_str(), false);
}

unsigned long TSKHTTPOperation::getContentLength() const noexcept {
    const TSKString* field = getHeaderField(kContentLength);
    if (field == nullptr)
        return 0;
    const std::string_view text = *field;
    unsigned long length = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), length);
    return error == std::errc() && end == text.data() + text.size() ? length : 0;
}

void TSKHTTPOperation::setContentType(const TSKString& type) {
    setHeaderField(kContentType, type, false);
}
