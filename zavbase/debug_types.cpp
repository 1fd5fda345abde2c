// Nothing but complete type descriptions for the debugger. A program that uses the library has only declarations of
// its classes in its own debug information, since the compiler describes a class where its virtual functions are.
#include <zavbase/zavbase.h>

#include <zavbase/i18n/i18n_msg_arg.h>
