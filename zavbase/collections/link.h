#ifndef ZAVBASE_COLLECTIONS_LINK_H
#define ZAVBASE_COLLECTIONS_LINK_H

#include <zavbase/collections/clt_object.h>

/// An object that can be chained into a ZAV_LinkedList, in one list at a time. Copying a link copies the
/// object, not its place in a list.
class ZAV_API ZAV_Link : public ZAV_CltObject {
    ZAV_DECLARE_CLASS(ZAV_Link)
public:
    ZAV_DECLARE_CASTDOWN(ZAV_Link)

    constexpr ZAV_Link() : mNext(nullptr) {}
    constexpr ZAV_Link(const ZAV_Link& o) : ZAV_CltObject(o), mNext(nullptr) {}
    ZAV_Link& operator=(const ZAV_Link&) { return *this; }
    ~ZAV_Link() override;

    /// The one static link that ends every list; it is its own successor.
    static ZAV_Link* GetNilLink();
    boolean_t IsListEnd() const { return ZAV_Bool(this == GetNilLink()); }
    /// The successor: another link, the nil link at the end of a list, null outside any list.
    ZAV_Link* NextLink() const { return mNext; }

protected:
    friend class ZAV_LinkedList;
    ZAV_Link* mNext; ///< for classes that chain their own links while these are in no list

private:
    struct SelfLinked {};
    constexpr explicit ZAV_Link(SelfLinked) : mNext(this) {}
    friend struct ZAV_NilLinkHolder;
};

/// A link that carries any collectable object, not owned. Equality, order, hash, size and print are the
/// object's; IsEqual and Compare ask the other object with the carried one as argument, as ZAV_LookupKey
/// does. One that carries null is empty: it has hash and size 0, prints nothing and is equal to nothing.
class ZAV_API ZAV_LinkObj : public ZAV_Link {
    ZAV_DECLARE_CLASS(ZAV_LinkObj)
public:
    ZAV_DECLARE_CASTDOWN(ZAV_LinkObj)

    ZAV_LinkObj(ZAV_CltObject* o) : mObject(o) {}
    ZAV_LinkObj(const ZAV_LinkObj& o) : ZAV_Link(o), mObject(o.mObject) {}
    ZAV_LinkObj& operator=(const ZAV_LinkObj& o);
    ~ZAV_LinkObj() override;

    ZAV_CltObject* Object() const { return mObject; }

    void PrintOn(std::ostream& os) override;
    unsigned int Size() const override;
    boolean_t IsEqual(const ZAV_CltObject* o) override;
    int Compare(const ZAV_CltObject* o) const override;
    unsigned int Hash() const override;

private:
    ZAV_CltObject* mObject;
};

#endif
