#include <gtest/gtest.h>

#include "Platform/Util/TSKReferenceCount.h"

namespace {

int living = 0;

struct Counted : TSKReferenceCount {
    Counted() { ++living; }
    ~Counted() override { --living; }
};

TEST(TSKReferenceCount, TheLastOwnerDeletesTheObject) {
    auto* object = new Counted;
    EXPECT_EQ(object->owners(), 0);
    object->addFirstOwner();
    object->addOwner();
    EXPECT_EQ(object->owners(), 2);
    object->removeOwner();
    EXPECT_EQ(object->owners(), 1);
    EXPECT_EQ(living, 1);
    object->removeOwner();
    EXPECT_EQ(living, 0);
}

TEST(TSKReferenceCount, AnObjectWithoutOwnersMayLiveOnTheStack) {
    {
        const Counted object;
        EXPECT_EQ(object.owners(), 0);
    }
    EXPECT_EQ(living, 0);
}

}  // namespace
