#include "ObjectManager/Commands/Diff/VersionDiff.h"

#include <algorithm>
#include <map>
#include <mutex>
#include <nlohmann/json.hpp>
#include <set>
#include <utility>

#include "ObjectManager/Base/Text.h"
#include "ObjectManager/Commands/ParallelWork.h"
#include "ObjectManager/Comparison/ContractComparison.h"
#include "Platform/Util/TeskBaseException.h"

namespace Commands {

namespace {

using Comparison::Change;
using Comparison::Rule;

Change changeOf(Rule rule, const std::string& message) {
    Change change;
    change.rule = rule;
    change.message = message;
    return change;
}

Comparison::Contract contractOf(const VersionClass& name, const std::string& wsdl) {
    try {
        return Comparison::readContract(wsdl);
    } catch (const TeskBaseException& error) {
        throw TeskBaseException("Commands::compareVersions",
                                TSKString("the document of " + name.nameSpace + ":" +
                                          name.className + " is not understood: ") +
                                    error.getMessage(),
                                error.getErrorCode());
    }
}

// Most documents are the same in both versions, so their bytes are compared before they are read.
std::vector<Change> compareClass(const VersionDocuments& before, const VersionDocuments& after,
                                 const VersionClass& name) {
    const auto then = before.find(name);
    const auto now = after.find(name);
    if (now == after.end())
        return {changeOf(Rule::kClassRemoved, "the class is gone")};
    if (then == before.end())
        return {changeOf(Rule::kClassAdded, "the class is new")};
    if (then->second == now->second)
        return {};
    return compare(contractOf(name, then->second), contractOf(name, now->second));
}

void joinAddressChanges(std::vector<Change>& changes) {
    std::map<std::string, std::size_t> counts;
    for (const Change& change : changes) {
        if (change.rule == Rule::kAddressChanged)
            ++counts[change.message];
    }
    std::set<std::string> joined;
    std::erase_if(changes, [&](Change& change) {
        if (change.rule != Rule::kAddressChanged || counts[change.message] == 1)
            return false;
        change.nameSpace = "*";
        change.className = "*";
        return !joined.insert(change.message).second;
    });
}

}  // namespace

std::size_t VersionDiff::countBreaking() const {
    return static_cast<std::size_t>(std::ranges::count_if(
        changes, [](const Change& change) { return isBreaking(change.rule); }));
}

VersionDiff compareVersions(const VersionDocuments& before, const VersionDocuments& after,
                            AcceptedChanges& accepted, unsigned jobs) {
    std::set<VersionClass> all;
    for (const VersionDocuments* const version : {&before, &after}) {
        for (const auto& [name, document] : *version)
            all.insert(name);
    }
    const std::vector<VersionClass> names(all.begin(), all.end());
    VersionDiff diff;
    diff.classes = names.size();
    std::mutex mutex;  // guards diff.changes
    workInParallel(names.size(), jobs, [&](std::size_t number) {
        const VersionClass& name = names[number];
        std::vector<Change> changes = compareClass(before, after, name);
        const std::lock_guard lock(mutex);
        for (Change& change : changes) {
            change.nameSpace = name.nameSpace;
            change.className = name.className;
            diff.changes.push_back(std::move(change));
        }
    });
    joinAddressChanges(diff.changes);
    diff.accepted = accepted.removeFrom(diff.changes);
    std::ranges::sort(diff.changes, Comparison::isBefore);
    return diff;
}

std::string toText(const VersionDiff& diff) {
    std::string text;
    for (const Change& change : diff.changes)
        text += Comparison::toText(change) + "\n";
    const std::size_t breaking = diff.countBreaking();
    text += Base::counted(diff.classes, "class", "classes") + ": " +
            Base::counted(breaking, "breaking change", "breaking changes") + ", " +
            Base::withSeparators(diff.changes.size() - breaking) + " compatible";
    if (diff.accepted > 0)
        text += ", " + Base::withSeparators(diff.accepted) + " accepted";
    return text + "\n";
}

std::string toJson(const VersionDiff& diff) {
    nlohmann::ordered_json changes = nlohmann::ordered_json::array();
    for (const Change& change : diff.changes) {
        changes.push_back({
            {"severity", isBreaking(change.rule) ? "breaking" : "compatible"},
            {"rule", nameOf(change.rule)},
            {"namespace", change.nameSpace},
            {"class", change.className},
            {"member", change.member},
            {"message", change.message},
        });
    }
    const std::size_t breaking = diff.countBreaking();
    const nlohmann::ordered_json json = {
        {"classes", diff.classes},
        {"breaking", breaking},
        {"compatible", diff.changes.size() - breaking},
        {"accepted", diff.accepted},
        {"changes", changes},
    };
    return json.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n";
}

}  // namespace Commands
