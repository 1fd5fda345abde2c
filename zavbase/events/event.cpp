#include <zavbase/events/event.h>

#include <ostream>

#include <zavbase/events/ev_handler.h>
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
    if (mDestination != nullptr) mDestination->LetGo();
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

// The new handler is counted before the old one is let go: the event's may be the last reference to it.
void ZAV_Event::SetDestination(ZAV_EvHandlerBody* handler, long priority) {
    mPriority = static_cast<zav_long32>(priority);
    if (handler == mDestination) return;
    ZAV_EvHandlerBody* old = mDestination;
    handler->Hold();
    mDestination = handler;
    if (old != nullptr) old->LetGo();
}

// The count that the event held is the caller's now.
ZAV_EvHandlerBody* ZAV_Event::TakeDestination() {
    ZAV_EvHandlerBody* handler = mDestination;
    mDestination = nullptr;
    mPriority = 0;
    return handler;
}

ZAV_EvHandlerRef* ZAV_Event::RemoveDestination() {
    if (mDestination == nullptr) return nullptr;
    ZAV_EvHandlerRef* reference = new ZAV_EvHandlerRef(mDestination);
    TakeDestination()->LetGo();
    return reference;
}

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
