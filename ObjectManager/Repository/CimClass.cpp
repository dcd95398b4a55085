#include "ObjectManager/Repository/CimClass.h"

#include <algorithm>
#include <functional>
#include <utility>

#include "ObjectManager/Base/NameMap.h"
#include "ObjectManager/Repository/DocumentSize.h"

namespace Repository {

namespace {

template <typename Member, typename Declaration>
std::vector<Member> makeMembers(std::vector<Declaration>&& declarations, const Options& options) {
    std::vector<Member> members;
    members.reserve(declarations.size());
    for (Declaration& declaration : declarations)
        members.emplace_back(std::move(declaration), options);
    return members;
}

template <typename Member>
std::vector<const Member*> listOf(const std::vector<Member>& members) {
    std::vector<const Member*> list(members.size());
    std::transform(members.begin(), members.end(), list.begin(),
                   [](const Member& member) { return &member; });
    return list;
}

// The inherited members, with those of `declared` in the place of what they override, and the new
// ones behind them.
template <typename Member>
std::vector<const Member*> withInherited(const std::vector<const Member*>& inherited,
                                         std::vector<Member>& declared) {
    Base::NameMap<Member*> unplaced;
    unplaced.reserve(declared.size());
    for (Member& member : declared)
        unplaced.emplace(member.name(), &member);
    std::vector<const Member*> list;
    list.reserve(inherited.size() + declared.size());
    for (const Member* member : inherited) {
        const auto overriding = unplaced.find(member->name());
        if (overriding == unplaced.end()) {
            list.push_back(member);
            continue;
        }
        overriding->second->override(*member);
        list.push_back(overriding->second);
        unplaced.erase(overriding);
    }
    for (const Member& member : declared) {
        if (unplaced.contains(member.name()))
            list.push_back(&member);
    }
    return list;
}

void sortByName(std::vector<const CimProperty*>& properties) {
    std::sort(properties.begin(), properties.end(),
              [](const CimProperty* left, const CimProperty* right) {
                  return left->name() < right->name();
              });
}

// Pointers into different lists have an order for std::less alone.
template <typename Member>
bool isOneOf(const Member& member, const std::vector<Member>& members) {
    const std::less<const Member*> isBefore;
    return !isBefore(&member, members.data()) && isBefore(&member, members.data() + members.size());
}

}  // namespace

CimClass::CimClass(Mof::ClassDeclaration&& declaration, TSKSmrPtr<CimClass> superclass,
                   const Options& options)
    : CimDefinition(std::move(declaration.name.text), std::move(declaration.qualifiers), options),
      superclass_(std::move(superclass)) {
    properties_.declared = makeMembers<CimProperty>(std::move(declaration.properties), options);
    methods_.declared = makeMembers<CimMethod>(std::move(declaration.methods), options);
    properties_.own = listOf(properties_.declared);
    methods_.own = listOf(methods_.declared);
    if (!superclass_.isNull()) {
        inheritQualifiers(*superclass_);
        inherit(properties_, superclass_->properties_);
        inherit(methods_, superclass_->methods_);
    }
    measure(properties_);
    measure(methods_);
    if (options.propertyOrder == PropertyOrder::kName) {
        sortByName(properties_.own);
        sortByName(properties_.merged);
    }
}

template <typename Member>
void CimClass::inherit(Members<Member>& members, const Members<Member>& inherited) {
    if (members.declared.empty()) {
        members.all = inherited.all;
        members.documentSize = inherited.documentSize;
        return;
    }
    members.merged = withInherited(*inherited.all, members.declared);
    members.all = &members.merged;
}

// What is inherited alone was measured by the superclass.
template <typename Member>
void CimClass::measure(Members<Member>& members) {
    if (members.declared.empty())
        return;
    for (Member& member : members.declared)
        member.measure();
    for (const Member* member : *members.all)
        members.documentSize = addSizes(members.documentSize, member->documentSize());
}

std::uint64_t CimClass::sizeOfMembers() const noexcept {
    return addSizes(properties_.documentSize, methods_.documentSize);
}

CI_AutoPtr_U<urma::Iterator<const urma::IPropertyDef&>> CimClass::getProperties(
    bool includeInherited) const {
    return iterateOver<urma::IPropertyDef>(includeInherited ? *properties_.all : properties_.own);
}

CI_AutoPtr_U<urma::Iterator<const urma::IMethodDef&>> CimClass::getMethods(
    bool includeInherited) const {
    return iterateOver<urma::IMethodDef>(includeInherited ? *methods_.all : methods_.own);
}

const CimClass& CimClass::declaringClass(const CimProperty& property) const noexcept {
    const CimClass* declaring = this;
    while (declaring->superclass() != nullptr &&
           !isOneOf(property, declaring->properties_.declared))
        declaring = declaring->superclass();
    return *declaring;
}

const CimClass& CimClass::declaringClass(const CimMethod& method) const noexcept {
    const CimClass* declaring = this;
    while (declaring->superclass() != nullptr && !isOneOf(method, declaring->methods_.declared))
        declaring = declaring->superclass();
    return *declaring;
}

}  // namespace Repository
