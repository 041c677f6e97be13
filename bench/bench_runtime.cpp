// The runtime's per-frame and per-task costs, each beside the bare work it stands for:
// - one System::runContextBag() over 1, 10 and 100 listed contexts that do nothing, beside a
//   loop of as many virtual calls that return a frame time and keep the smallest (counter
//   ns_per_context);
// - 10,000 tasks handed to a pool of 2 worker threads and run, beside the same tasks through a
//   bare queue of one mutex and one condition variable with 2 threads (counter ns_per_task).
#include "base/Context.h"
#include "base/SmartPtr.h"
#include "base/System.h"
#include "base/TaskManager.h"
#include "platform/tessil/Event.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

using namespace Orvane;

namespace {

constexpr int taskCount = 10'000;

void runContextBag(benchmark::State& state)
{
    const auto n = static_cast<int>(state.range(0));
    System& system = System::the();
    for (int i = 0; i < n; ++i)
        system.addContext(*Context::create());
    System::runContextBag();  // the first frame makes each context's subject
    for (auto _ : state)
        benchmark::DoNotOptimize(System::runContextBag());
    system.clearContexts();
    state.counters["ns_per_context"] =
        benchmark::Counter(static_cast<double>(n), benchmark::Counter::kIsIterationInvariantRate |
                                                        benchmark::Counter::kInvert);
}

// The bare frame: a virtual call per context, the smallest result kept.
struct Frame {
    virtual ~Frame() = default;
    virtual double run() { return 0.5; }
};

void virtualFrames(benchmark::State& state)
{
    const auto n = static_cast<int>(state.range(0));
    std::vector<std::unique_ptr<Frame>> frames;
    for (int i = 0; i < n; ++i)
        frames.push_back(std::make_unique<Frame>());
    for (auto _ : state) {
        double result = 1000.0;
        for (auto& frame : frames) {
            benchmark::DoNotOptimize(frame.get());
            result = std::min(result, frame->run());
        }
        benchmark::DoNotOptimize(result);
    }
    state.counters["ns_per_context"] =
        benchmark::Counter(static_cast<double>(n), benchmark::Counter::kIsIterationInvariantRate |
                                                        benchmark::Counter::kInvert);
}

// Counts its runs and wakes the waiting thread after the last of a batch.
struct CountTask : TaskManager::Task {
    void run() override
    {
        if (done.fetch_add(1, std::memory_order_acq_rel) + 1 == target)
            finished.set();
    }
    void start(int n)
    {
        done.store(0);
        target = n;
        finished.reset();
    }
    std::atomic<int> done{0};
    int              target = 0;
    Tessil::Event    finished;
};

void poolTasks(benchmark::State& state)
{
    TaskManager pool;
    pool.setNumThreads(2);
    CountTask task;
    for (auto _ : state) {
        task.start(taskCount);
        for (int i = 0; i < taskCount; ++i)
            pool.addTask(&task);
        task.finished.wait();
    }
    pool.shutdown();
    state.counters["ns_per_task"] = benchmark::Counter(
        taskCount, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

// The bare hand-over: one mutex, one condition variable, a deque.
class BareQueue {
public:
    explicit BareQueue(int threads)
    {
        for (int i = 0; i < threads; ++i)
            _threads.emplace_back([this] { loop(); });
    }
    ~BareQueue()
    {
        {
            std::lock_guard<std::mutex> lock(_mutex);
            _stop = true;
        }
        _cond.notify_all();
        for (std::thread& t : _threads)
            t.join();
    }
    void add(TaskManager::Task* task)
    {
        {
            std::lock_guard<std::mutex> lock(_mutex);
            _queue.push_back(task);
        }
        _cond.notify_one();
    }

private:
    void loop()
    {
        std::unique_lock<std::mutex> lock(_mutex);
        for (;;) {
            _cond.wait(lock, [this] { return _stop || !_queue.empty(); });
            if (_stop)
                return;
            TaskManager::Task* task = _queue.front();
            _queue.pop_front();
            lock.unlock();
            task->run();
            lock.lock();
        }
    }

    std::mutex                     _mutex;
    std::condition_variable        _cond;
    std::deque<TaskManager::Task*> _queue;
    bool                           _stop = false;
    std::vector<std::thread>       _threads;
};

void bareQueueTasks(benchmark::State& state)
{
    BareQueue queue(2);
    CountTask task;
    for (auto _ : state) {
        task.start(taskCount);
        for (int i = 0; i < taskCount; ++i)
            queue.add(&task);
        task.finished.wait();
    }
    state.counters["ns_per_task"] = benchmark::Counter(
        taskCount, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

} // namespace

BENCHMARK(runContextBag)->Arg(1)->Name("context_bag_1/orvane");
BENCHMARK(virtualFrames)->Arg(1)->Name("context_bag_1/virtual_calls");
BENCHMARK(runContextBag)->Arg(10)->Name("context_bag_10/orvane");
BENCHMARK(virtualFrames)->Arg(10)->Name("context_bag_10/virtual_calls");
BENCHMARK(runContextBag)->Arg(100)->Name("context_bag_100/orvane");
BENCHMARK(virtualFrames)->Arg(100)->Name("context_bag_100/virtual_calls");
BENCHMARK(poolTasks)->Name("tasks_10k_2_threads/orvane")->Unit(benchmark::kMicrosecond)->UseRealTime();
BENCHMARK(bareQueueTasks)->Name("tasks_10k_2_threads/mutex_condvar")->Unit(benchmark::kMicrosecond)->UseRealTime();

BENCHMARK_MAIN();
