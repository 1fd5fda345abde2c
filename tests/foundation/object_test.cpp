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
// Never destroyed: threads may use it to their very end.
std::set<void*>& blocksSeen = *new std::set<void*>;

Small* New() {
    Small* small = new Small;
    blocksSeen.insert(small);
    return small;
}

// Comes when the library was told of the thread's end, as its own key is older, and as often as the system
// calls destructors again that leave something: the library is not told any more then.
struct Late {
    std::vector<std::unique_ptr<Small>> kept;
    int rounds = 4;
};
pthread_key_t lateKey;
void AtTheVeryEnd(void* block) {
    Late* const late = static_cast<Late*>(block);
    late->kept.clear();
    for (int i = 0; i < 100; ++i) late->kept.emplace_back(New());
    if (--late->rounds != 0)
        pthread_setspecific(lateKey, late);
    else
        delete late;
}

} // namespace

// Each thread has a store of its own, of which the next threads live. Nothing is left with a thread that
// makes and destroys objects in its last destructors. (An address sanitizer wants no store.)
TEST(Pooled, WhatAThreadHadComesBackWhenItEnds) {
    std::unique_ptr<Small> first(New());
    ASSERT_EQ(pthread_key_create(&lateKey, AtTheVeryEnd), 0);
    for (int t = 0; t < 200; ++t) {
        std::jthread([] {
            Late* const late = new Late;
            for (int i = 0; i < 200; ++i) late->kept.emplace_back(New());
            pthread_setspecific(lateKey, late);
        });
    }
    pthread_key_delete(lateKey);
#if !defined(__SANITIZE_ADDRESS__)
    EXPECT_LT(blocksSeen.size(), 600u);
#endif
}
