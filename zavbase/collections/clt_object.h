#ifndef ZAVBASE_COLLECTIONS_CLT_OBJECT_H
#define ZAVBASE_COLLECTIONS_CLT_OBJECT_H

#include <zavbase/foundation/object.h>

/// Stands in the public part of a class: unchecked conversions of a pointer or reference to the class. They
/// return their argument; a pointer may be null. Test with IsKindOf first where the class is in doubt.
#define ZAV_DECLARE_CASTDOWN(NAME)                                                                           \
    static NAME* Castdown(ZAV_Object* o) { return static_cast<NAME*>(o); }                                   \
    static const NAME* Castdown(const ZAV_Object* o) { return static_cast<const NAME*>(o); }                 \
    static NAME& Castdown(ZAV_Object& o) { return static_cast<NAME&>(o); }                                   \
    static const NAME& Castdown(const ZAV_Object& o) { return static_cast<const NAME&>(o); }

/// Whatever a collection can hold: an object with a size, an equality, an order and a hash.
///
/// Hashed collections find elements by Hash and IsEqual, so objects that are IsEqual must have the same Hash.
/// Sorted collections use Compare. The defaults make an object that is equal to nothing, not even to itself;
/// a class that is to be found in a collection overrides IsEqual and Hash.
///
/// Collections do not own their elements. Objects are not locked: one thread at a time.
class ZAV_API ZAV_CltObject : public ZAV_Object {
    ZAV_DECLARE_CLASS(ZAV_CltObject)
public:
    ZAV_DECLARE_CASTDOWN(ZAV_CltObject)

    constexpr ZAV_CltObject() {}
    constexpr ZAV_CltObject(const ZAV_CltObject& o) : ZAV_Object(o) {}
    ZAV_CltObject& operator=(const ZAV_CltObject&) { return *this; } ///< copies nothing
    ~ZAV_CltObject() override;

    /// The class that counts in comparisons: two objects of one species may be equal. The object's own class
    /// unless a class says otherwise.
    virtual const ZAV_RuntimeClass* Species() const;
    /// The number of elements or characters; 0 for a plain object.
    virtual unsigned int Size() const;
    /// Whether the objects are equal in value. `o` must not be null. (Not const, so that classes of hosts
    /// keep overriding it; it does not change the object.)
    virtual boolean_t IsEqual(const ZAV_CltObject* o);
    /// Negative, zero or positive when this object comes before, with or after `o`.
    virtual int Compare(const ZAV_CltObject* o) const;
    /// 32 bits, the same for equal objects.
    virtual unsigned int Hash() const;

    boolean_t IsMemberOf(const ZAV_RuntimeClass* c) const { return ZAV_Bool(GetRuntimeClass() == c); }
    boolean_t IsSpecies(const ZAV_RuntimeClass* c) const { return ZAV_Bool(Species() == c); }
    boolean_t IsSame(const ZAV_Object* o) const { return ZAV_Bool(this == o); }
};

#endif
