#ifndef ORVANE_BASE_LOG_H
#define ORVANE_BASE_LOG_H

#include "base/OrvaneExport.h"

#include <atomic>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace Orvane {

enum LogLevel { LOG_LOG = 0, LOG_FATAL = 1, LOG_WARNING = 2, LOG_NOTICE = 3, LOG_INFO = 4, LOG_DEBUG = 5 };

// Bits of the header mask: which pieces of the header line precede a message's text.
enum LogHeaderBit : unsigned {
    LOG_HEADER_LEVEL    = 0x0002,  // the level name
    LOG_HEADER_MODULE   = 0x0008,  // "Orvane" or "OpenSG"
    LOG_HEADER_THREAD   = 0x1000,  // the id of the writing thread
    LOG_HEADER_LOCATION = 0x2000,  // source path and line
    LOG_HEADER_FUNCTION = 0x4000,  // full signature of the calling function
};

struct LogRecord {                 // one message, as handed to every sink
    LogLevel         level;
    std::string_view module;       // "Orvane" or "OpenSG"
    std::string_view source;       // "base/<Class>"
    int              line;
    std::string_view function;     // full signature of the calling function
    std::string_view text;         // the formatted message (usually ends in "\n")
};

class ORVANE_API LogSink {
public:
    virtual ~LogSink() = default;
    virtual void write(const LogRecord&) = 0;
};

// The process-wide log. Messages above level() are dropped before anything is formatted;
// every message is written to all sinks under one lock, so lines never interleave.
class ORVANE_API Log {
public:
    static Log& the();

    void     setLevel(LogLevel level) { _level.store(level, std::memory_order_relaxed); }
    LogLevel level() const { return static_cast<LogLevel>(_level.load(std::memory_order_relaxed)); }
    bool     enabled(LogLevel level) const { return level <= _level.load(std::memory_order_relaxed); }

    void     setHeaderMask(unsigned mask) { _headerMask.store(mask, std::memory_order_relaxed); }
    unsigned headerMask() const { return _headerMask.load(std::memory_order_relaxed); }

    void addSink(LogSink& sink);
    void removeSink(LogSink& sink);
    void setDefaultSinkEnabled(bool on);
    bool defaultSinkEnabled() const;

    // The header line of a record under the current mask, without its newline.
    std::string header(const LogRecord& record) const;

    static const char* levelName(LogLevel level);

    void write(LogLevel level, std::string_view module, std::string_view source, int line,
               std::string_view function, const char* format, ...)
        __attribute__((format(printf, 7, 8)));

    Log(const Log&) = delete;
    Log& operator=(const Log&) = delete;

private:
    Log();

    std::atomic<int>      _level;
    std::atomic<unsigned> _headerMask;
    mutable std::mutex    _lock;
    std::vector<LogSink*> _sinks;
    bool                  _defaultSink = true;
};

// "base/Node" from ".../base/Node.cpp": the source path a message's header names.
consteval std::string_view logSourcePath(std::string_view file)
{
    // The last of these folders in the path wins, so that a checkout under some ".../base/..."
    // directory does not hide the project's own folder.
    std::string_view::size_type cut = std::string_view::npos;
    for (std::string_view dir : {std::string_view("/base/"), std::string_view("/platform/"),
                                 std::string_view("/tests/"), std::string_view("/examples/")}) {
        auto at = file.rfind(dir);
        if (at != std::string_view::npos && (cut == std::string_view::npos || at > cut))
            cut = at;
    }
    if (cut != std::string_view::npos)
        file.remove_prefix(cut + 1);
    auto dot = file.rfind('.');
    return dot == std::string_view::npos ? file : file.substr(0, dot);
}

} // namespace Orvane

#define ORV_LOG_MODULE(level, module, ...)                                                           \
    do {                                                                                             \
        if (::Orvane::Log::the().enabled(level))                                                     \
            ::Orvane::Log::the().write(level, module, ::Orvane::logSourcePath(__FILE__), __LINE__,   \
                                       __PRETTY_FUNCTION__, __VA_ARGS__);                            \
    } while (0)

// Messages of this library, and the few that the scene-graph layer reports under its own name.
#define ORV_LOG(level, ...)   ORV_LOG_MODULE(level, "Orvane", __VA_ARGS__)
#define OSG_LOG(level, ...)   ORV_LOG_MODULE(level, "OpenSG", __VA_ARGS__)
#define ORV_PLOG(...)    ORV_LOG(::Orvane::LOG_LOG, __VA_ARGS__)
#define ORV_FATAL(...)   ORV_LOG(::Orvane::LOG_FATAL, __VA_ARGS__)
#define ORV_WARNING(...) ORV_LOG(::Orvane::LOG_WARNING, __VA_ARGS__)
#define ORV_NOTICE(...)  ORV_LOG(::Orvane::LOG_NOTICE, __VA_ARGS__)
#define ORV_INFO(...)    ORV_LOG(::Orvane::LOG_INFO, __VA_ARGS__)
#define ORV_DEBUG(...)   ORV_LOG(::Orvane::LOG_DEBUG, __VA_ARGS__)

#endif
