#include "base/ImageDownloadCache.h"

#include "base/Log.h"
#include "base/TaskManager.h"
#include "platform/pordane/URL.h"
#include "platform/tessil/Thread.h"

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <fstream>
#include <mutex>

namespace Orvane {

// One fetch, run on the pool. It touches nothing of the cache but the hand-over list, and
// nothing after handing itself over: the application thread may delete it from then on.
class ImageDownloadCache::Download : public TaskManager::Task {
public:
    Download(ImageDownloadCache& cache, const std::string& key) : _cache(cache), _key(key) {}

    void run() override
    {
        _ok = read();
        _cache.finished(*this);
    }
    void abort() override { _aborted.store(true, std::memory_order_relaxed); }

    const std::string& key() const { return _key; }
    bool               ok() const { return _ok; }
    std::string&       data() { return _data; }

private:
    // In pieces, so that an abort stops a long read early.
    bool read()
    {
        std::ifstream in(_key, std::ios::binary);
        if (!in)
            return false;
        char buffer[64 * 1024];
        while (!_aborted.load(std::memory_order_relaxed)) {
            in.read(buffer, sizeof buffer);
            _data.append(buffer, static_cast<std::size_t>(in.gcount()));
            if (!in)
                return in.eof();
        }
        return false;
    }

    ImageDownloadCache& _cache;
    const std::string   _key;
    std::string         _data;
    bool                _ok = false;
    std::atomic<bool>   _aborted{false};
};

ImageDownloadCache& ImageDownloadCache::the()
{
    // Never destroyed, like the pool it uses.
    static ImageDownloadCache& cache = *new ImageDownloadCache(TaskManager::the());
    return cache;
}

ImageDownloadCache::ImageDownloadCache(TaskManager& pool) : _pool(pool) {}

ImageDownloadCache::~ImageDownloadCache()
{
    shutdown();
}

std::string ImageDownloadCache::resolve(const std::string& url, const std::string& base)
{
    Pordane::URL target = base.empty() ? Pordane::URL(url) : Pordane::URL(base).resolve(url);
    if (!target.valid() || !target.isLocal())
        return std::string();
    std::string path = target.localPath();
    if (path.empty())
        return std::string();
    std::error_code error;
    std::filesystem::path absolute = std::filesystem::absolute(path, error);
    return error ? path : absolute.lexically_normal().string();
}

ImageDownloadCache::Entry* ImageDownloadCache::request(const std::string& url, Listener* listener,
                                                       const std::string& base)
{
    const std::string key = resolve(url, base);
    if (key.empty()) {
        ORV_WARNING("ImageDownloadCache: cannot fetch >%s<: only local files and file URLs are read\n", url.c_str());
        return nullptr;
    }
    SmartPtr<Entry>& entry = _entries[key];
    const bool fresh = !entry;
    if (fresh)
        entry = new Entry(key);
    Entry* result = entry.get();
    if (listener && std::find(result->_waiting.begin(), result->_waiting.end(), listener) == result->_waiting.end()) {
        result->_waiting.push_back(listener);
        if (result->_state != Pending &&
            std::find(_toTell.begin(), _toTell.end(), result) == _toTell.end())
            _toTell.emplace_back(result);
    }
    if (fresh) {
        _downloads.push_back(std::make_unique<Download>(*this, key));
        // With no worker threads this reads at once; the listeners still wait for deliver().
        _pool.addTask(_downloads.back().get());
    }
    return result;
}

ImageDownloadCache::Entry* ImageDownloadCache::find(const std::string& url, const std::string& base) const
{
    auto found = _entries.find(resolve(url, base));
    return found == _entries.end() ? nullptr : found->second.get();
}

void ImageDownloadCache::cancel(Listener& listener)
{
    for (auto& [key, entry] : _entries)
        entry->_waiting.erase(std::remove(entry->_waiting.begin(), entry->_waiting.end(), &listener),
                              entry->_waiting.end());
}

void ImageDownloadCache::finished(Download& download)
{
    std::lock_guard<Tessil::Mutex> lock(_mutex);
    _finished.push_back(&download);
}

unsigned ImageDownloadCache::pendingCount() const
{
    unsigned count = 0;
    for (const auto& [key, entry] : _entries)
        count += entry->_state == Pending ? 1u : 0u;
    return count;
}

unsigned ImageDownloadCache::deliver()
{
    std::vector<Download*> done;
    {
        std::lock_guard<Tessil::Mutex> lock(_mutex);
        if (_finished.empty() && _toTell.empty())
            return 0;
        done.swap(_finished);
    }
    for (Download* download : done) {
        if (!_pool.releaseTask(download)) {
            // Its worker has not let go of it yet; next frame.
            std::lock_guard<Tessil::Mutex> lock(_mutex);
            _finished.push_back(download);
            continue;
        }
        auto found = _entries.find(download->key());
        if (found != _entries.end() && found->second->_state == Pending) {
            Entry& entry = *found->second;
            if (download->ok()) {
                entry._data = std::move(download->data());
                entry._state = Ready;
            } else {
                ORV_WARNING("ImageDownloadCache: could not read %s\n", entry._url.c_str());
                entry._state = Failed;
            }
            if (!entry._waiting.empty())
                _toTell.push_back(found->second);
        }
        _downloads.erase(std::find_if(_downloads.begin(), _downloads.end(),
                                      [download](const std::unique_ptr<Download>& d) { return d.get() == download; }));
    }
    unsigned told = 0;
    std::vector<SmartPtr<Entry>> entries;
    entries.swap(_toTell);
    for (SmartPtr<Entry>& entry : entries) {
        // A listener may ask for more, or cancel others, while told.
        std::vector<Listener*> listeners;
        listeners.swap(entry->_waiting);
        for (Listener* listener : listeners) {
            listener->downloadFinished(*entry);
            ++told;
        }
    }
    return told;
}

void ImageDownloadCache::clear()
{
    for (auto it = _entries.begin(); it != _entries.end();) {
        if (it->second->_state == Pending)
            ++it;
        else
            it = _entries.erase(it);
    }
}

void ImageDownloadCache::dropDownloads()
{
    for (std::unique_ptr<Download>& download : _downloads)
        download->abort();
    for (std::unique_ptr<Download>& download : _downloads) {
        // A queued download is taken back unrun; a running one ends soon after its abort.
        while (!_pool.releaseTask(download.get()))
            Tessil::Thread::sleep(1);
    }
    std::lock_guard<Tessil::Mutex> lock(_mutex);
    _finished.clear();
    _downloads.clear();
}

void ImageDownloadCache::shutdown()
{
    dropDownloads();
    for (auto& [key, entry] : _entries) {
        if (entry->_state == Pending)
            entry->_state = Failed;
        entry->_waiting.clear();
    }
    _toTell.clear();
    _entries.clear();
}

} // namespace Orvane
