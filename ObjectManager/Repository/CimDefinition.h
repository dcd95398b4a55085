#pragma once

#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

#include "ObjectManager/Repository/CimQualifiers.h"
#include "Platform/Cim/IQualified.h"
#include "Platform/Cim/Iterator.h"
#include "Platform/Util/CI_AutoPtr_U.h"

namespace Repository {

/// What classes, properties, methods and parameters have in common: `Interface` as far as its name
/// and its qualifiers go.
///
/// Thread safety: immutable once its class is made, may be used by several threads at once then.
template <typename Interface>
class CimDefinition : public Interface {
  public:
    [[nodiscard]] TSKString getName() const override { return name_; }

    [[nodiscard]] const CimQualifier* getQualifier(const TSKString& name,
                                                   bool includePropagated) const override {
        return qualifiers_.find(name, includePropagated);
    }

    [[nodiscard]] CI_AutoPtr_U<urma::Iterator<const urma::IQualifier&>> getQualifiers(
        bool includePropagated) const override {
        return qualifiers_.iterate(includePropagated);
    }

    /// As getName, without a copy.
    [[nodiscard]] const TSKString& name() const noexcept { return name_; }

    /// The text of the Description that is written here, as it was declared: nothing is escaped.
    /// Empty without one.
    [[nodiscard]] TSKString description() const {
        const CimQualifier* const qualifier = qualifiers_.find("Description", false);
        return qualifier == nullptr ? TSKString() : qualifier->value()->text();
    }

  protected:
    CimDefinition(TSKString name, Mof::Qualifiers&& qualifiers, const Options& options)
        : name_(std::move(name)), qualifiers_(std::move(qualifiers), options) {}

    void inheritQualifiers(const CimDefinition& overridden) {
        qualifiers_.inherit(overridden.qualifiers_);
    }

  private:
    TSKString name_;
    CimQualifiers qualifiers_;
};

/// Walks a list of pointers to definitions. The list must outlive it.
///
/// Thread safety: belongs to one thread.
template <typename Interface, typename Definition>
class DefinitionIterator final : public urma::Iterator<const Interface&> {
  public:
    DefinitionIterator(const Definition* const* begin, std::size_t count) noexcept
        : current_(begin), end_(begin + count) {}

    [[nodiscard]] bool hasCurrent() const override { return current_ != end_; }
    [[nodiscard]] const Interface& current() const override { return **current_; }
    void advance() override {
        if (current_ != end_)
            ++current_;
    }

  private:
    const Definition* const* current_;
    const Definition* const* end_;
};

/// An iterator over the first `count` pointers of `definitions`, a vector of them.
template <typename Interface, typename Definition>
[[nodiscard]] CI_AutoPtr_U<urma::Iterator<const Interface&>> iterateOver(
    const std::vector<const Definition*>& definitions, std::size_t count) {
    return std::make_unique<DefinitionIterator<Interface, Definition>>(definitions.data(), count);
}

template <typename Interface, typename Definition>
[[nodiscard]] CI_AutoPtr_U<urma::Iterator<const Interface&>> iterateOver(
    const std::vector<const Definition*>& definitions) {
    return iterateOver<Interface>(definitions, definitions.size());
}

}  // namespace Repository
