#include <gtest/gtest.h>
#include <string>

#include "ObjectManager/Security/UserTable.h"

namespace {

using Security::User;
using Security::UserTable;

std::string text(const UserTable& table) {
    std::string result;
    for (const User& user : table.users())
        result += user.name + "=" + user.passwordHash + " ";
    return result;
}

TEST(UserTable, IsEmptyAtFirst) {
    const UserTable table;
    EXPECT_EQ(text(table), "");
    EXPECT_EQ(table.find("a"), nullptr);
    EXPECT_EQ(table.find(""), nullptr);
}

TEST(UserTable, FindsUsersByTheirExactNames) {
    const UserTable table({{"bob", "2"}, {"alice", "1"}, {"J\xC3\xBCrgen", "3"}});
    EXPECT_EQ(text(table), "J\xC3\xBCrgen=3 alice=1 bob=2 ");
    for (const User& user : table.users())
        EXPECT_EQ(table.find(user.name), &user);
    for (const char* name : {"", "a", "alic", "alice ", "alicea", "Alice", "bo", "bobb", "zoe"})
        EXPECT_EQ(table.find(name), nullptr) << name;
}

TEST(UserTable, OfSeveralUsersWithOneNameTheFirstCounts) {
    EXPECT_EQ(text(UserTable({{"b", "1"}, {"a", "2"}, {"b", "3"}, {"a", "4"}, {"b", "5"}})),
              "a=2 b=1 ");
}

}  // namespace
