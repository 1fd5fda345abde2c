#include <zavbase/foundation/error.h>

#include <zavbase/i18n/i18n_resource.h>
#include <zavbase/strings/byte_string.h>
#include <zavbase/values/dict_path.h>
#include <zavbase/values/value_dict.h>

#include <gtest/gtest.h>

#include <memory>
#include <thread>

#include "tests/support/printed.h"
#include "tests/support/trace_capture.h"

namespace {

class Counted : public ZAV_Exception {
public:
    Counted() { ++alive; }
    ~Counted() override { --alive; }
    static int alive;
};
int Counted::alive = 0;

} // namespace

TEST(Exception, DescribesItself) {
    ZAV_ErrorException error{ZAV_Error("ERR")};
    EXPECT_EQ("Error exception: ", Printed(error)); // and not its message
    ZAV_ExitException exit;
    ZAV_String s("kept ");
    EXPECT_EQ(&s, &exit.ToString(s));
    EXPECT_STREQ("kept Exit exception: ", s.Ptr());

    for (const auto& [code, name] : {std::pair{0, "NoError"}, {11, "Unknown"}, {12, "\v"}}) {
        ZAV_FileException file(static_cast<unsigned short>(code), 5);
        EXPECT_EQ(std::string("File exception: ") + name, Printed(file));
    }
}

// clang-format off: it takes scopes in scopes for initialisers
TEST(Exception, AScopeDeletesWhatItCaughtUnlessItPassesItOn) {
    int inner = 0;
    ZAV_TRY{ZAV_TRY{throw new Counted;
}
ZAV_CATCH(Counted, e) {
    inner = e != nullptr;
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
EXPECT_EQ(1, inner);
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

TEST(Exception, TheMemoryExceptionSurvivesDelete) {
    ZAV_Exception* first = nullptr;
    for (int i = 0; i < 2; ++i) {
        ZAV_TRY { ZAV_ThrowMemoryException(); }
        ZAV_CATCH(ZAV_MemoryException, e) {
            EXPECT_TRUE(i == 0 || e == first);
            first = e;
        }
        ZAV_CATCH_END
    }
    // Nothing but a positive flag lets an exception go; copies of the memory exception have none either.
    const std::unique_ptr<ZAV_Exception> staying[] = {
        std::make_unique<ZAV_MemoryException>(*static_cast<ZAV_MemoryException*>(first)),
        std::make_unique<ZAV_Exception>(static_cast<boolean_t>(-1))};
    for (const auto& e : staying) {
        const std::string text = Printed(*e);
        e->Delete();
        EXPECT_EQ(text, Printed(*e));
    }
    (new ZAV_Exception(static_cast<boolean_t>(5)))->Delete();
}

TEST(Exception, UnknownErrorNumbersBecomeHexadecimal) {
    EXPECT_STREQ("0x2FFFABCD", GetErrorString(0x2FFFABCDu));
    EXPECT_STRNE("0x2", GetErrorString(2));
}

TEST(Error, ParameterErrorIsTheDetailOfAnInternalOne) {
    ZAV_UValDict defs;
    ZAV_Base_GetI18nDefs(&defs, B_TRUE, B_TRUE);
    ZAV_I18nDef2Dict(&defs, "ERR_BASE_INTERNAL", "Internal: <<detail>>");
    ZAV_I18nResource resource;
    resource.SetDefaultDefs(&defs);

    for (const char* text : {static_cast<const char*>("dialog"), static_cast<const char*>(nullptr)}) {
        TraceCapture capture;
        try {
            ZAV_ThrowParamSpecError(ZAV_DictPath("a:b"), text);
            ADD_FAILURE();
        } catch (ZAV_ErrorException* e) {
            const std::string path = text ? "dialog:a:b:" : "a:b:";
            EXPECT_EQ("Internal: Invalid parameter spec for " + path,
                      e->mError.Format("", &resource, nullptr).Ptr());
            e->Delete();
        }
        EXPECT_EQ("Error exception: \n", capture.Text());
    }
}

TEST(Error, AnIdentifierAssignedReplacesTheWholeError) {
    ZAV_Error error("FIRST");
    error.AddArg("<<x>>", "y", ZAV_I18N_STRING);
    error = ZAV_UTFString("SECOND");
    EXPECT_EQ("SECOND", Printed(static_cast<ZAV_Object&>(error)));
}
