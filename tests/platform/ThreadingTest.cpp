#include "platform/tessil/Event.h"
#include "platform/tessil/Mutex.h"
#include "platform/tessil/Semaphore.h"
#include "platform/tessil/Thread.h"
#include "tests/support/LogCapture.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <mutex>
#include <pthread.h>
#include <vector>

using namespace Tessil;

TEST(Mutex, SerialisesIncrementsFromSeveralThreads)
{
    Mutex mutex;
    long counter = 0;
    std::vector<std::unique_ptr<Thread>> threads;
    for (int t = 0; t < 4; ++t) {
        threads.push_back(std::make_unique<Thread>());
        ASSERT_TRUE(threads.back()->start([&] {
            for (int i = 0; i < 20000; ++i) {
                std::lock_guard<Mutex> guard(mutex);
                ++counter;
            }
        }));
    }
    for (auto& thread : threads)
        EXPECT_TRUE(thread->join());
    EXPECT_EQ(counter, 80000);
}

TEST(Mutex, TryLockFailsWhileAnotherThreadHoldsIt)
{
    Mutex mutex;
    bool whileHeld = true, afterRelease = false;
    mutex.lock();
    Thread probe;
    probe.start([&] { whileHeld = mutex.tryLock(); });
    probe.join();
    mutex.unlock();
    probe.start([&] {
        afterRelease = mutex.tryLock();
        if (afterRelease)
            mutex.unlock();
    });
    probe.join();
    EXPECT_FALSE(whileHeld);
    EXPECT_TRUE(afterRelease);
}

TEST(Semaphore, CountsPostsAndWaits)
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
}

TEST(Semaphore, EveryPostReleasesExactlyOneWaiter)
{
    Semaphore semaphore;
    std::atomic<int> taken{0};
    std::vector<std::unique_ptr<Thread>> consumers;
    for (int t = 0; t < 4; ++t) {
        consumers.push_back(std::make_unique<Thread>());
        consumers.back()->start([&] {
            for (int i = 0; i < 500; ++i) {
                semaphore.wait();
                ++taken;
            }
        });
    }
    for (int i = 0; i < 1000; ++i)
        semaphore.post(2);
    for (auto& consumer : consumers)
        consumer->join();
    EXPECT_EQ(taken.load(), 2000);
    EXPECT_EQ(semaphore.count(), 0u);
}

TEST(Event, ReleasesAllWaitersAndStaysSetUntilReset)
{
    Event event;
    EXPECT_FALSE(event.isSet());
    EXPECT_FALSE(event.waitFor(1));

    std::atomic<int> released{0};
    std::vector<std::unique_ptr<Thread>> waiters;
    for (int t = 0; t < 3; ++t) {
        waiters.push_back(std::make_unique<Thread>());
        waiters.back()->start([&] {
            event.wait();
            ++released;
        });
    }
    event.set();
    for (auto& waiter : waiters)
        waiter->join();
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
    Thread thread("orvane-worker-with-a-long-name");
    EXPECT_FALSE(thread.join());  // nothing started yet
    EXPECT_EQ(thread.id(), Thread::Id());

    Event go;
    Thread::Id inside;
    char osName[32] = {};
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
    EXPECT_EQ(thread.name(), "orvane-worker-with-a-long-name");

    // A joined object can run again.
    bool again = false;
    ASSERT_TRUE(thread.start([&] { again = true; }));
    thread.join();
    EXPECT_TRUE(again);
}

TEST(Thread, DestructorJoinsARunningThread)
{
    std::atomic<bool> finished{false};
    {
        Thread thread;
        thread.start([&] {
            Thread::sleep(5);
            finished = true;
        });
    }
    EXPECT_TRUE(finished.load());
}
