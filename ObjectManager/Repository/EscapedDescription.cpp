#include "ObjectManager/Repository/EscapedDescription.h"

#include <string_view>
#include <utility>

#include "ObjectManager/Base/Text.h"

namespace Repository {

TSKSmrPtr<CimValue> EscapedDescription::from(Mof::Value&& value,
                                             std::optional<Mof::DataType> type) {
    TSKSmrPtr<CimValue> plain = CimValue::from(std::move(value), type);
    if (!plain || !Base::needsXmlEscapes(plain->text()))
        return plain;
    return TSKSmrPtr<EscapedDescription>::make(plain->getType(), plain->text(), false);
}

TSKString EscapedDescription::toString() const {
    return TSKString(std::string_view(Base::xmlText(text())));
}

}  // namespace Repository
