#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "ObjectManager/Mof/DataType.h"
#include "ObjectManager/Mof/Position.h"
#include "Platform/Util/TSKString.h"

/// What MOF files declare, as it is written.
namespace Mof {

/// A name and where it stands.
struct Name {
    TSKString text;
    Position position;
};

/// A type as it is written with a name: "uint8 Values[4]".
struct Type {
    DataType dataType = DataType::kString;
    Name referencedClass;  ///< of a reference
    bool isArray = false;
    std::optional<std::uint64_t> arraySize;  ///< of an array with a fixed size
};

/// A literal. Of a number what is written counts, so that it can be held against a type later.
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

/// How a qualifier is passed on (DSP0004, 5.6.3). What is not written is not set.
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

    /// The type of the value, or of its elements, as the qualifier is declared; none where it is
    /// not. Known when all files are read.
    std::optional<DataType> dataType = std::nullopt;

    /// Whether what overrides the declaration, and the subclasses of a class, have the qualifier as
    /// well. Depends on the qualifier's declaration, so it is known when all files are read.
    bool propagates = true;
};

using Qualifiers = std::vector<Qualifier>;

/// What a qualifier may be written on; a set of bits.
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

/// A class, association or indication; its qualifiers tell which.
struct ClassDeclaration {
    Name name;
    Name superclass;  ///< empty for none
    Qualifiers qualifiers;
    std::vector<Property> properties;
    std::vector<Method> methods;
};

}  // namespace Mof
