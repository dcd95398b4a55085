#include "ObjectManager/Mof/CaseInsensitive.h"

#include <random>

namespace Mof {

std::uint64_t hashKey() noexcept {
    static const std::uint64_t kKey = [] {
        std::random_device random;
        return std::uint64_t{random()} << 32U | random();
    }();
    return kKey;
}

}  // namespace Mof
