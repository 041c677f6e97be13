#include "base/CopyAction.h"
#include "base/EventInSlot.h"
#include "base/EventOutSlot.h"
#include "base/Route.h"
#include "tests/actions/ActionKit.h"
#include "tests/support/LogCapture.h"

#include <gtest/gtest.h>

using namespace Orvane;
using namespace Orvane::Test;

namespace {

struct CopyActionTest : ::testing::Test, ActionKit {
    NodeNameSpace&          src = scope.nodes();
    SmartPtr<NodeNameSpace> dst{new NodeNameSpace("copies", nullptr, &scope.types())};

    static float get(Node& node) { return value(node).value(); }
    static void  set(Node& node, float v) { value(node).setValue(1.0, v, Field::FieldCaller); }
};

TEST_F(CopyActionTest, CopiesTypesNamesValuesAndKeepsSharing)
{
    ASSERT_TRUE(ready);
    // Root { children [ DEF A Item { value 3 }, Item { link USE A, children [ Special ] } ] }
    SmartPtr<Node> root = make("Root");
    SmartPtr<Node> a = make("A");
    SmartPtr<Node> b = make();
    set(*a, 3.0f);
    children(*root).addChild(a.get());
    children(*root).addChild(b.get());
    link(*b).setNode(a.get());
    children(*b).addChild(make(nullptr, "Special").get());
    b->addDynamicField(ExposedFieldPartType, SFFloatType, "extra")->setValueByStr(0.0, "7");

    CopyAction action(2.0, src, *dst);
    SmartPtr<Node> copy(action.copy(*root));
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(action.result(), copy.get());
    EXPECT_EQ(&copy->nameSpace(), dst.get());
    EXPECT_EQ(dst->findNode("Root"), copy.get());
    EXPECT_EQ(dst->nodeCount(), 4);
    EXPECT_EQ(action.treeDepth(), 0u);

    Node* a2 = dst->findNode("A");
    ASSERT_NE(a2, nullptr);
    EXPECT_NE(a2, a.get());
    EXPECT_FLOAT_EQ(get(*a2), 3.0f);
    ASSERT_EQ(children(*copy).size(), 2u);
    EXPECT_EQ(children(*copy).childNode(0), a2);
    Node* b2 = children(*copy).childNode(1);
    EXPECT_FALSE(b2->hasName());
    // One copy with two parents, like its original.
    EXPECT_EQ(link(*b2).node(), a2);
    EXPECT_EQ(a2->parentCount(), 2u);
    EXPECT_EQ(a->parentCount(), 2u);
    EXPECT_EQ(b2->findField("extra")->strValue(), "7");
    EXPECT_EQ(&children(*b2).childNode(0)->type(), &special);

    // With a skip type the Special node is left out; the skip type is read by the walk.
    SmartPtr<NodeNameSpace> other(new NodeNameSpace("other", nullptr, &scope.types()));
    CopyAction skipping(2.0, src, *other);
    skipping.addSkipType(special);
    skipping.setSkipExtField(true);
    SmartPtr<Node> partial(skipping.copy(*root));
    Node* b3 = children(*partial).childNode(1);
    EXPECT_EQ(children(*b3).size(), 0u);
    EXPECT_EQ(b3->findField("extra"), nullptr);
    EXPECT_EQ(skipping.copy(*children(*b).childNode(0)), nullptr);
}

TEST_F(CopyActionTest, UseNodesOffCopiesEachUseAndAcyclePassesOnce)
{
    // A is used twice; A and C close a cycle through their links.
    SmartPtr<Node> root = make("Root");
    SmartPtr<Node> a = make("A");
    SmartPtr<Node> c = make("C");
    children(*root).addChild(a.get());
    children(*root).addChild(a.get());
    link(*a).setNode(c.get());
    link(*c).setNode(a.get());

    struct Case {
        bool useNodes;
        int  copies;
    } cases[] = {{true, 3}, {false, 5}};
    for (const Case& each : cases) {
        SmartPtr<NodeNameSpace> into(new NodeNameSpace("into", nullptr, &scope.types()));
        CopyAction action(0.0, src, *into);
        action.setUseNodes(each.useNodes);
        SmartPtr<Node> copy(action.copy(*root));
        EXPECT_EQ(into->nodeCount(), each.copies) << each.useNodes;
        Node* first = children(*copy).childNode(0);
        Node* second = children(*copy).childNode(1);
        EXPECT_EQ(first == second, each.useNodes);
        // The cycle comes back to the copy it started from, each time.
        for (Node* use : {first, second})
            EXPECT_EQ(link(*link(*use).node()).node(), use);
        EXPECT_EQ(into->findNode("A"), first);
        // The cycles keep their nodes: cut them so that the namespace can let them go.
        link(*first).setNode(nullptr);
        link(*second).setNode(nullptr);
    }
    link(*a).setNode(nullptr);
}

TEST_F(CopyActionTest, RoutesAreMadeBetweenTheCopies)
{
    SmartPtr<Node> root = make("Root");
    SmartPtr<Node> a = make("A");
    SmartPtr<Node> b = make("B");
    SmartPtr<Node> outside = make("Outside");  // not copied, and no such name in the copies
    SmartPtr<Node> sender = make("Sender");    // not copied, but the copies know a Sender
    children(*root).addChild(a.get());
    children(*root).addChild(b.get());
    ASSERT_NE(src.createRoute("A", "value", "B", "value"), nullptr);
    ASSERT_NE(src.createRoute("A", "value", "Outside", "value"), nullptr);
    ASSERT_NE(src.createRoute("Sender", "value", "A", "value"), nullptr);
    SmartPtr<Node> sender2 = item.createNode(dst.get(), "Sender");
    // Only live nodes send along ordinary routes.
    for (Node* n : {root.get(), outside.get(), sender.get(), sender2.get()})
        n->setTreeState(0.0, Live);

    CopyAction action(0.0, src, *dst);
    LogCapture log;
    SmartPtr<Node> copy(action.copy(*root));
    EXPECT_EQ(copy->state(), Orvane::Setup);
    copy->setTreeState(0.0, Live);
    EXPECT_EQ(action.routes().size(), 3u);
    Node* a2 = dst->findNode("A");
    Node* b2 = dst->findNode("B");
    EXPECT_EQ(a2->findField(ValueId)->outRouteCount(), 1u);
    EXPECT_EQ(a2->findField(ValueId)->inRouteCount(), 1u);
    EXPECT_EQ(outside->findField(ValueId)->inRouteCount(), 1u);
    EXPECT_EQ(log.count("No valid NodePart desc in CopyAction::finalize()\n"), 0) << log.all();

    // Events run between the copies, and between the originals, never across.
    set(*sender2, 5.0f);
    EXPECT_FLOAT_EQ(get(*a2), 5.0f);
    EXPECT_FLOAT_EQ(get(*b2), 5.0f);
    EXPECT_FLOAT_EQ(get(*b), 0.0f);
    set(*a, 2.0f);
    EXPECT_FLOAT_EQ(get(*b), 2.0f);
    EXPECT_FLOAT_EQ(get(*outside), 2.0f);
    EXPECT_FLOAT_EQ(get(*b2), 5.0f);

    // A second finalize makes every route again, which the route refuses as a duplicate.
    const unsigned routes = Route::routeCount();
    action.finalize();
    EXPECT_EQ(log.count("Will not create a Route a second time:\n", LOG_FATAL), 2);
    EXPECT_EQ(Route::routeCount(), routes);
    action.reset();
    EXPECT_EQ(action.result(), nullptr);
    EXPECT_TRUE(action.routes().empty());
    action.finalize();
    EXPECT_EQ(log.count("Will not create a Route a second time:\n", LOG_FATAL), 2);
}

TEST_F(CopyActionTest, FinalizeWarnsOfAFieldWithoutDescriptor)
{
    SmartPtr<Node> a = make("A");
    SmartPtr<Node> a2 = item.createNode(dst.get(), "A");
    SFFloat loose(*a);  // a field of no descriptor
    Route* route = Route::create(loose, value(*a), Route::DEFAULT, true);
    ASSERT_NE(route, nullptr);
    CopyAction action(0.0, src, *dst);
    action.addRoute(*route);
    action.addRoute(*route);
    LogCapture log;
    action.finalize();
    EXPECT_EQ(log.count("No valid NodePart desc in CopyAction::finalize()\n", LOG_WARNING), 1) << log.all();
    EXPECT_EQ(a2->findField(ValueId)->inRouteCount(), 0u);
}

TEST_F(CopyActionTest, DeepChainIsCopiedWithoutRecursion)
{
    // Deep enough that a recursive copy would need a large stack.
    SmartPtr<Node> head = make("Head");
    Node* tail = head.get();
    for (int i = 0; i < 20000; ++i) {
        SmartPtr<Node> next = make();
        link(*tail).setNode(next.get());
        tail = next.get();
    }
    CopyAction action(0.0, src, *dst);
    SmartPtr<Node> copy(action.copy(*head));
    int depth = 0;
    for (Node* n = copy.get(); n; n = link(*n).node())
        ++depth;
    EXPECT_EQ(depth, 20001);
}

} // namespace
