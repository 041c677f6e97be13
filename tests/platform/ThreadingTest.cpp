// The thread primitives: mutex, semaphore, event and thread.
#include "platform/tessil/Event.h"
#include "platform/tessil/Mutex.h"
#include "platform/tessil/Semaphore.h"
#include "platform/tessil/Thread.h"
#include "tests/support/LogCapture.h"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <pthread.h>
#include <vector>

using namespace Tessil;

namespace {

// Runs `body` on `count` threads at once; `between` runs while they do; joins them all.
void runThreads(int count, const std::function<void()>& body, const std::function<void()>& between = {})
{
    std::vector<std::unique_ptr<Thread>> threads;
    for (int t = 0; t < count; ++t) {
        threads.push_back(std::make_unique<Thread>());
        ASSERT_TRUE(threads.back()->start(body));
    }
    if (between)
        between();
    for (auto& thread : threads)
        EXPECT_TRUE(thread->join());
}

} // namespace

TEST(Mutex, SerialisesThreadsAndTryLockFailsWhileHeld)
{
    Mutex mutex;
    long  counter = 0;
    runThreads(4, [&] {
        for (int i = 0; i < 20000; ++i) {
            std::lock_guard<Mutex> guard(mutex);
            ++counter;
        }
    });
    EXPECT_EQ(counter, 80000);

    bool whileHeld = true, afterRelease = false;
    mutex.lock();
    runThreads(1, [&] { whileHeld = mutex.tryLock(); });
    mutex.unlock();
    runThreads(1, [&] {
        afterRelease = mutex.tryLock();
        if (afterRelease)
            mutex.unlock();
    });
    EXPECT_FALSE(whileHeld);
    EXPECT_TRUE(afterRelease);
}

TEST(Semaphore, CountsPostsAndEveryPostReleasesExactlyOneWaiter)
{
    Semaphore semaphore(2);
    EXPECT_TRUE(semaphore.tryWait());
    EXPECT_TRUE(semaphore.tryWait());
    EXPECT_FALSE(semaphore.tryWait());
    EXPECT_FALSE(semaphore.waitFor(1));
    semaphore.post(3);
    EXPECT_EQ(semaphore.count(), 3u);
    EXPECT_TRUE(semaphore.waitFor(1));
    EXPECT_EQ(semaphore.count(), 2u);

    Semaphore        shared;
    std::atomic<int> taken{0};
    runThreads(
        4,
        [&] {
            for (int i = 0; i < 500; ++i) {
                shared.wait();
                ++taken;
            }
        },
        [&] {
            for (int i = 0; i < 1000; ++i)
                shared.post(2);
        });
    EXPECT_EQ(taken.load(), 2000);
    EXPECT_EQ(shared.count(), 0u);
}

TEST(Event, ReleasesAllWaitersAndStaysSetUntilReset)
{
    Event event;
    EXPECT_FALSE(event.isSet());
    EXPECT_FALSE(event.waitFor(1));
    std::atomic<int> released{0};
    runThreads(
        3,
        [&] {
            event.wait();
            ++released;
        },
        [&] { event.set(); });
    EXPECT_EQ(released.load(), 3);

    // Manual reset: later waits pass too until someone resets it.
    EXPECT_TRUE(event.waitFor(0));
    event.wait();
    event.reset();
    EXPECT_FALSE(event.waitFor(1));
    EXPECT_TRUE(Event(true).isSet());
}

TEST(Thread, RunsItsBodyUnderItsOwnIdAndName)
{
    Orvane::Test::LogCapture log;
    Thread                   thread("orvane-worker-with-a-long-name");
    EXPECT_FALSE(thread.join());  // nothing started yet
    EXPECT_EQ(thread.id(), Thread::Id());

    Event      go;
    Thread::Id inside;
    char       osName[32] = {};
    ASSERT_TRUE(thread.start([&] {
        go.wait();
        inside = Thread::self();
        pthread_getname_np(pthread_self(), osName, sizeof(osName));
    }));
    Thread::Id outside = thread.id();
    EXPECT_NE(outside, Thread::self());
    EXPECT_FALSE(thread.start([] {}));  // still running
    EXPECT_TRUE(log.containsFragment("already running"));
    go.set();
    EXPECT_TRUE(thread.join());
    EXPECT_FALSE(thread.joinable());
    EXPECT_EQ(inside, outside);
    EXPECT_STREQ(osName, "orvane-worker-w");  // cut to the system's 15 characters

    // A joined object can run again; the destructor joins a running thread.
    std::atomic<bool> again{false}, finished{false};
    ASSERT_TRUE(thread.start([&] { again = true; }));
    thread.join();
    EXPECT_TRUE(again);
    {
        Thread running;
        running.start([&] {
            Thread::sleep(5);
            finished = true;
        });
    }
    EXPECT_TRUE(finished.load());
}
