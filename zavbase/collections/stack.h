#ifndef ZAVBASE_COLLECTIONS_STACK_H
#define ZAVBASE_COLLECTIONS_STACK_H

#include <zavbase/collections/ordered_cltn.h>

/// An ordered collection used from its end. Owns nothing.
class ZAV_API ZAV_Stack : public ZAV_OrderedCltn {
public:
    ZAV_DECLARE_CASTDOWN(ZAV_Stack)

    explicit ZAV_Stack(unsigned int capacity = 16) : ZAV_OrderedCltn(capacity) {}
    ~ZAV_Stack() override;

    void Push(ZAV_CltObject* o) { Add(o); }
    ZAV_CltObject* Pop();                ///< null when empty
    ZAV_CltObject* Top(int i = 0) const; ///< the element `i` places below the top, or null
    boolean_t Empty() const { return ZAV_Bool(Size() == 0); }

    void PrintOn(std::ostream& os) override; ///< from the bottom up, each followed by a line end
};

#endif
