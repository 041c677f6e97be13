// The download cache: one shared entry per resolved URL, reading on the pool, delivery on the
// application thread only, and shut-down with downloads still pending.
#include "base/ImageDownloadCache.h"
#include "base/TaskManager.h"
#include "platform/tessil/Event.h"
#include "platform/tessil/Thread.h"
#include "tests/support/LogCapture.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <unistd.h>

using namespace Orvane;
using namespace Orvane::Test;
namespace fs = std::filesystem;

namespace {

struct Told : ImageDownloadCache::Listener {
    void downloadFinished(ImageDownloadCache::Entry& entry) override
    {
        threads.push_back(Tessil::Thread::self());
        entries.push_back(&entry);
    }
    std::vector<Tessil::Thread::Id>          threads;
    std::vector<ImageDownloadCache::Entry*> entries;
};

// Holds the pool's only worker until released.
struct Blocker : TaskManager::Task {
    void run() override
    {
        started.set();
        gate.wait();
    }
    Tessil::Event started;
    Tessil::Event gate;
};

struct ImageDownloadCacheTest : ::testing::Test {
    LogCapture log;
    fs::path   dir = fs::temp_directory_path() / ("orvane-cache-" + std::to_string(::getpid()));

    ImageDownloadCacheTest() { fs::create_directories(dir); }
    ~ImageDownloadCacheTest() override { fs::remove_all(dir); }

    std::string file(const std::string& name, const std::string& content)
    {
        std::ofstream((dir / name).string(), std::ios::binary) << content;
        return (dir / name).string();
    }

    // Frames until every listener was told, or a few seconds went by.
    static void framesUntil(ImageDownloadCache& cache, const Told& told, std::size_t count)
    {
        auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        while (told.entries.size() < count && std::chrono::steady_clock::now() < end) {
            cache.deliver();
            Tessil::Thread::yield();
        }
    }
};

TEST_F(ImageDownloadCacheTest, OneSharedEntryPerResolvedUrl)
{
    TaskManager pool;
    ImageDownloadCache cache(pool);
    const std::string path = file("a.png", "PNGDATA");
    ImageDownloadCache::Entry* entry = cache.request(path);
    ASSERT_NE(entry, nullptr);
    EXPECT_EQ(cache.request("file://" + path), entry);
    EXPECT_EQ(cache.request("a.png", nullptr, "file://" + (dir / "other.wrl").string()), entry);
    EXPECT_EQ(cache.request((dir / "sub" / ".." / "a.png").string()), entry);
    EXPECT_EQ(cache.find(path), entry);
    EXPECT_EQ(cache.entryCount(), 1u);

    EXPECT_EQ(cache.request("http://example.org/a.png"), nullptr);
    EXPECT_EQ(log.count("ImageDownloadCache: cannot fetch >http://example.org/a.png<: only local files and file "
                        "URLs are read\n",
                        LOG_WARNING),
              1);
    EXPECT_EQ(cache.entryCount(), 1u);
}

TEST_F(ImageDownloadCacheTest, ListenersAreToldAtTheNextFrameEvenWhenReadInline)
{
    TaskManager pool;  // no threads: the read happens inside request()
    ImageDownloadCache cache(pool);
    Told told;
    ImageDownloadCache::Entry* entry = cache.request(file("b.png", "bytes"), &told);
    EXPECT_TRUE(told.entries.empty());
    EXPECT_EQ(cache.deliver(), 1u);
    ASSERT_EQ(told.entries.size(), 1u);
    EXPECT_EQ(entry->state(), ImageDownloadCache::Ready);
    EXPECT_EQ(entry->data(), "bytes");

    // Asking for a finished entry again is answered at the next frame too.
    Told late;
    EXPECT_EQ(cache.request(entry->url(), &late), entry);
    EXPECT_TRUE(late.entries.empty());
    cache.deliver();
    EXPECT_EQ(late.entries.size(), 1u);

    Told missing;
    ImageDownloadCache::Entry* absent = cache.request((dir / "none.png").string(), &missing);
    cache.deliver();
    EXPECT_EQ(absent->state(), ImageDownloadCache::Failed);
    EXPECT_EQ(missing.entries.size(), 1u);
    EXPECT_TRUE(log.containsFragment("ImageDownloadCache: could not read "));

    cache.clear();
    EXPECT_EQ(cache.entryCount(), 0u);
}

// Reads finish on the workers while the frames run; only the application thread tells anyone.
TEST_F(ImageDownloadCacheTest, WorkersReadAndTheApplicationThreadDelivers)
{
    TaskManager pool;
    pool.setNumThreads(2);
    ImageDownloadCache cache(pool);
    Told told;
    constexpr int files = 24;
    for (int i = 0; i < files; ++i)
        cache.request(file("f" + std::to_string(i), std::string(1000 + i, 'x')), &told);
    Told again;
    cache.request((dir / "f0").string(), &again);  // shared with the first, told once each
    framesUntil(cache, told, files);
    ASSERT_EQ(told.entries.size(), static_cast<std::size_t>(files));
    for (std::size_t i = 0; i < told.entries.size(); ++i) {
        EXPECT_EQ(told.threads[i], Tessil::Thread::self());
        EXPECT_EQ(told.entries[i]->state(), ImageDownloadCache::Ready);
    }
    cache.deliver();
    EXPECT_EQ(again.entries.size(), 1u);
    EXPECT_EQ(cache.pendingCount(), 0u);
    EXPECT_EQ(cache.entryCount(), static_cast<unsigned>(files));
    pool.shutdown();
}

TEST_F(ImageDownloadCacheTest, ShutdownAbortsWhatIsPendingAndFreesTheEntries)
{
    TaskManager pool;
    pool.setNumThreads(1);
    Blocker blocker;
    pool.addTask(&blocker);
    ASSERT_TRUE(blocker.started.waitFor(5000));
    {
        ImageDownloadCache cache(pool);
        Told told;
        SmartPtr<ImageDownloadCache::Entry> held(cache.request(file("c.png", "c"), &told));
        cache.request(file("d.png", "d"), &told);
        EXPECT_EQ(pool.getNumQueuedTasks(), 2u);
        cache.shutdown();
        EXPECT_EQ(pool.getNumQueuedTasks(), 0u);
        EXPECT_EQ(cache.entryCount(), 0u);
        EXPECT_EQ(held->state(), ImageDownloadCache::Failed);
        cache.deliver();
        EXPECT_TRUE(told.entries.empty());
    }
    blocker.gate.set();
    pool.shutdown();
}

} // namespace
