// A host around one event dispatcher. A stream of jobs is read by a listener on a thread of its own; the jobs
// of a batch are done on the dispatcher's thread, urgent ones first; a synchronization object says when the
// batch is done; a periodic timer shows how things stand; at the end everything is stopped in order.
//
//     event_host [FILE [--follow]]      FILE or standard input; with --follow the file may still grow
//
// Lines: "job NAME", "urgent NAME", "fail NAME" (a job that throws), "pause MS", "go" (the batch is complete)
// and "quit", which also the end of the stream means.
#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include <zavbase/zavbase.h>

namespace {

struct Job {
    std::string kind, name;
};

class BatchEvent : public ZAV_Event {
public:
    explicit BatchEvent(const std::vector<Job>& jobs) : ZAV_Event(0x42617463), mJobs(jobs) {}
    void EmergencyCleanup() override {
        std::cout << "a batch of " << mJobs.size() << " jobs was lost" << std::endl;
    }
    const std::vector<Job> mJobs;
};

class JobEvent : public ZAV_Event {
public:
    explicit JobEvent(const Job& job) : ZAV_Event(0x4A6F6220), mJob(job) {}
    const Job mJob;
};

// Does the jobs. All of it runs on the dispatcher's thread.
class Worker : public ZAV_EvHandlerBody {
public:
    Worker(ZAV_EvDispatcher& dispatcher, ZAV_SyncObjRef& batchDone)
        : mDispatcher(dispatcher), mBatchDone(batchDone), mTick(50) {}
    int mDone = 0, mBatches = 0, mTicks = 0;

protected:
    int HandleEvent(ZAV_Event* event) override {
        if (mTick.CheckEvent(event)) {
            std::cout << "tick " << ++mTicks << ": " << mDone << " jobs done, " << mDispatcher.QueueLength()
                      << " events waiting, at most " << mDispatcher.QueueHighWater() << " so far"
                      << std::endl;
            return 0;
        }
        switch (event->Type()) {
        case 0x53747274: // "Strt"
            mTick.Start(this, 10);
            return 0;
        case 0x53746F70: // "Stop"
            mTick.Stop();
            return 2;
        case 0x53796E63: // "Sync"
            std::cout << "batch " << ++mBatches << " is done" << std::endl;
            return 0;
        case 0x42617463:
            Distribute(*static_cast<BatchEvent*>(event));
            return 0;
        case 0x4A6F6220:
            Do(static_cast<JobEvent*>(event)->mJob);
            return 0;
        default:
            return 0;
        }
    }

private:
    void Distribute(const BatchEvent& batch) {
        std::cout << "a batch of " << batch.mJobs.size() << " jobs came in" << std::endl;
        mBatchDone->Set(static_cast<int>(batch.mJobs.size()));
        for (const Job& job : batch.mJobs) QueueEvent(new JobEvent(job), job.kind == "urgent" ? 5 : 0);
    }

    // The job counts as done even if it fails; the dispatcher traces the exception and goes on.
    void Do(const Job& job) {
        ++mDone;
        mBatchDone->Decrement();
        std::cout << "  " << job.kind << " " << job.name << std::endl;
        if (job.kind == "fail") ZAV_ThrowFileException(1, 2);
    }

    ZAV_EvDispatcher& mDispatcher;
    ZAV_SyncObjRef& mBatchDone;
    ZAV_PeriodicTimer mTick;
};

// Turns lines into batches. A wait in a pause, or for a file to grow, ends at once when it is stopped; a read
// from standard input ends with its line.
class JobListener : public ZAV_Listener {
public:
    JobListener(std::istream& input, bool follow, const ZAV_EvHandlerRef& worker)
        : mInput(input), mFollow(follow), mWorker(worker) {}

    void Listen(ZAV_ListenerControl) override {
        std::string line, more;
        while (!Stopped()) {
            if (std::getline(mInput, more) && !mInput.eof()) {
                if (!Take(line + more)) break;
                line.clear();
            } else if (mFollow) { // what there is of the line; the rest may come
                line += more;
                mInput.clear();
                Pause(100);
            } else {
                Take(line + more);
                break;
            }
        }
        mEnded.Signal();
    }

    void Stop() override {
        ZAV_MutexSignaller::Lock lock(mSignaller);
        mStopped = true;
        mSignaller.Signal();
    }

    ZAV_Semaphore mEnded;
    int mJobs = 0, mBatches = 0;

private:
    bool Take(const std::string& line) {
        std::istringstream words(line);
        Job job;
        words >> job.kind >> job.name;
        if (job.kind == "quit") return false;
        if (job.kind == "job" || job.kind == "urgent" || job.kind == "fail") mBatch.push_back(job);
        if (job.kind == "pause") Pause(std::atoi(job.name.c_str()));
        if (job.kind == "go" && !mBatch.empty()) Send();
        return true;
    }

    void Send() {
        mJobs += static_cast<int>(mBatch.size());
        ++mBatches;
        auto event = std::make_unique<BatchEvent>(mBatch);
        if (mWorker->QueueEvent(event.get(), 0) == 0) event.release();
        mBatch.clear();
    }

    bool Stopped() {
        ZAV_MutexSignaller::Lock lock(mSignaller);
        return mStopped;
    }

    void Pause(int ms) {
        ZAV_MutexSignaller::Lock lock(mSignaller);
        if (!mStopped && ms > 0) lock.TimedWait((std::min)(ms, 60000) * 1000);
    }

    std::istream& mInput;
    const bool mFollow;
    ZAV_EvHandlerRef mWorker;
    std::vector<Job> mBatch;
    ZAV_MutexSignaller mSignaller;
    bool mStopped = false;
};

int RunHost(std::istream& input, bool follow) {
    ZAV_TimerMgr::InitializeListener(B_TRUE, nullptr);
    ZAV_EvDispatcher dispatcher;
    ZAV_EvDispatcherThread dispatcherThread(dispatcher);
    ZAV_SyncObjRef batchDone;
    Worker* worker = new Worker(dispatcher, batchDone);
    const ZAV_EvHandlerRef ref(worker);
    dispatcher.AddEvHandler(ref);
    batchDone->Register(worker);
    worker->QueueEvent(new ZAV_EventStart, 0);
    dispatcherThread.BeginThread(ZAV_THREAD_CLEANUP_NONE, 0);

    JobListener listener(input, follow, ref);
    ZAV_ListenerThread listenerThread("jobs", listener);
    listenerThread.BeginThread(ZAV_THREAD_CLEANUP_NONE, 0);
    listener.mEnded.Wait();

    // First what makes events, then what handles them: the stop event comes after everything queued so far.
    std::cout << "the stream has ended, stopping" << std::endl;
    listenerThread.StopThread();
    listenerThread.WaitForThread();
    worker->QueueEvent(new ZAV_EventStop, -1);
    dispatcherThread.StopThread();
    dispatcherThread.WaitForThread();
    ZAV_TimerMgr::CleanupListener();
    batchDone->Cleanup();

    std::cout << worker->mDone << " of " << listener.mJobs << " jobs in " << worker->mBatches << " batches, "
              << worker->mTicks << " ticks, " << ZAV_Event::instance_counter << " events left" << std::endl;
    const bool complete = worker->mDone == listener.mJobs && worker->mBatches == listener.mBatches;
    return complete && ZAV_Event::instance_counter == 0 ? 0 : 1;
}

} // namespace

int main(int argc, char** argv) {
    SetNewHandler(); // out of memory is an exception, not the end of the process
    // Errors, thread ends and the dispatcher's end, as the library tells them.
    ZAV_Tracer::SetStreamP(tr_base_name, &std::cout);
    ZAV_Tracer::SetMask(tr_base_name, 0x0181);

    if (argc < 2) return RunHost(std::cin, false);
    std::ifstream file(argv[1]);
    if (!file) {
        std::cerr << "event_host: cannot read " << argv[1] << std::endl;
        return 1;
    }
    return RunHost(file, argc > 2 && std::string(argv[2]) == "--follow");
}
