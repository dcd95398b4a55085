#include <gtest/gtest.h>
#include <string>

#include "ObjectManager/Repository/CimType.h"

namespace {

using Mof::DataType;

TEST(CimType, NamesAreTheKeywordsInLowerCase) {
    std::string names;
    for (int number = 0; number <= static_cast<int>(DataType::kReference); ++number) {
        for (const bool isArray : {false, true}) {
            const TSKSmrPtr<ITeskType>& type =
                Repository::CimType::of(static_cast<DataType>(number), isArray);
            EXPECT_EQ(type->isArray(), isArray);
            EXPECT_EQ(type->isReference(), number == static_cast<int>(DataType::kReference));
            names += type->getTypeName().data() + std::string(type->isArray() ? "[] " : " ");
        }
    }
    EXPECT_EQ(names,
              "uint8 uint8[] sint8 sint8[] uint16 uint16[] sint16 sint16[] uint32 uint32[] sint32 "
              "sint32[] uint64 uint64[] sint64 sint64[] real32 real32[] real64 real64[] char16 "
              "char16[] string string[] boolean boolean[] datetime datetime[] ref ref[] ");
}

TEST(CimType, EachExistsOnce) {
    EXPECT_EQ(Repository::CimType::of(DataType::kUint8, true),
              Repository::CimType::of(DataType::kUint8, true));
    EXPECT_FALSE(Repository::CimType::of(DataType::kUint8, true) ==
                 Repository::CimType::of(DataType::kUint8, false));
}

}  // namespace
