#pragma once

#include <cstdint>
#include <string>

namespace Inspection {

/// What may be wrong with the documents of a class, the most serious first.
enum class FindingKind : std::uint8_t {
    kNoDocument,         ///< the provider sent none
    kTooLarge,           ///< the documents would be larger than allowed; the class is left out
    kNotWellFormed,      ///< no XML parser reads the document
    kUnmappedType,       ///< a type without a place in XML Schema, written as "NA"
    kLengthAndValueMap,  ///< a parameter with both MaxLen and ValueMap: two types for one element
    kManyGaps,           ///< a ValueMap whose ".." is written as more than 10,000 values
    kDuplicateMessage,   ///< two messages of one name in the WSDL
    kNoXmlName,          ///< a name that XML does not allow
};

/// Something about the documents of a class that their users should know.
struct Finding {
    FindingKind kind = FindingKind::kNoDocument;
    std::string nameSpace;
    std::string className;
    std::string member;   ///< the property, method or "Method.Parameter"; empty for the whole class
    std::string message;  ///< a sentence without a full stop

    friend bool operator==(const Finding&, const Finding&) = default;
};

/// Whether clients cannot use a document at all.
[[nodiscard]] bool isError(FindingKind kind) noexcept;

/// A word for programs: "not-well-formed".
[[nodiscard]] const char* nameOf(FindingKind kind) noexcept;

/// "error: root/cimv2:CIM_Foo.Bar: MESSAGE", without a newline.
[[nodiscard]] std::string toText(const Finding& finding);

/// Whether one belongs before another in a list: more serious ones first, then by namespace, class
/// and member.
[[nodiscard]] bool isBefore(const Finding& left, const Finding& right) noexcept;

}  // namespace Inspection
