#include <zavbase/zavbase.h>

#include <gtest/gtest.h>

#include <functional>
#include <thread>

#include "tests/support/file_support.h"
#include "tests/support/printed.h"
#include "tests/support/thrown.h"
#include "tests/support/trace_capture.h"

namespace {

struct Counted : ZAV_Exception {
    explicit Counted(int deletable = 1) : ZAV_Exception(static_cast<boolean_t>(deletable)) { ++alive; }
    ~Counted() override { --alive; }
    inline static int alive = 0;
};

} // namespace

TEST(Exception, DescribesItself) {
    ZAV_String s("kept ");
    EXPECT_STREQ("kept Exit exception: ", ZAV_ExitException().ToString(s).Ptr());
    for (const auto& [code, name] : {std::pair{0, "NoError"}, {11, "Unknown"}, {12, "\v"}}) {
        ZAV_FileException file(static_cast<unsigned short>(code), 5);
        EXPECT_EQ(std::string("File exception: ") + name, Printed(file));
    }
    EXPECT_STREQ("0x2FFFABCD", GetErrorString(0x2FFFABCDu));
}

// clang-format off: it takes scopes in scopes for initialisers
TEST(Exception, AScopeDeletesWhatItCaughtUnlessItPassesItOn) {
    bool passedOn = false;
    ZAV_TRY{ZAV_TRY{throw new Counted;
}
ZAV_CATCH(Counted, e) {
    passedOn = e != nullptr;
    ZAV_RETHROW;
}
ZAV_CATCH_END
}
ZAV_CATCH(ZAV_FileException, e) { ADD_FAILURE() << e; }
ZAV_CATCH(ZAV_Exception, e) {
    EXPECT_EQ("Base exception", Printed(*e));
    const auto another = [e] {
        ZAV_TRY { throw new Counted; }
        ZAV_CATCH(Counted, second) { EXPECT_NE(e, second); }
        ZAV_CATCH_END
        EXPECT_EQ(1, Counted::alive);
    };
    another(); // while one is being handled
    std::thread(another).join();
}
ZAV_CATCH_END
EXPECT_TRUE(passedOn);
EXPECT_EQ(0, Counted::alive);
}

TEST(Exception, AnotherExceptionMayLeaveTheHandler) {
    const auto scope = [] {
        ZAV_TRY { throw new Counted; }
        ZAV_CATCH(Counted, e) { throw std::string(e->ClassName()); }
        ZAV_CATCH_END
    };
    EXPECT_THROW(scope(), std::string);
    EXPECT_EQ(0, Counted::alive);
    ZAV_ThrowLastCleanup(); // no scope is open: nothing happens
}
// clang-format on

TEST(Exception, OnlyAPositiveFlagLetsItBeDeleted) {
    for (const int flag : {-1, 0, 1, 5}) {
        auto e = std::make_unique<Counted>(flag);
        e->Delete();
        EXPECT_EQ(flag <= 0, Counted::alive == 1);
        if (Counted::alive == 0) e.release();
    }
    // The memory exception has none, nor has a copy of it.
    const auto first = Thrown<ZAV_MemoryException>(ZAV_ThrowMemoryException);
    const auto copy = std::make_unique<ZAV_MemoryException>(*first);
    copy->Delete();
    ZAV_AddExceptionContext(first.get(), {"that of one thread"});
    EXPECT_STREQ("", ZAV_GetExceptionContext(first.get()).mPath);
    EXPECT_EQ("Memory exception: ", Printed(*copy));
    EXPECT_EQ(first.get(), Thrown<ZAV_MemoryException>(ZAV_ThrowMemoryException).get());
}

TEST(ExceptionContext, EndsWithItsObjectWhereverThatIs) {
    alignas(ZAV_Exception) unsigned char place[sizeof(ZAV_Exception)];
    for (const bool destroyed : {true, false}) { // the second leaves its memory without a word
        auto* e = new (place) ZAV_Exception;
        EXPECT_STREQ("", ZAV_GetExceptionContext(e).mPath);
        ZAV_AddExceptionContext(e, {"path"});
        EXPECT_STREQ("path", ZAV_GetExceptionContext(e).mPath);
        if (destroyed) e->~ZAV_Exception();
    }
    EXPECT_STREQ("", ZAV_GetExceptionContext(new (place) ZAV_Exception).mPath);

    // As many as a host may keep, made by one thread and deleted by another; copies outlive them.
    std::vector<ZAV_FileException> copies;
    std::vector<ZAV_Exception*> kept;
    for (int i = 0; i < 1000; ++i) {
        kept.push_back(new ZAV_FileException(2, 0));
        ZAV_AddExceptionContext(kept.back(), {std::to_string(i).c_str()});
        copies.push_back(static_cast<ZAV_FileException&>(*kept.back()));
    }
    std::thread([&] {
        for (ZAV_Exception* e : kept) e->Delete();
    }).join();
    for (int i = 0; i < 1000; ++i)
        ASSERT_EQ(std::to_string(i), ZAV_GetExceptionContext(&copies[static_cast<size_t>(i)]).mPath);
    copies[0] = copies[1];
    copies[1] = ZAV_FileException();
    EXPECT_STREQ("1", ZAV_GetExceptionContext(&copies[0]).mPath);
    EXPECT_STREQ("", ZAV_GetExceptionContext(&copies[1]).mPath);
}

TEST(ExceptionContext, IsTheLineForAUser) {
    ZAV_ExceptionContext inner, outer;
    inner.mLine = 12, inner.mColumn = 5, inner.mReason = "wrong", inner.mFound = "]", outer.mLine = 99;
    outer.mPath = "a\nb.zav", outer.mReason = "worse", outer.mOffset = 7;
    const auto e = Thrown<ZAV_FileException>([&] { ZAV_ThrowFileException(2, 0, inner); });
    const std::string rest = "File exception: InvalidFile: wrong (found \"]\")";
    EXPECT_EQ("line 12, column 5: " + rest, Printed(ZAV_ExceptionLine(e.get())));
    ZAV_AddExceptionContext(e.get(), outer);
    EXPECT_EQ("a b.zav:12:5: " + rest, Printed(ZAV_ExceptionLine(e.get())));
    const std::string system = ZAV_ExceptionLine(std::make_unique<ZAV_FileException>(1, 2).get()).Ptr();
    EXPECT_TRUE(system.starts_with("File exception: FileNotFound: ") && system.size() > 30) << system;
    EXPECT_STREQ("Out of memory", ZAV_ExceptionLine(nullptr).Ptr());
    const auto spec = Thrown<ZAV_ErrorException>([] { ZAV_ThrowParamSpecError("a:b", nullptr); });
    EXPECT_STREQ("Error exception: Internal error: Invalid parameter spec for a:b",
                 ZAV_ExceptionLine(spec.get()).Ptr());
    ZAV_Error own("HOST_ERROR");
    own.AddArg("<<x>>", "y", ZAV_I18N_STRING);
    EXPECT_STREQ("Error exception: HOST_ERROR[<<x>> = y]",
                 ZAV_ExceptionLine(std::make_unique<ZAV_ErrorException>(own).get()).Ptr());
}

TEST(ExceptionContext, IsToldWhereverTheLibraryThrows) {
    TestFolder folder;
    const std::string path = folder.Path("f"), missing = folder.Path("no/f");
    ZAV_UValDict dict(16), longText(16);
    longText.DefineUVal("k", UVAL_STRING, 0, nullptr)->SetStrValue(ZAV_String('x', 65535), 0);
    ZAV_ResourceLockPool pool(path.c_str()), nowhere(missing.c_str());
    ZAV_SharedLib linkedIn("x_static_dll", ""), module("f", folder.Path().c_str());
    const auto read = [&] { dict.ReadFile(path.c_str()); };
    const std::string magic("\3\x10\0\x12\0\0\0\x10UVALBINDUMP_2.0\0", 24);
    const std::string entry("\3\1\0\3\2\0\x12\0\0\0\2k\0\3\x0D\0", 16);
    const struct {
        std::string mFile; // its contents
        std::function<void()> mCall;
        std::string mLine; // a "*" at its end stands for the system's text
    } rows[] = {
        {"<<\n/x [ 1 /y\n] >>", read,
         path + ":3:1: File exception: InvalidFile: Illegal type in array (found \"]\")"},
        {"5", read, path + ":1:1: File exception: InvalidFile: Error in object hierarchy (found \"5\")"},
        {"\3", read, path + ": byte 0: File exception: InvalidFile: not a binary value file"},
        {magic + entry.substr(0, 5), read,
         path + ": byte 29: File exception: InvalidFile: the file ends too early"},
        {magic + entry, read, path + ": byte 37: File exception: InvalidFile: an unknown type"},
        {magic + std::string("\3\0\0x", 4), read,
         path + ": byte 27: File exception: InvalidFile: more bytes than the values have"},
        {"", [&] { ZAV_ConfigInit(missing.c_str()); }, missing + ": File exception: OpenRdError: *"},
        {"", [&] { dict.WriteTextFile(missing.c_str()); }, missing + ": File exception: OpenWrError: *"},
        {"", [&] { dict.WriteBinFile(missing.c_str()); }, missing + ": File exception: OpenWrError: *"},
        {"", [&] { longText.WriteBinFile(path.c_str()); },
         path + ": Binary Packing Error: entry \"k\": a text of more than 65534 bytes"},
        {"<< /l << >> >>", [&] { pool.GetLockState("l"); },
         path + ": Base exception: no owner can be read for the lock \"l\""},
        {"", [&] { nowhere.GetLockState("l"); }, missing + ": File exception: OpenWrError: *"},
        {"", [&] { linkedIn.Load(); },
         Printed(linkedIn.GetFullPath()) +
             ": File exception: InvalidFile: no module of this name is linked in"},
        {"", [&] { module.Load(); }, Printed(module.GetFullPath()) + ": File exception: FileNotFound: *"},
    };
    for (const auto& [file, call, expected] : rows) {
        PutFile(path, file);
        const std::string line = ZAV_ExceptionLine(Thrown<ZAV_Exception>(call).get()).Ptr();
        const size_t known = expected.find('*');
        EXPECT_EQ(expected.substr(0, known), line.substr(0, known)) << line;
        EXPECT_EQ(known != expected.npos, line.size() > known) << line;
    }
    ZAV_ConfigCleanup();
}

TEST(Error, ParameterErrorIsTheDetailOfAnInternalOne) {
    ZAV_UValDict defs;
    ZAV_Base_GetI18nDefs(&defs, B_TRUE, static_cast<boolean_t>(-1));
    EXPECT_EQ(2u, defs.GetSize()) << "exactly B_TRUE counts";
    ZAV_I18nDef2Dict(&defs, "ERR_BASE_INTERNAL", "Internal: <<detail>>");
    ZAV_I18nResource resource;
    resource.SetDefaultDefs(&defs);
    for (const auto& [text, path] : {std::pair{"dialog", "dialog:a:b:"}, {nullptr, "a:b:"}}) {
        TraceCapture capture;
        const auto e = Thrown<ZAV_ErrorException>([&] { ZAV_ThrowParamSpecError("a:b", text); });
        EXPECT_EQ(std::string("Internal: Invalid parameter spec for ") + path,
                  e->mError.Format("", &resource, nullptr).Ptr());
        EXPECT_EQ("Error exception: \n", capture.Text()); // and not its message
    }
}

TEST(Error, AnIdentifierAssignedReplacesTheWholeError) {
    ZAV_Error error("FIRST");
    error.AddArg("<<x>>", "y", ZAV_I18N_STRING);
    error = ZAV_UTFString("SECOND");
    const auto e = Thrown<ZAV_ErrorException>([&] { ZAV_ThrowErrorException(error); });
    EXPECT_EQ("SECOND", Printed(static_cast<ZAV_Object&>(e->mError)));
}
