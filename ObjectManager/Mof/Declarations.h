#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "Platform/Util/TSKString.h"

/// What MOF files declare, as it is written.
namespace Mof {

/// A place in the files that are compiled.
struct Position {
    std::size_t file = 0;    ///< its number in Compilation::files
    std::size_t offset = 0;  ///< in bytes, from the beginning of its text
};

/// The bytes of a source text from `begin` up to, but not including, `end`.
struct Range {
    std::size_t begin = 0;
    std::size_t end = 0;
};

/// The data types of CIM (DSP0004, 5.2), and references.
enum class DataType : std::uint8_t {
    kUint8,
    kSint8,
    kUint16,
    kSint16,
    kUint32,
    kSint32,
    kUint64,
    kSint64,
    kReal32,
    kReal64,
    kChar16,
    kString,
    kBoolean,
    kDatetime,
    kReference,
};

/// The keyword of MOF for a type, in lower case: "uint8", "datetime", "ref".
[[nodiscard]] const char* keywordOf(DataType type) noexcept;

/// Whether a word of MOF can be no name, wherever it stands: "string", "ref", "null". Case does not
/// matter. Other words, such as "class" and "property", are names where only a name fits.
[[nodiscard]] bool isReservedWord(std::string_view text) noexcept;

/// A name and its place.
struct Name {
    TSKString text;
    Position position;
};

/// The type in a declaration such as "uint8 Values[4]".
struct Type {
    DataType dataType = DataType::kString;
    Name referencedClass;  ///< of a reference
    bool isArray = false;
    std::optional<std::uint64_t> arraySize;  ///< of an array with a fixed size
};

/// A literal. A number is kept as it is written, so that it can be checked against a type later.
struct Literal {
    enum class Kind : std::uint8_t {
        kNull,
        kBoolean,
        kInteger,
        kReal,
        kCharacter,
        kString,
        kAlias
    };

    Kind kind = Kind::kNull;
    Position position;
    bool truth = false;           ///< of kBoolean
    bool isNegative = false;      ///< of kInteger
    std::uint64_t magnitude = 0;  ///< of kInteger, without its sign
    double real = 0;              ///< of kReal
    std::uint16_t character = 0;  ///< of kCharacter
    TSKString text;               ///< of kString, in UTF-8, and of kAlias
};

/// A value: a literal or an array of them.
struct Value {
    bool isArray = false;
    Position position;
    std::vector<Literal> literals;  ///< one, unless it is an array
};

/// How a qualifier is passed on (DSP0004, 5.6.3). A flavor that is not written is not set.
struct Flavors {
    std::optional<bool> overridable;
    std::optional<bool> toSubclass;
    std::optional<bool> translatable;
};

/// A qualifier written on a declaration.
struct Qualifier {
    Name name;
    std::optional<Value> value;  ///< none for "[Key]"
    Flavors flavors;

    /// The type of the value, or of its elements, as the qualifier is declared; none if it is not
    /// declared. Known when all files are read.
    std::optional<DataType> dataType = std::nullopt;

    /// Whether overriding declarations, and the subclasses of a class, inherit the qualifier.
    /// Depends on the qualifier's declaration, so it is known when all files are read.
    bool propagates = true;
};

using Qualifiers = std::vector<Qualifier>;

/// The kinds of declarations that a qualifier may be written on; a set of bits.
enum Scope : unsigned {
    kClassScope = 1U << 0U,
    kAssociationScope = 1U << 1U,
    kIndicationScope = 1U << 2U,
    kPropertyScope = 1U << 3U,
    kReferenceScope = 1U << 4U,
    kMethodScope = 1U << 5U,
    kParameterScope = 1U << 6U,
    kAnyScope = (1U << 7U) - 1,
};

struct QualifierDeclaration {
    Name name;
    Type type;
    std::optional<Value> defaultValue;
    unsigned scopes = 0;
    Flavors flavors;
};

/// A property, or a reference.
struct Property {
    Name name;
    Type type;
    Qualifiers qualifiers;
    std::optional<Value> defaultValue;
};

struct Parameter {
    Name name;
    Type type;
    Qualifiers qualifiers;
};

struct Method {
    Name name;
    Type returnType;
    Qualifiers qualifiers;
    std::vector<Parameter> parameters;
};

/// A class, association or indication, as its qualifiers say.
struct ClassDeclaration {
    Name name;
    Name superclass;  ///< empty for none
    Qualifiers qualifiers;
    std::vector<Property> properties;
    std::vector<Method> methods;
};

/// Whether two declarations say the same, apart from their places. Names are compared without
/// regard to case, lists in their order.
[[nodiscard]] bool isSame(const ClassDeclaration& left, const ClassDeclaration& right);
[[nodiscard]] bool isSame(const QualifierDeclaration& left, const QualifierDeclaration& right);

}  // namespace Mof
