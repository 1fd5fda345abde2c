// full_host: a small weather station that uses every part of the library once. It reads its settings, loads
// its gauges from a plug-in module, lets an event dispatcher and timers read them, shows errors in the
// reader's language, and shares a lock with a second process. Read it from main() upwards.

#include <zavbase/zavbase.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <string>

#include "gauge.h"

namespace {

/// The same gauges a second time, linked in; the name makes ZAV_SharedLib look for them here.
ZAV_StaticDll theLinkedInGauges("gauge_static_dll", CreateGauge, FreeGauge, GetGaugeDefs);

void Chapter(const char* title) { std::cout << "\n-- " << title << std::endl; }

/// The texts of the station: built-in English definitions, and a file for each further language.
class Texts {
public:
    /// The files lie in the current folder and are called station.LANGUAGE.
    Texts() : mResource("station") {}

    /// Adds the definitions of a module to those of the library and of the modules before.
    void Collect(ZAV_SharedLib& module) {
        ZAV_UValDict defs(16);
        ZAV_Base_GetI18nDefs(&defs, B_TRUE, B_TRUE);
        module.GetI18nDefs(&defs, B_TRUE, B_TRUE);
        mResource.SetDefaultDefs(&defs);
    }

    /// Shows an error in English and in the languages that are configured.
    void Show(const ZAV_Error& error) {
        std::cout << "  error [en] " << error.Format("", &mResource, nullptr).Ptr() << std::endl;
        const long count = ZAV_ConfigGetDimension("STATION", "TEXTS", "LANGUAGES");
        for (long i = 0; i < count; ++i) {
            const ZAV_String language(ZAV_ConfigGetAt("STATION", "TEXTS", "LANGUAGES", i, ""));
            // A code becomes part of a file name, so one from a file that people edit is looked at first.
            if (!ZAV_IsPlainLangCode(language)) continue;
            std::cout << "  error [" << language << "] " << error.Format(language, &mResource, nullptr).Ptr()
                      << std::endl;
        }
    }

private:
    ZAV_I18nResource mResource;
};

/// Reads a gauge at every tick until it fails or has been read often enough, then tells a synchronization
/// object that it is done. All of it runs on the dispatcher's thread.
class Reader : public ZAV_EvHandlerBody {
public:
    Reader(const char* name, Gauge& gauge, Texts& texts, const ZAV_SyncObjRef& running)
        : mName(name), mGauge(gauge), mTexts(texts), mRunning(running),
          mTick(ZAV_ConfigGet("STATION", "READING", "PERIOD_MS", 100ul)),
          mLast(ZAV_ConfigGet("STATION", "READING", "COUNT", 4u)), mStep(0) {}

protected:
    int HandleEvent(ZAV_Event* event) override {
        if (event->IsKindOf(&ZAV_EventStart::classZAV_EventStart)) mTick.Start(this);
        if (!mTick.CheckEvent(event)) return 0;
        bool goesOn = ReadOnce();
        if (++mStep < mLast && goesOn) return 0;
        mTick.Stop();
        mRunning->Decrement();
        return 2; // unregister me; the event is the dispatcher's to destroy
    }

private:
    bool ReadOnce() {
        bool isRead = true;
        ZAV_TRY {
            const double value = mGauge.Read(mStep);
            std::cout << "  " << mName << " reads " << value << std::endl;
        }
        ZAV_CATCH(ZAV_ErrorException, e) {
            mTexts.Show(e->mError);
            isRead = false;
        }
        ZAV_CATCH_END
        return isRead;
    }

    const char* mName;
    Gauge& mGauge;
    Texts& mTexts;
    ZAV_SyncObjRef mRunning;
    ZAV_PeriodicTimer mTick;
    unsigned mLast, mStep;
};

/// Waits for the end of all readers, then stops the dispatcher.
class Supervisor : public ZAV_EvHandlerBody {
public:
    explicit Supervisor(ZAV_EvDispatcher& dispatcher) : mDispatcher(dispatcher) {}

protected:
    int HandleEvent(ZAV_Event* event) override {
        std::cout << "  all readers are done: " << *event << std::endl;
        mDispatcher.Stop();
        return 2;
    }

private:
    ZAV_EvDispatcher& mDispatcher;
};

void ReadSettings() {
    Chapter("settings");
    ZAV_ConfigInit("station.conf");
    if (ZAV_UVal* tracers = ZAV_ConfigGet("STATION", "TRACERS", "LEVELS"))
        ZAV_Tracer::Initialize(static_cast<ZAV_UValDict&>(*tracers));
    std::cout << "  station " << ZAV_ConfigGet("STATION", "SITE", "NAME", "?") << ", "
              << ZAV_ConfigGet("STATION", "SITE", "ALTITUDE_M", 0) << " m, a reading every "
              << ZAV_ConfigGet("STATION", "READING", "PERIOD_MS", 100) << " ms" << std::endl;
}

void LoadModules(const std::string& folder, ZAV_SharedLib& plugIn, ZAV_SharedLib& linkedIn, Texts& texts) {
    Chapter("modules");
    plugIn.Load("gauge_module", folder.c_str());
    std::cout << "  loaded gauge_module from disk" << std::endl;
    linkedIn.Load("gauge_static_dll", "");
    std::cout << "  found gauge_static_dll in the program" << std::endl;
    texts.Collect(plugIn);
    ZAV_SharedLib missing;
    ZAV_TRY { missing.Load("no_such_module", folder.c_str()); }
    ZAV_CATCH(ZAV_FileException, e) { std::cout << "  " << ZAV_ExceptionLine(e) << std::endl; }
    ZAV_CATCH_END
}

/// A dispatcher on a thread of its own, two readers and their supervisor; returns when the last has ended.
void RunStation(Gauge& barometer, Gauge& thermometer, Texts& texts) {
    Chapter("readings");
    ZAV_TimerMgr::InitializeListener(B_TRUE, nullptr);
    ZAV_EvDispatcher dispatcher;
    {
        // Each reader counts as one; the event comes when the last has taken itself off.
        ZAV_SyncObjRef running;
        running->Set(2);
        const ZAV_EvHandlerRef supervisor(new Supervisor(dispatcher));
        running->Register(supervisor.GetBody());
        dispatcher.AddEvHandler(supervisor);
        const ZAV_EvHandlerRef readers[] = {new Reader("barometer", barometer, texts, running),
                                            new Reader("thermometer", thermometer, texts, running)};
        ZAV_EvDispatcherThread thread(dispatcher);
        for (const ZAV_EvHandlerRef& reader : readers) {
            dispatcher.AddEvHandler(reader);
            reader->QueueEvent(new ZAV_EventStart, 0);
        }
        thread.BeginThread(ZAV_THREAD_CLEANUP_NONE, 0);
        thread.WaitForThread();
        running->Cleanup();
    }
    ZAV_TimerMgr::CleanupListener();
    std::cout << "  stopped; events left: " << ZAV_Event::instance_counter
              << ", handlers left: " << ZAV_EvHandlerBody::instance_counter << std::endl;
}

const char* State(ZAV_ResourceLockPool::RetVal value) { return ZAV_ResourceLockPool::RetVal2String(value); }

/// What the second process does: it finds the lock taken, and cannot have it.
int LookAtLock(const char* file) {
    ZAV_ResourceLockPool pool(file);
    ZAV_ResourceLockPool::SetGuard(B_TRUE);
    std::cout << "  second process, look: " << State(pool.GetLockState("station:printer")) << std::endl;
    std::cout << "  second process, lock: " << State(pool.Lock("station:printer")) << std::endl;
    return 0;
}

void ShareLock(const std::string& program) {
    Chapter("a lock between processes");
    const std::string file = (std::filesystem::temp_directory_path() / "full_host.locks").string();
    ZAV_ResourceLockPool pool(file.c_str());
    ZAV_ResourceLockPool::SetGuard(B_TRUE);
    std::cout << "  this process, lock:   " << State(pool.Lock("station:printer")) << std::endl;
    if (std::system(("\"" + program + "\" --look " + file).c_str()) != 0)
        std::cout << "  no second process" << std::endl;
    std::cout << "  this process, unlock: " << State(pool.UnLock("station:printer")) << std::endl;
    ZAV_File(file.c_str()).RemoveFile();
    ZAV_File((file + ".guard").c_str()).RemoveFile();
}

int Run(const std::string& program) {
    ZAV_SystemString::Initialize(nullptr);
    ReadSettings();

    Texts texts;
    ZAV_SharedLib plugIn, linkedIn;
    LoadModules(std::filesystem::absolute(program).parent_path().string(), plugIn, linkedIn, texts);
    Gauge* barometer = static_cast<Gauge*>(linkedIn.CreateObjectInstance(BAROMETER));
    Gauge* thermometer = static_cast<Gauge*>(plugIn.CreateObjectInstance(THERMOMETER));
    RunStation(*barometer, *thermometer, texts);
    // Back to where they came from, and only then may the module go.
    plugIn.FreeObjectInstance(thermometer);
    linkedIn.FreeObjectInstance(barometer);
    plugIn.Release();

    ShareLock(program);
    ZAV_ConfigCleanup();
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    SetNewHandler(); // out of memory is an exception, not the end of the process
    int result = 1;
    ZAV_TRY { result = argc == 3 && std::string(argv[1]) == "--look" ? LookAtLock(argv[2]) : Run(argv[0]); }
    ZAV_CATCH(ZAV_Exception, e) { std::cerr << "full_host: " << ZAV_ExceptionLine(e) << std::endl; }
    ZAV_CATCH_END
    return result;
}
