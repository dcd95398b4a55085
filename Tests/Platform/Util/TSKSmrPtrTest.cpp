#include <atomic>
#include <gtest/gtest.h>
#include <new>
#include <string>
#include <utility>

#include "Platform/Util/TSKNullPointerException.h"
#include "Platform/Util/TSKSmrPtr.h"
#include "Platform/Util/TeskStatusCode.h"
#include "Tests/Support/AllocationProbe.h"
#include "Tests/Support/Threads.h"

namespace {

std::atomic<int> living = 0;

struct Base {
    Base() { ++living; }
    Base(const Base&) = delete;
    Base& operator=(const Base&) = delete;
    virtual ~Base() { --living; }
    int value = 7;
};

struct Derived : Base {
    explicit Derived(int number) { value = number; }
};

// Deleting it through its base would be undefined: only the pointer's memory of its type helps.
struct PlainBase {
    int value = 1;
};
struct PlainDerived : PlainBase {
    PlainDerived() { ++living; }
    PlainDerived(const PlainDerived&) = delete;
    PlainDerived& operator=(const PlainDerived&) = delete;
    ~PlainDerived() { --living; }
    std::string text = "freed with the object, or the leak checker complains about this text";
};

struct Counted : TSKReferenceCount {
    Counted() { ++living; }
    ~Counted() override { --living; }
};

struct CountedDerived : Base, Counted {};

class TSKSmrPtrTest : public testing::Test {
  protected:
    void SetUp() override { living = 0; }
    void TearDown() override { EXPECT_EQ(living, 0); }
};

TEST_F(TSKSmrPtrTest, IsNullWhenMadeFromNothing) {
    const TSKSmrPtr<Base> pointers[] = {TSKSmrPtr<Base>(), nullptr,
                                        TSKSmrPtr<Base>(static_cast<Base*>(nullptr)),
                                        TSKSmrPtr<Base>(static_cast<Derived*>(nullptr))};
    for (const TSKSmrPtr<Base>& pointer : pointers) {
        EXPECT_TRUE(pointer.isNull());
        EXPECT_FALSE(pointer);
        EXPECT_EQ(pointer.get(), nullptr);
        EXPECT_EQ(pointer, nullptr);
        EXPECT_EQ(pointer.owners(), 0);
    }
    EXPECT_TRUE(TSKSmrPtr<Counted>(static_cast<Counted*>(nullptr)).isNull());
}

TEST_F(TSKSmrPtrTest, DereferencingNullThrows) {
    const TSKSmrPtr<Base> pointer;
    try {
        (void)pointer->value;
        ADD_FAILURE() << "no exception";
    } catch (const TSKNullPointerException& exception) {
        EXPECT_EQ(exception.getErrorCode(), CIM_ERR_FAILED);
        EXPECT_EQ(exception.getWhere(), "TSKSmrPtr::operator->");
        EXPECT_STREQ(exception.what(),
                     "TSKSmrPtr::operator->: There is no object behind the pointer (1)");
    }
    EXPECT_THROW((void)(*pointer).value, TSKNullPointerException);
    EXPECT_THROW((void)(*pointer).value, TeskBaseException);
}

TEST_F(TSKSmrPtrTest, TheLastOwnerDeletesTheObject) {
    TSKSmrPtr<Base> first(new Base);
    {
        TSKSmrPtr<Base> second = first;
        const TSKSmrPtr<Base> third = second;
        EXPECT_EQ(first.owners(), 3);
        EXPECT_EQ(first, third);
        second = nullptr;
        EXPECT_EQ(first.owners(), 2);
    }
    EXPECT_EQ(first.owners(), 1);
    EXPECT_EQ(living, 1);
    first.reset();
    EXPECT_EQ(living, 0);
    EXPECT_TRUE(first.isNull());
}

TEST_F(TSKSmrPtrTest, MovingLeavesNull) {
    TSKSmrPtr<Derived> from = TSKSmrPtr<Derived>::make(3);
    TSKSmrPtr<Derived> same(std::move(from));
    EXPECT_TRUE(from.isNull());  // this is what is tested
    const TSKSmrPtr<Base> base(std::move(same));
    EXPECT_TRUE(same.isNull());
    EXPECT_EQ(base->value, 3);
    EXPECT_EQ(base.owners(), 1);
}

TEST_F(TSKSmrPtrTest, AssigningToItselfKeepsTheObject) {
    TSKSmrPtr<Base> pointer(new Base);
    const TSKSmrPtr<Base>& same = pointer;
    pointer = same;
    EXPECT_EQ(pointer.owners(), 1);
    pointer = std::move(const_cast<TSKSmrPtr<Base>&>(same));
    EXPECT_EQ(pointer.owners(), 1);
    EXPECT_EQ(living, 1);
}

TEST_F(TSKSmrPtrTest, ConvertsFromDerivedToBase) {
    const TSKSmrPtr<Derived> derived(new Derived(5));
    const TSKSmrPtr<Base> base = derived;
    const TSKSmrPtr<const Base> constant = base;
    EXPECT_EQ(base.owners(), 3);
    EXPECT_EQ(constant->value, 5);
    EXPECT_EQ(base, derived);
    static_assert(!std::is_convertible_v<TSKSmrPtr<Base>, TSKSmrPtr<Derived>>);
    static_assert(!std::is_convertible_v<TSKSmrPtr<const Base>, TSKSmrPtr<Base>>);
    static_assert(!std::is_convertible_v<TSKSmrPtr<std::string>, TSKSmrPtr<Base>>);
}

TEST_F(TSKSmrPtrTest, DeletesTheObjectAsTheTypeItWasMadeAs) {
    const TSKSmrPtr<PlainBase> base(new PlainDerived);
    EXPECT_EQ(living, 1);
    EXPECT_EQ(base->value, 1);
}

TEST_F(TSKSmrPtrTest, KeepsBasesAtOtherAddresses) {
    const auto object = TSKSmrPtr<CountedDerived>::make();
    const TSKSmrPtr<Base> base = object;
    const TSKSmrPtr<Counted> counted = object;
    EXPECT_EQ(living, 2);  // both of its bases count
    EXPECT_EQ(counted.owners(), 3);
    EXPECT_EQ(base->value, 7);
}

TEST_F(TSKSmrPtrTest, MakesOfConstantTypes) {
    const auto pointer = TSKSmrPtr<const Derived>::make(9);
    EXPECT_EQ(pointer->value, 9);
}

TEST_F(TSKSmrPtrTest, ObjectsThatCountTheirOwnersNeedNoFurtherAllocation) {
    auto* object = new Counted;
    AllocationProbe::failAt(1);
    const TSKSmrPtr<Counted> pointer(object);
    const bool allocated = AllocationProbe::hasFailed();
    AllocationProbe::failAt(0);
    EXPECT_FALSE(allocated);
}

TEST_F(TSKSmrPtrTest, DeletesTheObjectWhenItsCountCannotBeAllocated) {
    const std::size_t failures = AllocationProbe::failEachAllocation(
        [] { const TSKSmrPtr<Base> pointer(new Base); }, [] { EXPECT_EQ(living, 0); });
    EXPECT_EQ(failures, 2U);
}

template <typename T>
void shareAmongThreads() {
    const auto shared = TSKSmrPtr<T>::make();
    runOnThreads(8, [&](int) {
        TSKSmrPtr<T> own = shared;
        for (int round = 0; round < 1000; ++round) {
            const TSKSmrPtr<T> another = own;
            own = another;
        }
    });
    EXPECT_EQ(shared.owners(), 1);
}

TEST_F(TSKSmrPtrTest, OneObjectMayBeSharedByManyThreads) {
    shareAmongThreads<Base>();
    shareAmongThreads<Counted>();
}

TEST_F(TSKSmrPtrTest, TheLastOwnerMayBeInAnyThread) {
    for (int round = 0; round < 200; ++round) {
        TSKSmrPtr<Base> pointers[4];
        {
            const auto object = TSKSmrPtr<Base>::make();
            for (TSKSmrPtr<Base>& pointer : pointers)
                pointer = object;
        }
        runOnThreads(4, [&](int index) { pointers[index].reset(); });
        EXPECT_EQ(living, 0);
    }
}

}  // namespace
