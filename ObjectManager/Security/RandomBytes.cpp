#include "ObjectManager/Security/RandomBytes.h"

#include <cerrno>
#include <cstring>
#include <sys/random.h>

#include "Platform/Util/TeskBaseException.h"
#include "Platform/Util/TeskStatusCode.h"

namespace Security {

void fillWithRandomBytes(unsigned char* bytes, std::size_t length) {
    while (length > 0) {
        const ssize_t count = getrandom(bytes, length, 0);
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0) {
            throw TeskBaseException(
                "Security::fillWithRandomBytes",
                "The system gives no random bytes: " + TSKString(std::strerror(errno)),
                CIM_ERR_FAILED);
        }
        bytes += count;
        length -= static_cast<std::size_t>(count);
    }
}

}  // namespace Security
