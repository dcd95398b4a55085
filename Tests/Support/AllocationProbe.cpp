#include "Tests/Support/AllocationProbe.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <malloc.h>
#include <thread>

namespace {

thread_local std::size_t untilFailure = 0;
thread_local bool failed = false;
std::atomic<std::size_t> countedSize = 0;
std::atomic<std::size_t> counted = 0;
std::array<char, 64> soughtText;
std::atomic<std::size_t> soughtLength = 0;
std::atomic<std::size_t> found = 0;

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

void release(void* memory) noexcept {
    const std::size_t length = soughtLength;
    if (length != 0 && memory != nullptr &&
        memmem(memory, malloc_usable_size(memory), soughtText.data(), length) != nullptr)
        ++found;
    std::free(memory);
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

void AllocationProbe::lookFor(std::string_view text) noexcept {
    soughtLength = 0;
    found = 0;
    const std::size_t length = std::min(text.size(), soughtText.size());
    std::copy_n(text.begin(), length, soughtText.begin());
    soughtLength = length;
}

std::size_t AllocationProbe::remainsFound() noexcept {
    return found;
}

void* operator new(std::size_t size) {
    return allocate(size);
}
void* operator new[](std::size_t size) {
    return allocate(size);
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    try {
        return allocate(size);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}
void operator delete(void* memory) noexcept {
    release(memory);
}
void operator delete[](void* memory) noexcept {
    release(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    release(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
    release(memory);
}
