#ifndef ZAVBASE_FOUNDATION_EXCEPTION_INTERNAL_H
#define ZAVBASE_FOUNDATION_EXCEPTION_INTERNAL_H

#include <zavbase/foundation/exception.h>

/// The head of the calling thread's chain of handler scopes: the place named by ZAV_SetThreadLinkHead, or
/// else one that the thread has of its own.
ZAV_EXCEPTION_LINK*& ZAV_CurrentLinkHead();

/// From now on the calling thread's chain hangs on `*head`; null goes back to the thread's own place. A
/// thread object calls this as its thread begins and ends, outside of any handler scope. `*head` must outlive
/// it.
void ZAV_SetThreadLinkHead(ZAV_EXCEPTION_LINK** head);

#endif
