#ifndef ZAVBASE_TESTS_SUPPORT_PRINTED_H
#define ZAVBASE_TESTS_SUPPORT_PRINTED_H

#include <sstream>
#include <string>

/// What an object writes to a stream.
template <class T>
std::string Printed(T&& o) {
    std::ostringstream os;
    os << o;
    return os.str();
}

#endif
