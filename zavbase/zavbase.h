/// Every public header of the library, and nothing else.
#ifndef ZAVBASE_ZAVBASE_H
#define ZAVBASE_ZAVBASE_H

#include <zavbase/foundation/export.h>
#include <zavbase/foundation/object.h>
#include <zavbase/foundation/types.h>

#endif
