// Node namespaces: DEF names, lookup by name, ID text and prefix, nesting, roots, teardown.
#include "base/MFNode.h"
#include "base/Observer.h"
#include "base/Route.h"
#include "base/SFFloat.h"
#include "base/Subject.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TypeScope.h"

#include <gtest/gtest.h>

using namespace Orvane;
using namespace Orvane::Test;

namespace {

struct NodeNameSpaceTest : ::testing::Test {
    TypeScope scope;
    NodeType& thing = scope.declare("Thing", "Node",
                                    {{"value", ExposedFieldPartType, SFFloatType, NodePartDesc::CtorAutoProcess},
                                     {"children", ExposedFieldPartType, MFNodeType, NodePartDesc::CtorAutoProcess}});
    NodeNameSpace& nodes = scope.nodes();

    SmartPtr<Node> make(const char* name = nullptr) { return scope.make("Thing", name); }
    // A node of Thing in another namespace.
    SmartPtr<Node> makeIn(NodeNameSpace& ns, const char* name = nullptr)
    {
        return SmartPtr<Node>(thing.createNode(&ns, name));
    }
};

TEST_F(NodeNameSpaceTest, DefNamesAndTheirWarnings)
{
    SmartPtr<Node> first = make("Twin");
    LogCapture log;
    SmartPtr<Node> second = make("Twin");
    EXPECT_EQ(log.count("There is already a >Twin< node DEFined in nameSpace test\n", LOG_WARNING), 1) << log.all();
    // The later definition wins; the first keeps its name.
    EXPECT_EQ(nodes.findNode("Twin"), second.get());
    EXPECT_EQ(first->name(), "Twin");
    second = nullptr;
    EXPECT_EQ(nodes.findNode("Twin"), nullptr);
    EXPECT_EQ(nodes.nodeCount(), 1);

    // A new name replaces the node's old entry rather than adding a second one.
    EXPECT_TRUE(first->rename("Renamed"));
    EXPECT_EQ(nodes.findNode("Renamed"), first.get());
    SmartPtr<Node> other = make("Other");
    EXPECT_FALSE(first->rename("Other"));
    EXPECT_EQ(log.count("Can not rename() node to Other, name already give\n", LOG_WARNING), 1);
    EXPECT_EQ(first->name(), "Renamed");
    EXPECT_TRUE(nodes.regNode(*first, thing, "Generated", true));
    EXPECT_EQ(nodes.findNode("Renamed"), nullptr);
    EXPECT_TRUE(first->isAutoNamed());
    EXPECT_FALSE(other->isAutoNamed());

    std::vector<Node*> named;
    EXPECT_EQ(nodes.fillNodeVec(named, true), 2);
    EXPECT_EQ(named, (std::vector<Node*>{first.get(), other.get()}));
}

TEST_F(NodeNameSpaceTest, RegistrationNeedsATypeTheTypeNamespaceCanName)
{
    // Another "Thing" is what the namespace's type scope calls Thing: ours cannot be named there.
    TypeScope foreign("foreign");
    NodeType& alien = foreign.declare("Thing", "Node", {});
    LogCapture log;
    SmartPtr<Node> node(alien.createNode(&nodes, "Alien"));
    ASSERT_TRUE(node);
    EXPECT_EQ(log.count("Cannot regNode; invalid Type\n", LOG_FATAL), 1) << log.all();
    EXPECT_FALSE(node->hasName());
    EXPECT_EQ(nodes.findNode("Alien"), nullptr);

    // Registering in a namespace the node does not live in is refused.
    SmartPtr<NodeNameSpace> elsewhere(new NodeNameSpace("elsewhere", nullptr, &scope.types()));
    SmartPtr<Node> local = make("Local");
    EXPECT_FALSE(elsewhere->regNode(*local, thing, "Stray"));
    EXPECT_EQ(local->name(), "Local");
    node = nullptr;
}

TEST_F(NodeNameSpaceTest, GeneratedNodeNames)
{
    SmartPtr<Node> plain = make();
    SmartPtr<Node> squatter = make(("AN_" + std::to_string(plain->ID())).c_str());
    const std::string& name = nodes.updateNamedNode(*plain);
    EXPECT_EQ(name, "AN_" + std::to_string(plain->ID()) + "_1");
    EXPECT_TRUE(plain->isAutoNamed());
    EXPECT_EQ(nodes.findNode(name), plain.get());
    // Named nodes keep their names; nodes of other namespaces get none here.
    EXPECT_EQ(nodes.updateNamedNode(*squatter), squatter->name());
    SmartPtr<NodeNameSpace> elsewhere(new NodeNameSpace("elsewhere", nullptr, &scope.types()));
    SmartPtr<Node> foreign = makeIn(*elsewhere);
    EXPECT_EQ(nodes.updateNamedNode(*foreign), "");
    EXPECT_FALSE(foreign->hasName());
}

TEST_F(NodeNameSpaceTest, FindNodeByNameIdTextAndTrimmedText)
{
    SmartPtr<Node> named = make("Lamp"), unnamed = make();
    LogCapture log;
    EXPECT_EQ(nodes.findNode(" \tLamp\r\n"), named.get());
    EXPECT_EQ(nodes.findNode("lamp"), nullptr);

    // An unnamed node answers to the ID text it reports, blanks or not.
    const std::string id = unnamed->getIDStr();
    ASSERT_EQ(id, "#" + std::to_string(unnamed->ID()));
    EXPECT_EQ(Node::parseIDStr(id), unnamed->ID());
    EXPECT_EQ(nodes.findNode("  " + id + "\n"), unnamed.get());
    EXPECT_EQ(nodes.findNode(named->getIDStr()), named.get());

    EXPECT_EQ(nodes.findNode("#999999999999"), nullptr);
    EXPECT_EQ(log.count("Unknown node id: >#999999999999<, >999999999999<\n", LOG_WARNING), 1) << log.all();
    EXPECT_EQ(nodes.findNode(" \t\r\n "), nullptr);
    EXPECT_EQ(nodes.findNode(""), nullptr);
    EXPECT_EQ(log.count("Invalid param (empty name) for findNode()\n", LOG_WARNING), 2);
    // "#" alone or with more than digits is an ordinary (unknown) name.
    EXPECT_EQ(nodes.findNode("#"), nullptr);
    EXPECT_EQ(nodes.findNode("#12a"), nullptr);
    EXPECT_EQ(log.size(), 3u) << log.all();
}

TEST_F(NodeNameSpaceTest, FindNodeThroughPrefixesAndUsingNamespaces)
{
    SmartPtr<NodeNameSpace> inner(new NodeNameSpace("inner", &nodes));
    SmartPtr<NodeNameSpace> deeper(new NodeNameSpace("deeper", inner.get()));
    SmartPtr<Node> deep = makeIn(*deeper, "Deep");
    SmartPtr<Node> colons = make("odd::name");
    LogCapture log;

    // A DEF name may hold "::" itself and is then found without the old prefix form.
    EXPECT_EQ(nodes.findNode("odd::name"), colons.get());
    EXPECT_EQ(log.size(), 0u) << log.all();

    EXPECT_EQ(nodes.findNode("Deep"), nullptr);
    EXPECT_EQ(nodes.findNode("inner::deeper::Deep"), deep.get());
    EXPECT_EQ(log.count("Deprecated nameSpace select: inner::deeper::Deep; use IMPORT/EXPORT\n", LOG_WARNING), 1)
        << log.all();
    // From inside, the absolute path works as well.
    EXPECT_EQ(deeper->findNode("test::inner::deeper::Deep"), deep.get());
    EXPECT_EQ(nodes.findNode("nowhere::Deep"), nullptr);
    EXPECT_EQ(nodes.findNode("::Deep"), nullptr);
    EXPECT_EQ(nodes.findNode("inner::"), nullptr);

    // A using namespace is searched after the own names.
    SmartPtr<Node> shadow = make("Deep");
    deeper->addUsingNameSpace(nodes);
    SmartPtr<Node> onlyOuter = make("Outer");
    EXPECT_EQ(deeper->findNode("Outer"), onlyOuter.get());
    EXPECT_EQ(deeper->findNode("Deep"), deep.get());
    deeper->removeAllUsingNameSpace();
    EXPECT_EQ(deeper->findNode("Outer"), nullptr);

    // A used namespace that goes away leaves no dangling entry behind.
    {
        SmartPtr<NodeNameSpace> library(new NodeNameSpace("library", nullptr, &scope.types()));
        nodes.addUsingNameSpace(*library);
        EXPECT_EQ(nodes.usingNameSpaces().size(), 1u);
    }
    EXPECT_TRUE(nodes.usingNameSpaces().empty());
}

TEST_F(NodeNameSpaceTest, AutomaticNamesAndTypeNamespaces)
{
    LogCapture log;
    SmartPtr<NodeNameSpace> a(new NodeNameSpace(nullptr));
    SmartPtr<NodeNameSpace> b(new NodeNameSpace(""));
    EXPECT_EQ(a->name().rfind("AN_NS_", 0), 0u) << a->name();
    EXPECT_NE(a->name(), b->name());
    EXPECT_TRUE(a->isAutoNamed());
    EXPECT_EQ(log.count("Autoname Namespace " + a->name() + "\n"), 1) << log.all();
    EXPECT_EQ(log.count("Autoname Namespace " + b->name() + "\n"), 1);

    // A nested namespace gets a type namespace of its own when first asked, below its parent's.
    EXPECT_EQ(&a->nodeTypeNameSpace(), &theBaseNodeTypeFactory());
    SmartPtr<NodeNameSpace> inner(new NodeNameSpace("inner", &nodes));
    EXPECT_EQ(log.count("AUTOCREATE NodeTypeNameSpace inner as child of test\n"), 0);
    NodeTypeNameSpace& types = inner->nodeTypeNameSpace();
    EXPECT_EQ(log.count("AUTOCREATE NodeTypeNameSpace inner as child of test\n"), 1) << log.all();
    EXPECT_EQ(&inner->nodeTypeNameSpace(), &types);
    EXPECT_EQ(types.parent(), &scope.types());
    EXPECT_EQ(NodeTypeNameSpace::findType(&types, "Thing"), &thing);
    // Nodes made by type name in the inner namespace find the outer types.
    SmartPtr<Node> made(NodeType::createNode(inner.get(), "Thing", "Made", RuntimeCreator));
    ASSERT_TRUE(made);
    EXPECT_EQ(inner->findNode("Made"), made.get());

    // Moving the namespace moves its type namespace along.
    EXPECT_TRUE(inner->setParent(a.get()));
    EXPECT_EQ(types.parent(), &theBaseNodeTypeFactory());
    EXPECT_EQ(NodeTypeNameSpace::findType(&types, "Thing"), nullptr);
    made = nullptr;
}

TEST_F(NodeNameSpaceTest, ParentsChildrenAndTheLoopRefusal)
{
    SmartPtr<NodeNameSpace> inner(new NodeNameSpace("inner", &nodes));
    SmartPtr<NodeNameSpace> leaf(new NodeNameSpace("leaf", inner.get()));
    std::string address;
    EXPECT_TRUE(leaf->fillAbsolutAddress(address));
    EXPECT_EQ(address, "test::inner::leaf");
    EXPECT_EQ(nodes.findNameSpace("inner::leaf"), leaf.get());
    EXPECT_EQ(leaf->findNameSpace("inner"), inner.get());
    EXPECT_EQ(leaf->findNameSpace("test"), &nodes);
    EXPECT_EQ(nodes.findNameSpace("leaf"), nullptr);

    std::vector<NodeNameSpace*> found;
    EXPECT_EQ(nodes.getNameSpaceVec(found), 1);
    EXPECT_EQ(nodes.getNameSpaceVec(found, true), 2);
    EXPECT_EQ(found, (std::vector<NodeNameSpace*>{inner.get(), leaf.get()}));

    LogCapture log;
    EXPECT_FALSE(nodes.setParent(leaf.get()));
    EXPECT_FALSE(inner->setParent(inner.get()));
    EXPECT_EQ(log.count("Cannot loop Namespaces\n", LOG_WARNING), 2) << log.all();
    EXPECT_EQ(nodes.parent(), nullptr);
    EXPECT_EQ(inner->parent(), &nodes);

    // Re-parenting moves the namespace from one child list to the other.
    EXPECT_TRUE(leaf->setParent(&nodes));
    EXPECT_TRUE(inner->children().empty());
    EXPECT_EQ(nodes.children().size(), 2u);
    EXPECT_TRUE(leaf->setParent(nullptr));
    EXPECT_EQ(nodes.children().size(), 1u);
}

TEST_F(NodeNameSpaceTest, RootIsSetOnceAndLeavesWithItsNode)
{
    SmartPtr<Node> root = make("Root");
    SmartPtr<Node> other = make();
    LogCapture log;
    EXPECT_TRUE(nodes.setRoot(*root));
    EXPECT_FALSE(nodes.setRoot(*other));
    EXPECT_EQ(log.count("NodeNameSpace::setRoot call and _root != 0\n", LOG_WARNING), 1) << log.all();
    EXPECT_EQ(nodes.root(), root.get());
    EXPECT_EQ(other->contextRoot(), root.get());
    root = nullptr;
    EXPECT_EQ(nodes.root(), nullptr);
    EXPECT_TRUE(nodes.setRoot(*other));
}

TEST_F(NodeNameSpaceTest, MetadataEntries)
{
    // A second entry of a name replaces the first in its place; names are case-sensitive.
    nodes.setMetaData("title", "A scene");
    nodes.setMetaData("creator", "someone");
    nodes.setMetaData("title", "Another scene");
    ASSERT_EQ(nodes.metaDataVec().size(), 2u);
    EXPECT_EQ(nodes.metaDataVec()[0].content, "Another scene");
    EXPECT_EQ(*nodes.getMetaData("creator"), "someone");
    EXPECT_EQ(nodes.getMetaData("Title"), nullptr);
}

TEST_F(NodeNameSpaceTest, DestructorFreesWhatOnlyTheSceneHolds)
{
    SmartPtr<NodeNameSpace> gone(new NodeNameSpace("gone", nullptr, &scope.types()));
    SmartPtr<NodeNameSpace> child(new NodeNameSpace("child", gone.get()));
    SmartPtr<Node> outside = make("Outside");
    SmartPtr<Node> kept = makeIn(*gone, "Kept");
    std::uint64_t groupID = 0, leafID = 0;
    {
        SmartPtr<Node> group = makeIn(*gone, "Group");
        SmartPtr<Node> leaf = makeIn(*gone);
        groupID = group->ID();
        leafID = leaf->ID();
        ASSERT_TRUE(group->addChild(leaf.get()));
        ASSERT_TRUE(group->addChild(kept.get()));
        ASSERT_TRUE(outside->addChild(group.get()));
        ASSERT_TRUE(Route::create(*group->findField("value"), *kept->findField("value")));
        ASSERT_TRUE(Route::create(*kept->findField("value"), *outside->findField("value")));
        ASSERT_TRUE(gone->exportNode("Kept", "Published"));
    }
    ASSERT_TRUE(kept->isExported());
    EXPECT_EQ(gone->nodeCount(), 3);
    const unsigned routesBefore = Route::routeCount();

    LogCapture log;
    gone = nullptr;
    EXPECT_EQ(log.count("Run NodeNameSpace \"gone\" destructor and _nodeCount == 3\n", LOG_INFO), 1) << log.all();
    EXPECT_EQ(log.count("~NodeNameSpace: Try to remove nodes from parents\n", LOG_INFO), 1);
    EXPECT_EQ(log.count("  gone/Thing/Kept: Cannot remove node: RC 1, PC 0\n", LOG_NOTICE), 1);
    EXPECT_EQ(log.count("Remove Child nameSpace in destructor\n", LOG_INFO), 1);

    // The group and its unnamed child were only held by the scene: gone, with the group's route.
    EXPECT_EQ(Node::findNode(groupID), nullptr);
    EXPECT_EQ(Node::findNode(leafID), nullptr);
    EXPECT_EQ(outside->childCount(), 0u);
    EXPECT_EQ(Route::routeCount(), routesBefore - 1);
    // The held node lives on, detached, nameless, unpublished, with its other route.
    EXPECT_EQ(&kept->nameSpace(), &NodeNameSpace::detached());
    EXPECT_FALSE(kept->hasName());
    EXPECT_FALSE(kept->isExported());
    EXPECT_EQ(kept->findField("value")->outRouteCount(), 1u);
    EXPECT_EQ(child->parent(), nullptr);
    EXPECT_EQ(outside->nameSpace().findNode("Outside"), outside.get());
    kept = nullptr;
}

TEST_F(NodeNameSpaceTest, SceneGoesWithItsContextRoot)
{
    // The usual owner: a context root node holds its own namespace, and the scene under it.
    NodeType& world = scope.declare("World", "Node",
                                    {{"children", ExposedFieldPartType, MFNodeType, NodePartDesc::CtorAutoProcess}},
                                    2, TypeOptions{.contextRoot = true});
    SmartPtr<Node> root(world.createNode(nullptr, "Scene", SystemCreator));
    NodeNameSpace& ns = root->nameSpace();
    Node* child = thing.createNode(&ns, "Child");
    ASSERT_TRUE(root->addChild(child));
    const std::uint64_t childID = child->ID();
    LogCapture log;
    root = nullptr;
    EXPECT_EQ(Node::findNode(childID), nullptr);
    EXPECT_EQ(log.count("Run NodeNameSpace \"world\" destructor and _nodeCount == 0\n", LOG_INFO), 1) << log.all();
}

} // namespace
