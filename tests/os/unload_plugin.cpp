#include <zavbase/zavbase.h>

#include <memory>

#if defined(_WIN32)
#define PLUGIN_EXPORT extern "C" __declspec(dllexport)
#else
#define PLUGIN_EXPORT extern "C" __attribute__((visibility("default")))
#endif

namespace {

struct Body : ZAV_Thread {
    Body() : ZAV_Thread(ZAV_THREAD_JOINED) {}
    ~Body() override { FinishThread(); }
    void run() override { std::make_unique<ZAV_UValLong>(); }
};

struct Handler : ZAV_EvHandlerBody {
    int HandleEvent(ZAV_Event*) override { return 0; }
};

} // namespace

/// Uses what the library makes once for the process and leaves it so. Returns 0, or 3 when the library was
/// not loaded anew.
PLUGIN_EXPORT int UseLibrary(bool first) {
    if (first && ZAV_ConfigGet() != nullptr) return 3;
    ZAV_UValDict dict(16);
    for (const char* key : {"a", "b", "c"}) dict.SetUVal(key, new ZAV_UValString);
    ZAV_ConfigInit(dict);
    dout << "not flushed";
    ZAV_SystemString(ZAV_UTFString("x"));
    try {
        ZAV_UValDict().ReadFile("no such file");
    } catch (ZAV_Exception* e) {
        e->Delete();
    }
    ZAV_EvDispatcher dispatcher;
    const ZAV_EvHandlerRef handler(new Handler);
    dispatcher.AddEvHandler(handler);
    ZAV_TimerMgr::InitializeListener(B_TRUE, nullptr);
    ZAV_TimerMgr::AddTimer(100000, handler.GetBody(), 0);
    ZAV_TimerMgr::CleanupListener();
    return Body().BeginThread(ZAV_THREAD_CLEANUP_NONE, 0) ? 4 : 0;
}
