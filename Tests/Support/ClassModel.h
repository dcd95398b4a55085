#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "Platform/Cim/ITeskClass.h"

// A CIM class stated by a test in a few lines:
//
//     ModelClass("CIM_Foo")
//         .qualifier("Description", "What it is for.")
//         .property(ModelProperty("Name", "string").qualifier("Key").qualifier("MaxLen", "64"))
//         .property(ModelProperty("Status", "uint16[]").qualifier("ValueMap", {"0", "1", ".."}))
//         .method(ModelMethod("Stop", "uint32")
//                     .parameter(ModelParameter("Force", "boolean").qualifier("In")))
//         .share()
//
// Every operation is noted by HostCalls.

/// A data type, stated as "uint16", "uint16[]", "CIM_Foo ref" or "CIM_Foo ref[]". The name is
/// kept as it is written.
class ModelType : public ITeskType {
  public:
    // Implicit: a test states a type by its text.
    ModelType(std::string_view text);
    ModelType(const char* text) : ModelType(std::string_view(text)) {}

    [[nodiscard]] bool isReference() const override;
    [[nodiscard]] bool isArray() const override;
    [[nodiscard]] TSKString getTypeName() const override;

  private:
    TSKString name_;
    bool reference_ = false;
    bool array_ = false;
};

class ModelValue;

/// An element of an array value: a text or, as nullptr, null.
class ModelElement {
  public:
    ModelElement(const char* text);
    ModelElement(const std::string& text) : ModelElement(text.c_str()) {}

    [[nodiscard]] const TSKSmrPtr<ITeskValue>& value() const noexcept { return value_; }

  private:
    TSKSmrPtr<ITeskValue> value_;
};

/// A value: a boolean, a text, or an array of texts and nulls.
class ModelValue : public ITeskValue {
  public:
    // Implicit: a test states a value by its text.
    ModelValue(bool truth);
    ModelValue(const char* text);
    ModelValue(std::initializer_list<ModelElement> elements);
    explicit ModelValue(const std::vector<ModelElement>& elements);

    /// The same value without a type, or without a list of elements.
    [[nodiscard]] ModelValue withoutType() const;
    [[nodiscard]] ModelValue withoutElements() const;

    [[nodiscard]] TSKSmrPtr<ITeskType> getType() const override;
    [[nodiscard]] TSKString toString() const override;
    [[nodiscard]] bool toBoolean() const override;
    [[nodiscard]] TSKSmrPtr<TSKValSlist<TSKSmrPtr<ITeskValue>>> getArrayValues() const override;

  private:
    void setElements(const ModelElement* begin, const ModelElement* end);

    TSKSmrPtr<ITeskType> type_;
    TSKString text_;
    bool truth_ = false;
    TSKSmrPtr<TSKValSlist<TSKSmrPtr<ITeskValue>>> elements_;
};

class ModelQualifier : public urma::IQualifier {
  public:
    ModelQualifier(const char* name, TSKSmrPtr<ITeskValue> value, bool propagated);

    [[nodiscard]] TSKString getName() const override;
    [[nodiscard]] bool hasValue() const override;
    [[nodiscard]] TSKSmrPtr<ITeskValue> getValue() const override;

    /// Whether the overridden declaration propagates it, so that only a lookup of propagated
    /// qualifiers finds it.
    [[nodiscard]] bool isPropagated() const noexcept { return propagated_; }
    [[nodiscard]] bool isNamed(const TSKString& name) const noexcept {
        return name_.equalsIgnoreCase(name);
    }

  private:
    TSKString name_;
    TSKSmrPtr<ITeskValue> value_;
    bool propagated_;
};

/// What the definitions below have in common: `Interface` implemented as far as a name and
/// qualifiers go. `Model` is the definition's own class.
template <typename Model, typename Interface>
class ModelDefinition : public Interface {
  public:
    explicit ModelDefinition(const char* name) : name_(name) {}

    /// A written qualifier; `qualifier("Key")` is true.
    Model& qualifier(const char* name, const ModelValue& value = true) {
        return add(ModelQualifier(name, TSKSmrPtr<ModelValue>::make(value), false));
    }
    /// One that the overridden declaration propagates.
    Model& propagatedQualifier(const char* name, const ModelValue& value = true) {
        return add(ModelQualifier(name, TSKSmrPtr<ModelValue>::make(value), true));
    }
    Model& qualifierWithoutValue(const char* name) {
        return add(ModelQualifier(name, nullptr, false));
    }

    [[nodiscard]] TSKString getName() const override;
    [[nodiscard]] const urma::IQualifier* getQualifier(const TSKString& name,
                                                       bool includePropagated) const override;
    [[nodiscard]] CI_AutoPtr_U<urma::Iterator<const urma::IQualifier&>> getQualifiers(
        bool includePropagated) const override;

  private:
    Model& add(const ModelQualifier& qualifier) {
        qualifiers_.push_back(qualifier);
        return static_cast<Model&>(*this);
    }

    TSKString name_;
    std::vector<ModelQualifier> qualifiers_;
};

class ModelProperty : public ModelDefinition<ModelProperty, urma::IPropertyDef> {
  public:
    ModelProperty(const char* name, const ModelType& type) : ModelDefinition(name), type_(type) {}

    [[nodiscard]] const ITeskType& getType() const override;

  private:
    ModelType type_;
};

class ModelParameter : public ModelDefinition<ModelParameter, urma::IParameterDef> {
  public:
    ModelParameter(const char* name, const ModelType& type) : ModelDefinition(name), type_(type) {}

    [[nodiscard]] const ITeskType& getType() const override;

  private:
    ModelType type_;
};

class ModelMethod : public ModelDefinition<ModelMethod, urma::IMethodDef> {
  public:
    ModelMethod(const char* name, const ModelType& returnType)
        : ModelDefinition(name), returnType_(returnType) {}

    ModelMethod& parameter(const ModelParameter& parameter);

    [[nodiscard]] const ITeskType& getReturnType() const override;
    [[nodiscard]] CI_AutoPtr_U<urma::Iterator<const urma::IParameterDef&>> getParameters()
        const override;

  private:
    ModelType returnType_;
    std::vector<ModelParameter> parameters_;
};

class ModelClass : public ModelDefinition<ModelClass, ITeskClass> {
  public:
    using ModelDefinition::ModelDefinition;

    /// Listed in the order in which they are added; the inherited ones only when they are asked
    /// for.
    ModelClass& property(const ModelProperty& property);
    ModelClass& inheritedProperty(const ModelProperty& property);
    ModelClass& method(const ModelMethod& method);
    ModelClass& inheritedMethod(const ModelMethod& method);

    /// A copy, as the repository hands classes out.
    [[nodiscard]] TSKSmrPtr<ITeskClass> share() const;

    [[nodiscard]] CI_AutoPtr_U<urma::Iterator<const urma::IPropertyDef&>> getProperties(
        bool includeInherited) const override;
    [[nodiscard]] CI_AutoPtr_U<urma::Iterator<const urma::IMethodDef&>> getMethods(
        bool includeInherited) const override;

  private:
    template <typename Definition>
    struct Member {
        Definition definition;
        bool inherited;
    };

    std::vector<Member<ModelProperty>> properties_;
    std::vector<Member<ModelMethod>> methods_;
};
