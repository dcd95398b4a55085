#include <array>
#include <gtest/gtest.h>
#include <set>
#include <thread>
#include <vector>

#include "Platform/Internal/TSKObjectPool.h"
#include "Tests/Support/AllocationProbe.h"
#include "Tests/Support/Threads.h"

namespace {

// Of a size that nothing else here has.
struct Node {
    std::array<char, 1234> bytes;
};

constexpr unsigned long kMostKept = 50;
using Pool = TSKObjectPool<Node, kMostKept>;

std::vector<void*> allocate(unsigned long count) {
    std::vector<void*> blocks;
    for (unsigned long index = 0; index < count; ++index)
        blocks.push_back(Pool::allocate());
    return blocks;
}

void release(const std::vector<void*>& blocks) {
    for (void* block : blocks)
        Pool::release(block);
}

// How many times memory is asked for when `count` nodes are made.
std::size_t allocationsFor(unsigned long count) {
    AllocationProbe::countAllocationsOf(sizeof(Node));
    const std::vector<void*> blocks = allocate(count);
    const std::size_t allocations = AllocationProbe::countedAllocations();
    AllocationProbe::countAllocationsOf(0);
    release(blocks);
    return allocations;
}

TEST(TSKObjectPool, GivesEachObjectMemoryOfItsOwn) {
    const std::vector<void*> blocks = allocate(100);
    EXPECT_EQ(std::set<void*>(blocks.begin(), blocks.end()).size(), 100U);
    for (void* block : blocks)
        static_cast<Node*>(block)->bytes.fill('x');
    release(blocks);
}

TEST(TSKObjectPool, KeepsNoMoreThanItsLimit) {
    std::thread([] {
        EXPECT_EQ(allocationsFor(kMostKept + 1), kMostKept + 1);
        EXPECT_EQ(allocationsFor(kMostKept), 0U);
        EXPECT_EQ(allocationsFor(kMostKept + 1), 1U);
    }).join();
}

TEST(TSKObjectPool, AThreadStartsWithNothingKept) {
    release(allocate(10));
    std::thread([] { EXPECT_EQ(allocationsFor(10), 10U); }).join();
}

TEST(TSKObjectPool, MemoryMayBeReleasedByAnotherThread) {
    const std::vector<void*> blocks = allocate(10);
    std::thread([&] { release(blocks); }).join();
}

// The leak checker tells whether the next two give everything back.

TEST(TSKObjectPool, GivesBackWhatItKeptWhenTheThreadEnds) {
    std::thread([] { release(allocate(10)); }).join();
}

TEST(TSKObjectPool, MemoryMayBeReleasedWhileAThreadEnds) {
    struct Late {
        ~Late() { Pool::release(block); }
        void* block = Pool::allocate();
    };
    std::thread([] {
        // Made before the pool is used to release, so destroyed after the pool has closed.
        static thread_local const Late late;
        EXPECT_NE(late.block, nullptr);
        Pool::release(Pool::allocate());
    }).join();
}

TEST(TSKObjectPool, PassesOnThatThereIsNoMemory) {
    std::thread([] {
        AllocationProbe::failAt(1);
        EXPECT_THROW((void)Pool::allocate(), std::bad_alloc);
        AllocationProbe::failAt(0);
    }).join();
}

TEST(TSKObjectPool, ServesManyThreadsAtOnce) {
    runOnThreads(8, [](int) {
        for (int round = 0; round < 20; ++round)
            release(allocate(100));
    });
}

}  // namespace
