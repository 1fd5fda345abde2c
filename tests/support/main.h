#ifndef ZAVBASE_TESTS_SUPPORT_MAIN_H
#define ZAVBASE_TESTS_SUPPORT_MAIN_H

#include <new>

/// What the library had installed when the program began. By then main has asked for exceptions, so that a
/// test that runs out of memory fails instead of ending the program with status 0.
extern std::new_handler theDefaultNewHandler;

#endif
