#include "Tests/Support/AllocationProbe.h"

#include <atomic>
#include <cstdlib>
#include <thread>

namespace {

thread_local std::size_t untilFailure = 0;
thread_local bool failed = false;
std::atomic<std::size_t> countedSize = 0;
std::atomic<std::size_t> counted = 0;

// Threads that race for one allocation meet here.
void letOthersRun() {
    for (int turn = 0; turn < 100; ++turn)
        std::this_thread::yield();
}

void* allocate(std::size_t size) {
    if (untilFailure != 0 && --untilFailure == 0) {
        failed = true;
        throw std::bad_alloc();
    }
    if (size == countedSize) {
        ++counted;
        letOthersRun();
    }
    if (void* memory = std::malloc(size == 0 ? 1 : size))
        return memory;
    throw std::bad_alloc();
}

}  // namespace

void AllocationProbe::failAt(std::size_t occurrence) noexcept {
    untilFailure = occurrence;
    failed = false;
}

bool AllocationProbe::hasFailed() noexcept {
    return failed;
}

void AllocationProbe::countAllocationsOf(std::size_t size) noexcept {
    counted = 0;
    countedSize = size;
}

std::size_t AllocationProbe::countedAllocations() noexcept {
    return counted;
}

void* operator new(std::size_t size) {
    return allocate(size);
}
void* operator new[](std::size_t size) {
    return allocate(size);
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete[](void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
    std::free(memory);
}
