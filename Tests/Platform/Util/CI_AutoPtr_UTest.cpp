#include <gtest/gtest.h>
#include <memory>
#include <utility>

#include "Platform/Util/CI_AutoPtr_U.h"

namespace {

int living = 0;

struct Item {
    Item() { ++living; }
    Item(const Item&) = delete;
    Item& operator=(const Item&) = delete;
    virtual ~Item() { --living; }
    int value = 3;
};

struct SpecialItem : Item {};

TEST(CI_AutoPtr_U, DeletesWhatItOwns) {
    {
        const CI_AutoPtr_U<Item> owner(new Item);
        EXPECT_EQ(owner->value, 3);
        EXPECT_EQ((*owner).value, 3);
        EXPECT_TRUE(owner);
    }
    EXPECT_EQ(living, 0);
}

TEST(CI_AutoPtr_U, IsMovedAndNeverCopied) {
    CI_AutoPtr_U<Item> from(std::make_unique<SpecialItem>());
    const Item* const item = from.get();
    CI_AutoPtr_U<Item> to(std::move(from));
    EXPECT_EQ(to.get(), item);
    EXPECT_FALSE(from);  // this is what is tested
    to = CI_AutoPtr_U<Item>();
    EXPECT_EQ(living, 0);
    static_assert(!std::is_copy_constructible_v<CI_AutoPtr_U<Item>>);
}

TEST(CI_AutoPtr_U, DereferencingNullThrows) {
    const CI_AutoPtr_U<Item> null;
    EXPECT_THROW((void)null->value, TSKNullPointerException);
    EXPECT_THROW((void)(*null).value, TSKNullPointerException);
}

}  // namespace
