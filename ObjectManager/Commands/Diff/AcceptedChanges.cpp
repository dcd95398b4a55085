#include "ObjectManager/Commands/Diff/AcceptedChanges.h"

#include <algorithm>

#include "ObjectManager/Base/Text.h"
#include "Platform/Util/TeskBaseException.h"
#include "Platform/Util/TeskStatusCode.h"

namespace Commands {

namespace {

constexpr std::string_view kSpaces = " \t\r";

std::string_view trimmed(std::string_view text) noexcept {
    const std::size_t begin = text.find_first_not_of(kSpaces);
    if (begin == std::string_view::npos)
        return {};
    return text.substr(begin, text.find_last_not_of(kSpaces) - begin + 1);
}

// "RULE PLACE" with one space between; empty where the line is something else.
std::string entryOf(std::string_view line) {
    const std::size_t end = line.find_first_of(kSpaces);
    if (end == std::string_view::npos)
        return {};
    const std::string_view place = trimmed(line.substr(end));
    const bool isPlace = place.find(':') != std::string_view::npos &&
                         place.find_first_of(kSpaces) == std::string_view::npos;
    if (!isPlace || !Comparison::ruleOf(line.substr(0, end)))
        return {};
    return std::string(line.substr(0, end)) + " " + std::string(place);
}

}  // namespace

AcceptedChanges::AcceptedChanges(const std::string& name, std::string_view text) : name_(name) {
    for (std::size_t number = 1; !text.empty(); ++number) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        const std::string_view line = trimmed(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
        if (line.empty() || line.starts_with('#'))
            continue;
        std::string entry = entryOf(line);
        if (entry.empty()) {
            throw TeskBaseException("Commands::AcceptedChanges",
                                    TSKString(name + ":" + std::to_string(number) + ": " +
                                              Base::quoted(Base::logText(line)) +
                                              " is not a rule and a place, such as type-changed "
                                              "root/cimv2:CIM_Foo.Bar"),
                                    CIM_ERR_INVALID_PARAMETER);
        }
        entries_.emplace(std::move(entry), Use{number});
    }
}

std::size_t AcceptedChanges::removeFrom(std::vector<Comparison::Change>& changes) {
    return std::erase_if(changes, [this](const Comparison::Change& change) {
        const auto entry =
            entries_.find(std::string(nameOf(change.rule)) + " " + Comparison::placeOf(change));
        if (entry == entries_.end())
            return false;
        entry->second.isUsed = true;
        return true;
    });
}

std::vector<std::string> AcceptedChanges::unused() const {
    std::vector<std::pair<std::size_t, std::string>> lines;
    for (const auto& [entry, use] : entries_) {
        if (!use.isUsed)
            lines.emplace_back(use.line, entry);
    }
    std::ranges::sort(lines);
    std::vector<std::string> texts;
    texts.reserve(lines.size());
    for (const auto& [line, entry] : lines)
        texts.push_back(name_ + ":" + std::to_string(line) + ": no such change: " + entry);
    return texts;
}

}  // namespace Commands
