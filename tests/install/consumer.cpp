// A host as somebody outside would write it: one include, one class of its own.
#include <zavbase/zavbase.h>

#include <cstring>

class HostObject : public ZAV_Object {
    ZAV_DECLARE_CLASS(HostObject)
};
ZAV_DEFINE_CLASS(HostObject, ZAV_Object)

int main() {
    HostObject o;
    return o.IsKindOf(&HostObject::classHostObject) && std::strcmp(o.ClassName(), "HostObject") == 0 ? 0 : 1;
}
