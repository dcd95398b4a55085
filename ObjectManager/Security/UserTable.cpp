#include "ObjectManager/Security/UserTable.h"

#include <algorithm>
#include <utility>

namespace Security {

UserTable::UserTable(std::vector<User> users) : users_(std::move(users)) {
    std::ranges::stable_sort(users_, {}, &User::name);
    const auto isSame = [](const User& left, const User& right) { return left.name == right.name; };
    users_.erase(std::unique(users_.begin(), users_.end(), isSame), users_.end());
}

const User* UserTable::find(std::string_view name) const noexcept {
    const auto nameOf = [](const User& user) { return std::string_view(user.name); };
    const auto user = std::ranges::lower_bound(users_, name, {}, nameOf);
    return user == users_.end() || user->name != name ? nullptr : &*user;
}

}  // namespace Security
