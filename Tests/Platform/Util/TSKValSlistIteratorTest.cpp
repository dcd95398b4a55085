#include <gtest/gtest.h>
#include <type_traits>

#include "Platform/Util/TSKString.h"
#include "Platform/Util/TSKValSlistIterator.h"

namespace {

TEST(TSKValSlistIterator, HasNoValueBeforeTheFirstStepAndAfterTheEnd) {
    const TSKValSlist<TSKString> list = {"only"};
    TSKValSlistIterator<TSKString> next(list);
    EXPECT_THROW((void)next.key(), TSKNullPointerException);
    EXPECT_TRUE(next());
    EXPECT_EQ(next.key(), "only");
    EXPECT_EQ(next.key(), "only");
    EXPECT_FALSE(next());
    EXPECT_THROW((void)next.key(), TSKNullPointerException);
    EXPECT_FALSE(next());
}

// It would be read after it is gone.
static_assert(!std::is_constructible_v<TSKValSlistIterator<TSKString>, TSKValSlist<TSKString>>,
              "A temporary list cannot be walked");

TEST(TSKValSlistIterator, SeveralWalkOneList) {
    const TSKValSlist<TSKString> list = {"one", "two"};
    TSKValSlistIterator<TSKString> first(list);
    TSKValSlistIterator<TSKString> second(list);
    first();
    first();
    second();
    EXPECT_EQ(first.key(), "two");
    EXPECT_EQ(second.key(), "one");
}

}  // namespace
