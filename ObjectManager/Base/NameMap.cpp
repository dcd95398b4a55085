#include "ObjectManager/Base/NameMap.h"

#include <random>

namespace Base {

std::uint64_t hashKey() noexcept {
    static const std::uint64_t kKey = [] {
        std::random_device random;
        return std::uint64_t{random()} << 32U | random();
    }();
    return kKey;
}

}  // namespace Base
