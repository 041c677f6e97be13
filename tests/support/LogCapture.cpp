#include "tests/support/LogCapture.h"

namespace Orvane::Test {

LogCapture::LogCapture()
    : _oldLevel(Log::the().level()), _oldDefaultSink(Log::the().defaultSinkEnabled())
{
    Log::the().setLevel(LOG_DEBUG);
    Log::the().setDefaultSinkEnabled(false);
    Log::the().addSink(*this);
}

LogCapture::~LogCapture()
{
    Log::the().removeSink(*this);
    Log::the().setDefaultSinkEnabled(_oldDefaultSink);
    Log::the().setLevel(_oldLevel);
}

void LogCapture::write(const LogRecord& r)
{
    std::lock_guard guard(_lock);
    _entries.push_back({r.level, std::string(r.module), std::string(r.source), std::string(r.function),
                        std::string(r.text)});
}

int LogCapture::count(const std::string& text) const
{
    std::lock_guard guard(_lock);
    int n = 0;
    for (const auto& e : _entries)
        n += e.text == text;
    return n;
}

int LogCapture::count(const std::string& text, LogLevel level, const std::string& module) const
{
    std::lock_guard guard(_lock);
    int n = 0;
    for (const auto& e : _entries)
        n += e.text == text && e.level == level && e.module == module;
    return n;
}

bool LogCapture::containsFragment(const std::string& fragment) const
{
    std::lock_guard guard(_lock);
    for (const auto& e : _entries)
        if (e.text.find(fragment) != std::string::npos)
            return true;
    return false;
}

std::vector<LogCapture::Entry> LogCapture::entries() const
{
    std::lock_guard guard(_lock);
    return _entries;
}

std::size_t LogCapture::size() const
{
    std::lock_guard guard(_lock);
    return _entries.size();
}

void LogCapture::clear()
{
    std::lock_guard guard(_lock);
    _entries.clear();
}

std::string LogCapture::all() const
{
    std::lock_guard guard(_lock);
    std::string out;
    for (const auto& e : _entries)
        out += "[" + std::string(Log::levelName(e.level)) + " " + e.module + "] " + e.text;
    return out;
}

} // namespace Orvane::Test
