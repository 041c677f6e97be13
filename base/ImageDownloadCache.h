#ifndef ORVANE_BASE_IMAGEDOWNLOADCACHE_H
#define ORVANE_BASE_IMAGEDOWNLOADCACHE_H

#include "base/RefCountObject.h"
#include "base/SmartPtr.h"
#include "platform/tessil/Mutex.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace Orvane {

class TaskManager;

// Fetches resources (images and the like) by URL in the background and shares them: one entry
// per resolved URL, however many nodes ask for it. The bytes are read on the task pool; the
// listeners waiting for them are told on the application thread, by deliver() at the next frame,
// never from a worker. Local paths and file URLs are read; any other scheme is refused.
//
// Everything but the reading belongs to the application thread.
class ORVANE_API ImageDownloadCache {
public:
    class Entry;

    class ORVANE_API Listener {
    public:
        virtual ~Listener() = default;
        // The entry is Ready or Failed.
        virtual void downloadFinished(Entry& entry) = 0;
    };

    enum State { Pending = 0, Ready = 1, Failed = 2 };

    // One shared resource. Held by the cache and by whoever keeps a pointer to it.
    class ORVANE_API Entry : public RefCountObject {
    public:
        const std::string& url() const { return _url; }
        State              state() const { return _state; }
        const std::string& data() const { return _data; }

    private:
        friend class ImageDownloadCache;
        explicit Entry(const std::string& url) : _url(url) {}

        std::string            _url;
        State                  _state = Pending;
        std::string            _data;
        std::vector<Listener*> _waiting;
    };

    static ImageDownloadCache& the();

    // A cache whose downloads run on `pool`.
    explicit ImageDownloadCache(TaskManager& pool);
    ~ImageDownloadCache();

    ImageDownloadCache(const ImageDownloadCache&) = delete;
    ImageDownloadCache& operator=(const ImageDownloadCache&) = delete;

    // The entry of `url` (taken relative to `base` when given), fetched on first request; the
    // listener, when given, is told at a later deliver() once the entry is finished, even when
    // it is already. Null, logged, for a URL that is not local.
    Entry* request(const std::string& url, Listener* listener = nullptr, const std::string& base = std::string());
    Entry* find(const std::string& url, const std::string& base = std::string()) const;
    // Stops telling the listener about any entry.
    void   cancel(Listener& listener);

    // Hands finished downloads to their listeners; on the application thread, once a frame. The
    // number of listeners told.
    unsigned deliver();

    // Forgets the finished entries (pending downloads go on). Holders keep theirs.
    void     clear();
    // Aborts what is pending, waits for the downloads that are running, and frees every entry.
    void     shutdown();
    unsigned entryCount() const { return static_cast<unsigned>(_entries.size()); }
    unsigned pendingCount() const;

    // The key of a URL: resolved against the base, local path made absolute. Empty when the URL
    // cannot be read from here.
    static std::string resolve(const std::string& url, const std::string& base);

private:
    class Download;

    void finished(Download& download);
    void dropDownloads();

    TaskManager&                             _pool;
    std::map<std::string, SmartPtr<Entry>>   _entries;
    std::vector<std::unique_ptr<Download>>   _downloads;   // application thread only
    // Guards the hand-over from the workers.
    mutable Tessil::Mutex                    _mutex;
    std::vector<Download*>                   _finished;
    std::vector<SmartPtr<Entry>>             _toTell;      // finished entries with new listeners
};

} // namespace Orvane

#endif
