#include <zavbase/foundation/object.h>

#include <zavbase/collections/bag.h>
#include <zavbase/collections/dictionary.h>
#include <zavbase/foundation/pooled.h>

#include <memory>
#include <set>
#include <thread>

#include <gtest/gtest.h>

#include "tests/support/printed.h"

TEST(Object, KindFollowsTheRecordsButNeverReachesTheRoot) {
    const ZAV_Dictionary dictionary;
    EXPECT_TRUE(dictionary.IsKindOf(&ZAV_Dictionary::classZAV_Dictionary));
    EXPECT_TRUE(dictionary.IsKindOf(&ZAV_CltObject::classZAV_CltObject));
    EXPECT_FALSE(dictionary.IsKindOf(&ZAV_Bag::classZAV_Bag));
    EXPECT_FALSE(dictionary.IsKindOf(&ZAV_Object::classZAV_Object));
    EXPECT_FALSE(dictionary.IsKindOf(nullptr));
}

TEST(Object, PrintsThroughTheVirtual) {
    struct : ZAV_Object {
    } plain;
    struct : ZAV_Object {
        void PrintOn(std::ostream& os) override { os << "sub"; }
    } sub;
    EXPECT_EQ("Base class", Printed(plain));
    EXPECT_EQ("sub", Printed(static_cast<const ZAV_Object&>(sub)));
    EXPECT_EQ("sub", Printed(static_cast<const ZAV_Object*>(&sub)));
}

TEST(Boolean, AnyNonZeroValuePrintsAsTrue) {
    EXPECT_EQ("B_FALSE", Printed(B_FALSE));
    for (int value : {1, 7, -1}) EXPECT_EQ("B_TRUE", Printed(static_cast<boolean_t>(value)));
}

// Each thread has a store of its own, of which the next threads live. (An address sanitizer wants none.)
TEST(Pooled, WhatAThreadHadComesBackWhenItEnds) {
    struct Small : ZAV_Pooled {
        int value = 0;
    };
    std::set<void*> blocks;
    for (int t = 0; t < 100; ++t) std::jthread([&] { blocks.insert(std::make_unique<Small>().get()); });
#if !defined(__SANITIZE_ADDRESS__)
    EXPECT_LT(blocks.size(), 10u);
#endif
}
