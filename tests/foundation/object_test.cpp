#include <zavbase/zavbase.h>

#include <memory>
#include <pthread.h>
#include <set>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

TEST(Object, KindFollowsTheRecordsButNeverReachesTheRoot) {
    const ZAV_Dictionary dictionary;
    EXPECT_TRUE(dictionary.IsKindOf(&ZAV_Dictionary::classZAV_Dictionary));
    EXPECT_TRUE(dictionary.IsKindOf(&ZAV_CltObject::classZAV_CltObject));
    EXPECT_FALSE(dictionary.IsKindOf(&ZAV_Bag::classZAV_Bag));
    EXPECT_FALSE(dictionary.IsKindOf(&ZAV_Object::classZAV_Object));
    EXPECT_FALSE(dictionary.IsKindOf(nullptr));
}

namespace {

struct Small : ZAV_Pooled {
    int value = 0;
};
std::set<void*> blocksSeen;

Small* New() {
    Small* small = new Small;
    blocksSeen.insert(small);
    return small;
}

// Runs when the library was told of the thread's end: its own key is older.
void AtTheVeryEnd(void* kept) {
    const std::unique_ptr<std::vector<std::unique_ptr<Small>>> all(
        static_cast<std::vector<std::unique_ptr<Small>>*>(kept));
    for (int i = 0; i < 100; ++i) all->emplace_back(New());
}

} // namespace

// Each thread has a store of its own, of which the next threads live. Nothing is left with a thread that
// makes and destroys objects in its last destructors. (An address sanitizer wants no store.)
TEST(Pooled, WhatAThreadHadComesBackWhenItEnds) {
    std::unique_ptr<Small> first(New());
    pthread_key_t key;
    ASSERT_EQ(pthread_key_create(&key, AtTheVeryEnd), 0);
    for (int t = 0; t < 200; ++t) {
        std::jthread([key] {
            auto* kept = new std::vector<std::unique_ptr<Small>>;
            for (int i = 0; i < 200; ++i) kept->emplace_back(New());
            pthread_setspecific(key, kept);
        });
    }
    pthread_key_delete(key);
#if !defined(__SANITIZE_ADDRESS__)
    EXPECT_LT(blocksSeen.size(), 600u);
#endif
}
