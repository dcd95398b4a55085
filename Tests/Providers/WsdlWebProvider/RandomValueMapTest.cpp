#include <gtest/gtest.h>
#include <limits>
#include <sstream>
#include <string>
#include <vector>

#include "Providers/WsdlWebProvider/WsdlUtil.h"
#include "Tests/Providers/WsdlWebProvider/NaiveValueMap.h"
#include "Tests/Providers/WsdlWebProvider/RandomValueMaps.h"
#include "Tests/Support/AllocationProbe.h"
#include "Tests/Support/ClassModel.h"

namespace {

std::string restrictionOf(const RandomValueMaps::Case& valueMap) {
    std::vector<ModelElement> elements;
    for (const std::optional<std::string>& entry : valueMap.entries)
        elements.emplace_back(entry ? entry->c_str() : nullptr);
    auto root =
        SOAPElement::makeElement(TSKSmrPtr<SOAPQName>(new SOAPQName("simpleContent", "xs")));
    WsdlUtil::addRestrictionValueMapChildElement(root, ModelType(valueMap.typeName),
                                                 ModelValue(elements), valueMap.addMaxLength,
                                                 valueMap.maxLength);
    std::ostringstream text;
    root->printXML(text, std::numeric_limits<unsigned long>::max());
    return text.str();
}

std::string describe(const RandomValueMaps::Case& valueMap) {
    std::string text = valueMap.typeName + " {";
    for (const std::optional<std::string>& entry : valueMap.entries)
        text += entry ? " \"" + *entry + "\"" : " null";
    return text + " }";
}

TEST(RandomValueMap, GivesWhatAPlainEvaluationGives) {
    constexpr int kCases = 25'000;
    constexpr unsigned long kSeed = 20'261'121;
    constexpr std::size_t kMostAllocations = 100'000'000;  // so that endless gaps come to an end
    RandomValueMaps maps(kSeed);
    AllocationProbe::failAt(kMostAllocations);
    for (int number = 0; number < kCases; ++number) {
        const RandomValueMaps::Case valueMap = maps.next();
        ASSERT_EQ(restrictionOf(valueMap),
                  naiveValueMapRestriction(valueMap.typeName, valueMap.entries,
                                           valueMap.addMaxLength, valueMap.maxLength))
            << "case " << number << ": " << describe(valueMap);
    }
    AllocationProbe::failAt(0);
}

}  // namespace
