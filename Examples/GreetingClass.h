#pragma once

#include <memory>

#include "Platform/Cim/ITeskClass.h"

/// The class definition that the example host has:
///
///     class EX_Greeting { [Key] string Text; };
///
/// Thread safety: immutable, may be used by several threads at once.
namespace GreetingClass {

/// Walks one definition, or none when it is null.
template <typename T>
class OneDefinition : public urma::Iterator<const T&> {
  public:
    explicit OneDefinition(const T* definition) : definition_(definition) {}

    [[nodiscard]] bool hasCurrent() const override { return definition_ != nullptr; }
    [[nodiscard]] const T& current() const override { return *definition_; }
    void advance() override { definition_ = nullptr; }

  private:
    const T* definition_;
};

template <typename T>
using Definitions = CI_AutoPtr_U<urma::Iterator<const T&>>;

template <typename T>
Definitions<T> only(const T* definition) {
    return std::make_unique<OneDefinition<T>>(definition);
}

class Type : public ITeskType {
  public:
    explicit Type(const char* name) : name_(name) {}

    [[nodiscard]] bool isReference() const override { return false; }
    [[nodiscard]] bool isArray() const override { return false; }
    [[nodiscard]] TSKString getTypeName() const override { return name_; }

  private:
    TSKString name_;
};

class True : public ITeskValue {
  public:
    [[nodiscard]] TSKSmrPtr<ITeskType> getType() const override {
        return TSKSmrPtr<Type>::make("boolean");
    }
    [[nodiscard]] TSKString toString() const override { return "true"; }
    [[nodiscard]] bool toBoolean() const override { return true; }
    [[nodiscard]] TSKSmrPtr<TSKValSlist<TSKSmrPtr<ITeskValue>>> getArrayValues() const override {
        return nullptr;
    }
};

class Key : public urma::IQualifier {
  public:
    [[nodiscard]] TSKString getName() const override { return "Key"; }
    [[nodiscard]] bool hasValue() const override { return true; }
    [[nodiscard]] TSKSmrPtr<ITeskValue> getValue() const override {
        return TSKSmrPtr<True>::make();
    }
};

class Text : public urma::IPropertyDef {
  public:
    [[nodiscard]] TSKString getName() const override { return "Text"; }
    [[nodiscard]] const ITeskType& getType() const override { return type_; }
    [[nodiscard]] const urma::IQualifier* getQualifier(const TSKString& name,
                                                       bool /*includePropagated*/) const override {
        return name.equalsIgnoreCase("Key") ? &key_ : nullptr;
    }
    [[nodiscard]] Definitions<urma::IQualifier> getQualifiers(
        bool /*includePropagated*/) const override {
        return only<urma::IQualifier>(&key_);
    }

  private:
    Type type_ = Type("string");
    Key key_;
};

class Greeting : public ITeskClass {
  public:
    [[nodiscard]] TSKString getName() const override { return "EX_Greeting"; }
    [[nodiscard]] const urma::IQualifier* getQualifier(const TSKString& /*name*/,
                                                       bool /*includePropagated*/) const override {
        return nullptr;
    }
    [[nodiscard]] Definitions<urma::IQualifier> getQualifiers(
        bool /*includePropagated*/) const override {
        return only<urma::IQualifier>(nullptr);
    }
    [[nodiscard]] Definitions<urma::IPropertyDef> getProperties(
        bool /*includeInherited*/) const override {
        return only<urma::IPropertyDef>(&text_);
    }
    [[nodiscard]] Definitions<urma::IMethodDef> getMethods(
        bool /*includeInherited*/) const override {
        return only<urma::IMethodDef>(nullptr);
    }

  private:
    Text text_;
};

}  // namespace GreetingClass
