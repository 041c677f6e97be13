#include "base/TaskManager.h"

#include "base/Log.h"
#include "base/SceneGraphBackend.h"

#include <algorithm>
#include <mutex>
#include <string>

namespace Orvane {

TaskManager& TaskManager::the()
{
    // Never destroyed: workers may still wait on it while static objects go away.
    static TaskManager& pool = *new TaskManager;
    return pool;
}

TaskManager::TaskManager() = default;

TaskManager::~TaskManager()
{
    if (!_workers.empty())
        shutdown();
}

void TaskManager::addTask(Task* task)
{
    if (!task)
        return;
    bool queued;
    {
        std::lock_guard<Tessil::Mutex> lock(_mutex);
        queued = _numThreads != 0;
        if (queued)
            _queue.push_back(task);
    }
    if (!queued) {
        task->run();
        return;
    }
    // Raised after the unlock, so that the woken worker does not run into our lock. A worker
    // woken for a task taken back meanwhile finds the queue short and waits again.
    _semaphore.post();
}

bool TaskManager::releaseTask(Task* task)
{
    std::lock_guard<Tessil::Mutex> lock(_mutex);
    for (const Worker* worker : _workers)
        if (worker->task == task)
            return false;
    auto queued = std::find(_queue.begin(), _queue.end(), task);
    if (queued != _queue.end()) {
        _queue.erase(queued);
        // Keep the count in step with the queue; a worker already woken for it finds the queue
        // short and waits again.
        _semaphore.tryWait();
    }
    return true;
}

void TaskManager::setNumThreads(unsigned int n)
{
    std::lock_guard<Tessil::Mutex> lock(_mutex);
    if (n <= _numThreads)
        return;
    while (_workers.size() < n) {
        auto* worker = new Worker;
        worker->thread.setName("orvane-task-" + std::to_string(_workers.size()));
        _workers.push_back(worker);
        if (!worker->thread.start([this] { threadLoop(); })) {
            _workers.pop_back();
            delete worker;
            // Record only the threads that run, so that work still gets done.
            ORV_WARNING("TaskManager: could only start %u of %u threads\n",
                        static_cast<unsigned>(_workers.size()), n);
            if (_workers.size() > _numThreads)
                _numThreads = static_cast<unsigned>(_workers.size());
            return;
        }
    }
    _numThreads = n;
}

unsigned TaskManager::getNumThreads()
{
    std::lock_guard<Tessil::Mutex> lock(_mutex);
    return _numThreads;
}

unsigned TaskManager::getNumWorkingThreads()
{
    std::lock_guard<Tessil::Mutex> lock(_mutex);
    return _numWorking;
}

unsigned TaskManager::getMaxNumWorkingThreads()
{
    std::lock_guard<Tessil::Mutex> lock(_mutex);
    return _maxNumWorking;
}

unsigned TaskManager::getNumQueuedTasks()
{
    std::lock_guard<Tessil::Mutex> lock(_mutex);
    return static_cast<unsigned>(_queue.size());
}

void TaskManager::threadLoop()
{
    Worker* self = nullptr;
    {
        // The starting thread holds the mutex until the worker is listed.
        std::lock_guard<Tessil::Mutex> lock(_mutex);
        for (Worker* worker : _workers)
            if (worker->thread.id() == Tessil::Thread::self())
                self = worker;
    }
    SceneGraphBackend::the().registerWorkerThread();

    _semaphore.wait();
    _mutex.lock();
    while (!_shuttingDown) {
        if (_queue.empty() || !self) {
            // A task taken back after its wake-up was counted.
            _mutex.unlock();
            _semaphore.wait();
            _mutex.lock();
            continue;
        }
        Task* task = _queue.front();
        _queue.pop_front();
        self->task = task;
        if (++_numWorking > _maxNumWorking)
            _maxNumWorking = _numWorking;
        _mutex.unlock();

        task->run();
        SceneGraphBackend::the().clearChangeList();

        _mutex.lock();
        --_numWorking;
        self->task = nullptr;
        // With more work counted the worker goes on without letting the lock go in between.
        if (!_semaphore.tryWait()) {
            _mutex.unlock();
            _semaphore.wait();
            _mutex.lock();
        }
    }
    _mutex.unlock();
}

void TaskManager::shutdown()
{
    std::vector<Worker*> workers;
    {
        std::lock_guard<Tessil::Mutex> lock(_mutex);
        _shuttingDown = true;
        for (Worker* worker : _workers)
            if (worker->task)
                worker->task->abort();
        _semaphore.post(static_cast<unsigned>(_workers.size()));
        // Taken out of the list now: a worker that only starts may still look for itself in it
        // while the ones before it are joined and deleted.
        workers.swap(_workers);
    }
    for (Worker* worker : workers) {
        worker->thread.join();
        delete worker;
    }
}

} // namespace Orvane
