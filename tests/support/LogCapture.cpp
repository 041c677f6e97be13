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

template <class Match>
int LogCapture::countIf(Match match) const
{
    std::lock_guard guard(_lock);
    int             n = 0;
    for (const auto& e : _entries)
        n += match(e);
    return n;
}

int LogCapture::count(const std::string& text) const
{
    return countIf([&](const Entry& e) { return e.text == text; });
}

int LogCapture::count(const std::string& text, LogLevel level, const std::string& module) const
{
    return countIf([&](const Entry& e) { return e.text == text && e.level == level && e.module == module; });
}

bool LogCapture::containsFragment(const std::string& fragment) const
{
    return countIf([&](const Entry& e) { return e.text.find(fragment) != std::string::npos; }) > 0;
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
