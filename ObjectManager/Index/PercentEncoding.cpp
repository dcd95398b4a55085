#include "ObjectManager/Index/PercentEncoding.h"

namespace Index {

namespace {

constexpr std::string_view kUnchanged =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~/";

}  // namespace

std::string percentEncodedPath(std::string_view path) {
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    std::string encoded;
    encoded.reserve(path.size());
    for (const char byte : path) {
        if (kUnchanged.find(byte) != std::string_view::npos) {
            encoded += byte;
            continue;
        }
        const auto code = static_cast<unsigned char>(byte);
        encoded += '%';
        encoded += kDigits[code >> 4U];
        encoded += kDigits[code & 0xFU];
    }
    return encoded;
}

}  // namespace Index
