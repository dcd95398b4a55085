#include "ObjectManager/Repository/CimQualifiers.h"

#include <algorithm>
#include <utility>

#include "ObjectManager/Base/NameMap.h"
#include "ObjectManager/Repository/DefinitionIterator.h"

namespace Repository {

CimQualifiers::CimQualifiers(Mof::Qualifiers&& written, const RepositoryOptions& options) {
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

}  // namespace Repository
