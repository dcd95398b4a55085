#pragma once

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Security {

/// A user and the hash of their password.
struct User {
    std::string name;
    std::string passwordHash;
};

/// The users of the object manager, sorted by name.
///
/// Thread safety: immutable, may be used by several threads at once.
class UserTable {
  public:
    UserTable() = default;
    /// `users` in any order. If several have the same name, the first one counts.
    explicit UserTable(std::vector<User> users) : users_(std::move(users)) {
        std::ranges::stable_sort(users_, {}, &User::name);
        const auto sameName = [](const User& left, const User& right) {
            return left.name == right.name;
        };
        users_.erase(std::unique(users_.begin(), users_.end(), sameName), users_.end());
    }

    /// The user of that name, null if there is none. Valid as long as the table.
    [[nodiscard]] const User* find(std::string_view name) const noexcept {
        const auto user = std::ranges::lower_bound(users_, name, {}, &User::name);
        return user == users_.end() || user->name != name ? nullptr : &*user;
    }

    /// All users in the order of their names.
    [[nodiscard]] const std::vector<User>& users() const noexcept { return users_; }

  private:
    std::vector<User> users_;
};

}  // namespace Security
