// Makes one of each and stops, for the debugger's view of them.
#include <zavbase/zavbase.h>

namespace {

class Handler : public ZAV_EvHandlerBody {
public:
    int HandleEvent(ZAV_Event*) { return 1; }
};

// Where the debugger stops.
const void* volatile gShown;
[[gnu::noinline]] void stopHere(const void* shown) { gShown = shown; }

} // namespace

int main() {
    ZAV_String text("plain");
    ZAV_UTFString utf("caf\xC3\xA9");
    ZAV_CltString collectable("held");
    [[maybe_unused]] ZAV_SubString part = text(1, 3);
    ZAV_DictPath path("a:b:c");
    ZAV_UValDict settings(16);
    settings.SetUVal("camera:exposure", new ZAV_UValLong);
    settings.SetValue("camera:exposure", 250, 0);
    short sizes[] = {1, 2, 3};
    settings.SetUVal("sizes", new ZAV_UValShort(3, sizes));
    settings.SetUVal("name", new ZAV_UValString);
    settings.SetValue("name", "red", 0);
    ZAV_OrderedCltn ordered;
    ordered.Add(&collectable);
    ZAV_Integer seven(7);
    ZAV_Set set;
    set.Add(&seven);
    ZAV_Dictionary dictionary;
    dictionary.AddAssoc(&collectable, &seven);
    ZAV_LinkedList list;
    ZAV_LinkObj link(&seven);
    list.Add(&link);
    ZAV_AllocMemRef memory(100, 15);
    ZAV_AllocMemRef second(memory);
    ZAV_EventStop stop;
    ZAV_Error error(ZAV_UTFString("ERR_BASE_FILEREAD"));
    error.AddArg("<<filename>>", "a.zav", ZAV_I18N_STRING);
    ZAV_FileException failure(3, 5);
    stopHere(&failure);
    return 0;
}
