#ifndef ZAVBASE_EVENTS_LISTENER_INTERNAL_H
#define ZAVBASE_EVENTS_LISTENER_INTERNAL_H

class ZAV_EvDispatcher;
class ZAV_Listener;

/// What a listener needs of dispatchers, which define it: a listener has no room to know who polls it, but
/// must not stay behind in a list when it is destroyed, nor look for a dispatcher that is gone.
namespace zav_listeners {

/// Has the dispatcher poll the listener, as ZAV_EvDispatcher::AddListener does.
void Enter(ZAV_EvDispatcher* dispatcher, ZAV_Listener* listener);
/// Takes the listener out of the dispatcher that polls it, if there is one.
void Leave(ZAV_Listener* listener);

} // namespace zav_listeners

#endif
