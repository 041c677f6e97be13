#include "base/Log.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <unistd.h>

namespace Orvane {

namespace {

LogLevel levelFromEnvironment()
{
    const char* text = std::getenv("ORVANE_LOG_LEVEL");
    if (text && text[0] >= '0' && text[0] <= '5' && text[1] == '\0')
        return static_cast<LogLevel>(text[0] - '0');
    return LOG_WARNING;
}

} // namespace

Log::Log() : _level(levelFromEnvironment()), _headerMask(0x400A) {}

Log& Log::the()
{
    static Log log;
    return log;
}

const char* Log::levelName(LogLevel level)
{
    switch (level) {
    case LOG_LOG:     return "LOG";
    case LOG_FATAL:   return "FATAL";
    case LOG_WARNING: return "WARNING";
    case LOG_NOTICE:  return "NOTICE";
    case LOG_INFO:    return "INFO";
    case LOG_DEBUG:   return "DEBUG";
    }
    return "?";
}

void Log::addSink(LogSink& sink)
{
    std::lock_guard guard(_lock);
    if (std::find(_sinks.begin(), _sinks.end(), &sink) == _sinks.end())
        _sinks.push_back(&sink);
}

void Log::removeSink(LogSink& sink)
{
    std::lock_guard guard(_lock);
    _sinks.erase(std::remove(_sinks.begin(), _sinks.end(), &sink), _sinks.end());
}

void Log::setDefaultSinkEnabled(bool on)
{
    std::lock_guard guard(_lock);
    _defaultSink = on;
}

bool Log::defaultSinkEnabled() const
{
    std::lock_guard guard(_lock);
    return _defaultSink;
}

std::string Log::header(const LogRecord& record) const
{
    unsigned mask = headerMask();
    std::string out;
    auto piece = [&out](std::string_view text) {
        if (!out.empty())
            out += ' ';
        out += text;
    };
    if (mask & LOG_HEADER_LEVEL)
        piece(levelName(record.level));
    if (mask & LOG_HEADER_MODULE)
        piece(record.module);
    if (mask & LOG_HEADER_THREAD)
        piece("[" + std::to_string(static_cast<long>(gettid())) + "]");
    if (mask & LOG_HEADER_LOCATION)
        piece(std::string(record.source) + ":" + std::to_string(record.line));
    if (mask & LOG_HEADER_FUNCTION)
        piece(record.function);
    out += ':';
    return out;
}

void Log::write(LogLevel level, std::string_view module, std::string_view source, int line,
                std::string_view function, const char* format, ...)
{
    char stackBuffer[512];
    std::string heapBuffer;
    const char* text = stackBuffer;

    va_list args;
    va_start(args, format);
    va_list again;
    va_copy(again, args);
    int length = std::vsnprintf(stackBuffer, sizeof stackBuffer, format, args);
    va_end(args);
    if (length < 0) {
        length = 0;
        stackBuffer[0] = '\0';
    } else if (static_cast<size_t>(length) >= sizeof stackBuffer) {
        heapBuffer.resize(static_cast<size_t>(length) + 1);
        std::vsnprintf(heapBuffer.data(), heapBuffer.size(), format, again);
        heapBuffer.resize(static_cast<size_t>(length));
        text = heapBuffer.data();
    }
    va_end(again);

    LogRecord record{level, module, source, line, function, std::string_view(text, length)};

    std::lock_guard guard(_lock);
    if (_defaultSink) {
        std::string out = header(record);
        out += '\n';
        out += record.text;
        if (out.back() != '\n')
            out += '\n';
        std::fwrite(out.data(), 1, out.size(), stderr);
    }
    for (LogSink* sink : _sinks)
        sink->write(record);
}

} // namespace Orvane
