#include "Tests/Support/ClassModel.h"

#include <algorithm>
#include <iterator>
#include <memory>

#include "Tests/Support/HostCalls.h"

namespace {

// Walks definitions that belong to somebody else.
template <typename Definition>
class ModelIterator : public urma::Iterator<const Definition&> {
  public:
    explicit ModelIterator(std::vector<const Definition*> definitions) noexcept
        : definitions_(std::move(definitions)) {}

    [[nodiscard]] bool hasCurrent() const override {
        HostCalls::note("Iterator::hasCurrent");
        return position_ < definitions_.size();
    }
    [[nodiscard]] const Definition& current() const override {
        HostCalls::note("Iterator::current");
        return *definitions_.at(position_);
    }
    void advance() override {
        HostCalls::note("Iterator::advance");
        if (position_ < definitions_.size())
            ++position_;
    }

  private:
    std::vector<const Definition*> definitions_;
    std::size_t position_ = 0;
};

template <typename Definition>
CI_AutoPtr_U<urma::Iterator<const Definition&>> iterate(
    std::vector<const Definition*> definitions) {
    return std::make_unique<ModelIterator<Definition>>(std::move(definitions));
}

// Iterates over the definitions of a class, the inherited ones only if they are wanted.
template <typename Definition, typename Members>
CI_AutoPtr_U<urma::Iterator<const Definition&>> iterateMembers(const Members& members,
                                                               bool includeInherited) {
    std::vector<const Definition*> wanted;
    for (const auto& member : members) {
        if (includeInherited || !member.inherited)
            wanted.push_back(&member.definition);
    }
    return iterate(std::move(wanted));
}

bool removeSuffix(std::string_view& text, std::string_view suffix) {
    if (!text.ends_with(suffix))
        return false;
    text.remove_suffix(suffix.size());
    return true;
}

}  // namespace

ModelType::ModelType(std::string_view text) {
    array_ = removeSuffix(text, "[]");
    reference_ = removeSuffix(text, " ref");
    name_ = TSKString(text);
}

bool ModelType::isReference() const {
    HostCalls::note("ITeskType::isReference");
    return reference_;
}

bool ModelType::isArray() const {
    HostCalls::note("ITeskType::isArray");
    return array_;
}

TSKString ModelType::getTypeName() const {
    HostCalls::note("ITeskType::getTypeName");
    return name_;
}

ModelElement::ModelElement(const char* text)
    : value_(text == nullptr ? TSKSmrPtr<ModelValue>() : TSKSmrPtr<ModelValue>::make(text)) {}

ModelValue::ModelValue(bool truth)
    : type_(TSKSmrPtr<ModelType>::make("boolean")),
      text_(truth ? "true" : "false"),
      truth_(truth) {}

ModelValue::ModelValue(const char* text)
    : type_(TSKSmrPtr<ModelType>::make("string")), text_(text) {}

ModelValue::ModelValue(std::initializer_list<ModelElement> elements) {
    setElements(elements.begin(), elements.end());
}

ModelValue::ModelValue(const std::vector<ModelElement>& elements) {
    setElements(elements.data(), elements.data() + elements.size());
}

void ModelValue::setElements(const ModelElement* begin, const ModelElement* end) {
    type_ = TSKSmrPtr<ModelType>::make("string[]");
    elements_ = TSKSmrPtr<TSKValSlist<TSKSmrPtr<ITeskValue>>>::make();
    for (const ModelElement* element = begin; element != end; ++element)
        elements_->append(element->value());
}

ModelValue ModelValue::withoutType() const {
    ModelValue value = *this;
    value.type_.reset();
    return value;
}

ModelValue ModelValue::withoutElements() const {
    ModelValue value = *this;
    value.elements_.reset();
    return value;
}

TSKSmrPtr<ITeskType> ModelValue::getType() const {
    HostCalls::note("ITeskValue::getType");
    return type_;
}

TSKString ModelValue::toString() const {
    HostCalls::note("ITeskValue::toString");
    return text_;
}

bool ModelValue::toBoolean() const {
    HostCalls::note("ITeskValue::toBoolean");
    return truth_;
}

TSKSmrPtr<TSKValSlist<TSKSmrPtr<ITeskValue>>> ModelValue::getArrayValues() const {
    HostCalls::note("ITeskValue::getArrayValues");
    return elements_;
}

ModelQualifier::ModelQualifier(const char* name, TSKSmrPtr<ITeskValue> value, bool propagated)
    : name_(name), value_(std::move(value)), propagated_(propagated) {}

TSKString ModelQualifier::getName() const {
    HostCalls::note("IQualifier::getName");
    return name_;
}

bool ModelQualifier::hasValue() const {
    HostCalls::note("IQualifier::hasValue");
    return !value_.isNull();
}

TSKSmrPtr<ITeskValue> ModelQualifier::getValue() const {
    HostCalls::note("IQualifier::getValue");
    return value_;
}

template <typename Model, typename Interface>
TSKString ModelDefinition<Model, Interface>::getName() const {
    HostCalls::note("IQualified::getName");
    return name_;
}

template <typename Model, typename Interface>
const urma::IQualifier* ModelDefinition<Model, Interface>::getQualifier(
    const TSKString& name, bool includePropagated) const {
    HostCalls::note("IQualified::getQualifier");
    const ModelQualifier* propagated = nullptr;
    for (const ModelQualifier& qualifier : qualifiers_) {
        if (!qualifier.isNamed(name))
            continue;
        if (!qualifier.isPropagated())
            return &qualifier;
        propagated = &qualifier;
    }
    return includePropagated ? propagated : nullptr;
}

template <typename Model, typename Interface>
CI_AutoPtr_U<urma::Iterator<const urma::IQualifier&>>
ModelDefinition<Model, Interface>::getQualifiers(bool includePropagated) const {
    HostCalls::note("IQualified::getQualifiers");
    std::vector<const urma::IQualifier*> wanted;
    for (const ModelQualifier& qualifier : qualifiers_) {
        if (includePropagated || !qualifier.isPropagated())
            wanted.push_back(&qualifier);
    }
    return iterate(std::move(wanted));
}

template class ModelDefinition<ModelProperty, urma::IPropertyDef>;
template class ModelDefinition<ModelParameter, urma::IParameterDef>;
template class ModelDefinition<ModelMethod, urma::IMethodDef>;
template class ModelDefinition<ModelClass, ITeskClass>;

const ITeskType& ModelProperty::getType() const {
    HostCalls::note("IPropertyDef::getType");
    return type_;
}

const ITeskType& ModelParameter::getType() const {
    HostCalls::note("IParameterDef::getType");
    return type_;
}

ModelMethod& ModelMethod::parameter(const ModelParameter& parameter) {
    parameters_.push_back(parameter);
    return *this;
}

const ITeskType& ModelMethod::getReturnType() const {
    HostCalls::note("IMethodDef::getReturnType");
    return returnType_;
}

CI_AutoPtr_U<urma::Iterator<const urma::IParameterDef&>> ModelMethod::getParameters() const {
    HostCalls::note("IMethodDef::getParameters");
    std::vector<const urma::IParameterDef*> parameters;
    std::transform(parameters_.begin(), parameters_.end(), std::back_inserter(parameters),
                   [](const ModelParameter& parameter) { return &parameter; });
    return iterate(std::move(parameters));
}

ModelClass& ModelClass::property(const ModelProperty& property) {
    properties_.push_back({property, false});
    return *this;
}

ModelClass& ModelClass::inheritedProperty(const ModelProperty& property) {
    properties_.push_back({property, true});
    return *this;
}

ModelClass& ModelClass::method(const ModelMethod& method) {
    methods_.push_back({method, false});
    return *this;
}

ModelClass& ModelClass::inheritedMethod(const ModelMethod& method) {
    methods_.push_back({method, true});
    return *this;
}

TSKSmrPtr<ITeskClass> ModelClass::share() const {
    return TSKSmrPtr<ModelClass>::make(*this);
}

CI_AutoPtr_U<urma::Iterator<const urma::IPropertyDef&>> ModelClass::getProperties(
    bool includeInherited) const {
    HostCalls::note("ITeskClass::getProperties");
    return iterateMembers<urma::IPropertyDef>(properties_, includeInherited);
}

CI_AutoPtr_U<urma::Iterator<const urma::IMethodDef&>> ModelClass::getMethods(
    bool includeInherited) const {
    HostCalls::note("ITeskClass::getMethods");
    return iterateMembers<urma::IMethodDef>(methods_, includeInherited);
}
