#include <gtest/gtest.h>
#include <type_traits>

#include "Platform/Soap/SOAPElement.h"
#include "Platform/Soap/SOAPQName.h"

namespace {

// Their memory comes from pools of one size.
static_assert(std::is_final_v<SOAPQName> && std::is_final_v<SOAPElement>);

TEST(SOAPQName, HasNoPrefixAtFirst) {
    const SOAPQName name("sequence");
    EXPECT_EQ(name.getLocalName(), "sequence");
    EXPECT_EQ(name.getPrefix(), nullptr);
}

TEST(SOAPQName, TakesLocalNameAndPrefix) {
    const SOAPQName name("schema", "xs");
    EXPECT_EQ(name.getLocalName(), "schema");
    EXPECT_EQ(*name.getPrefix(), "xs");
    EXPECT_EQ(SOAPQName("schema", nullptr).getPrefix(), nullptr);
}

TEST(SOAPQName, SharesThePrefixThatItIsGiven) {
    const SOAPQName parent("schema", "xs");
    SOAPQName child("element");
    child.setPrefix(parent.getPrefix());
    EXPECT_EQ(child.getPrefix(), parent.getPrefix());
    EXPECT_EQ(parent.getPrefix().owners(), 2);
    child.setPrefix(nullptr);
    EXPECT_EQ(child.getPrefix(), nullptr);
    EXPECT_EQ(parent.getPrefix().owners(), 1);
}

}  // namespace
