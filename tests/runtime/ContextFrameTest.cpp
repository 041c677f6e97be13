// Contexts frame by frame: the command queue, loading through observers, roots, listeners and
// the command line.
#include "base/Context.h"
#include "base/ContextSetup.h"
#include "base/SFFloat.h"
#include "base/SFInt32.h"
#include "base/System.h"
#include "tests/runtime/RuntimeKit.h"
#include "tests/support/LogCapture.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace Orvane;
using namespace Orvane::Test;

namespace {

SceneType& sceneA()
{
    static SceneType type("FrameSceneA");
    return type;
}

SceneType& sceneB()
{
    static SceneType type("FrameSceneB");
    return type;
}

struct RecordingListener : Context::BrowserListener {
    void browserAction(Action action) override { actions.push_back(action); }
    std::vector<int> actions;
};

struct ContextFrameTest : ::testing::Test {
    LogCapture        log;
    SmartPtr<Context> context{Context::create("main")};

    // A context holding one root of `scene`.
    static SmartPtr<Context> sceneWith(SceneType& scene, Node** root = nullptr)
    {
        SmartPtr<Context> other(Context::create());
        Node* made = scene.makeRoot(*other);
        if (root)
            *root = made;
        return other;
    }
};

TEST_F(ContextFrameTest, DisposedContextReturnsMinusOneAndRunsNoCommand)
{
    context->exit();
    SmartPtr<Context> other = sceneWith(sceneA());
    context->load(*other, Context::ReplaceLoad);
    EXPECT_EQ(context->runFrame(), -1.0);
    EXPECT_EQ(log.count("Context State is DISPOSED in runFrame\n", LOG_FATAL), 1);
    EXPECT_EQ(context->commandQueue().size(), 1u);
    EXPECT_EQ(context->rootCount(), 0u);
    EXPECT_EQ(context->state(), Dispose);
}

TEST_F(ContextFrameTest, FrameGoesLiveTellsObserversAndReturnsTheTimeToTheNextFrame)
{
    SmartPtr<Node> root(sceneA().makeRoot(*context));
    auto* proc = new ClockProc(*root);
    root->setProc(proc);

    struct Seen { double time = -1; BaseObject* context = nullptr; } seen;
    Observer observer(context->runFrameSubject());
    observer.addCallback([](const double& t, Observer*, BaseObject* a, BaseObject*, BaseObject*, const void* s) {
        auto* out = static_cast<Seen*>(const_cast<void*>(s));
        out->time = t;
        out->context = a;
    }, &seen);

    EXPECT_EQ(context->runFrame(), 0.0);  // no target rate yet
    EXPECT_EQ(context->state(), Live);

    ASSERT_TRUE(proc->tick(12.5, 50.0));
    EXPECT_DOUBLE_EQ(context->runFrame(), 0.02);
    EXPECT_EQ(seen.time, 12.5);
    EXPECT_EQ(seen.context, context.get());
    EXPECT_EQ(context->frameRate(), 60.0);
    EXPECT_EQ(context->desiredFrameRate(), 60.0);
    EXPECT_FLOAT_EQ(context->navSpeed(), 2.5f);
    EXPECT_DOUBLE_EQ(context->frameTime(), 1.0 / 60.0);

    context->removeRoot(sceneA().type());
    EXPECT_FALSE(proc->tick(1.0, 1.0));  // the root left its context
}

TEST_F(ContextFrameTest, QueuedLoadsRunAtTheNextFrameInOrder)
{
    RecordingListener listener;
    context->addBrowserListener(&listener);
    Node* first = nullptr;
    Node* second = nullptr;
    SmartPtr<Context> a = sceneWith(sceneA(), &first);
    SmartPtr<Context> b = sceneWith(sceneA(), &second);
    EXPECT_TRUE(context->load(*a, Context::ReplaceLoad));
    EXPECT_TRUE(context->load(*b, Context::MergeLoad));
    EXPECT_EQ(context->commandQueue()[0].type, Context::ReplaceCommand);
    EXPECT_EQ(context->commandQueue()[1].type, Context::MergeCommand);
    EXPECT_EQ(context->rootCount(), 0u);  // nothing before the frame

    context->runFrame();
    // The first load's root came in, and the second merged into it rather than replacing it.
    EXPECT_EQ(context->findRoot(sceneA().type()), first);
    EXPECT_EQ(first->state(), Live);
    EXPECT_EQ(a->rootCount(), 0u);
    EXPECT_EQ(b->rootCount(), 0u);
    EXPECT_TRUE(context->commandQueue().empty());
    EXPECT_EQ(listener.actions, (std::vector<int>{1, 0, 1, 0}));
    EXPECT_EQ(log.count("Merge context root FrameSceneA, glue type: None\n", LOG_INFO), 2);
    // The context held itself from outside while it dispatched, and let go.
    EXPECT_EQ(context->externRefCount(), 0);
    context->removeBrowserListener(&listener);
}

TEST_F(ContextFrameTest, ReplaceRemovesRootsOfTheNewTypesOnly)
{
    Node* oldA = sceneA().makeRoot(*context);
    Node* oldB = sceneB().makeRoot(*context);
    SmartPtr<Node> keepOldA(oldA);
    context->setSourceUrl("old.wrl");

    // A scene with only a setup root removes nothing.
    SmartPtr<Context> setupOnly(Context::create());
    setupOnly->addRoot(*ContextSetup::create());
    context->load(*setupOnly, Context::ReplaceLoad);
    context->runFrame();
    EXPECT_EQ(context->findRoot(sceneA().type()), oldA);
    EXPECT_EQ(context->findRoot(sceneB().type()), oldB);
    EXPECT_TRUE(context->sourceUrl().empty());

    Node* newA = nullptr;
    SmartPtr<Context> replacement = sceneWith(sceneA(), &newA);
    replacement->setSourceUrl("new.wrl");
    context->load(*replacement, Context::ReplaceLoad);
    context->runFrame();
    EXPECT_EQ(context->findRoot(sceneA().type()), newA);
    EXPECT_EQ(context->findRoot(sceneB().type()), oldB);
    EXPECT_EQ(context->sourceUrl(), std::vector<std::string>{"new.wrl"});
    EXPECT_EQ(oldA->context(), nullptr);
}

TEST_F(ContextFrameTest, InvalidAndSkippedCommandsLeaveTheOthersRunning)
{
    SmartPtr<Context> a = sceneWith(sceneA());
    SmartPtr<Context> b = sceneWith(sceneB());
    context->addCommand({7, {a}});
    context->addCommand({Context::SkipCommand, {b}});
    context->load(*b, Context::MergeLoad);
    context->runFrame();
    EXPECT_EQ(log.count("Invalid Context::Command type: 7\n", LOG_FATAL), 1);
    EXPECT_EQ(context->findRoot(sceneA().type()), nullptr);
    EXPECT_NE(context->findRoot(sceneB().type()), nullptr);
}

TEST_F(ContextFrameTest, MergeMovesChildrenIntoTheRootOfTheSameType)
{
    static TestNodeType leaf{"FrameLeaf", {}};  // outlives the fixture's context
    Node* mine = sceneA().makeRoot(*context);
    Node* theirs = nullptr;
    SmartPtr<Context> other = sceneWith(sceneA(), &theirs);
    SceneType::children(*mine).addChild(leaf.make().get());
    Node* moved = leaf.type().createNode(theirs, "Moved");  // lives in the other scene's namespace

    EXPECT_TRUE(context->mergeRoot(*other, &sceneB().type()));  // glued by a type it lacks: nothing moves
    EXPECT_EQ(other->rootCount(), 1u);
    EXPECT_TRUE(context->mergeRoot(*other, nullptr));
    EXPECT_EQ(context->findRoot(sceneA().type()), mine);
    other = nullptr;  // and with it the other scene's namespace
    ASSERT_EQ(SceneType::children(*mine).size(), 2u);
    EXPECT_EQ(SceneType::children(*mine).childNode(1), moved);
    EXPECT_EQ(&moved->nameSpace(), &mine->nameSpace());
    EXPECT_EQ(mine->nameSpace().findNode("Moved"), moved);
    EXPECT_FALSE(context->mergeRoot(*context, nullptr));
}

TEST_F(ContextFrameTest, LoadingGoesThroughTheLoadContextObservers)
{
    EXPECT_FALSE(context->load("scene.wrl", Context::ReplaceLoad));
    EXPECT_EQ(log.count("No _loadContextSubject Observer, cannot load scene.wrl\n", LOG_FATAL), 1);
    EXPECT_EQ(log.count("Could not loadURL scene.wrl\n", LOG_FATAL), 1);

    std::string seenData;
    SceneLoader loader([&](const std::string& url, const std::string& data) -> Context* {
        seenData = data;
        if (url == "missing.wrl")
            return nullptr;
        Context* scene = Context::create("loaded");
        sceneA().makeRoot(*scene);
        return scene;
    });
    EXPECT_FALSE(context->load("#VRML", "missing.wrl", Context::MergeLoad));
    EXPECT_EQ(seenData, "#VRML");
    EXPECT_EQ(log.count("Could not load Context: >missing.wrl<\n"), 1);
    EXPECT_EQ(log.count("Could not loadData missing.wrl\n", LOG_FATAL), 1);

    EXPECT_TRUE(context->load("scene.wrl", Context::ReplaceLoad, "named"));
    ASSERT_EQ(context->commandQueue().size(), 1u);
    Context& loaded = *context->commandQueue()[0].contexts[0];
    EXPECT_EQ(loaded.name(), "named");
    EXPECT_EQ(loaded.sourceUrl(), std::vector<std::string>{"scene.wrl"});
    EXPECT_EQ(log.count("Try to load Context by Observer: >scene.wrl<\n", LOG_INFO), 2);
    context->runFrame();
    EXPECT_EQ(context->sourceUrl(), std::vector<std::string>{"scene.wrl"});

    // Reload queues the source again.
    EXPECT_TRUE(context->reload());
    EXPECT_EQ(log.count("Reload context", LOG_INFO), 1);
    EXPECT_EQ(log.count("Clear Image/Proto cache\n", LOG_INFO), 1);
    EXPECT_EQ(context->commandQueue().size(), 1u);
    EXPECT_EQ(loader.requests, 3);
    SmartPtr<Context> empty(Context::create());
    EXPECT_FALSE(empty->reload());
    EXPECT_EQ(log.count("Cannot reload Context; empty source\n"), 1);
}

TEST_F(ContextFrameTest, AutoExitDisposesWithTheLastExternalReferenceOnlyWhenSwitchedOn)
{
    context->addExternRef();
    context->subExternRef();
    EXPECT_NE(context->state(), Dispose);  // the system's auto-exit bit is off

    System& system = System::the();
    system.init(0, nullptr, System::ContextAutoExitParam);
    context->addExternRef();
    context->addExternRef();
    context->load(*sceneWith(sceneA()), Context::MergeLoad);
    context->subExternRef();
    EXPECT_NE(context->state(), Dispose);
    context->subExternRef();
    EXPECT_EQ(context->state(), Dispose);
    EXPECT_TRUE(context->commandQueue().empty());
    EXPECT_EQ(log.count("Auto exit Context on extern RefCount\n", LOG_LOG), 1);
    system.exit();
}

TEST_F(ContextFrameTest, ListenersServicesAndLogMessages)
{
    struct Description : Context::DescriptionListener {
        void descriptionChanged(Context&, const std::string& text) override { seen = text; }
        std::string seen;
    } description;
    context->addDescriptionListener(&description);
    context->setDescription("a scene");
    EXPECT_EQ(description.seen, "a scene");
    context->removeDescriptionListener(&description);

    SmartPtr<Context> service(Context::create());
    EXPECT_TRUE(context->addService("clock", service.get()));
    EXPECT_FALSE(context->addService("clock", service.get()));
    EXPECT_EQ(context->findService("clock"), service.get());
    EXPECT_TRUE(context->removeService("clock"));
    EXPECT_EQ(context->findService("clock"), nullptr);

    struct Message { std::string text; int level = -1; int sourceChanges = 0; } got;
    Observer messages(context->logMessageSubject());
    messages.addCallback([](const double&, Observer*, BaseObject*, BaseObject* b, BaseObject*, const void* s) {
        auto* out = static_cast<Message*>(const_cast<void*>(s));
        auto* message = static_cast<Context::LogMessage*>(b);
        out->text = message->text;
        out->level = message->level;
    }, &got);
    context->sendLogMessage(1.0, "hello", LOG_WARNING);
    EXPECT_EQ(got.text, "hello");
    EXPECT_EQ(got.level, LOG_WARNING);

    Observer sources(context->sourceUrlChangedSubject());
    sources.addCallback([](const double&, Observer*, BaseObject*, BaseObject*, BaseObject*, const void* s) {
        ++static_cast<Message*>(const_cast<void*>(s))->sourceChanges;
    }, &got);
    context->setSourceUrl("a.wrl");
    context->addSourceUrl("b.wrl");
    EXPECT_EQ(got.sourceChanges, 2);
    EXPECT_EQ(context->sourceUrl(), (std::vector<std::string>{"a.wrl", "b.wrl"}));

    sceneA().makeRoot(*context);
    context->dump();
    EXPECT_EQ(log.count("--- Context Dump ---\n", LOG_LOG), 1);
    EXPECT_TRUE(log.containsFragment("RootNode: FrameSceneA"));
}

TEST_F(ContextFrameTest, SetupNodeIsMadeOnceOrGiven)
{
    SmartPtr<ContextSetup> setup(ContextSetup::create());
    SmartPtr<Context> given(Context::create("given", *setup));
    EXPECT_EQ(given->contextSetup(), setup.get());
    EXPECT_FALSE(given->setContextSetup(*ContextSetup::create()));
    EXPECT_EQ(log.count("Have valid context setup; do not create a second one\n", LOG_INFO), 1);
    EXPECT_EQ(log.count("Autocreate ContextSetup on access\n"), 0);
}

// --- the command line ---

// Registered once for the process, as every parameter is.
unsigned levelParam()
{
    static unsigned id = Context::createParamID("cliLevel", "how much", "Test", 3);
    return id;
}

unsigned scaleParam()
{
    static unsigned id = Context::createParamID("cliScale", "how large", "Test", 1.0f);
    return id;
}

struct CommandLineTest : ContextFrameTest {
    unsigned level = levelParam();
    unsigned scale = scaleParam();
    SmartPtr<ContextSetup> setup{ContextSetup::create()};
    std::vector<Context*>  loaded;

    bool run(std::vector<const char*> args, bool report = true)
    {
        std::vector<char*> argv;
        for (const char* a : args)
            argv.push_back(const_cast<char*>(a));
        return Context::createContextVec(static_cast<int>(argv.size()), argv.data(), *setup, loaded, report);
    }
    int levelValue() { return static_cast<SFInt32*>(setup->paramField(level))->value(); }

    ~CommandLineTest() override
    {
        for (Context* c : loaded)
            c->subRef();
    }
};

TEST_F(CommandLineTest, ParametersTakeBothFormsAndUrlsLoad)
{
    EXPECT_TRUE(run({"prog"}));  // nothing to do
    EXPECT_TRUE(run({"prog", "--cliLevel=5"}));
    EXPECT_EQ(levelValue(), 5);
    EXPECT_TRUE(run({"prog", "-cliLevel", "6", "---cliScale=2.5"}));
    EXPECT_EQ(levelValue(), 6);
    EXPECT_FLOAT_EQ(static_cast<SFFloat*>(setup->paramField(scale))->value(), 2.5f);
    EXPECT_EQ(log.count("Valid parameter set: cliLevel/6\n", LOG_INFO), 1);

    SceneLoader loader([](const std::string& url, const std::string&) -> Context* {
        return url == "bad.wrl" ? nullptr : Context::create(url);
    });
    EXPECT_FALSE(run({"prog", "a.wrl", "bad.wrl", "b.wrl"}));
    ASSERT_EQ(loaded.size(), 2u);
    EXPECT_EQ(loaded[1]->name(), "b.wrl");
    EXPECT_EQ(loaded[0]->refCount(), 1);
    EXPECT_EQ(log.count("Could not load URL: bad.wrl\n", LOG_FATAL), 1);
    EXPECT_FALSE(run({"prog", "bad.wrl"}, false));
    EXPECT_EQ(log.count("Could not load URL: bad.wrl\n", LOG_FATAL), 1);
}

TEST_F(CommandLineTest, UnknownNamesAndBadValuesPrintTheUsage)
{
    struct Case { std::vector<const char*> args; const char* message; };
    const Case cases[] = {
        {{"prog", "--noSuchThing=1"}, "Invalid param/value: >noSuchThing/1<\n"},
        {{"prog", "-cliLevel", "many"}, "Invalid param/value: >cliLevel/many<\n"},
        {{"prog", "--cliScale=wide"}, "Invalid param/value: >cliScale/wide<\n"},
        {{"prog", "-cliLevel"}, "Invalid param/value: >cliLevel/<\n"},
        {{"prog", "--"}, "Invalid param/value: >/<\n"},
    };
    for (const Case& c : cases) {
        log.clear();
        EXPECT_FALSE(run(c.args)) << c.message;
        EXPECT_EQ(log.count(c.message, LOG_FATAL), 1) << log.all();
        EXPECT_EQ(log.count("prog usage: \n", LOG_LOG), 1);
        EXPECT_EQ(log.count("  --cliLevel SFInt32 (3)\n", LOG_LOG), 1);
        EXPECT_EQ(log.count("    how much\n", LOG_LOG), 1);
        // One line pair per registered parameter.
        unsigned listed = 0;
        for (const LogCapture::Entry& e : log.entries())
            listed += e.text.rfind("  --", 0) == 0 ? 1u : 0u;
        EXPECT_EQ(listed, Context::paramCount());
    }
    EXPECT_EQ(levelValue(), 3);
}

} // namespace
