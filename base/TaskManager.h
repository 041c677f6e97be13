#ifndef ORVANE_BASE_TASKMANAGER_H
#define ORVANE_BASE_TASKMANAGER_H

#include "base/OrvaneExport.h"
#include "platform/tessil/Mutex.h"
#include "platform/tessil/Semaphore.h"
#include "platform/tessil/Thread.h"

#include <deque>
#include <vector>

namespace Orvane {

// The process-wide pool of worker threads for background work (downloads, decoding). Tasks are
// started in arrival order; with no threads a task runs at once on the caller's thread, so the
// same code works single-threaded. The pool only grows, and once shut down it stays down: a task
// added afterwards is queued and never runs. Whoever needs a pool again builds a new one.
class ORVANE_API TaskManager {
public:
    // One piece of work. It is owned by whoever made it; the pool never deletes a task.
    class ORVANE_API Task {
    public:
        virtual ~Task() = default;
        // Does the work, on a worker thread (or the caller's with no threads).
        virtual void run() = 0;
        // Asked to stop early while it runs, from the thread that shuts the pool down.
        virtual void abort() {}
    };

    static TaskManager& the();

    TaskManager();
    // Shuts the pool down when it still has threads.
    ~TaskManager();

    TaskManager(const TaskManager&) = delete;
    TaskManager& operator=(const TaskManager&) = delete;

    void addTask(Task* task);
    // Takes a task back that no worker holds: true when it was still queued (it will not run) or
    // is not in the pool at all, false while a worker runs it or has not yet let go of it. The
    // owner may delete the task once this returns true.
    bool releaseTask(Task* task);

    // Grows the pool to n threads; a smaller or equal n changes nothing.
    void     setNumThreads(unsigned int n);
    unsigned getNumThreads();
    unsigned getNumWorkingThreads();
    unsigned getMaxNumWorkingThreads();
    unsigned getNumQueuedTasks();

    // Aborts the running tasks, joins every worker and leaves queued tasks unrun. The recorded
    // number of threads stays as it was.
    void shutdown();

private:
    struct Worker {
        Tessil::Thread thread;
        Task*          task = nullptr;
    };

    void threadLoop();

    unsigned int         _numThreads = 0;
    std::vector<Worker*> _workers;
    Tessil::Mutex        _mutex;
    Tessil::Semaphore    _semaphore{0};
    std::deque<Task*>    _queue;
    bool                 _shuttingDown = false;
    unsigned int         _numWorking = 0;
    unsigned int         _maxNumWorking = 0;
};

} // namespace Orvane

#endif
