// The worker pool: inline running, growth only, FIFO hand-over, shut-down, and tasks added from
// several threads while the pool runs and stops.
#include "base/SceneGraphBackend.h"
#include "base/TaskManager.h"
#include "platform/tessil/Event.h"
#include "platform/tessil/Thread.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

using namespace Orvane;

namespace {

// Records its runs; optionally waits for `gate` while it runs, until aborted.
class RecordingTask : public TaskManager::Task {
public:
    RecordingTask(int id, std::vector<int>* order, std::mutex* lock, Tessil::Event* gate = nullptr)
        : _id(id), _order(order), _lock(lock), _gate(gate)
    {
    }
    void run() override
    {
        thread = Tessil::Thread::self();
        started.set();
        if (_gate)
            while (!_gate->waitFor(1) && !aborted.load()) {}
        std::lock_guard<std::mutex> guard(*_lock);
        _order->push_back(_id);
        ++runs;
    }
    void abort() override { ++aborts; }

    Tessil::Thread::Id thread;
    Tessil::Event      started;
    std::atomic<int>   runs{0};
    std::atomic<int>   aborts{0};
    std::atomic<bool>  aborted{false};

private:
    int               _id;
    std::vector<int>* _order;
    std::mutex*       _lock;
    Tessil::Event*    _gate;
};

struct CountingBackend : SceneGraphBackend {
    void registerWorkerThread() override { ++registered; }
    void clearChangeList() override { ++cleared; }
    std::atomic<int> registered{0};
    std::atomic<int> cleared{0};
};

struct TaskManagerTest : ::testing::Test {
    std::vector<int> order;
    std::mutex       lock;
    std::vector<int> ran()
    {
        std::lock_guard<std::mutex> guard(lock);
        return order;
    }
};

TEST_F(TaskManagerTest, WithoutThreadsATaskRunsBeforeAddTaskReturns)
{
    TaskManager pool;
    RecordingTask task(1, &order, &lock);
    pool.addTask(&task);
    EXPECT_EQ(task.runs, 1);
    EXPECT_EQ(task.thread, Tessil::Thread::self());
    EXPECT_EQ(pool.getNumQueuedTasks(), 0u);
}

TEST_F(TaskManagerTest, PoolOnlyGrows)
{
    TaskManager pool;
    pool.setNumThreads(4);
    pool.setNumThreads(2);
    EXPECT_EQ(pool.getNumThreads(), 4u);
    pool.shutdown();
    EXPECT_EQ(pool.getNumThreads(), 4u);
}

TEST_F(TaskManagerTest, WorkersRunTasksInArrivalOrderThroughTheBackendHooks)
{
    CountingBackend backend;
    SceneGraphBackend::install(&backend);
    {
        TaskManager pool;
        pool.setNumThreads(1);
        Tessil::Event gate;
        RecordingTask first(0, &order, &lock, &gate);
        std::vector<std::unique_ptr<RecordingTask>> rest;
        pool.addTask(&first);
        ASSERT_TRUE(first.started.waitFor(5000));
        for (int i = 1; i <= 5; ++i) {
            rest.push_back(std::make_unique<RecordingTask>(i, &order, &lock));
            pool.addTask(rest.back().get());
        }
        EXPECT_EQ(pool.getNumQueuedTasks(), 5u);
        EXPECT_EQ(pool.getNumWorkingThreads(), 1u);
        EXPECT_NE(first.thread, Tessil::Thread::self());
        gate.set();
        ASSERT_TRUE(rest.back()->started.waitFor(5000));
        while (ran().size() < 6)
            Tessil::Thread::yield();
        EXPECT_EQ(ran(), (std::vector<int>{0, 1, 2, 3, 4, 5}));
        pool.shutdown();
        EXPECT_EQ(pool.getMaxNumWorkingThreads(), 1u);
        EXPECT_EQ(pool.getNumWorkingThreads(), 0u);
    }
    SceneGraphBackend::install(nullptr);
    EXPECT_EQ(backend.registered, 1);
    EXPECT_EQ(backend.cleared, 6);
}

TEST_F(TaskManagerTest, ShutdownAbortsTheRunningTaskOnceAndLeavesTheQueueUnrun)
{
    TaskManager pool;
    pool.setNumThreads(2);
    Tessil::Event never;
    // The running tasks stop when aborted; abort() only counts, so they poll a flag we set after.
    RecordingTask a(0, &order, &lock, &never);
    RecordingTask b(1, &order, &lock, &never);
    RecordingTask queued(2, &order, &lock);
    RecordingTask taken(3, &order, &lock);
    pool.addTask(&a);
    pool.addTask(&b);
    ASSERT_TRUE(a.started.waitFor(5000));
    ASSERT_TRUE(b.started.waitFor(5000));
    pool.addTask(&queued);
    pool.addTask(&taken);
    EXPECT_FALSE(pool.releaseTask(&a));  // a worker holds it
    EXPECT_TRUE(pool.releaseTask(&taken));
    EXPECT_EQ(pool.getNumQueuedTasks(), 1u);
    EXPECT_EQ(pool.getMaxNumWorkingThreads(), 2u);

    std::thread stopper([&] { pool.shutdown(); });
    while (a.aborts == 0 || b.aborts == 0)
        Tessil::Thread::yield();
    a.aborted = true;
    b.aborted = true;
    stopper.join();
    EXPECT_EQ(a.aborts, 1);
    EXPECT_EQ(b.aborts, 1);
    EXPECT_EQ(queued.runs, 0);
    EXPECT_EQ(taken.runs, 0);
    EXPECT_EQ(pool.getNumThreads(), 2u);
    EXPECT_EQ(pool.getMaxNumWorkingThreads(), 2u);

    // Down for good: a later task is queued, never run on the caller's thread.
    RecordingTask late(4, &order, &lock);
    pool.addTask(&late);
    EXPECT_EQ(late.runs, 0);
    EXPECT_EQ(pool.getNumQueuedTasks(), 2u);
}

// Producers hand tasks over from several threads while the workers run them and the pool is
// shut down in the middle: every task either ran once or is still queued.
TEST_F(TaskManagerTest, TasksFromSeveralThreadsWhileThePoolShutsDown)
{
    struct Counting : TaskManager::Task {
        void run() override { runs.fetch_add(1, std::memory_order_relaxed); }
        std::atomic<int> runs{0};
    };
    constexpr int producers = 4;
    constexpr int perProducer = 2000;
    std::vector<Counting> tasks(producers * perProducer);
    TaskManager pool;
    pool.setNumThreads(2);
    std::atomic<int> added{0};
    std::vector<std::thread> threads;
    for (int p = 0; p < producers; ++p) {
        threads.emplace_back([&, p] {
            for (int i = 0; i < perProducer; ++i) {
                pool.addTask(&tasks[p * perProducer + i]);
                added.fetch_add(1);
            }
        });
    }
    while (added.load() < producers * perProducer / 2)
        Tessil::Thread::yield();
    pool.shutdown();
    for (std::thread& t : threads)
        t.join();
    int ran = 0;
    for (Counting& task : tasks) {
        EXPECT_LE(task.runs.load(), 1);
        ran += task.runs.load();
    }
    EXPECT_EQ(ran + static_cast<int>(pool.getNumQueuedTasks()), producers * perProducer);
    EXPECT_LE(pool.getMaxNumWorkingThreads(), 2u);
}

} // namespace
