#pragma once

#include <openssl/evp.h>
#include <string>
#include <string_view>

/// The value of a field "Authorization" that carries a name and a password.
inline std::string basicField(std::string_view user, std::string_view password) {
    const std::string text = std::string(user) + ":" + std::string(password);
    std::string encoded(4 * ((text.size() + 2) / 3) + 1, '\0');
    EVP_EncodeBlock(reinterpret_cast<unsigned char*>(encoded.data()),
                    reinterpret_cast<const unsigned char*>(text.data()),
                    static_cast<int>(text.size()));
    encoded.pop_back();
    return "Basic " + encoded;
}
