// What becomes of a reading when libcurl cannot allocate. Allocations of libxml2 fail in the tests
// of the whole program.

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <curl/curl.h>
#include <gtest/gtest.h>
#include <new>
#include <string>

#include "ObjectManager/CimXml/CimServer.h"
#include "Tests/ObjectManager/CimXml/Collected.h"
#include "Tests/Support/StandInServer.h"

namespace {

// Which allocation of libcurl fails, counted from 1; 0 none. And how many pieces it has.
std::atomic<long> untilFailure = 0;
std::atomic<long> pieces = 0;

bool isFailing() {
    return untilFailure > 0 && --untilFailure == 0;
}

void* counted(void* memory) {
    pieces += memory == nullptr ? 0 : 1;
    return memory;
}

void* allocate(std::size_t size) {
    return isFailing() ? nullptr : counted(std::malloc(size));
}

void* allocateZeroed(std::size_t count, std::size_t size) {
    return isFailing() ? nullptr : counted(std::calloc(count, size));
}

void* reallocate(void* memory, std::size_t size) {
    if (isFailing())
        return nullptr;
    void* const moved = std::realloc(memory, size);
    return memory == nullptr ? counted(moved) : moved;
}

char* duplicate(const char* text) {
    return isFailing() ? nullptr : static_cast<char*>(counted(strdup(text)));
}

void release(void* memory) {
    pieces -= memory == nullptr ? 0 : 1;
    std::free(memory);
}

// Before anybody uses the library: whoever sets it up first decides.
const CURLcode kSetUp = curl_global_init_mem(CURL_GLOBAL_DEFAULT, allocate, release, reallocate,
                                             duplicate, allocateZeroed);

TEST(CimXmlAllocationFailures, OfLibcurlEndAReadingAndNothingIsLost) {
    ASSERT_EQ(kSetUp, CURLE_OK);
    const StandInServer server([](const StandInServer::Request& request) {
        const std::string operation = request.field("CIMMethod");
        return StandInServer::ok(responseTo(
            operation, operation == "EnumerateClasses" ? cimClass("A_Foo", "", "") : ""));
    });
    const auto read = [&] {
        CimXml::CimServer client({.url = server.url(), .user = "u", .password = "p"});
        return textOf(client.read("root/test").compilation);
    };
    EXPECT_EQ(read(), "class A_Foo\n");
    const long before = pieces;
    long failures = 0;
    for (bool isOver = false; !isOver; ++failures) {
        untilFailure = failures + 1;
        try {
            // What fails may be something that libcurl does without.
            EXPECT_EQ(read(), "class A_Foo\n");
        } catch (const std::bad_alloc&) {
        } catch (const CimXml::ServerError& error) {
            EXPECT_EQ(error.kind(), CimXml::ServerError::Kind::kConnection) << error.what();
        }
        isOver = untilFailure > 0;
        untilFailure = 0;
        EXPECT_EQ(pieces, before) << failures + 1;
    }
    EXPECT_GT(failures, 50);
}

}  // namespace
