#include <zavbase/events/event.h>

#include <ostream>

#include <zavbase/strings/byte_string.h>

ZAV_DEFINE_CLASS(ZAV_Event, ZAV_Link)
ZAV_DEFINE_CLASS(ZAV_EventStart, ZAV_Event)
ZAV_DEFINE_CLASS(ZAV_EventStop, ZAV_Event)

namespace {

const long kTypeStart = 0x53747274;
const long kTypeStop = 0x53746F70;

void TypeText(long type, char* text) {
    for (int i = 0; i < 4; ++i)
        text[i] = static_cast<char>(static_cast<unsigned long>(type) >> (24 - 8 * i) & 0xFF);
}

} // namespace

constinit ZAV_EventCount ZAV_Event::instance_counter;

ZAV_Event::ZAV_Event(long type) : mDestination(nullptr), mType(static_cast<zav_long32>(type)), mPriority(0) {
    instance_counter.Add(1);
}

ZAV_Event::ZAV_Event(const ZAV_Event& other)
    : ZAV_Link(other), ZAV_Pooled(), mDestination(nullptr), mType(other.mType), mPriority(0) {
    instance_counter.Add(1);
}

ZAV_Event& ZAV_Event::operator=(const ZAV_Event& other) {
    mType = other.mType;
    return *this;
}

ZAV_Event::~ZAV_Event() {
    if (mDestination != nullptr) DropDestination();
    instance_counter.Add(-1);
}

void ZAV_Event::Type2Str(ZAV_String* text) const {
    char type[4];
    TypeText(mType, type);
    text->Append(type, 4);
}

void ZAV_Event::PrintOn(std::ostream& os) {
    char type[4];
    TypeText(mType, type);
    os << "Event '";
    os.write(type, 4);
    os << "'";
}

void ZAV_Event::EmergencyCleanup() {}

ZAV_EventStart::ZAV_EventStart() : ZAV_Event(kTypeStart) {}

void ZAV_EventStart::PrintOn(std::ostream& os) {
    ZAV_Event::PrintOn(os);
    os << " = ZAV_EventStart";
}

ZAV_EventStop::ZAV_EventStop() : ZAV_Event(kTypeStop) {}

void ZAV_EventStop::PrintOn(std::ostream& os) {
    ZAV_Event::PrintOn(os);
    os << " = ZAV_EventStop";
}
