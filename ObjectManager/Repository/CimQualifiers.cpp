#include "ObjectManager/Repository/CimQualifiers.h"

#include <algorithm>
#include <utility>

#include "ObjectManager/Base/NameMap.h"
#include "ObjectManager/Repository/CimDefinition.h"
#include "ObjectManager/Repository/EscapedDescription.h"

namespace Repository {

namespace {

// `name` is apart, because it is taken out of the qualifier already.
TSKSmrPtr<CimValue> valueOf(const TSKString& name, Mof::Qualifier& qualifier,
                            const Options& options) {
    // Only booleans are written without a value.
    if (!qualifier.value)
        return CimValue::from(true);
    if (options.escapeDescriptions && name.equalsIgnoreCase("Description"))
        return EscapedDescription::from(std::move(*qualifier.value), qualifier.dataType);
    return CimValue::from(std::move(*qualifier.value), qualifier.dataType);
}

}  // namespace

CimQualifier::CimQualifier(Mof::Qualifier&& qualifier, const Options& options)
    : name_(std::move(qualifier.name.text)),
      propagates_(qualifier.propagates),
      value_(valueOf(name_, qualifier, options)) {}

CimQualifiers::CimQualifiers(Mof::Qualifiers&& written, const Options& options) {
    written_.reserve(written.size());
    all_.reserve(written.size());
    for (Mof::Qualifier& qualifier : written)
        all_.push_back(&written_.emplace_back(std::move(qualifier), options));
}

void CimQualifiers::inherit(const CimQualifiers& overridden) {
    Base::NameSet writtenNames;  // both lists may be long
    writtenNames.reserve(written_.size());
    for (const CimQualifier& qualifier : written_)
        writtenNames.insert(qualifier.name());
    for (const CimQualifier* qualifier : overridden.all_) {
        if (qualifier->propagates() && !writtenNames.contains(qualifier->name()))
            all_.push_back(qualifier);
    }
}

const CimQualifier* CimQualifiers::find(const TSKString& name,
                                        bool includePropagated) const noexcept {
    const auto end = includePropagated
                         ? all_.end()
                         : all_.begin() + static_cast<std::ptrdiff_t>(written_.size());
    const auto found = std::find_if(
        all_.begin(), end, [&](const CimQualifier* qualifier) { return qualifier->isNamed(name); });
    return found == end || !(*found)->hasValue() ? nullptr : *found;
}

CI_AutoPtr_U<urma::Iterator<const urma::IQualifier&>> CimQualifiers::iterate(
    bool includePropagated) const {
    return iterateOver<urma::IQualifier>(all_, includePropagated ? all_.size() : written_.size());
}

bool isTrue(const urma::IQualified& definition, const TSKString& qualifier) {
    const urma::IQualifier* const found = definition.getQualifier(qualifier, true);
    return found != nullptr && found->hasValue() && found->getValue()->toBoolean();
}

}  // namespace Repository
