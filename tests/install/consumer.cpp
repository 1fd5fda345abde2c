// A host as somebody outside would write it: one include, classes of its own.
#include <zavbase/zavbase.h>

#include <cstring>

class HostObject : public ZAV_Object {
    ZAV_DECLARE_CLASS(HostObject)
};
ZAV_DEFINE_CLASS(HostObject, ZAV_Object)

class HostNumber : public ZAV_UValLong {
public:
    HostNumber() : ZAV_UValLong(0, nullptr) { SetLongValue(7, 0); }
};

int main() {
    // In force from the beginning, in a host of the static library, too.
    const bool isFatal = std::get_new_handler() != nullptr;
    SetNewHandler();
    HostObject o;
    HostNumber n;
    return isFatal && ZAV_RuntimeVersion() == ZAV_VERSION && n.GetLongValue(0) == 7 &&
                   o.IsKindOf(&HostObject::classHostObject) && std::strcmp(o.ClassName(), "HostObject") == 0
               ? 0
               : 1;
}
