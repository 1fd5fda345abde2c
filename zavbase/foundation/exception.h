#ifndef ZAVBASE_FOUNDATION_EXCEPTION_H
#define ZAVBASE_FOUNDATION_EXCEPTION_H

#include <zavbase/foundation/object.h>

class ZAV_String;

/// Exceptions are objects made with new and thrown by pointer; whoever ends their way calls Delete. A handler
/// for ZAV_Exception* catches them all. ZAV_ErrorException, which carries a message, is in error.h; what an
/// exception is about (path, place, reason), and the line to print for a user, in exception_context.h.
///
/// In host code the handler scope below does the deleting:
///
///     ZAV_TRY {
///         file.Open();
///     }
///     ZAV_CATCH(ZAV_FileException, e) {
///         if (e->mCode != 1) ZAV_RETHROW; // goes on to the scope outside, undeleted
///         UseDefaults();
///     }
///     ZAV_CATCH(ZAV_Exception, e) { std::cerr << ZAV_ExceptionLine(e) << std::endl; }
///     ZAV_CATCH_END // deletes what was caught
class ZAV_API ZAV_Exception : public ZAV_Object {
    ZAV_DECLARE_CLASS(ZAV_Exception)
public:
    ZAV_Exception();
    explicit ZAV_Exception(boolean_t deletable);
    ZAV_Exception(const ZAV_Exception& other);
    ZAV_Exception& operator=(const ZAV_Exception& other);
    ~ZAV_Exception() override;

    void PrintOn(std::ostream& os) override; ///< writes what ToString appends
    void DumpOn(std::ostream& os) override;
    virtual ZAV_String& ToString(ZAV_String& s) const; ///< appends a description to `s` and returns it

    /// Destroys the object if it is deletable, that is if the flag is greater than 0. A copy takes the flag
    /// along, so a copy of the static memory exception is never deleted this way.
    void Delete();

protected:
    boolean_t mDeletable;
    boolean_t mDeleted; ///< set by Delete just before the object goes
};

/// Out of memory. The one that ZAV_ThrowMemoryException throws is static and survives Delete.
class ZAV_API ZAV_MemoryException : public ZAV_Exception {
    ZAV_DECLARE_CLASS(ZAV_MemoryException)
public:
    ZAV_MemoryException();
    explicit ZAV_MemoryException(boolean_t deletable);
    ZAV_MemoryException(const ZAV_MemoryException& other);
    ZAV_MemoryException& operator=(const ZAV_MemoryException&) = default;
    ~ZAV_MemoryException() override;
    ZAV_String& ToString(ZAV_String& s) const override;
};

/// A failed operation on a file. Codes: 0 NoError, 1 FileNotFound, 2 InvalidFile, 3 OpenRdError,
/// 4 OpenWrError, 5 OpenRdWrError, 6 ReadError, 7 WriteError, 8 SeekError, 9 TellError, 10 LockError,
/// 11 Unknown. The text ends with the code's name; for a code above 11 it ends with a vertical tab.
class ZAV_API ZAV_FileException : public ZAV_Exception {
    ZAV_DECLARE_CLASS(ZAV_FileException)
public:
    ZAV_FileException(); ///< code 0, no error number
    ZAV_FileException(unsigned short code, unsigned long osError);
    ZAV_FileException(const ZAV_FileException& other);
    ZAV_FileException& operator=(const ZAV_FileException&) = default;
    ~ZAV_FileException() override;
    ZAV_String& ToString(ZAV_String& s) const override;

    unsigned short mCode;
    zav_ulong32 mOsError; ///< the system's error number; GetErrorString has its text
};

/// Asks the code that catches it to end the program or the task in an orderly way.
class ZAV_API ZAV_ExitException : public ZAV_Exception {
    ZAV_DECLARE_CLASS(ZAV_ExitException)
public:
    ZAV_ExitException();
    ZAV_ExitException(const ZAV_ExitException& other);
    ZAV_ExitException& operator=(const ZAV_ExitException&) = default;
    ~ZAV_ExitException() override;
    ZAV_String& ToString(ZAV_String& s) const override;
};

/// Each throws a pointer to its class. When the object cannot be allocated, the pointer is null; the memory
/// exception needs no memory.
[[noreturn]] ZAV_API void ZAV_ThrowMemoryException();
[[noreturn]] ZAV_API void ZAV_ThrowFileException(unsigned short code, unsigned long osError);
[[noreturn]] ZAV_API void ZAV_ThrowExitException();

/// The system's text for an error number, or "0x" and the number in upper-case hexadecimal when it has none
/// or one of 80 characters and more. One buffer for all callers and threads: the next call overwrites it.
ZAV_API const char* GetErrorString(unsigned long osError);

/// A handler scope: an automatic object that remembers the exception caught in the scope and deletes it when
/// the scope ends. Scopes nest; each thread has its own chain. They must end in the reverse order of their
/// beginning, on the thread on which they began.
struct ZAV_API ZAV_EXCEPTION_LINK {
    ZAV_EXCEPTION_LINK();
    ~ZAV_EXCEPTION_LINK();
    ZAV_EXCEPTION_LINK(const ZAV_EXCEPTION_LINK&) = delete;
    ZAV_EXCEPTION_LINK& operator=(const ZAV_EXCEPTION_LINK&) = delete;

    ZAV_EXCEPTION_LINK* mNext; ///< the enclosing scope
    ZAV_Exception* mException; ///< what this scope caught, or null
};

/// Ends the innermost scope: deletes its exception and makes the enclosing scope the innermost. There must be
/// a scope; the link's destructor calls this.
ZAV_API void ZAV_TryCleanup();
/// To be called before an exception caught in the innermost scope is thrown on: the scope forgets it.
ZAV_API void ZAV_ThrowLastCleanup();

/// The handler scope as four words; see the example above. TYPE is a class, caught by pointer; there may be
/// several ZAV_CATCH. Other C++ exceptions pass through. `return`, `break` and `throw` may leave any of it.
#define ZAV_TRY                                                                                              \
    {                                                                                                        \
        ZAV_EXCEPTION_LINK zav_link;                                                                         \
        try {
#define ZAV_CATCH(TYPE, NAME)                                                                                \
    }                                                                                                        \
    catch (TYPE * NAME) {                                                                                    \
        zav_link.mException = NAME;
#define ZAV_CATCH_END                                                                                        \
    }                                                                                                        \
    }
/// Inside ZAV_CATCH: throws the caught exception on, to the scope outside.
#define ZAV_RETHROW                                                                                          \
    do {                                                                                                     \
        ZAV_ThrowLastCleanup();                                                                              \
        throw;                                                                                               \
    } while (0)

#endif
