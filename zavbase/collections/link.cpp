#include <zavbase/collections/link.h>

#include <ostream>

ZAV_DEFINE_CLASS(ZAV_Link, ZAV_CltObject)
ZAV_DEFINE_CLASS(ZAV_LinkObj, ZAV_Link)

// Built by the compiler and never destroyed: static lists may refer to it at any time.
struct ZAV_NilLinkHolder {
    union {
        ZAV_Link mLink;
    };
    constexpr ZAV_NilLinkHolder() : mLink(ZAV_Link::SelfLinked()) {}
    ~ZAV_NilLinkHolder() {}
};
static constinit ZAV_NilLinkHolder nilLinkHolder;

ZAV_Link* ZAV_Link::GetNilLink() { return &nilLinkHolder.mLink; }

ZAV_Link::~ZAV_Link() {}

ZAV_LinkObj::~ZAV_LinkObj() {}

ZAV_LinkObj& ZAV_LinkObj::operator=(const ZAV_LinkObj& o) {
    mObject = o.mObject;
    return *this;
}

void ZAV_LinkObj::PrintOn(std::ostream& os) {
    if (mObject) mObject->PrintOn(os);
}

unsigned int ZAV_LinkObj::Size() const { return mObject ? mObject->Size() : 0; }

boolean_t ZAV_LinkObj::IsEqual(const ZAV_CltObject* o) {
    return o && mObject ? const_cast<ZAV_CltObject*>(o)->IsEqual(mObject) : B_FALSE;
}

int ZAV_LinkObj::Compare(const ZAV_CltObject* o) const { return o && mObject ? o->Compare(mObject) : 0; }
unsigned int ZAV_LinkObj::Hash() const { return mObject ? mObject->Hash() : 0; }
