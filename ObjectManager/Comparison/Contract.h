#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ObjectManager/Comparison/ValueSet.h"

namespace Comparison {

/// An element that a client sends or receives: a property, a parameter or a return value.
struct Element {
    std::string name;

    /// The type of its values: the local name of a type of XML Schema or of WS-CIM without "cim",
    /// such as "unsignedShort" or "reference". A type that is none of these: its definition.
    std::string type;

    ValueSet values;

    /// Of a string, in characters; nothing for any length.
    std::optional<std::uint64_t> maxLength;

    bool isArray = false;
    bool mayBeAbsent = false;
    bool mayBeNil = false;
};

/// The body of a request or of a response.
struct Message {
    /// The name of the element of the body; empty for none.
    std::string body;

    /// What is in the body, in order, where the document defines it for this operation alone.
    std::vector<Element> elements;
};

/// A method of the class, or an operation that every class has.
struct Operation {
    std::string name;
    Message input;
    Message output;
};

/// What the WSDL document of a class promises its clients. Descriptions are no part of it.
struct Contract {
    std::string targetNamespace;
    std::string address;              ///< of the service
    std::vector<Element> properties;  ///< in their order
    std::vector<Operation> operations;
};

/// Reads a document such as this project's provider makes it.
/// Errors: TeskBaseException where it is not well-formed, or no WSDL document of a class.
/// May be called by several threads at once.
[[nodiscard]] Contract readContract(std::string_view wsdl);

}  // namespace Comparison
