#include <zavbase/collections/collection.h>

#include <algorithm>
#include <memory>
#include <ostream>

#include <zavbase/collections/array_obj.h>
#include <zavbase/collections/bag.h>
#include <zavbase/collections/iterator.h>
#include <zavbase/collections/ordered_cltn.h>
#include <zavbase/collections/set.h>

ZAV_DEFINE_CLASS(ZAV_Collection, ZAV_CltObject)

ZAV_Collection::~ZAV_Collection() {}

void ZAV_Collection::PrintOn(std::ostream& os) {
    ZAV_Iterator it(this);
    const char* separator = "";
    while (ZAV_CltObject* o = ++it) {
        os << separator;
        o->PrintOn(os);
        separator = "\n";
    }
}

ZAV_Collection* ZAV_Collection::AddContentsTo(ZAV_Collection* target) const {
    // The next element is taken first: adding a link to another list ends its chain here.
    ZAV_Iterator it(this);
    for (ZAV_CltObject *next, *o = ++it; o; o = next) {
        next = ++it;
        target->Add(o);
    }
    return target;
}

// Adding a collection to itself, or taking it from itself, works on a copy of the elements: walking what is
// being changed would not end, or would miss some.
const ZAV_Collection* ZAV_Collection::AddAll(const ZAV_Collection* c) {
    if (c == this) {
        ZAV_OrderedCltn copy(16);
        AddContentsTo(&copy)->AddContentsTo(this);
    } else {
        c->AddContentsTo(this);
    }
    return c;
}

const ZAV_Collection* ZAV_Collection::RemoveAll(const ZAV_Collection* c) {
    std::unique_ptr<ZAV_ArrayObj> copy(c == this ? AsArrayObj() : nullptr);
    ZAV_Iterator it(copy ? copy.get() : c);
    while (ZAV_CltObject* o = ++it) Remove(o);
    return c;
}

void ZAV_Collection::DeepenShallowCopy() {}
void ZAV_Collection::DoFinish(ZAV_Iterator*) const {}

void ZAV_Collection::DoReset(ZAV_Iterator* it) const {
    it->mIndex = 0;
    it->mOccurrence = 0;
    it->mCurrent = nullptr;
}

boolean_t ZAV_Collection::Includes(const ZAV_CltObject* o) { return ZAV_Bool(OccurrencesOf(o) != 0); }
boolean_t ZAV_Collection::IsEmpty() { return ZAV_Bool(Size() == 0); }

// How many elements to make room for. A count that removing what was absent took below 0 is replaced by the
// number walked.
static unsigned int CountOf(const ZAV_Collection& c) {
    unsigned int n = c.Size();
    if (n <= INT32_MAX) return n;
    n = 0;
    for (ZAV_Iterator it(&c); ++it;) ++n;
    return n;
}

ZAV_ArrayObj* ZAV_Collection::AsArrayObj() const {
    ZAV_ArrayObj* array = new ZAV_ArrayObj(CountOf(*this));
    ZAV_Iterator it(this);
    for (uint32_t i = 0; i < array->Size(); ++i) {
        ZAV_CltObject* o = ++it;
        if (!o) break;
        (*array)[static_cast<int>(i)] = o;
    }
    return array;
}

static unsigned int RoomFor(const ZAV_Collection& c) { return (std::max)(CountOf(c), 16u); }

ZAV_Bag* ZAV_Collection::AsBag() const {
    ZAV_Bag* bag = new ZAV_Bag(RoomFor(*this));
    AddContentsTo(bag);
    return bag;
}

ZAV_Set* ZAV_Collection::AsSet() const {
    ZAV_Set* set = new ZAV_Set(RoomFor(*this));
    AddContentsTo(set);
    return set;
}

ZAV_OrderedCltn* ZAV_Collection::AsOrderedCltn() const {
    ZAV_OrderedCltn* ordered = new ZAV_OrderedCltn(RoomFor(*this));
    AddContentsTo(ordered);
    return ordered;
}
