#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace Security {

/// A user and the hash of their password.
struct User {
    std::string name;
    std::string passwordHash;
};

/// Who may use the object manager.
///
/// Thread safety: immutable, may be used by several threads at once.
class UserTable {
  public:
    UserTable() = default;
    /// `users` in any order. Of several with the same name only the first counts.
    explicit UserTable(std::vector<User> users);

    /// The user of that name, null when there is none. Valid as long as the table.
    [[nodiscard]] const User* find(std::string_view name) const noexcept;

    /// All of them in the order of their names.
    [[nodiscard]] const std::vector<User>& users() const noexcept { return users_; }

  private:
    std::vector<User> users_;
};

}  // namespace Security
