#ifndef ZAVBASE_FOUNDATION_OBJECT_H
#define ZAVBASE_FOUNDATION_OBJECT_H

#include <zavbase/foundation/types.h>

/// The run-time record of a class: one static instance a class, linked to its base's record. Records are
/// compared by address. This is the library's own scheme; it works without compiler type information.
struct ZAV_RuntimeClass {
    const char* mName;                        ///< the class's own name
    unsigned mObjectSize;                     ///< sizeof an object of the class
    ZAV_RuntimeClass* (*mGetBaseClass)(void); ///< the base's _GetBaseClass; null only for ZAV_Object
    void* mReserved;                          ///< null in every record
};

/// Stands in a class derived from ZAV_Object and declares its record `class<NAME>`:
///
///     class Probe : public ZAV_Object {
///         ZAV_DECLARE_CLASS(Probe)
///     public: ...
///     };
///
/// and in one source file: ZAV_DEFINE_CLASS(Probe, ZAV_Object). Leaves the access at public.
#define ZAV_DECLARE_CLASS(NAME)                                                                              \
public:                                                                                                      \
    static ZAV_RuntimeClass class##NAME;                                                                     \
    [[maybe_unused]] static ZAV_RuntimeClass* _GetBaseClass(void);                                           \
    ZAV_RuntimeClass* GetRuntimeClass(void) const override;

/// In the library itself records are built by the compiler, before any code runs. (A host on Windows takes
/// its base link from another module, which may need code at start-up.)
#if defined(ZAVBASE_BUILDING)
#define ZAV_RECORD_INIT constinit
#else
#define ZAV_RECORD_INIT
#endif

/// Defines what ZAV_DECLARE_CLASS declares; BASE is the class whose record becomes the base link.
#define ZAV_DEFINE_CLASS(NAME, BASE)                                                                         \
    ZAV_RECORD_INIT ZAV_RuntimeClass NAME::class##NAME = {#NAME, sizeof(NAME), &BASE::_GetBaseClass,         \
                                                          nullptr};                                          \
    ZAV_RuntimeClass* NAME::_GetBaseClass(void) { return &NAME::class##NAME; }                               \
    ZAV_RuntimeClass* NAME::GetRuntimeClass(void) const { return &NAME::class##NAME; }

/// The root of the class tree. It has no data; copying copies nothing.
class ZAV_API ZAV_Object {
public:
    static ZAV_RuntimeClass classZAV_Object;
    /// The address of the class's own record; derived classes store this function as their base link.
    static ZAV_RuntimeClass* _GetBaseClass(void);

    virtual ~ZAV_Object();
    virtual ZAV_RuntimeClass* GetRuntimeClass(void) const;
    /// Writes the object as text, without a line end; the root writes "Base class".
    virtual void PrintOn(std::ostream& os);
    /// Writes a dump for debugging; the root writes nothing.
    virtual void DumpOn(std::ostream& os);

    /// Whether the object's class is `rc` or derives from it. The root record never matches: this is false
    /// for &ZAV_Object::classZAV_Object whatever the object, and an object of class ZAV_Object is kind of
    /// nothing.
    boolean_t IsKindOf(const ZAV_RuntimeClass* rc) const;
    const char* ClassName() const;

protected:
    constexpr ZAV_Object() {}
    constexpr ZAV_Object(const ZAV_Object&) {}
    ZAV_Object& operator=(const ZAV_Object&) { return *this; }
};

/// Both write the object with its PrintOn. The pointer must not be null.
ZAV_API std::ostream& operator<<(std::ostream& os, ZAV_Object& o);
ZAV_API std::ostream& operator<<(std::ostream& os, ZAV_Object* o);
/// The same for objects reached through const; PrintOn is not const, so that host classes keep overriding it.
ZAV_API std::ostream& operator<<(std::ostream& os, const ZAV_Object& o);
ZAV_API std::ostream& operator<<(std::ostream& os, const ZAV_Object* o);

#endif
