#include "ObjectManager/Inspection/Finding.h"

#include <tuple>

namespace Inspection {

bool isError(FindingKind kind) noexcept {
    return kind == FindingKind::kNoDocument || kind == FindingKind::kTooLarge ||
           kind == FindingKind::kNotWellFormed;
}

const char* nameOf(FindingKind kind) noexcept {
    switch (kind) {
        case FindingKind::kNoDocument:
            return "no-document";
        case FindingKind::kTooLarge:
            return "too-large";
        case FindingKind::kNotWellFormed:
            return "not-well-formed";
        case FindingKind::kUnmappedType:
            return "unmapped-type";
        case FindingKind::kLengthAndValueMap:
            return "length-and-value-map";
        case FindingKind::kManyGaps:
            return "many-gaps";
        case FindingKind::kDuplicateMessage:
            return "duplicate-message";
        case FindingKind::kNoXmlName:
            return "no-xml-name";
    }
    return "";
}

std::string toText(const Finding& finding) {
    std::string text = isError(finding.kind) ? "error: " : "warning: ";
    text += finding.nameSpace + ":" + finding.className;
    if (!finding.member.empty())
        text += "." + finding.member;
    return text + ": " + finding.message;
}

bool isBefore(const Finding& left, const Finding& right) noexcept {
    return std::tie(left.kind, left.nameSpace, left.className, left.member, left.message) <
           std::tie(right.kind, right.nameSpace, right.className, right.member, right.message);
}

}  // namespace Inspection
