#ifndef ORVANE_TESTS_LOGCAPTURE_H
#define ORVANE_TESTS_LOGCAPTURE_H

#include "base/Log.h"

#include <mutex>
#include <string>
#include <vector>

namespace Orvane::Test {

// Captures every log message for its own lifetime, at every level, and keeps stderr quiet.
class LogCapture : public LogSink {
public:
    struct Entry {
        LogLevel    level;
        std::string module;
        std::string source;
        std::string function;
        std::string text;
    };

    LogCapture();
    ~LogCapture() override;

    void write(const LogRecord& record) override;

    // How often exactly this text was logged (at the given level and module, when named).
    int  count(const std::string& text) const;
    int  count(const std::string& text, LogLevel level, const std::string& module = "Orvane") const;
    bool contains(const std::string& text) const { return count(text) > 0; }
    bool contains(const std::string& text, LogLevel level, const std::string& module = "Orvane") const
    {
        return count(text, level, module) > 0;
    }
    // Whether some message contains the fragment.
    bool containsFragment(const std::string& fragment) const;

    std::vector<Entry> entries() const;
    std::size_t size() const;
    void clear();
    // Every captured text, one after the other; handy in failure output.
    std::string all() const;

private:
    template <class Match>
    int countIf(Match match) const;

    mutable std::mutex _lock;
    std::vector<Entry> _entries;
    LogLevel           _oldLevel;
    bool               _oldDefaultSink;
};

} // namespace Orvane::Test

#endif
