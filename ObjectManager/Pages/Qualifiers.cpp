#include "ObjectManager/Pages/Qualifiers.h"

#include "Platform/Util/TSKValSlistIterator.h"

namespace Pages {

namespace {

std::vector<NamedValue> combined(const std::vector<std::string>& values,
                                 const std::vector<std::string>& names) {
    std::vector<NamedValue> all(values.empty() ? names.size() : values.size());
    for (std::size_t place = 0; place < all.size(); ++place) {
        all[place].value = values.empty() ? std::to_string(place) : values[place];
        if (place < names.size())
            all[place].name = names[place];
    }
    return all;
}

}  // namespace

std::string textOf(const urma::IQualified& definition, const char* qualifier) {
    const urma::IQualifier* const found = definition.getQualifier(qualifier, true);
    return found == nullptr || !found->hasValue() ? "" : std::string(found->getValue()->toString());
}

std::vector<std::string> textsOf(const urma::IQualified& definition, const char* qualifier) {
    const urma::IQualifier* const found = definition.getQualifier(qualifier, true);
    if (found == nullptr || !found->hasValue())
        return {};
    const TSKSmrPtr<ITeskValue> value = found->getValue();
    const TSKSmrPtr<TSKValSlist<TSKSmrPtr<ITeskValue>>> elements = value->getArrayValues();
    if (!elements)
        return {std::string(value->toString())};
    std::vector<std::string> texts;
    texts.reserve(elements->entries());
    TSKValSlistIterator<TSKSmrPtr<ITeskValue>> element(*elements);
    while (element()) {
        const TSKSmrPtr<ITeskValue>& each = element.key();
        texts.push_back(each ? std::string(each->toString()) : "");
    }
    return texts;
}

std::vector<NamedValue> namedValuesOf(const urma::IQualified& definition) {
    std::vector<NamedValue> values =
        combined(textsOf(definition, "ValueMap"), textsOf(definition, "Values"));
    return values.empty()
               ? combined(textsOf(definition, "BitMap"), textsOf(definition, "BitValues"))
               : values;
}

}  // namespace Pages
