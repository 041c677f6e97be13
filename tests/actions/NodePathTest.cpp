#include "base/NodePath.h"
#include "tests/actions/ActionKit.h"
#include "tests/support/LogCapture.h"

#include <gtest/gtest.h>

using namespace Orvane;
using namespace Orvane::Test;

namespace {

// Root { link P1 { children [ X, S, X ] }, children [ P2 { link S } ] }: S is shared by P1 and
// P2, X is used twice in one list.
struct NodePathTest : ::testing::Test, ActionKit {
    SmartPtr<Node> root = make("Root");
    SmartPtr<Node> p1 = make("P1");
    SmartPtr<Node> p2 = make("P2");
    SmartPtr<Node> s = make("S");
    SmartPtr<Node> x = make("X");

    NodePathTest()
    {
        link(*root).setNode(p1.get());
        children(*root).addChild(p2.get());
        children(*p1).addChild(x.get());
        children(*p1).addChild(s.get());
        children(*p1).addChild(x.get());
        link(*p2).setNode(s.get());
    }

    // The path from the first node down through the others (addNode answers a const path).
    static NodePath through(std::initializer_list<Node*> nodes)
    {
        NodePath path(*nodes.begin());
        for (auto it = nodes.begin() + 1; it != nodes.end(); ++it)
            path.addNode(*it);
        return path;
    }
};

TEST_F(NodePathTest, RootOnlyAndInvalidPaths)
{
    ASSERT_TRUE(ready);
    LogCapture log;
    NodePath none;
    EXPECT_FALSE(none.isValid());
    EXPECT_EQ(none.node(), nullptr);
    EXPECT_EQ(log.count("NodePath - NO ROOT NODE\n", LOG_FATAL), 1);

    NodePath atRoot(root.get());
    EXPECT_TRUE(atRoot.isValid());
    EXPECT_TRUE(atRoot.steps().empty());
    EXPECT_EQ(atRoot.node(), root.get());
    EXPECT_EQ(atRoot.nodeLink(), nullptr);
    EXPECT_FALSE(atRoot.parent().isValid());

    NodePath empty(std::list<NodeLink*>{});
    EXPECT_EQ(log.count("NodePath - LINKLIST EMPTY\n", LOG_WARNING), 1);
    EXPECT_FALSE(empty.isValid());
}

TEST_F(NodePathTest, AddNodeTakesTheFirstPlace)
{
    NodePath path(root.get());
    path.addNode(p1.get());
    path.addNode(x.get());
    EXPECT_EQ(path.steps(), (NodePath::StepList{{ChildrenId, 0}, {LinkId, 0}}));
    EXPECT_EQ(path.node(), x.get());
    path.addNode(root.get());  // not a child of X
    EXPECT_EQ(path.steps().size(), 2u);

    // Built upward, the path follows first parent links and first places.
    EXPECT_EQ(NodePath(x.get()), path);
    EXPECT_EQ(NodePath(&children(*p1).elem(2)).steps().front().childId, 2u);
}

TEST_F(NodePathTest, PathsThroughDifferentParentsDiffer)
{
    NodePath viaP1 = through({root.get(), p1.get(), s.get()});
    NodePath viaP2 = through({root.get(), p2.get(), s.get()});
    EXPECT_EQ(viaP1.node(), s.get());
    EXPECT_EQ(viaP2.node(), s.get());
    EXPECT_FALSE(viaP1 == viaP2);
    EXPECT_EQ(NodePath(s.get()), viaP1);  // P1's link came first
    EXPECT_EQ(NodePath(&link(*p2).link()), viaP2);
    EXPECT_EQ(viaP2.nodeLink(), &link(*p2).link());
    NodePath copy;
    copy = viaP2;
    EXPECT_TRUE(copy == viaP2);
}

TEST_F(NodePathTest, LinksAndParentAgreeWithTheLinkList)
{
    NodePath path = through({root.get(), p2.get(), s.get()});
    std::list<NodeLink*> links;
    path.nodeLinks(links);
    EXPECT_EQ(links, (std::list<NodeLink*>{&link(*p2).link(), &children(*root).elem(0)}));
    EXPECT_EQ(NodePath(links), path);

    NodePath up = path.parent();
    EXPECT_EQ(up, through({root.get(), p2.get()}));
    EXPECT_EQ(up.parent(), NodePath(root.get()));
    EXPECT_EQ(up.parent().node(), root.get());

    // A link that its field does not hold spoils the list.
    NodeLink stray;
    stray.setField(&children(*root));
    stray.setNode(x.get());
    testing::internal::CaptureStderr();
    NodePath broken(std::list<NodeLink*>{&stray});
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Wrong link list\n");
    EXPECT_TRUE(broken.steps().empty());
}

TEST_F(NodePathTest, ChangedSceneFailsInNode)
{
    NodePath path = through({root.get(), p1.get(), s.get()});
    ASSERT_EQ(path.steps().front(), (NodePath::Step{ChildrenId, 1}));
    LogCapture log;
    children(*p1).removeValueByIndex(2);
    EXPECT_EQ(path.node(), s.get());
    children(*p1).removeValueByIndex(1);
    EXPECT_EQ(path.node(), nullptr);
    EXPECT_EQ(log.count("NodePath - MFNODE SIZEMISSMATCH\n", LOG_FATAL), 1) << log.all();
    EXPECT_EQ(path.nodeLink(), nullptr);

    link(*root).setNode(nullptr);
    EXPECT_EQ(path.node(), nullptr);
    EXPECT_EQ(log.count("NodePath - UNABLE TO GET NODE\n", LOG_FATAL), 1);
    // A path through a dynamic field that is gone.
    Field* more = root->addDynamicField(ExposedFieldPartType, MFNodeType, "more");
    static_cast<MFNode*>(more)->addChild(x.get());
    NodePath far = through({root.get(), x.get()});
    ASSERT_EQ(far.steps().front().fieldId, more->desc()->ID());
    root->removeDynamicField(more->desc()->ID());
    EXPECT_EQ(far.node(), nullptr);
    EXPECT_EQ(log.count("NodePath - NO FIELD\n", LOG_FATAL), 1);
}

TEST_F(NodePathTest, Dump)
{
    NodePath path = through({root.get(), p1.get(), s.get()});
    LogCapture log;
    path.dump();
    std::vector<std::string> lines;
    for (const LogCapture::Entry& e : log.entries())
        lines.push_back(e.text);
    EXPECT_EQ(lines, (std::vector<std::string>{"----------------------------\n", "NodePath dump (root=Root):\n",
                                               " fieldId=4, childId=1\n", " fieldId=3, childId=0\n", "node=S\n",
                                               "----------------------------\n"}));
}

} // namespace
