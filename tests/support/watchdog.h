#ifndef ZAVBASE_TESTS_SUPPORT_WATCHDOG_H
#define ZAVBASE_TESTS_SUPPORT_WATCHDOG_H

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

/// Ends the process, with the name of what runs and its stacks on standard error, when one case takes longer
/// than the limit: 120 seconds, or what the environment's ZAVBASE_TEST_LIMIT says; 0 means none (a debugger).
class Watchdog {
public:
    Watchdog();
    ~Watchdog();

    /// The time runs from here, to the next Watch or Rest.
    void Watch(const std::string& name) { Set(name, true); }
    void Rest() { Set("", false); }

private:
    void Set(const std::string& name, bool watches);
    void Run();
    [[noreturn]] void Bark() const;

    const std::chrono::seconds mLimit;
    std::mutex mMutex;
    std::condition_variable mChanged;
    std::string mName;
    unsigned mCase = 0; // changed by each Watch and Rest
    bool mWatches = false, mEnds = false;
    std::thread mThread;
};

#endif
