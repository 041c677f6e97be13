// The log: level filter, headers, records, sinks and threads.
#include "base/Log.h"
#include "tests/support/LogCapture.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

using namespace Orvane;
using Orvane::Test::LogCapture;

namespace {

// Started as a probe child (see EnvironmentLevel), report the level the log took from the
// environment and stop before any test runs.
[[maybe_unused]] const bool levelProbe = [] {
    if (std::getenv("ORVANE_TEST_LEVEL_PROBE")) {
        std::printf("level=%d\n", static_cast<int>(Log::the().level()));
        std::fflush(stdout);
        std::_Exit(0);
    }
    return false;
}();

// Restores the header mask a test changes.
struct MaskGuard {
    unsigned saved = Log::the().headerMask();
    ~MaskGuard() { Log::the().setHeaderMask(saved); }
};

// A sink that keeps whole records (with the line, which the capture does not keep).
class RecordSink : public LogSink {
public:
    struct Entry {
        LogLevel    level;
        std::string module, source, function, text;
        int         line;
    };

    RecordSink() { Log::the().addSink(*this); }
    ~RecordSink() override { Log::the().removeSink(*this); }

    void write(const LogRecord& r) override
    {
        entries.push_back({r.level, std::string(r.module), std::string(r.source), std::string(r.function),
                           std::string(r.text), r.line});
    }

    std::vector<Entry> entries;
};

LogRecord sampleRecord(std::string_view module = "Orvane")
{
    return LogRecord{LOG_WARNING, module, "base/Node", 4711, "void Orvane::Node::sample(int)", "text\n"};
}

} // namespace

TEST(Log, MessagesAboveTheLevelAreNeitherWrittenNorFormatted)
{
    LogCapture log;
    RecordSink sink;
    int evaluated = 0;
    auto touch = [&evaluated] { return ++evaluated; };

    Log::the().setLevel(LOG_WARNING);
    ORV_NOTICE("notice %d\n", touch());
    ORV_INFO("info %d\n", touch());
    ORV_DEBUG("debug %d\n", touch());
    OSG_LOG(LOG_INFO, "osg %d\n", touch());
    EXPECT_EQ(evaluated, 0);
    EXPECT_EQ(log.size(), 0u) << log.all();
    EXPECT_TRUE(sink.entries.empty());

    ORV_WARNING("warning %d\n", touch());
    ORV_FATAL("fatal %d\n", touch());
    EXPECT_EQ(evaluated, 2);
    EXPECT_EQ(log.count("warning 1\n", LOG_WARNING), 1) << log.all();
    EXPECT_EQ(log.count("fatal 2\n", LOG_FATAL), 1);
    EXPECT_EQ(sink.entries.size(), 2u);

    // The plain log level is written whatever the level is.
    log.clear();
    Log::the().setLevel(LOG_LOG);
    ORV_FATAL("dropped %d\n", touch());
    ORV_PLOG("plain %d\n", touch());
    EXPECT_EQ(evaluated, 3);
    EXPECT_EQ(log.count("plain 3\n", LOG_LOG), 1) << log.all();
    EXPECT_EQ(log.size(), 1u);
}

TEST(Log, EnvironmentLevel)
{
    // The level is read once, when the log is first used, so each value needs a process of
    // its own: this test program, started again as a probe (see levelProbe above).
    std::string self = std::filesystem::read_symlink("/proc/self/exe").string();
    auto probe = [&self](const char* value) {
        std::string command = "ORVANE_TEST_LEVEL_PROBE=1 ";
        command += value ? "ORVANE_LOG_LEVEL='" + std::string(value) + "' " : "env -u ORVANE_LOG_LEVEL ";
        command += "'" + self + "'";
        std::string out;
        if (FILE* pipe = popen(command.c_str(), "r")) {
            char buffer[64];
            while (std::fgets(buffer, sizeof buffer, pipe))
                out += buffer;
            pclose(pipe);
        }
        return out;
    };

    EXPECT_EQ(probe(nullptr), "level=2\n");
    for (const char* value : {"0", "4", "5"})
        EXPECT_EQ(probe(value), "level=" + std::string(value) + "\n");
    // Anything else keeps the default.
    for (const char* value : {"6", "45", "", "debug"})
        EXPECT_EQ(probe(value), "level=2\n") << value;
}

TEST(Log, HeaderMaskBitsSelectThePieces)
{
    MaskGuard         guard;
    const LogRecord   record = sampleRecord("OpenSG");
    const std::string tid = std::to_string(static_cast<long>(gettid()));
    const std::string function = "void Orvane::Node::sample(int)";
    const std::string pieces[] = {"WARNING", "OpenSG", tid, "base/Node", "4711", function};
    const struct {
        unsigned    mask;
        const char* present;  // one flag per piece
    } cases[] = {{LOG_HEADER_LEVEL, "100000"},    {LOG_HEADER_MODULE, "010000"}, {LOG_HEADER_THREAD, "001000"},
                 {LOG_HEADER_LOCATION, "000110"}, {LOG_HEADER_FUNCTION, "000001"},
                 {0x400A, "110001"} /* the default */};
    for (const auto& c : cases) {
        Log::the().setHeaderMask(c.mask);
        const std::string header = Log::the().header(record);
        for (int i = 0; i < 6; ++i) {
            // A short thread id may be part of the line number.
            if (i == 2 && c.present[4] == '1' && std::string("4711").find(tid) != std::string::npos)
                continue;
            EXPECT_EQ(header.find(pieces[i]) != std::string::npos, c.present[i] == '1')
                << std::hex << c.mask << ": " << pieces[i] << " in " << header;
        }
    }

    // Everything, on one line, in a fixed order.
    Log::the().setHeaderMask(0x700A);
    const std::string full = Log::the().header(record);
    EXPECT_EQ(full.find('\n'), std::string::npos) << full;
    auto at = [&full](const std::string& piece) { return full.find(piece); };
    EXPECT_LT(at("WARNING"), at("OpenSG"));
    EXPECT_LT(at("OpenSG"), at(tid));
    EXPECT_LT(at(tid), at("base/Node"));
    EXPECT_LT(at("base/Node"), at(function));
    EXPECT_NE(at(function), std::string::npos);
}

TEST(Log, RecordNamesModuleSourceLineAndFunction)
{
    LogCapture log;
    RecordSink sink;
    const int line = __LINE__ + 1;
    ORV_WARNING("from the test %s\n", "body");
    OSG_LOG(LOG_WARNING, "conversion %d\n", 3);

    EXPECT_EQ(log.count("from the test body\n", LOG_WARNING, "Orvane"), 1) << log.all();
    EXPECT_EQ(log.count("conversion 3\n", LOG_WARNING, "OpenSG"), 1) << log.all();
    ASSERT_EQ(sink.entries.size(), 2u);
    EXPECT_EQ(sink.entries[0].source, "tests/foundation/LogTest");
    EXPECT_EQ(sink.entries[0].line, line);
    EXPECT_NE(sink.entries[0].function.find("TestBody"), std::string::npos) << sink.entries[0].function;
    EXPECT_EQ(sink.entries[1].source, "tests/foundation/LogTest");
}

TEST(Log, SourcePathIsTheProjectRelativeFileWithoutExtension)
{
    static_assert(logSourcePath("/home/dev/orvane/base/NodeType.cpp") == "base/NodeType");
    static_assert(logSourcePath("/home/dev/orvane/base/XField.h") == "base/XField");
    static_assert(logSourcePath("/src/orvane/platform/tessil/Mutex.cpp") == "platform/tessil/Mutex");
    // A checkout below some other "base" folder still names the project's own folder.
    static_assert(logSourcePath("/srv/base/orvane/tests/foundation/LogTest.cpp") == "tests/foundation/LogTest");
    static_assert(logSourcePath("base/Node.cpp") == "base/Node");
}

TEST(Log, LongMessagesArriveWhole)
{
    LogCapture log;
    // Around the size of the formatting buffer on the stack, and far beyond it.
    for (std::size_t length : {510u, 511u, 512u, 513u, 5000u}) {
        const std::string text = "<" + std::string(length - 3, 'x') + ">\n";
        ORV_WARNING("%s", text.c_str());
        EXPECT_EQ(log.count(text), 1) << "length " << length;
    }

    log.clear();
    std::string big(3000, 'y');
    ORV_FATAL("head %d %s tail %s\n", 7, big.c_str(), "end");
    EXPECT_EQ(log.count("head 7 " + big + " tail end\n", LOG_FATAL), 1);
}

TEST(Log, SinksAreAddedOnceAndRemoved)
{
    LogCapture log;
    {
        RecordSink sink;
        Log::the().addSink(sink);  // already there: still one delivery
        ORV_WARNING("once\n");
        EXPECT_EQ(sink.entries.size(), 1u);
        Log::the().removeSink(sink);
        ORV_WARNING("gone\n");
        EXPECT_EQ(sink.entries.size(), 1u);
    }
    EXPECT_EQ(log.count("once\n"), 1);
    EXPECT_EQ(log.count("gone\n"), 1);
}

namespace {

// Checks that records arrive one at a time and each one whole.
class WholeRecordSink : public LogSink {
public:
    static constexpr int threads = 8;

    WholeRecordSink() { Log::the().addSink(*this); }
    ~WholeRecordSink() override { Log::the().removeSink(*this); }

    // "T<n>:", a run of the thread's own letter, a newline.
    void write(const LogRecord& r) override
    {
        if (_inside.fetch_add(1) != 0)
            ++overlaps;
        const int  t = r.text.size() > 4 ? r.text[1] - '0' : -1;
        const bool whole = t >= 0 && t < threads &&
                           r.text == "T" + std::to_string(t) + ":" + std::string(r.text.size() - 4, char('a' + t)) + "\n";
        ++(whole ? perThread[t] : broken);
        _inside.fetch_sub(1);
    }

    std::atomic<int> overlaps{0};
    std::atomic<int> broken{0};
    std::atomic<int> perThread[threads] = {};

private:
    std::atomic<int> _inside{0};
};

} // namespace

TEST(Log, ThreadsLoggingAtOnceNeverInterleave)
{
    LogCapture log;
    WholeRecordSink sink;
    constexpr int messages = 200;

    std::vector<std::thread> workers;
    for (int t = 0; t < WholeRecordSink::threads; ++t) {
        workers.emplace_back([t] {
            // Short ones are formatted on the stack, long ones on the heap.
            std::string shortBody(20 + t, static_cast<char>('a' + t));
            std::string longBody(900 + t, static_cast<char>('a' + t));
            for (int i = 0; i < messages; ++i)
                ORV_WARNING("T%d:%s\n", t, (i % 2 ? longBody : shortBody).c_str());
        });
    }
    for (auto& worker : workers)
        worker.join();

    EXPECT_EQ(sink.overlaps.load(), 0);
    EXPECT_EQ(sink.broken.load(), 0);
    for (int t = 0; t < WholeRecordSink::threads; ++t)
        EXPECT_EQ(sink.perThread[t].load(), messages) << "thread " << t;
    EXPECT_EQ(log.size(), static_cast<std::size_t>(WholeRecordSink::threads * messages));
}
