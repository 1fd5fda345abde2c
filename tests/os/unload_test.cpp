// A host that knows the library only through a plug-in: what loading it takes, unloading it gives back,
// although a thread of the host that has used it lives on.

#include <tests/os/process_memory.h>
#include <zavbase/os/module.h>

#include <atomic>
#include <cstdio>
#include <thread>

namespace {

typedef int (*Use)(bool first);

std::atomic<Use> theTask{nullptr};
std::atomic<bool> theEnd{false};
int theResult;

void Work() {
    for (;;) {
        theTask.wait(nullptr);
        if (theEnd) return;
        theResult = theTask.load()(false);
        theTask = nullptr;
        theTask.notify_all();
    }
}

int OnTheOtherThread(Use use) {
    theTask = use;
    theTask.notify_all();
    theTask.wait(use);
    return theResult;
}

// 0, or what went wrong.
int Cycle(const char* path) {
    zav_os::ModuleError error;
    void* const module = zav_os::OpenModule(path, error);
    if (module == nullptr) return 1;
    const Use use = reinterpret_cast<Use>(zav_os::FindSymbol(module, "UseLibrary", error));
    int result = use != nullptr ? use(true) : 2;
    if (result == 0) result = OnTheOtherThread(use);
    zav_os::CloseModule(module);
    return result;
}

} // namespace

int main(int, char** arguments) {
    std::jthread worker(Work);
    const int kCycles = 1200; // more than the system has slots for threads
    size_t early = 0;
    int result = 0;
    for (int i = 0; i < kCycles && result == 0; ++i) {
        if (i == kCycles / 2) early = ProcessMemory();
        result = Cycle(arguments[1]);
    }
    // Where thread_local objects are emulated, the compiler's run-time library keeps some bytes of each.
    const size_t late = ProcessMemory();
    theEnd = true;
    theTask = [](bool) { return 0; };
    theTask.notify_all();
    std::printf("result %d, %zu bytes after half of the cycles, %zu at the end\n", result, early, late);
    return result != 0 || late > early + kCycles / 2 * size_t{1500} ? 1 : 0;
}
