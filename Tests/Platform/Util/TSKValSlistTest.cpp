#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

#include "Platform/Util/TSKString.h"
#include "Platform/Util/TSKValSlist.h"
#include "Platform/Util/TSKValSlistIterator.h"
#include "Tests/Support/AllocationProbe.h"

namespace {

std::vector<std::string> valuesOf(const TSKValSlist<TSKString>& list) {
    std::vector<std::string> values;
    TSKValSlistIterator<TSKString> next(list);
    while (next())
        values.emplace_back(next.key().data());
    return values;
}

using Values = std::vector<std::string>;

TEST(TSKValSlist, IsEmptyAtFirst) {
    const TSKValSlist<TSKString> list;
    EXPECT_EQ(list.entries(), 0U);
    EXPECT_TRUE(list.isEmpty());
    EXPECT_EQ(valuesOf(list), Values());
}

TEST(TSKValSlist, KeepsTheOrderOfAppending) {
    TSKValSlist<TSKString> list = {"one"};
    list.append("two");
    list.append("two");
    EXPECT_EQ(list.entries(), 3U);
    EXPECT_FALSE(list.isEmpty());
    EXPECT_EQ(valuesOf(list), Values({"one", "two", "two"}));
}

TEST(TSKValSlist, CopiesAreIndependent) {
    const TSKValSlist<TSKString> list = {"one", "two"};
    TSKValSlist<TSKString> copy = list;
    copy.append("three");
    TSKValSlist<TSKString> assigned;
    assigned = copy;
    assigned.append("four");
    EXPECT_EQ(valuesOf(list), Values({"one", "two"}));
    EXPECT_EQ(valuesOf(copy), Values({"one", "two", "three"}));
    EXPECT_EQ(valuesOf(assigned), Values({"one", "two", "three", "four"}));
}

TEST(TSKValSlist, MovingLeavesAnEmptyListThatCanBeAppendedTo) {
    TSKValSlist<TSKString> from = {"one", "two"};
    TSKValSlist<TSKString> to = std::move(from);
    EXPECT_TRUE(from.isEmpty());  // this is what is tested
    from.append("new");
    to.append("three");
    EXPECT_EQ(valuesOf(from), Values({"new"}));
    EXPECT_EQ(valuesOf(to), Values({"one", "two", "three"}));
    from.swap(to);
    from.append("four");
    EXPECT_EQ(valuesOf(from), Values({"one", "two", "three", "four"}));
    EXPECT_EQ(valuesOf(to), Values({"new"}));
}

TEST(TSKValSlist, AFailedAppendChangesNothing) {
    TSKValSlist<TSKString> list = {"one"};
    AllocationProbe::failAt(1);
    EXPECT_THROW(list.append("two"), std::bad_alloc);
    AllocationProbe::failAt(0);
    EXPECT_EQ(valuesOf(list), Values({"one"}));
    list.append("three");
    EXPECT_EQ(valuesOf(list), Values({"one", "three"}));
}

}  // namespace
