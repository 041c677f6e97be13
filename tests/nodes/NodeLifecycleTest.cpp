// The node state machine: hooks in order and in their states, refused transitions, logs.
#include "base/MFString.h"
#include "base/Subject.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TypeScope.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace Orvane;
using namespace Orvane::Test;

namespace {

struct NodeLifecycleTest : ::testing::Test {
    std::vector<std::string> trace;
    TypeScope                scope;
    NodeType&                thing = scope.declare("Thing", "Node", {{"value", ExposedFieldPartType, SFFloatType}});

    NodeLifecycleTest() { TypeScope::trace() = &trace; }
    ~NodeLifecycleTest() override { TypeScope::trace() = nullptr; }

    // A node moved to `state` along the allowed path, with the trace cleared.
    SmartPtr<Node> nodeIn(NodeState state)
    {
        SmartPtr<Node> node = scope.make("Thing");
        if (state == Realize || state == Live || state == Dispose)
            node->setNodeState(0.0, Realize);
        if (state == Live || state == Dispose)
            node->setNodeState(0.0, state);
        trace.clear();
        return node;
    }
};

using Trace = std::vector<std::string>;

} // namespace

TEST_F(NodeLifecycleTest, EveryAllowedTransitionCallsItsHooksInOrderAndInTheirStates)
{
    SmartPtr<Node> fresh = scope.make("Thing");
    EXPECT_EQ(trace, Trace{"setup@Setup"});
    EXPECT_EQ(fresh->state(), NodeState::Setup);

    const struct {
        NodeState from, to;
        Trace     hooks;
    } cases[] = {
        {NodeState::Setup, Realize, {"initialize@Realize"}},
        {NodeState::Setup, Live, {"initialize@Realize", "attach@Live"}},
        {Realize, Live, {"attach@Live"}},
        {Live, Realize, {"detach@Realize"}},
        {Realize, NodeState::Setup, {"shutdown@Setup"}},
        {Live, NodeState::Setup, {"detach@Realize", "shutdown@Setup"}},
        {NodeState::Setup, Dispose, {"dispose@Dispose"}},
        {Realize, Dispose, {"shutdown@Setup", "dispose@Dispose"}},
        {Live, Dispose, {"detach@Realize", "shutdown@Setup", "dispose@Dispose"}},
    };
    int      notified = 0;
    Observer watcher(Node::stateChangedSubject(), "states");
    watcher.addCallback(countCall, &notified);
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(Node::stateName(c.from)) + " to " + Node::stateName(c.to));
        SmartPtr<Node> node = nodeIn(c.from);
        notified = 0;
        EXPECT_TRUE(node->setNodeState(1.0, c.to));
        EXPECT_EQ(trace, c.hooks);
        EXPECT_EQ(node->state(), c.to);
        EXPECT_EQ(notified, 1);
        trace.clear();
        // Setting the same state again is a no-op.
        EXPECT_TRUE(node->setNodeState(1.0, c.to));
        EXPECT_TRUE(trace.empty());
    }

    // The last release disposes.
    SmartPtr<Node> live = nodeIn(Live);
    live = nullptr;
    EXPECT_EQ(trace, (Trace{"detach@Realize", "shutdown@Setup", "dispose@Dispose"}));
}

TEST_F(NodeLifecycleTest, RefusedTransitionsKeepTheState)
{
    const struct {
        NodeState from, to;
    } cases[] = {{Dispose, Live},     {Dispose, NodeState::Setup}, {Creation, Live}, {Creation, Realize},
                 {Creation, Dispose}, {NodeState::Setup, Creation}, {Live, Creation}};
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(Node::stateName(c.from)) + " to " + Node::stateName(c.to));
        SmartPtr<Node> node = nodeIn(c.from == Creation ? NodeState::Setup : c.from);
        if (c.from == Creation)
            node->setStateUnchecked(Creation);
        LogCapture log;
        EXPECT_FALSE(node->setNodeState(1.0, c.to));
        EXPECT_EQ(node->state(), c.from);
        EXPECT_TRUE(trace.empty());
        EXPECT_EQ(log.count("Invalid node test/Thing/" + node->getIDStr() + " state transition: " +
                                Node::stateName(c.from) + " to " + Node::stateName(c.to) + "\n",
                            LOG_WARNING),
                  1)
            << log.all();
        node->setStateUnchecked(NodeState::Setup);
    }

    // A transition while a field is changing goes ahead, but is reported.
    SmartPtr<Node> busy = scope.make("Thing", "Busy");
    busy->setIsChanging(PartMask::bit(2));
    LogCapture log;
    EXPECT_TRUE(busy->setNodeState(0.0, Realize));
    EXPECT_EQ(log.count("Invalid node test/Thing/Busy state transition: Setup to Realize (ChangingMask is 4)\n",
                        LOG_FATAL),
              1)
        << log.all();
    busy->clearIsChanging(PartMask::bit(2));
}

TEST_F(NodeLifecycleTest, TheStateLogFeatureLogsValidTransitions)
{
    SmartPtr<Node> node = scope.make("Thing", "Logged");
    ASSERT_NE(node->logFeature(), nullptr);
    int      changed = 0;
    Observer watcher(Node::logFeatureChangedSubject(), "features");
    watcher.addCallback(countCall, &changed);
    node->logFeature()->setValueByStr(0.0, "\"state\" \"child\"");
    EXPECT_TRUE(node->checkLogFeature(LogState));
    EXPECT_TRUE(node->checkLogFeature(LogChild));
    EXPECT_FALSE(node->checkLogFeature(LogParent));
    EXPECT_EQ(changed, 1);

    LogCapture log;
    node->setNodeState(0.0, Live);
    EXPECT_EQ(log.count("Valid node test/Thing/Logged state transition: Setup to Live\n", LOG_LOG), 1) << log.all();

    node->logFeature()->setValueByStr(0.0, "\"everything\"");
    EXPECT_TRUE(node->checkLogFeature(LogParent));
    EXPECT_TRUE(node->checkLogFeature(LogGuiEdit));
    node->logFeature()->setValueByStr(0.0, "");
    EXPECT_EQ(node->debugFlags(), 0u);
    EXPECT_EQ(changed, 3);
}

TEST_F(NodeLifecycleTest, TreeStateReachesSharedChildrenOnce)
{
    scope.declare("Group", "Node", {{"children", ExposedFieldPartType, MFNodeType}});
    scope.initAll();
    SmartPtr<Node> root = scope.make("Group", "Root");
    Node*          a = NodeType::createNode(root.get(), "Group", "A", RuntimeCreator);
    Node*          shared = NodeType::createNode(a, "Thing", "Shared", RuntimeCreator);
    root->addChild(shared);
    trace.clear();
    EXPECT_TRUE(root->setTreeState(0.0, Live));
    EXPECT_EQ(shared->state(), Live);
    EXPECT_EQ(a->state(), Live);
    // Three nodes, the shared one reached twice but moved once.
    EXPECT_EQ(std::count(trace.begin(), trace.end(), "attach@Live"), 3);
    EXPECT_EQ(trace.size(), 6u);
    EXPECT_TRUE(root->realize(0.0));
    EXPECT_EQ(shared->state(), Realize);
}
