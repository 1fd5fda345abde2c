#ifndef ZAVBASE_TESTS_SUPPORT_THROWN_H
#define ZAVBASE_TESTS_SUPPORT_THROWN_H

#include <memory>

#include <zavbase/foundation/exception.h>

struct DeleteException {
    void operator()(ZAV_Exception* e) const { e->Delete(); }
};

/// The exception of this class or one derived from it that `call` throws; null when it throws none.
template <class Exception, class Call>
std::unique_ptr<Exception, DeleteException> Thrown(Call call) {
    try {
        call();
    } catch (Exception* e) {
        return std::unique_ptr<Exception, DeleteException>(e);
    }
    return nullptr;
}

#endif
