// The program of docs/getting-started.md: settings from a file, a timer, an error in the reader's language.
#include <iostream>

#include <zavbase/zavbase.h>

namespace {

class Clock : public ZAV_EvHandlerBody {
public:
    explicit Clock(long count) : mLeft(count) {}

protected:
    int HandleEvent(ZAV_Event* event) override {
        if (event->Type() == 0x53747274) mTick.Start(this); // "Strt"
        if (!mTick.CheckEvent(event)) return 0;
        std::cout << mLeft << "\n";
        return --mLeft > 0 ? 0 : 2; // 2: takes the handler out, and the dispatcher has nothing left to do
    }

private:
    ZAV_PeriodicTimer mTick{100};
    long mLeft;
};

void CountDown(long count) {
    ZAV_TimerMgr::InitializeListener(B_TRUE, nullptr);
    ZAV_EvDispatcher dispatcher;
    ZAV_EvHandlerRef clock(new Clock(count));
    dispatcher.AddEvHandler(clock);
    clock->QueueEvent(new ZAV_EventStart, 0);
    ZAV_EvDispatcherThread thread(dispatcher);
    thread.BeginThread(ZAV_THREAD_CLEANUP_NONE, 0);
    thread.StopThread(); // when the last handler is gone
    thread.WaitForThread();
    ZAV_TimerMgr::CleanupListener();
}

void FailIn(const char* language) {
    ZAV_UValDict defs;
    ZAV_I18nDef2Dict(&defs, "NO_FUEL", "<<engine>> has no fuel");
    ZAV_I18nResource texts("first_steps"); // first_steps.de, first_steps.nl, ... lie beside the program's data
    texts.SetDefaultDefs(&defs);
    ZAV_Error error("NO_FUEL");
    error.AddArg("<<engine>>", "Number 2", ZAV_I18N_STRING);
    std::cout << error.Format(language, &texts, nullptr).Ptr() << "\n";
}

} // namespace

int main() {
    SetNewHandler(); // out of memory is an exception, not the end of the process
    ZAV_TRY {
        ZAV_UValDict settings;
        settings.ReadFile("first_steps.zav");
        CountDown(settings.GetValue("countdown:from", 3L));
        FailIn(settings.GetValue("language", "en"));
    }
    ZAV_CATCH(ZAV_Exception, e) {
        std::cerr << *e << "\n";
        return 1;
    }
    ZAV_CATCH_END
    return 0;
}
