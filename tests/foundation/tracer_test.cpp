#include <zavbase/zavbase.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <memory>
#include <numeric>
#include <thread>

#include "tests/support/on_threads.h"
#include "tests/support/trace_capture.h"

namespace {

unsigned NamedSlots() {
    ZAV_OrderedCltn names(16);
    ZAV_Tracer::GetNameList(&names);
    unsigned count = names.Size();
    for (unsigned i = 0; i < count; ++i) EXPECT_EQ(0u, names[static_cast<int>(i)]->Size()); // never the name
    names.ClearAndDestroy();
    return count;
}

struct Tracing {
    friend std::ostream& operator<<(std::ostream& os, const Tracing&) {
        ZAV_BASE_TRACE(0x2, "inner");
        return os << "outer";
    }
};

// Takes its time over a line, so that who does not wait is noticed.
struct SlowSink : std::streambuf {
    std::streamsize xsputn(const char* text, std::streamsize size) override {
        mWasShared = mWriting.exchange(true) || mWasShared;
        for (int i = 0; i < 200; ++i) std::this_thread::yield();
        mLines.emplace_back(text, static_cast<size_t>(size));
        mWriting = false;
        return size;
    }
    int sync() override { return ++mFlushes, 0; }
    int mFlushes = 0;
    std::atomic<bool> mWriting{false}, mWasShared{false};
    std::vector<std::string> mLines;
};

struct Pieces {
    static void Take(void* self, const char* text, int length) {
        Pieces& pieces = *static_cast<Pieces*>(self);
        pieces.mTexts.emplace_back(text, static_cast<size_t>(length));
        if (std::ostream* echo = std::exchange(pieces.mEcho, nullptr)) *echo << "+";
    }
    std::vector<std::string> mTexts;
    std::ostream* mEcho = nullptr;
};

} // namespace

TEST(Tracer, OnlyTenCharactersOfANameCount) {
    ZAV_Tracer* tracer = ZAV_Tracer::FindOrCreate("ABCDEFGHIJKLM");
    EXPECT_EQ(tracer, ZAV_Tracer::FindOrCreate("ABCDEFGHIJxyz"));
    EXPECT_STREQ("ABCDEFGHIJ", tracer->mName);
    EXPECT_NE(tracer, ZAV_Tracer::FindOrCreate("ABCDEFGHI"));
}

TEST(Tracer, StatementsObeyStreamAndMask) {
    TraceCapture capture(0x12);
    int evaluated = 0;
    ZAV_BASE_TRACE(0x1, "no" << ++evaluated);
    ZAV_BASE_TRACE(0x10, "yes " << ++evaluated << ' ' << std::hex << 255);
    ZAV_BASE_TRACE(0x2, Tracing() << " " << 255);
    ZAV_Tracer::SetStreamP(tr_base_name, nullptr);
    ZAV_BASE_TRACE(0x10, "silent" << ++evaluated);
    EXPECT_EQ("yes 1 ff\ninner\nouter 255\n", capture.Text());
    EXPECT_EQ(1, evaluated);
}

TEST(Tracer, LinesOfManyThreadsArriveWholeAndOneAtATime) {
    TraceCapture restores(0x10);
    SlowSink sink;
    std::ostream os(&sink);
    ZAV_Tracer::SetStreamP(tr_base_name, &os);
    OnThreads(4, [](int t) {
        for (int i = 0; i < 50; ++i) ZAV_BASE_TRACE(0x10, t << " says " << i << " in one piece");
    });
    for (int t = 0; t < 4; ++t) {
        const std::string says = std::to_string(t) + " says ";
        std::vector<std::string> expected, lines = sink.mLines;
        for (int i = 0; i < 50; ++i) expected.push_back(says + std::to_string(i) + " in one piece\n");
        std::erase_if(lines, [&](const std::string& line) { return !line.starts_with(says); });
        EXPECT_EQ(expected, lines);
    }
    EXPECT_EQ(4u * 50u, sink.mLines.size());
    EXPECT_FALSE(sink.mWasShared);
}

TEST(Tracer, AStreamTakenAwayGetsNoMore) {
    TraceCapture restores(0x10);
    SlowSink sink, tiedSink;
    std::ostream tied(&tiedSink);
    auto os = std::make_unique<std::ostream>(&sink);
    os->tie(&tied);
    ZAV_Tracer::SetStreamP(tr_base_name, os.get());
    ZAV_BASE_TRACE(0x10, "lost " << (ZAV_Tracer::SetStreamP(tr_base_name, nullptr), "on its way"));
    EXPECT_TRUE(sink.mLines.empty() && tiedSink.mFlushes == 0);

    ZAV_Tracer::SetStreamP(tr_base_name, os.get());
    std::thread tracing([] { ZAV_BASE_TRACE(0x10, "a line that is being written"); });
    while (!sink.mWriting) std::this_thread::yield();
    ZAV_Tracer::SetStreamP(tr_base_name, nullptr);
    EXPECT_FALSE(sink.mWriting);
    os.reset();
    tracing.join();
}

TEST(Tracer, ConfiguredFromADictionary) {
    ZAV_UValDict dict;
    dict.DefineUVal("CFGTRACER", UVAL_LONG, 0, nullptr)->SetLongValue(0x11, 0);
    ZAV_Tracer::Initialize(dict);
    std::ostream* stream;
    long mask;
    EXPECT_EQ(0, ZAV_Tracer::GetStreamP("CFGTRACER", &stream));
    EXPECT_EQ(&dout, stream);
    ZAV_Tracer::GetMask("CFGTRACER", &mask);
    EXPECT_EQ(0x11, mask);
}

// The table is the process's: this test leaves it full, and comes last.
TEST(TracerZ, TableTakesThirtyNames) {
    ZAV_Tracer::FindOrCreate(tr_base_name);
    ZAV_Tracer* unnamed = ZAV_Tracer::FindOrCreate("");
    EXPECT_EQ(unnamed, ZAV_Tracer::FindOrCreate(nullptr));
    unsigned before = NamedSlots();
    long mask = 77;
    EXPECT_EQ(0, ZAV_Tracer::GetMask("CLAIMED", &mask));
    EXPECT_EQ(0, mask);
    EXPECT_EQ(before + 1, NamedSlots());
    EXPECT_STREQ("CLAIMED", unnamed->mName); // the empty name had left the slot free
    for (int i = 0; i < 30; ++i) ZAV_Tracer::FindOrCreate(("FILL" + std::to_string(i)).c_str());
    EXPECT_EQ(30u, NamedSlots());

    mask = 77;
    EXPECT_EQ(-1, ZAV_Tracer::SetMask("TOO MANY", 1));
    EXPECT_EQ(-1, ZAV_Tracer::GetMask("TOO MANY", &mask));
    EXPECT_EQ(0, mask);
    ZAV_Tracer* cache = nullptr;
    ZAV_TRACE(cache, "TOO MANY", 1, "nowhere");
    EXPECT_EQ(nullptr, cache);
}

TEST(FuncStrmbuf, HandsOnEverythingInSmallPieces) {
    for (size_t length : {0u, 1u, 254u, 255u, 256u, 511u}) {
        Pieces pieces;
        ZAV_FuncStrmbuf buffer(Pieces::Take, &pieces);
        std::ostream os(&buffer);
        std::string text;
        while (text.size() < length) text += static_cast<char>('a' + text.size() % 26);
        os << text << std::flush;
        ASSERT_EQ((length + 254) / 255, pieces.mTexts.size());
        for (size_t i = 0; i < pieces.mTexts.size(); ++i)
            EXPECT_EQ(text.substr(i * 255, 255), pieces.mTexts[i]);
        EXPECT_EQ(EOF, buffer.sgetc());
    }
}

TEST(FuncStrmbuf, CopiesOwnTheirPendingText) {
    Pieces pieces;
    auto original = std::make_unique<ZAV_FuncStrmbuf>(Pieces::Take, &pieces);
    original->sputn("pending", 7);
    ZAV_FuncStrmbuf copy(*original), assigned(nullptr, nullptr);
    assigned.sputn("dropped", 7);
    assigned = copy;
    original->sputn("!", 1);
    original->pubsync();
    original.reset();
    copy.pubsync();
    assigned.pubsync();
    EXPECT_EQ((std::vector<std::string>{"pending!", "pending", "pending"}), pieces.mTexts);
}

TEST(FuncStrmbuf, ADerivedClassMayHaveAnAreaOfItsOwn) {
    struct Own : ZAV_FuncStrmbuf {
        explicit Own(Pieces& pieces, size_t size) : ZAV_FuncStrmbuf(Pieces::Take, &pieces), mArea(size, '-') {
            sputc('a'); // into a buffer of the base class, which is left for good
            pubsync();
            setp(mArea.data(), mArea.data() + size);
            setg(mArea.data(), mArea.data(), mArea.data() + size);
        }
        std::string mArea;
    };
    for (const size_t size : {0u, 2000u}) {
        Pieces pieces;
        ZAV_FuncStrmbuf copy(nullptr, nullptr);
        {
            Own own(pieces, size);
            const std::string text(3000, 'x');
            own.sputn(text.data(), 3000);
            copy = own;
            EXPECT_EQ(EOF, copy.sgetc()); // the area to read from is not copied
            own.pubsync();
        }
        const std::string handedOn =
            std::accumulate(pieces.mTexts.begin(), pieces.mTexts.end(), std::string());
        EXPECT_EQ(1 + 3000u + (size == 0 ? 0 : 765), handedOn.size());
        copy.pubsync();
        EXPECT_EQ(size == 0 ? 1u : 235u, pieces.mTexts.back().size());
    }
}

TEST(FuncStrmbuf, ACallbackMayWriteToItsOwnStream) {
    Pieces pieces;
    ZAV_FuncStrmbuf buffer(Pieces::Take, &pieces);
    std::ostream os(&buffer);
    pieces.mEcho = &os;
    os << "a" << std::flush << "b" << std::flush;
    EXPECT_EQ((std::vector<std::string>{"a", "+b"}), pieces.mTexts);
}
