#include "ObjectManager/Http/EntityTag.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <new>
#include <openssl/evp.h>
#include <span>

namespace Http {

namespace {

constexpr std::string_view kWeakMark = "W/";

// Whether tags that are equal but for the mark of weak ones match.
enum class Comparison { kStrong, kWeak };

bool matches(std::string_view left, std::string_view right, Comparison comparison) {
    if (comparison == Comparison::kStrong)
        return left == right && !left.starts_with(kWeakMark);
    for (std::string_view* const tag : {&left, &right}) {
        if (tag->starts_with(kWeakMark))
            tag->remove_prefix(kWeakMark.size());
    }
    return left == right;
}

// Whether a list of entity tags, or "*" for any, has one that matches. Commas may stand in a tag. A
// malformed list ends where it is malformed.
bool listMatches(std::string_view list, std::string_view tag, Comparison comparison) {
    constexpr std::string_view kBetween = " \t,";
    if (list == "*")
        return true;
    for (;;) {
        list.remove_prefix(std::min(list.find_first_not_of(kBetween), list.size()));
        const std::size_t begin = list.starts_with(kWeakMark) ? kWeakMark.size() : 0;
        if (!list.substr(begin).starts_with('"'))
            return false;
        const std::size_t end = list.find('"', begin + 1);
        if (end == std::string_view::npos)
            return false;
        if (matches(list.substr(0, end + 1), tag, comparison))
            return true;
        list.remove_prefix(end + 1);
    }
}

// What the fields of a name, which are one list together, say.
struct Condition {
    bool isThere = false;
    bool matches = false;
};

Condition conditionOf(const TSKHTTPRequest& request, const char* name, std::string_view tag,
                      Comparison comparison) {
    Condition condition;
    for (const TSKHTTPOperation::HeaderField& field : request.getHeaderFields()) {
        if (!field.name.equalsIgnoreCase(name))
            continue;
        condition.isThere = true;
        condition.matches = condition.matches || listMatches(field.value, tag, comparison);
    }
    return condition;
}

}  // namespace

// SHA-256 is the fastest digest that no two bodies share: 1.7 GB/s where the processor has
// instructions for it. Half of it is enough, and makes a shorter field.
std::string entityTag(std::string_view body) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    constexpr std::size_t kLength = 16;
    std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
    if (EVP_Digest(body.data(), body.size(), digest.data(), nullptr, EVP_sha256(), nullptr) != 1)
        throw std::bad_alloc();  // nothing else can fail
    std::string tag = "\"";
    for (const unsigned char byte : std::span(digest).first(kLength)) {
        tag += kDigits[byte >> 4U];
        tag += kDigits[byte & 15U];
    }
    tag += '"';
    return tag;
}

Precondition evaluatePreconditions(const TSKHTTPRequest& request, std::string_view tag) {
    const Condition match = conditionOf(request, "If-Match", tag, Comparison::kStrong);
    if (match.isThere && !match.matches)
        return Precondition::kFailed;
    return conditionOf(request, "If-None-Match", tag, Comparison::kWeak).matches
               ? Precondition::kNotModified
               : Precondition::kMet;
}

}  // namespace Http
