#include "base/MFNode.h"
#include "tests/support/TypeScope.h"

#include <gtest/gtest.h>

using namespace Orvane;
using namespace Orvane::Test;

// Creating and releasing a tree of 10,000 nodes leaves no object behind: not in the object count,
// not in the node ID map.
TEST(NodeLeakTest, ATreeOfTenThousandNodesGoesAwayCompletely)
{
    TypeScope scope;
    NodeType& group = scope.declare("Group", "Node",
                                    {{"children", ExposedFieldPartType, MFNodeType},
                                     {"name", ExposedFieldPartType, SFStringType},
                                     {"weights", ExposedFieldPartType, MFFloatType}});
    scope.declare("Leaf", "Node", {{"value", ExposedFieldPartType, SFVec3fType}});
    NodeType::initTypeTree();
    // Whatever exists once per process (subjects, maps) is made by a first round.
    { SmartPtr<Node> warm = scope.make("Group"); NodeType::createNode(warm.get(), "Leaf", "x", RuntimeCreator); }

    const auto objects = BaseObject::baseObjCount();
    const auto ids = Node::idMapSize();
    {
        SmartPtr<Node>     root = scope.make("Group", "Root");
        std::vector<Node*> level{root.get()};
        // Ten children per group, two in three of them groups again, and one leaf shared by all.
        Node* shared = NodeType::createNode(root.get(), "Leaf", "Shared", RuntimeCreator);
        int   made = 2, groups = 1;
        while (made < 10'000) {
            std::vector<Node*> next;
            for (Node* parent : level) {
                for (int i = 0; i < 10 && made < 10'000; ++i, ++made) {
                    Node* child = NodeType::createNode(parent, i % 3 ? "Group" : "Leaf", nullptr, RuntimeCreator);
                    ASSERT_NE(child, nullptr);
                    if (i % 3) {
                        next.push_back(child);
                        ++groups;
                    }
                }
                parent->addChild(shared);
            }
            level.swap(next);
        }
        EXPECT_EQ(Node::idMapSize(), ids + 10'000);
        EXPECT_EQ(group.objectCount(), static_cast<unsigned>(groups));
        root->setTreeState(0.0, Live);
        EXPECT_GT(shared->parentCount(), 100u);
    }
    EXPECT_EQ(Node::idMapSize(), ids);
    EXPECT_EQ(BaseObject::baseObjCount(), objects);
    EXPECT_EQ(group.objectCount(), 0u);
}
