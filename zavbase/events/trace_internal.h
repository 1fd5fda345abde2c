#ifndef ZAVBASE_EVENTS_TRACE_INTERNAL_H
#define ZAVBASE_EVENTS_TRACE_INTERNAL_H

#include <zavbase/foundation/exception.h>
#include <zavbase/foundation/tracer.h>

/// One error line: the text and the exception. A throw for which no memory was left throws a null pointer.
inline void ZAV_TraceCaught(const char* text, ZAV_Exception* caught) {
    if (caught != nullptr)
        ZAV_BASE_TRACE(0x0001, text << *caught);
    else
        ZAV_BASE_TRACE(0x0001, text);
}

#endif
