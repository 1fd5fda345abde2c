#include <zavbase/version.h>

extern "C" long ZAV_RuntimeVersion(void) { return ZAV_VERSION; }
