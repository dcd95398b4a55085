#include "Benchmarks/Support/AllocationTracker.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <libxml/xmlmemory.h>
#include <malloc.h>
#include <new>

namespace {

bool tracking = false;
long current = 0;
long peak = 0;

void* added(void* memory) noexcept {
    if (tracking && memory != nullptr) {
        current += static_cast<long>(malloc_usable_size(memory));
        peak = std::max(peak, current);
    }
    return memory;
}

void* removed(void* memory) noexcept {
    if (tracking && memory != nullptr)
        current -= static_cast<long>(malloc_usable_size(memory));
    return memory;
}

void* trackedMalloc(std::size_t size) {
    return added(std::malloc(size));
}
void* trackedRealloc(void* memory, std::size_t size) {
    return added(std::realloc(removed(memory), size));
}
void trackedFree(void* memory) {
    std::free(removed(memory));
}

char* trackedDuplicate(const char* text) {
    auto* copy = static_cast<char*>(trackedMalloc(std::strlen(text) + 1));
    return copy == nullptr ? nullptr : std::strcpy(copy, text);
}

// libxml2 wants to know before its first allocation.
const int libxmlIsTracked =
    xmlMemSetup(trackedFree, trackedMalloc, trackedRealloc, trackedDuplicate);

}  // namespace

void AllocationTracker::start() noexcept {
    current = 0;
    peak = 0;
    tracking = libxmlIsTracked == 0;
}

std::size_t AllocationTracker::stop() noexcept {
    tracking = false;
    return static_cast<std::size_t>(peak);
}

void* operator new(std::size_t size) {
    if (void* memory = trackedMalloc(size))
        return memory;
    throw std::bad_alloc();
}
void operator delete(void* memory) noexcept {
    trackedFree(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    trackedFree(memory);
}
