#pragma once

#include <cstdint>
#include <string>

namespace Repository {

class CimClass;
class CimMethod;
class CimProperty;

// How large the documents of classes become, in bytes, found from the definitions without making a
// document. A single ".." in a ValueMap can stand for more values than there is memory.
//
// Sizes are upper bounds of the larger document, the WSDL, and close to the truth. They stop at the
// largest number instead of running over. Functions take time in proportion to what a definition
// declares, and may be called by several threads at once.

/// What a property takes of a document: its element, and the reference to it.
[[nodiscard]] std::uint64_t sizeInDocument(const CimProperty& property);

/// The same for a method with its parameters, without what the name of its class adds.
[[nodiscard]] std::uint64_t sizeInDocument(const CimMethod& method);

/// The whole document of a class. Takes what its members take together from the class.
[[nodiscard]] std::uint64_t documentSizeOf(const CimClass& cimClass);

/// The sum, or the largest number.
[[nodiscard]] std::uint64_t addSizes(std::uint64_t left, std::uint64_t right) noexcept;

/// What makes the documents of a class as large as they are: the largest property or method, or
/// the text of the class itself.
struct LargestPart {
    std::string member;       ///< empty for the class itself
    std::string description;  ///< "the property \"Foo\"", "the name of the class"; names shortened
    std::uint64_t size = 0;
};

[[nodiscard]] LargestPart largestPartOf(const CimClass& cimClass);

}  // namespace Repository
