#pragma once

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <toml++/toml.h>
#include <vector>

#include "ObjectManager/Configuration/SettingsReader.h"

namespace Configuration {

/// The file that errors are about, and the list that they are added to.
struct ErrorReport {
    std::string file;
    std::vector<SettingsError>& errors;

    void add(const toml::source_region& source, const std::string& message) const;
};

/// A word in a file and what it stands for.
template <typename Value>
struct Choice {
    std::string_view word;
    Value value;
};

/// Reads the keys of one table of a configuration file. Wrong values are reported when they are
/// read, unknown keys at the end. What is missing or wrong leaves its target as it was.
///
/// Thread safety: belongs to one thread.
class Table {
  public:
    /// `name` is what stands in brackets above the table, empty for that of the whole file. `table`
    /// and `report` must live as long as this.
    Table(const toml::table& table, std::string name, const ErrorReport& report);

    /// A table in this one, an empty one if it is missing or wrong.
    [[nodiscard]] Table readTable(std::string_view key);

    /// Whether the value of a key is a table; the key still counts as unknown.
    [[nodiscard]] bool isTable(std::string_view key) const;

    /// Whether there is such a key.
    [[nodiscard]] bool has(std::string_view key) const { return table_->contains(key); }

    void readBoolean(std::string_view key, bool& target);

    /// A whole number from `least` to `most`.
    template <typename Number>
    void readInteger(std::string_view key, std::int64_t least, std::int64_t most, Number& target) {
        if (const auto value = integer(key, least, most))
            target = static_cast<Number>(*value);
    }

    /// A number of seconds from `least` to a day.
    void readSeconds(std::string_view key, std::chrono::milliseconds least,
                     std::chrono::milliseconds& target);

    template <typename Value>
    void readChoice(std::string_view key, const std::vector<Choice<Value>>& choices,
                    Value& target) {
        std::vector<std::string_view> words(choices.size());
        std::ranges::transform(choices, words.begin(), &Choice<Value>::word);
        if (const auto index = indexOfWord(key, words))
            target = choices[*index].value;
    }

    /// Gets a text; throws a TeskBaseException that says what is wrong with it.
    using Take = std::function<void(const std::string& text)>;

    /// One text, for which `expected` says what it should be.
    void readText(std::string_view key, std::string_view expected, const Take& take);

    /// A list of texts, or one alone. `least` is how many there must be.
    void readTexts(std::string_view key, std::string_view expected, std::size_t least,
                   const Take& take);

    /// All keys, in the order of the file.
    [[nodiscard]] std::vector<std::string> keys() const;

    /// Reports that something is wrong with a key itself.
    void reject(std::string_view key, const std::string& message);

    /// Reports every key that was not read.
    void reportUnknownKeys() const;

  private:
    [[nodiscard]] const toml::node* find(std::string_view key);
    [[nodiscard]] std::optional<std::int64_t> integer(std::string_view key, std::int64_t least,
                                                      std::int64_t most);
    [[nodiscard]] std::optional<std::size_t> indexOfWord(
        std::string_view key, const std::vector<std::string_view>& words);
    void takeText(std::string_view key, const toml::node& node, std::string_view expected,
                  const Take& take) const;
    void reportWrong(std::string_view key, const toml::node& node, std::string_view expected) const;
    [[nodiscard]] std::string named(std::string_view key) const;
    [[nodiscard]] std::string hintFor(std::string_view unknownKey) const;

    const toml::table* table_;
    std::string name_;
    const ErrorReport* report_;
    std::vector<std::string> known_;
};

}  // namespace Configuration
