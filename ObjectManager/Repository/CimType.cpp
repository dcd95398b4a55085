#include "ObjectManager/Repository/CimType.h"

#include <cstddef>
#include <vector>

namespace Repository {

namespace {

constexpr auto kLastDataType = static_cast<std::size_t>(Mof::DataType::kReference);

// Each type, followed by the array of it.
std::vector<TSKSmrPtr<ITeskType>> allTypes() {
    std::vector<TSKSmrPtr<ITeskType>> types;
    for (std::size_t number = 0; number <= kLastDataType; ++number) {
        for (const bool isArray : {false, true})
            types.emplace_back(
                TSKSmrPtr<CimType>::make(static_cast<Mof::DataType>(number), isArray));
    }
    return types;
}

}  // namespace

const TSKSmrPtr<ITeskType>& CimType::of(Mof::DataType dataType, bool isArray) {
    static const std::vector<TSKSmrPtr<ITeskType>> kTypes = allTypes();
    return kTypes[2 * static_cast<std::size_t>(dataType) + (isArray ? 1 : 0)];
}

}  // namespace Repository
