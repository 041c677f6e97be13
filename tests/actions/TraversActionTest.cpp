#include "base/CopyAction.h"
#include "base/GenericAction.h"
#include "tests/actions/ActionKit.h"
#include "tests/support/LogCapture.h"

#include <gtest/gtest.h>

using namespace Orvane;
using namespace Orvane::Test;

namespace {

struct TraversActionTest : ::testing::Test, ActionKit {};

TEST_F(TraversActionTest, SkipRules)
{
    ASSERT_TRUE(ready);
    SmartPtr<Node> plain = make("Plain");
    SmartPtr<Node> derived = make("Derived", "Special");
    GenericAction action(1.5);
    EXPECT_FALSE(action.isSkipNodeType(*plain));
    EXPECT_FALSE(action.isSkipNode(*derived));

    // A skip type skips its own nodes and those of every type derived from it.
    action.addSkipType(special);
    EXPECT_FALSE(action.isSkipNodeType(*plain));
    EXPECT_TRUE(action.isSkipNodeType(*derived));
    action.addSkipType(item);
    EXPECT_TRUE(action.isSkipNodeType(*plain));
    EXPECT_EQ(action.skipTypeCount(), 2u);

    // Creator bits: bit n for creator n.
    GenericAction byCreator;
    byCreator.addSkipCreator(TraversAction::creatorBit(LoaderCreator));
    EXPECT_FALSE(byCreator.isSkipNodeType(*plain));
    byCreator.addSkipCreator(TraversAction::creatorBit(RuntimeCreator));
    EXPECT_TRUE(byCreator.isSkipNodeType(*plain));
    EXPECT_EQ(byCreator.skipCreatorMask(), 0x14u);

    // The entered nodes are the path: skipped as a tree while entered.
    GenericAction walk;
    walk.enter(*plain);
    walk.enter(*derived);
    EXPECT_EQ(walk.treeDepth(), 2u);
    EXPECT_TRUE(walk.isSkipNodeTree(*plain));
    EXPECT_TRUE(walk.isSkipNode(*plain));
    walk.leave(*plain);
    EXPECT_FALSE(walk.isSkipNode(*plain));
    EXPECT_EQ(walk.treeDepth(), 1u);
}

TEST_F(TraversActionTest, ResetKeepsOnlySkipPrivateFieldAndTheEnteredNodes)
{
    SmartPtr<Node> node = make();
    GenericAction action(1.5);
    EXPECT_EQ(action.paramMask(), 0x2u);
    action.setSkipExtField(true);
    action.setSkipPrivateField(false);
    action.addSkipType(item);
    action.addSkipCreator(0xA);
    action.enter(*node);
    action.push(node.get());

    LogCapture log;
    action.dump();
    EXPECT_EQ(log.count("ParamMask: 10000000000000000000000000000000TimeStamp: 1.5skipCreateMask: 10skipTypeVec count: 1\n",
                        LOG_LOG),
              1)
        << log.all();

    action.reset();
    EXPECT_EQ(action.paramMask(), 0x2u);
    EXPECT_TRUE(action.skipPrivateField());
    EXPECT_FALSE(action.skipExtField());
    EXPECT_EQ(action.skipCreatorMask(), 0u);
    EXPECT_EQ(action.skipTypeCount(), 0u);
    EXPECT_FALSE(action.isSkipNodeType(*node));
    EXPECT_EQ(action.treeDepth(), 1u);
    EXPECT_EQ(action.top(), nullptr);

    // A copy action adds UseNodes and bit 0x10 to the same defaults.
    CopyAction copy(0.0, scope.nodes(), scope.nodes());
    EXPECT_EQ(copy.paramMask(), 0x16u);
    copy.setUseNodes(false);
    copy.setCopyProcState(false);
    copy.reset();
    EXPECT_EQ(copy.paramMask(), 0x16u);
}

TEST_F(TraversActionTest, GenericActionCollectsTheChildrenOfTheTopNode)
{
    SmartPtr<Node> root = make("Root");
    SmartPtr<Node> a = make("A");
    SmartPtr<Node> b = make();
    children(*root).addChild(a.get());
    link(*root).setNode(b.get());
    children(*a).addChild(make().get());  // a grandchild is not collected

    GenericAction action;
    std::vector<Node*> found{root.get()};
    LogCapture log;
    EXPECT_EQ(action.top(), nullptr);
    action.pre(found);
    EXPECT_EQ(log.count("Run GenericAction on empty node stack\n", LOG_FATAL), 1);
    EXPECT_EQ(found.size(), 1u);
    action.pop();  // nothing to pop

    action.push(root.get());
    found.clear();
    action.pre(found);
    EXPECT_EQ(log.count("Run GenericAction on Item/Root (stack depth 1)\n", LOG_NOTICE), 1) << log.all();
    EXPECT_EQ(found, (std::vector<Node*>{b.get(), a.get()}));
    action.pop();
    EXPECT_EQ(action.stackDepth(), 0u);
}

} // namespace
