#include "ObjectManager/Configuration/Table.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <sstream>
#include <utility>

#include "ObjectManager/Base/Ascii.h"
#include "ObjectManager/Base/Text.h"
#include "Platform/Util/TeskBaseException.h"

namespace Configuration {

namespace {

constexpr std::chrono::seconds kDay = std::chrono::hours(24);

// `"a", "b" or "c"`.
template <typename Texts>
std::string enumerate(const Texts& texts, std::string_view lastSeparator) {
    std::vector<std::string> shown;
    std::ranges::transform(texts, std::back_inserter(shown), &Base::quoted);
    return Base::joined(shown, ", ", lastSeparator);
}

template <typename Number>
std::string decimal(Number number) {
    std::ostringstream stream;
    stream << number;
    return stream.str();
}

// "a file, a directory or a list of such" for "a file or a directory".
std::string orList(std::string_view expected) {
    constexpr std::string_view kOr = " or ";
    std::string text(expected);
    if (const std::size_t at = text.find(kOr); at != std::string::npos)
        text.replace(at, kOr.size(), ", ");
    return text + " or a list of such";
}

// A string as it is shown, unless it would spoil the message.
std::string described(const std::string& text) {
    constexpr std::size_t kMaxShown = 60;
    return text.size() > kMaxShown || std::ranges::any_of(text, Base::isControl)
               ? "such a string"
               : Base::quoted(text);
}

// What a file has in a place, as in "..., not 5".
std::string described(const toml::node& node) {
    switch (node.type()) {
        case toml::node_type::string:
            return described(**node.as_string());
        case toml::node_type::integer:
            return decimal(**node.as_integer());
        case toml::node_type::floating_point:
            return decimal(**node.as_floating_point());
        case toml::node_type::boolean:
            return **node.as_boolean() ? "true" : "false";
        case toml::node_type::array:
            return "a list";
        case toml::node_type::table:
            return "a table";
        default:
            return "a date or time";
    }
}

// How many characters must be changed, added or removed to make one word of the other.
std::size_t distance(std::string_view word, std::string_view other) {
    std::vector<std::size_t> row(other.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < word.size(); ++i) {
        std::size_t diagonal = std::exchange(row[0], i + 1);
        for (std::size_t j = 0; j < other.size(); ++j) {
            const std::size_t replaced = diagonal + (word[i] == other[j] ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({replaced, row[j] + 1, row[j + 1] + 1});
        }
    }
    return row.back();
}

const toml::table& emptyTable() {
    static const toml::table kEmpty;
    return kEmpty;
}

}  // namespace

void ErrorReport::add(const toml::source_region& source, const std::string& message) const {
    errors.push_back({.file = file,
                      .line = source.begin.line,
                      .column = source.begin.column,
                      .message = message});
}

Table::Table(const toml::table& table, std::string name, const ErrorReport& report)
    : table_(&table), name_(std::move(name)), report_(&report) {}

Table Table::readTable(std::string_view key) {
    const toml::node* const node = find(key);
    if (node != nullptr && !node->is_table())
        reportWrong(key, *node, "a table");
    const bool isThere = node != nullptr && node->is_table();
    return {isThere ? *node->as_table() : emptyTable(),
            name_.empty() ? std::string(key) : name_ + "." + std::string(key), *report_};
}

bool Table::isTable(std::string_view key) const {
    const toml::node* const node = table_->get(key);
    return node != nullptr && node->is_table();
}

void Table::readBoolean(std::string_view key, bool& target) {
    const toml::node* const node = find(key);
    if (node == nullptr)
        return;
    if (node->is_boolean())
        target = **node->as_boolean();
    else
        reportWrong(key, *node, "true or false");
}

void Table::readSeconds(std::string_view key, std::chrono::milliseconds least,
                        std::chrono::milliseconds& target) {
    using Seconds = std::chrono::duration<double>;
    const toml::node* const node = find(key);
    if (node == nullptr)
        return;
    const auto number = node->is_number() ? node->value<double>() : std::nullopt;
    // Written so that a number that is none is wrong, too.
    if (number && *number >= Seconds(least).count() && *number <= Seconds(kDay).count()) {
        target = std::chrono::milliseconds(std::llround(*number * 1000));
        return;
    }
    reportWrong(key, *node,
                "a number of seconds from " + decimal(Seconds(least).count()) + " to " +
                    decimal(kDay.count()));
}

void Table::readText(std::string_view key, std::string_view expected, const Take& take) {
    if (const toml::node* const node = find(key))
        takeText(key, *node, expected, take);
}

void Table::readTexts(std::string_view key, std::string_view expected, std::size_t least,
                      const Take& take) {
    const toml::node* const node = find(key);
    if (node == nullptr)
        return;
    const std::string expectedList = orList(expected);
    if (!node->is_array()) {
        takeText(key, *node, expectedList, take);
        return;
    }
    const toml::array& list = *node->as_array();
    if (list.size() < least)
        reportWrong(key, *node, expectedList);
    for (const toml::node& element : list)
        takeText(key, element, expected, take);
}

std::vector<std::string> Table::keys() const {
    std::vector<toml::key> keys;
    for (const auto& [key, node] : *table_)
        keys.push_back(key);
    const auto place = [](const toml::key& key) {
        const toml::source_position& begin = key.source().begin;
        return std::pair(begin.line, begin.column);
    };
    std::ranges::sort(keys, {}, place);
    std::vector<std::string> names(keys.size());
    std::ranges::transform(keys, names.begin(), &toml::key::str);
    return names;
}

void Table::reject(std::string_view key, const std::string& message) {
    static_cast<void>(find(key));
    report_->add(table_->find(key)->first.source(), message);
}

void Table::reportUnknownKeys() const {
    for (const auto& [key, node] : *table_) {
        if (std::ranges::find(known_, key.str()) != known_.end())
            continue;
        const bool isHeading = name_.empty() && node.is_table();
        report_->add(key.source(), (isHeading ? "unknown table [" + std::string(key.str()) + "]"
                                              : "unknown key " + named(key.str())) +
                                       hintFor(key.str()));
    }
}

const toml::node* Table::find(std::string_view key) {
    known_.emplace_back(key);
    return table_->get(key);
}

std::optional<std::int64_t> Table::integer(std::string_view key, std::int64_t least,
                                           std::int64_t most) {
    const toml::node* const node = find(key);
    if (node == nullptr)
        return std::nullopt;
    const std::optional<std::int64_t> number = node->value_exact<std::int64_t>();
    if (number && *number >= least && *number <= most)
        return number;
    reportWrong(key, *node, "a whole number from " + decimal(least) + " to " + decimal(most));
    return std::nullopt;
}

std::optional<std::size_t> Table::indexOfWord(std::string_view key,
                                              const std::vector<std::string_view>& words) {
    const toml::node* const node = find(key);
    if (node == nullptr)
        return std::nullopt;
    const auto text = node->value_exact<std::string>();
    const auto word = text ? std::ranges::find(words, *text) : words.end();
    if (word != words.end())
        return static_cast<std::size_t>(word - words.begin());
    reportWrong(key, *node, enumerate(words, " or "));
    return std::nullopt;
}

void Table::takeText(std::string_view key, const toml::node& node, std::string_view expected,
                     const Take& take) const {
    if (!node.is_string()) {
        reportWrong(key, node, expected);
        return;
    }
    try {
        take(**node.as_string());
    } catch (const TeskBaseException& exception) {
        report_->add(node.source(), named(key) + ": " + exception.getMessage().data());
    }
}

void Table::reportWrong(std::string_view key, const toml::node& node,
                        std::string_view expected) const {
    report_->add(node.source(),
                 named(key) + " must be " + std::string(expected) + ", not " + described(node));
}

std::string Table::named(std::string_view key) const {
    return Base::quoted(key) + (name_.empty() ? "" : " in [" + name_ + "]");
}

std::string Table::hintFor(std::string_view unknownKey) const {
    const auto distanceTo = [&](const std::string& key) { return distance(unknownKey, key); };
    const auto nearest = std::ranges::min_element(known_, {}, distanceTo);
    constexpr std::size_t kMaxTypos = 2;
    if (nearest != known_.end() && distanceTo(*nearest) <= kMaxTypos)
        return "; did you mean " + Base::quoted(*nearest) + "?";
    return "; known are " + enumerate(known_, " and ");
}

}  // namespace Configuration
