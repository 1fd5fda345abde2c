#include <zavbase/zavbase.h>

#include <thread>

#include <gtest/gtest.h>

TEST(Object, KindFollowsTheRecordsButNeverReachesTheRoot) {
    const ZAV_Dictionary dictionary;
    EXPECT_TRUE(dictionary.IsKindOf(&ZAV_Dictionary::classZAV_Dictionary));
    EXPECT_TRUE(dictionary.IsKindOf(&ZAV_CltObject::classZAV_CltObject));
    EXPECT_FALSE(dictionary.IsKindOf(&ZAV_Bag::classZAV_Bag));
    EXPECT_FALSE(dictionary.IsKindOf(&ZAV_Object::classZAV_Object));
    EXPECT_FALSE(dictionary.IsKindOf(nullptr));
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
