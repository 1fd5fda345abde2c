#include <gtest/gtest.h>

#include <sys/mman.h>
#include <unistd.h>

#include <zavbase/foundation/new_handler.h>
#include <zavbase/strings/utf_string.h>

namespace {

constexpr size_t kBlock = size_t{1} << 24, kBlocks = 257;

// A text of more than 4 GiB for the price of one block, which is mapped again and again.
char* mapText() {
    const int fd = memfd_create("text", 0);
    void* const room =
        mmap(nullptr, kBlock * kBlocks, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (fd < 0 || room == MAP_FAILED || ftruncate(fd, kBlock) != 0) return nullptr;
    char* const text = static_cast<char*>(room);
    for (size_t i = 0; i < kBlocks; ++i)
        if (mmap(text + i * kBlock, kBlock, PROT_READ | PROT_WRITE,
                 (i + 1 < kBlocks ? MAP_SHARED : MAP_PRIVATE) | MAP_FIXED, fd, 0) == MAP_FAILED)
            return nullptr;
    close(fd);
    std::memset(text, 'x', kBlock);
    text[kBlock * kBlocks - 1] = '\0';
    return text;
}

TEST(HugeText, IsRefusedAndNotCut) {
    char* const text = mapText();
    ASSERT_NE(text, nullptr);
    SetNewHandler();
    ZAV_String s("old");
    EXPECT_THROW(ZAV_String{text}, dummyalloc);
    EXPECT_THROW(s = text, dummyalloc);
    EXPECT_THROW(s += text, dummyalloc);
    EXPECT_THROW(s(0, 1) = text, dummyalloc);
    EXPECT_THROW(s.Format("%s", text), dummyalloc);
    EXPECT_THROW(ZAV_String(kBlock * kBlocks), dummyalloc) << "room for so many, modulo 2^32";
    EXPECT_TRUE(s == "old" && s(0, 3) < text);
    munmap(text, kBlock * kBlocks);
}

} // namespace
