#include <zavbase/zavbase.h>

#include <gtest/gtest.h>

#include <cstdlib>

#include "tests/support/on_threads.h"
#include "tests/support/printed.h"

namespace {

struct Body : ZAV_RefCount {
    Body() { ++alive; }
    ~Body() override { --alive; }
    ZAV_Ref mNext{nullptr};
    inline static std::atomic<int> alive{0};
};

} // namespace

TEST(Ref, TheLastHandleDeletesTheBody) {
    auto first = std::make_unique<ZAV_Ref>(new Body);
    ZAV_Ref second;
    EXPECT_EQ("mRefCount=1", Printed(second));
    second = *first;
    EXPECT_EQ("mRefCount=2", Printed(second));
    EXPECT_TRUE(first->IsRefEqual(second));
    first.reset();
    second = second;
    EXPECT_EQ(1, Body::alive);
    Body* head = new Body;
    second = head;
    EXPECT_EQ(1, Body::alive);
    head->mNext = new Body;
    second = head->mNext; // the old body is all that holds the new
    EXPECT_EQ(1, Body::alive);
    EXPECT_EQ("mRefCount=1", Printed(second));
    second = ZAV_Ref();
    EXPECT_EQ(0, Body::alive);
}

TEST(Ref, AssignmentKeepsThePlaceInAList) {
    ZAV_LinkedList list;
    ZAV_Ref listed, outside;
    list.Add(&listed);
    listed = outside;
    EXPECT_EQ(ZAV_Link::GetNilLink(), listed.NextLink());
    EXPECT_EQ(nullptr, ZAV_Ref(listed).NextLink());
    list.Clear();
}

TEST(Ref, HandlesOfOneBodyOnManyThreads) {
    ZAV_Ref own[4];
    own[0] = new Body;
    for (ZAV_Ref& ref : own) ref = own[0];
    OnThreads(4, [&own](int t) {
        for (int i = 0; i < 2000; ++i) ZAV_Ref copy(own[t]);
        own[t] = ZAV_Ref(); // one of them is the last
    });
    EXPECT_EQ(0, Body::alive);
}

TEST(AllocMem, AlignsAndFillsTheWholeBlock) {
    for (unsigned long mask : {0ul, 1ul, 15ul, 4095ul}) {
        ZAV_AllocMemRef ref(100, mask);
        EXPECT_EQ(0u, reinterpret_cast<uintptr_t>(ref->GetPointer()) & mask);
        ref->MemSet(0x5A);
        EXPECT_EQ(0x5A, static_cast<unsigned char*>(ref->GetPointer())[99]);
    }
}

TEST(AllocMem, ASizeOfZeroKeepsTheBlockOneThatWrapsLosesIt) {
    ZAV_AllocMemRef ref(100, 15);
    void* block = ref->GetPointer();
    EXPECT_FALSE(ref->Allocate(0, 4) || ref->Reallocate(0, 4));
    EXPECT_EQ(block, ref->GetPointer());
    EXPECT_TRUE(ref->Reallocate(200, 0));
    EXPECT_EQ(200u, ref->GetSize());
    EXPECT_FALSE(ref->Reallocate(0xFFFFFFFFul, 1) || ref->IsAllocated());
    EXPECT_EQ(0u, ref->GetSize());
    EXPECT_TRUE(ref->Free());
    ref->MemSet(1);
    ref = new ZAV_AllocMemBody(8, 0);
    EXPECT_EQ(8u, ref->GetSize());
    ref = ZAV_AllocMemRef(0xFFFFFFF8ul, 15);
    EXPECT_FALSE(ref->IsAllocated());
    EXPECT_TRUE(ref->Allocate(8, 7));
    const unsigned long wide = static_cast<unsigned long>(0x100000008ull); // 8 where long has 32 bits
    EXPECT_EQ(wide == 8, ref->Reallocate(wide, 7) || ref->Reallocate(8, wide - 1));
}

// In a child process, since there is no way back.
TEST(NewHandlerDeathTest, ThrowsAfterSetNewHandler) {
    const auto fail = [] {
        SetNewHandler();
        EXPECT_THROW(std::get_new_handler()(), dummyalloc);
        std::_Exit(HasFailure() ? 1 : 7); // not the 0 of the default policy
    };
    EXPECT_EXIT(fail(), ::testing::ExitedWithCode(7), "");
}
