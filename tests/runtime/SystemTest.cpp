// Start-up and shut-down of the system, and one frame of every listed context.
#include "base/Component.h"
#include "base/ImageDownloadCache.h"
#include "base/Log.h"
#include "base/SceneGraphBackend.h"
#include "base/System.h"
#include "tests/runtime/RuntimeKit.h"
#include "tests/support/LogCapture.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

using namespace Orvane;
using namespace Orvane::Test;

namespace {

// Every step of start-up and shut-down that reaches the back end or an observer, in order.
struct Steps : SceneGraphBackend {
    std::vector<std::string> seen;
    bool                     initResult = true;

    bool init(int argc, char**) override
    {
        seen.push_back("init " + std::to_string(argc));
        return initResult;
    }
    void exit() override { seen.push_back("backendExit"); }
    void setChangeListsReadWrite() override { seen.push_back("readWrite"); }
    void clearChangeList() override { seen.push_back("clearChangeList"); }
    void shutdownTextureCache() override { seen.push_back("textureCache"); }

    static void record(const double&, Observer* observer, BaseObject*, BaseObject*, BaseObject*, const void* self)
    {
        static_cast<Steps*>(const_cast<void*>(self))->seen.push_back(observer->name());
    }
};

struct SystemTest : ::testing::Test {
    LogCapture log;
    Steps      steps;
    System&    system = System::the();
    Observer   initObserver{system.initSystemSubject(), "initSystem"};
    Observer   exitObserver{system.exitSystemSubject(), "exitSystem"};
    Observer   shutdownObserver{system.shutdownSystemSubject(), "shutdownSystem"};
    unsigned   oldMask = Log::the().headerMask();

    SystemTest()
    {
        SceneGraphBackend::install(&steps);
        for (Observer* o : {&initObserver, &exitObserver, &shutdownObserver})
            o->addCallback(&Steps::record, &steps);
    }
    ~SystemTest() override
    {
        if (system.isInitialized())
            system.exit();
        system.clearContexts();
        SceneGraphBackend::install(nullptr);
        Log::the().setHeaderMask(oldMask);
    }
};

TEST_F(SystemTest, InitRunsOnceWithItsFlags)
{
    char  name[] = "prog";
    char* argv[] = {name, nullptr};
    steps.initResult = false;
    system.init(1, argv, System::BackendInitParam | System::AltLogHeaderParam | System::ThreadLogHeaderParam);
    EXPECT_EQ(steps.seen, (std::vector<std::string>{"readWrite", "init 1", "clearChangeList", "initSystem"}));
    EXPECT_EQ(log.count("System::init: Failed to initialize OpenSG!\n", LOG_FATAL), 1);
    EXPECT_EQ(Log::the().headerMask(), 0x700Au);
    EXPECT_TRUE(system.checkParam(System::AltLogHeaderParam));
    EXPECT_FALSE(system.checkParam(System::ExitHandlerParam));

    const std::string& info = system.buildInfo();
    EXPECT_EQ(info.rfind(std::string("V") + System::version() + " R" + System::revision() + " build: ", 0), 0u);
    EXPECT_NE(info.find(System::platformName()), std::string::npos);
#if defined(__linux__) && defined(__x86_64__)
    EXPECT_STREQ(System::platformName(), " Linux x86_64");
#endif
    char expected[256];
    std::snprintf(expected, sizeof expected, "Init: %u/%u, %s\n", Component::compCount(), NodeType::typeCount(),
                  info.c_str());
    EXPECT_EQ(log.count(expected, LOG_LOG), 1) << log.all();

    // A second init changes nothing.
    steps.seen.clear();
    system.init(1, argv, 0);
    EXPECT_TRUE(steps.seen.empty());
    EXPECT_TRUE(system.checkParam(System::AltLogHeaderParam));
    EXPECT_EQ(log.count("Run System::init() and System is already initialized\n", LOG_WARNING), 1);
}

TEST_F(SystemTest, LogHeaderMaskFollowsTheFlags)
{
    EXPECT_EQ(System::logHeaderMask(0), 0x400Au);
    EXPECT_EQ(System::logHeaderMask(System::AltLogHeaderParam), 0x600Au);
    EXPECT_EQ(System::logHeaderMask(System::ThreadLogHeaderParam), 0x500Au);
}

TEST_F(SystemTest, DocStatusIsReportedWhenAskedFor)
{
    TestNodeType undocumented{"SystemUndocumented", {}};
    ::setenv("ORVANE_LOG_DOCSTATUS", "short", 1);
    system.init(0, nullptr, 0);
    ::unsetenv("ORVANE_LOG_DOCSTATUS");
    EXPECT_EQ(log.count("Incomplete DocStatus: short\n", LOG_WARNING), 1);
    EXPECT_TRUE(log.containsFragment("SystemUndocumented: stable, 1 texts missing\n"));
}

TEST_F(SystemTest, ExitRunsItsStepsInOrderAndReportsWhatIsLeft)
{
    system.init(0, nullptr, System::BackendExitParam);
    SmartPtr<Context> context(Context::create("left"));
    system.addContext(*context);
    context = nullptr;
    TestNodeType type{"SystemLeftOver", {}};
    SmartPtr<Node> leftOver = type.make();

    const std::string path = ::testing::TempDir() + "system-exit.png";
    std::ofstream(path) << "x";
    ImageDownloadCache::the().request(path);
    steps.seen.clear();

    system.exit();
    EXPECT_EQ(steps.seen,
              (std::vector<std::string>{"exitSystem", "textureCache", "shutdownSystem", "backendExit"}));
    EXPECT_FALSE(system.hasContext());
    EXPECT_EQ(ImageDownloadCache::the().entryCount(), 0u);
    EXPECT_EQ(Component::compCount(), 0u);
    EXPECT_TRUE(log.containsFragment("Orvane::exitSystem() call and node/obj left: "));
    EXPECT_FALSE(system.isInitialized());

    system.exit();
    EXPECT_EQ(log.count("Run System::exit() and System is not initialized\n", LOG_LOG), 1);
    std::remove(path.c_str());
}

struct ContextBagTest : SystemTest {
    SceneType scene{"BagScene"};

    // The roots go before their type does.
    ~ContextBagTest() override { system.clearContexts(); }

    // A listed context whose frames ask for the next one after 1/rate seconds.
    Context& listed(double rate)
    {
        Context* context = Context::create();
        system.addContext(*context);
        SmartPtr<Node> root(scene.makeRoot(*context));
        auto* proc = new ClockProc(*root);
        root->setProc(proc);
        proc->tick(0.0, rate);
        return *context;
    }
};

TEST_F(ContextBagTest, OneFrameTakesTheSmallestResult)
{
    Context& slow = listed(20.0);
    listed(50.0);
    EXPECT_DOUBLE_EQ(System::runContextBag(), 0.02);
    EXPECT_FALSE(system.addContext(slow));
    EXPECT_EQ(log.count("Cannot register context a second time in System\n", LOG_WARNING), 1);

    Context& unpaced = listed(0.0);
    EXPECT_EQ(System::runContextBag(), 0.0);
    EXPECT_EQ(unpaced.state(), Live);
    EXPECT_TRUE(system.removeContext(unpaced));
    EXPECT_DOUBLE_EQ(System::runContextBag(), 0.02);
}

TEST_F(ContextBagTest, DisposedContextsAreReleasedAndNoneLeftEndsTheRun)
{
    Context& a = listed(20.0);
    Context& b = listed(50.0);
    SmartPtr<Context> watch(&b);
    b.exit();
    EXPECT_DOUBLE_EQ(System::runContextBag(), 0.05);
    EXPECT_EQ(log.count("Subref DISPOSED Context\n", LOG_LOG), 1);
    EXPECT_EQ(watch->refCount(), 1);  // the list let go
    EXPECT_EQ(system.contextCount(), 2u);  // its entry stays, empty
    a.exit();
    EXPECT_EQ(System::runContextBag(), -1.0);
    EXPECT_EQ(log.count("Run system without context\n", LOG_WARNING), 1);
    EXPECT_FALSE(system.hasContext());
    EXPECT_EQ(system.eraseContext(), 2u);
}

TEST_F(ContextBagTest, WithoutContextsTheProcessEndsWhenAskedTo)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            system.init(0, nullptr, System::ExitWithoutContext);
            System::runContextBag();
        },
        ::testing::ExitedWithCode(0), "");
}

} // namespace
