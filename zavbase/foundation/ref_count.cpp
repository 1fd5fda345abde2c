#include <zavbase/foundation/ref_count.h>

#include <ostream>
#include <string>

ZAV_DEFINE_CLASS(ZAV_RefCount, ZAV_Object)

ZAV_RefCount::ZAV_RefCount() : mRefCount(0) {}
ZAV_RefCount::ZAV_RefCount(const ZAV_RefCount&) : ZAV_Object(), mRefCount(0) {}
ZAV_RefCount& ZAV_RefCount::operator=(const ZAV_RefCount&) { return *this; }
ZAV_RefCount::~ZAV_RefCount() {}

void ZAV_RefCount::PrintOn(std::ostream& os) { os << "mRefCount=" << std::to_string(mRefCount.load()); }

void ZAV_RefCount::DumpOn(std::ostream&) {}
