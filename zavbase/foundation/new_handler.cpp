#include <zavbase/foundation/new_handler.h>

#include <zavbase/foundation/trace_stream.h>
#include <zavbase/os/console.h>

#include <atomic>

dummyalloc::dummyalloc() noexcept {}
dummyalloc::dummyalloc(const dummyalloc&) noexcept = default;
dummyalloc& dummyalloc::operator=(const dummyalloc&) noexcept = default;
dummyalloc::~dummyalloc() {}
const char* dummyalloc::what() const noexcept { return "Memory allocation failure"; }

namespace {

// What the calls of the fatal handler can use once all other memory is gone.
constinit std::atomic<char*> theReserve{nullptr};

void FreeReserve() { delete[] theReserve.exchange(nullptr); }

[[noreturn]] void FatalNewHandler() {
    FreeReserve();
    ZAV_Trace("Fatal Memory Allocation Error (size %d)\n", 0); // a handler is not told the size
    zav_os::FatalMessage("Memory Allocation Error, program will abort!", "Fatal Error");
    zav_os::Terminate();
}

[[noreturn]] void ThrowingNewHandler() { throw dummyalloc(); }

// In force while the library is loaded; a handler must not outlive its code.
struct FatalPolicy {
    FatalPolicy() : mBefore(std::set_new_handler(FatalNewHandler)) { theReserve = new char[256]; }
    ~FatalPolicy() {
        std::new_handler current = std::get_new_handler();
        if (current == FatalNewHandler || current == ThrowingNewHandler) std::set_new_handler(mBefore);
        FreeReserve();
    }
    std::new_handler mBefore;
} theFatalPolicy;

} // namespace

extern "C" void SetNewHandler(void) { std::set_new_handler(ThrowingNewHandler); }
