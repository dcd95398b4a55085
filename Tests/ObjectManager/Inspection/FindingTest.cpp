#include <algorithm>
#include <fstream>
#include <gtest/gtest.h>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include "ObjectManager/Inspection/Finding.h"

namespace {

using Inspection::Finding;
using Inspection::FindingKind;

constexpr FindingKind kKinds[] = {
    FindingKind::kNoDocument,       FindingKind::kTooLarge,          FindingKind::kNotWellFormed,
    FindingKind::kUnmappedType,     FindingKind::kLengthAndValueMap, FindingKind::kManyGaps,
    FindingKind::kDuplicateMessage, FindingKind::kNoXmlName,
};

TEST(Finding, KindsHaveNamesForPrograms) {
    std::vector<std::string> names;
    for (const FindingKind kind : kKinds)
        names.emplace_back(Inspection::nameOf(kind));
    EXPECT_EQ(names, std::vector<std::string>({"no-document", "too-large", "not-well-formed",
                                               "unmapped-type", "length-and-value-map", "many-gaps",
                                               "duplicate-message", "no-xml-name"}));
}

TEST(Finding, IsAnErrorWhereThereIsNoUsableDocument) {
    std::vector<std::string> errors;
    for (const FindingKind kind : kKinds) {
        if (Inspection::isError(kind))
            errors.emplace_back(Inspection::nameOf(kind));
    }
    EXPECT_EQ(errors, std::vector<std::string>({"no-document", "too-large", "not-well-formed"}));
}

// In the order of seriousness.
TEST(Finding, EveryKindIsDocumentedWithItsSeverity) {
    std::string expected;
    for (const FindingKind kind : kKinds) {
        expected += std::string("| `") + Inspection::nameOf(kind) + "` | " +
                    (Inspection::isError(kind) ? "error" : "warning") + "\n";
    }
    std::ifstream page(DOCS_DIRECTORY "/checking.md");
    std::string documented;
    for (std::string line; std::getline(page, line);) {
        std::smatch row;
        if (std::regex_search(line, row, std::regex(R"(^(\| `[a-z-]+` \| (error|warning)) \| )")))
            documented += row.str(1) + "\n";
    }
    EXPECT_EQ(documented, expected);
}

TEST(Finding, IsShownWithItsPlace) {
    const Finding ofClass = {.kind = FindingKind::kNoDocument,
                             .nameSpace = "root/cimv2",
                             .className = "CIM_Foo",
                             .member = "",
                             .message = "there is none"};
    EXPECT_EQ(toText(ofClass), "error: root/cimv2:CIM_Foo: there is none");
    const Finding ofParameter = {.kind = FindingKind::kManyGaps,
                                 .nameSpace = "interop",
                                 .className = "CIM_Foo",
                                 .member = "Stop.Force",
                                 .message = "there are many"};
    EXPECT_EQ(toText(ofParameter), "warning: interop:CIM_Foo.Stop.Force: there are many");
}

// The most serious first, then by where it is, then by what is said.
TEST(Finding, IsOrderedBySeverityThenByPlace) {
    std::vector<Finding> ordered;
    for (const FindingKind kind : kKinds) {
        for (const char* const nameSpace : {"interop", "root"}) {
            for (const char* const className : {"CIM_A", "CIM_B"}) {
                for (const char* const member : {"", "P"}) {
                    for (const char* const message : {"m", "n"})
                        ordered.push_back({kind, nameSpace, className, member, message});
                }
            }
        }
    }
    std::vector<Finding> shuffled(ordered.rbegin(), ordered.rend());
    std::rotate(shuffled.begin(), shuffled.begin() + 41, shuffled.end());
    std::sort(shuffled.begin(), shuffled.end(), Inspection::isBefore);
    EXPECT_TRUE(shuffled == ordered);
    EXPECT_FALSE(isBefore(ordered.front(), ordered.front()));
}

}  // namespace
