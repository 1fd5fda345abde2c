#include <zavbase/collections/stack.h>

#include <ostream>

ZAV_Stack::~ZAV_Stack() {}

ZAV_CltObject* ZAV_Stack::Pop() { return Size() == 0 ? nullptr : RemoveLast(); }

ZAV_CltObject* ZAV_Stack::Top(int i) const {
    const int n = static_cast<int>(Size());
    return i < 0 || i >= n ? nullptr : At(n - 1 - i);
}

void ZAV_Stack::PrintOn(std::ostream& os) {
    for (unsigned int i = 0; i < Size(); ++i) os << At(static_cast<int>(i)) << std::endl;
}
