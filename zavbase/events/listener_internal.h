#ifndef ZAVBASE_EVENTS_LISTENER_INTERNAL_H
#define ZAVBASE_EVENTS_LISTENER_INTERNAL_H

class ZAV_EvDispatcher;
class ZAV_Listener;

/// Which dispatcher polls which listener: a listener has no room to know, but must not stay behind in a list
/// when it is destroyed, nor look for a dispatcher that is gone. One table for the process, for any thread.
namespace zav_listeners {

/// False when a dispatcher has it already.
bool Claim(ZAV_Listener* listener, ZAV_EvDispatcher* dispatcher);
void Release(ZAV_Listener* listener);
/// Null when no dispatcher has it.
ZAV_EvDispatcher* Owner(ZAV_Listener* listener);

} // namespace zav_listeners

#endif
