#include <algorithm>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Providers/WsdlWebProvider/WsdlUtil.h"
#include "Tests/Providers/WsdlWebProvider/NaiveValueMap.h"
#include "Tests/Providers/WsdlWebProvider/RandomValueMaps.h"
#include "Tests/Providers/WsdlWebProvider/SchemaPrinting.h"
#include "Tests/Support/AllocationProbe.h"
#include "Tests/Support/ClassModel.h"

namespace {

using Case = RandomValueMaps::Case;

std::string printedRestriction(const Case& valueMap) {
    std::vector<ModelElement> elements;
    for (const std::optional<std::string>& entry : valueMap.entries)
        elements.emplace_back(entry ? entry->c_str() : nullptr);
    return SchemaPrinting::contentOf([&](TSKSmrPtr<SOAPElement>& parent) {
        WsdlUtil::addRestrictionValueMapChildElement(parent, ModelType(valueMap.typeName),
                                                     ModelValue(elements), valueMap.addMaxLength,
                                                     valueMap.maxLength);
    });
}

std::string unescaped(std::string_view text) {
    constexpr std::pair<std::string_view, char> kEscapes[] = {
        {"&lt;", '<'},   {"&gt;", '>'},   {"&quot;", '"'}, {"&#9;", '\t'},
        {"&#10;", '\n'}, {"&#13;", '\r'}, {"&amp;", '&'},
    };
    if (text.find('&') == text.npos)
        return std::string(text);
    std::string result;
    while (!text.empty()) {
        char character = text.front();
        std::size_t length = 1;
        for (const auto& [escape, meaning] : kEscapes) {
            if (text.starts_with(escape)) {
                character = meaning;
                length = escape.size();
            }
        }
        result += character;
        text.remove_prefix(length);
    }
    return result;
}

// The restrictions in a printed schema, one tag a line.
std::vector<NaiveRestriction> restrictionsIn(const std::string& schema) {
    std::vector<NaiveRestriction> restrictions;
    int depth = 0;
    std::istringstream lines(schema);
    for (std::string line; std::getline(lines, line);) {
        const std::string_view tag =
            std::string_view(line).substr(std::min(line.find_first_not_of(' '), line.size()));
        const std::size_t quote = tag.find('"');
        const std::string_view value =
            quote == tag.npos ? "" : tag.substr(quote + 1, tag.rfind('"') - quote - 1);
        const std::string_view name = tag.substr(0, tag.find_first_of(" >/", 2));
        if (tag == "<xs:union>")
            ++depth;
        else if (tag == "</xs:union>")
            --depth;
        else if (name == "<xs:restriction")
            restrictions.push_back({depth, std::string(value), {}});
        else if (name == "<xs:anyAttribute")
            restrictions.front().facets.emplace_back("anyAttribute");
        else if (quote != tag.npos)
            restrictions.back().facets.push_back(std::string(name.substr(4)) + " " +
                                                 unescaped(value));
    }
    return restrictions;
}

std::string describe(const Case& valueMap) {
    std::string text = valueMap.typeName + " {";
    for (const std::optional<std::string>& entry : valueMap.entries)
        text += entry ? " \"" + *entry + "\"" : " null";
    return text + " }";
}

TEST(RandomValueMap, GivesWhatAPlainEvaluationGives) {
    constexpr int kCases = 25'000;
    constexpr unsigned long kSeed = 20'261'121;
    constexpr std::size_t kMostAllocations = 1'000'000'000;  // so that endless gaps come to an end
    RandomValueMaps maps(kSeed);
    AllocationProbe::failAt(kMostAllocations);
    for (int number = 0; number < kCases; ++number) {
        const Case valueMap = maps.next();
        const std::string printed = printedRestriction(valueMap);
        ASSERT_TRUE(restrictionsIn(printed) == naiveValueMap(valueMap.typeName, valueMap.entries,
                                                             valueMap.addMaxLength,
                                                             valueMap.maxLength))
            << "case " << number << ": " << describe(valueMap) << printed;
    }
    AllocationProbe::failAt(0);
}

}  // namespace
