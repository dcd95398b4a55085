#include "ObjectManager/Index/SourceHash.h"

#include <openssl/evp.h>

#include "Platform/Util/TeskBaseException.h"
#include "Platform/Util/TeskStatusCode.h"

namespace Index {

std::string sourceHash(std::string_view text) {
    unsigned char digest[EVP_MAX_MD_SIZE];
    unsigned length = 0;
    if (EVP_Digest(text.data(), text.size(), digest, &length, EVP_sha256(), nullptr) != 1)
        throw TeskBaseException("sourceHash", "SHA-256 cannot be computed", CIM_ERR_FAILED);
    unsigned char base64[2 * EVP_MAX_MD_SIZE];
    EVP_EncodeBlock(base64, digest, static_cast<int>(length));
    return "'sha256-" + std::string(reinterpret_cast<const char*>(base64)) + "'";
}

}  // namespace Index
