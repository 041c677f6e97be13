// Node types: inheritance of parts, registration failures, abstract types and their default
// descendants, object counts, status, creation and context roots.
#include "base/Component.h"
#include "base/Context.h"
#include "base/MFNode.h"
#include "base/SFNode.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TypeScope.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <thread>

using namespace Orvane;
using namespace Orvane::Test;

namespace {

// Shape (abstract) <- Box <- Crate; Group takes any node.
struct NodeTypeTest : ::testing::Test {
    TypeScope scope;
    NodeType& shape = scope.declare("Shape", "Node", {{"color", ExposedFieldPartType, SFColorType}}, 2,
                                    {.abstract = true});
    NodeType& box = scope.declare("Box", "Shape", {{"size", ExposedFieldPartType, SFVec3fType}}, 3);
    NodeType& crate = scope.declare("Crate", "Box", {{"label", FieldPartType, SFStringType}}, 4);
    NodeType& group = scope.declare("Group", "Node", {{"children", ExposedFieldPartType, MFNodeType}});
    NodeType& other = scope.declare("Other", "Node", {});

    void SetUp() override { ASSERT_EQ(scope.initAll(), 0); }
};

} // namespace

TEST_F(NodeTypeTest, InheritedPartsComeFirstAndTheTreeIsLinked)
{
    ASSERT_EQ(crate.partCount(), 5u);
    EXPECT_EQ(crate.part(0)->name(), "logFeature");
    EXPECT_EQ(crate.part(1)->name(), "metadata");
    EXPECT_EQ(crate.part(2), shape.part(2));
    EXPECT_EQ(crate.part(3)->name(), "size");
    EXPECT_EQ(crate.part(4)->ownerType(), &crate);
    EXPECT_EQ(box.derivedNodeTypeList().front(), &crate);
    EXPECT_EQ(crate.findInSlotPart("set_size"), crate.part(3));
    EXPECT_EQ(crate.findOutSlotPart("size_changed"), crate.part(3));
    EXPECT_EQ(crate.findInSlotPart("label"), nullptr);
    EXPECT_EQ(NodeType::findType(crate.ID()), &crate);
    std::string address;
    EXPECT_TRUE(crate.fillAbsolutAddress(address));
    EXPECT_EQ(address, "base::test::Crate");

    EXPECT_EQ(crate.isADistance(crate), 0);
    EXPECT_EQ(crate.isADistance(shape), 2);
    EXPECT_EQ(crate.isADistance(Node::classType()), 3);
    EXPECT_EQ(crate.isADistance(group), -1);
    EXPECT_EQ(box.isADistance(crate), -1);
}

TEST_F(NodeTypeTest, BrokenDeclarationsAreCountedAsFailures)
{
    LogCapture log;
    NodeType&  orphan = scope.declare("Orphan", "NoSuchType", {{"x", FieldPartType, SFFloatType}});
    EXPECT_EQ(orphan.initType(), 1);
    EXPECT_EQ(log.count("Can't find NodeType for NoSuchType, parent of Orphan\n", LOG_FATAL), 1) << log.all();
    EXPECT_EQ(orphan.partCount(), 0u);
    // Still registered, and not tried again.
    EXPECT_EQ(NodeType::findType(orphan.ID()), &orphan);
    EXPECT_EQ(orphan.initType(), 0);

    // A repeated inherited name is refused and the inherited part stays.
    NodeType& twice = scope.declare(
        "Twice", "Box", {{"size", FieldPartType, SFFloatType}, {"extra", FieldPartType, SFInt32Type}}, 4);
    EXPECT_EQ(twice.initType(), 1);
    EXPECT_EQ(log.count("There is already a part size in Type Twice\n"), 1) << log.all();
    ASSERT_EQ(twice.partCount(), 5u);
    EXPECT_EQ(twice.findPart("size"), box.part(3));

    NodeType broken(scope.types(), "Broken", "Test", "Node", nullptr, "1.0", "Test", nullptr, "stable", nullptr,
                    "Orvane", false, false, &Node::isNodeType, &Node::createNode, &Node::createProc, nullptr, 2);
    EXPECT_EQ(broken.initType(), 2);
    EXPECT_EQ(log.count("Invalid local desc in NodeType::init()\n", LOG_FATAL), 2) << log.all();
    EXPECT_EQ(broken.partCount(), 2u) << "the inherited ones only";
    NodeType nameless(scope.types(), nullptr, "Test", "Node", nullptr, "1.0", "Test", nullptr, "stable", nullptr,
                      "Orvane", false, false, &Node::isNodeType, &Node::createNode, &Node::createProc, nullptr, 0);
    EXPECT_EQ(log.count("NATIVE NodeType without a name\n", LOG_FATAL), 1) << log.all();
}

TEST_F(NodeTypeTest, AbstractTypesCreateTheirDefaultDescendantOrNothing)
{
    LogCapture log;
    EXPECT_FALSE(scope.make("Shape"));
    EXPECT_EQ(log.count("Could not create Shape node in NodeType::createNode()\n"), 1) << log.all();
    EXPECT_FALSE(box.setDefaultDescendant(&crate));
    EXPECT_EQ(log.count("NodeType::setDefaultDescendant() call on non-abstract type\n"), 1);
    EXPECT_FALSE(shape.setDefaultDescendant(&group));
    EXPECT_EQ(log.count("Invalid setDefaultDescendant(): Group is not a Shape\n"), 1);

    // Declared as the default of Shape: registered by initType.
    NodeType& ball = scope.declare("Ball", "Shape", {}, 3, {.defaultDescendantOf = "Shape"});
    EXPECT_EQ(ball.initType(), 0) << log.all();
    EXPECT_EQ(shape.defaultDescendant(), &ball);
    EXPECT_EQ(ball.isDefaultDescendantOf(), &shape);
    log.clear();
    SmartPtr<Node> node = scope.make("Shape", "Default");
    ASSERT_TRUE(node);
    EXPECT_EQ(&node->type(), &ball);
    EXPECT_EQ(node->creator(), SystemCreator);
    EXPECT_EQ(log.count("Create _defaultDescendant Node of type Ball for Shape\n", LOG_INFO), 1) << log.all();
}

TEST_F(NodeTypeTest, ObjectCountCoversEveryAncestor)
{
    const std::uint32_t nodes0 = Node::classType().objectCount();
    {
        SmartPtr<Node> a = scope.make("Crate"), b = scope.make("Crate"), c = scope.make("Box"), g = scope.make("Group");
        EXPECT_EQ(crate.objectCount(), 2u);
        EXPECT_EQ(box.objectCount(), 3u);
        EXPECT_EQ(shape.objectCount(), 3u);
        EXPECT_EQ(group.objectCount(), 1u);
        EXPECT_EQ(Node::classType().objectCount(), nodes0 + 4);
        b = nullptr;
        EXPECT_EQ(crate.objectCount(), 1u);
        EXPECT_EQ(shape.objectCount(), 2u);
    }
    EXPECT_EQ(shape.objectCount(), 0u);
    EXPECT_EQ(Node::classType().objectCount(), nodes0);

    // Nodes are made and released on several threads at once, each in a namespace of its own.
    std::vector<std::thread> workers;
    for (int t = 0; t < 4; ++t)
        workers.emplace_back([this] {
            SmartPtr<NodeNameSpace>     ns(new NodeNameSpace("worker"));
            std::vector<SmartPtr<Node>> made;
            for (int i = 0; i < 500; ++i)
                made.emplace_back(crate.createNode(ns.get()));
        });
    for (std::thread& w : workers)
        w.join();
    EXPECT_EQ(shape.objectCount(), 0u);
    EXPECT_EQ(Node::classType().objectCount(), nodes0);
}

TEST_F(NodeTypeTest, StatusTextsAreCaseSensitiveAndDeprecatedTypesSaySo)
{
    const struct {
        const char*    text;
        NodeTypeStatus id;
    } cases[] = {{"experimental", ExperimentalStatus}, {"alpha", AlphaStatus},           {"beta", BetaStatus},
                 {"stable", StableStatus},             {"deprecated", DeprecatedStatus}, {"Stable", InvalidStatus},
                 {"", InvalidStatus}};
    for (const auto& c : cases) {
        LogCapture log;
        NodeType&  t = scope.declare("Status", "Node", {}, 2, {.status = c.text});
        t.initType();
        EXPECT_EQ(t.statusID(), c.id) << c.text;
        EXPECT_EQ(log.count("Status: Invalid status: " + std::string(c.text) + "\n", LOG_FATAL),
                  c.id == InvalidStatus ? 1 : 0);
    }
    scope.declare("Old", "Node", {}, 2, {.status = "deprecated", .comment = "use New"}).initType();
    LogCapture     log;
    SmartPtr<Node> node = scope.make("Old", "OldOne");
    EXPECT_TRUE(node);
    EXPECT_EQ(log.count("Old/OldOne Type is DEPRECATED: use New\n", LOG_FATAL), 1) << log.all();
}

TEST_F(NodeTypeTest, RegistrationReportsMissingComponents)
{
    LogCapture     log;
    const unsigned comps = Component::compCount();
    NodeType&      loose = scope.declare("Loose", "Node", {}, 2, {.component = nullptr});
    EXPECT_EQ(log.count("NodeType Loose is not assigned to any compnent\n", LOG_WARNING), 1) << log.all();
    EXPECT_EQ(log.count("Concrete NodeType >Loose< is not assigned to any component\n", LOG_WARNING), 1);
    EXPECT_EQ(log.count("Add Native Node type: Loose\n", LOG_INFO), 1);
    EXPECT_EQ(loose.compObj(), nullptr);
    scope.declare("Fresh", "Node", {}, 2, {.component = "FreshComponent"});
    EXPECT_EQ(Component::compCount(), comps + 1);
    ASSERT_NE(Component::findComponent("FreshComponent"), nullptr);
    EXPECT_EQ(Component::findComponent("FreshComponent")->types().size(), 1u);
}

TEST_F(NodeTypeTest, GroupAndLeafTypes)
{
    NodeType& typed = scope.declare("Typed", "Node", {{"shapes", FieldPartType, MFNodeType, 0, nullptr, "Shape"}});
    NodeType& dangling = scope.declare("Dangling", "Node", {{"x", FieldPartType, SFNodeType, 0, nullptr, "Unknown"}});
    scope.initAll();
    LogCapture log;
    EXPECT_TRUE(group.isAGenericGroupNode());
    EXPECT_FALSE(typed.isAGenericGroupNode());
    // Every node has the metadata field, restricted to MetadataObject: not generic, not a leaf.
    EXPECT_FALSE(other.isAGenericGroupNode());
    EXPECT_FALSE(other.isALeafNode());
    // An unresolvable restriction accepts any node, after saying so.
    EXPECT_TRUE(dangling.isAGenericGroupNode());
    EXPECT_EQ(log.count("Cannot find Unknown for Dangling ref\n", LOG_FATAL), 1) << log.all();
    TestNodeType bare{"Bare", {{"f", FieldPartType, SFFloatType}}};
    EXPECT_TRUE(bare.type().isALeafNode());
}

TEST_F(NodeTypeTest, CreateNodeAttachesToEveryKindOfParent)
{
    SmartPtr<Node> parent = scope.make("Group", "Parent");
    ASSERT_TRUE(parent);
    EXPECT_EQ(parent->state(), NodeState::Setup);
    EXPECT_EQ(parent->creator(), RuntimeCreator);
    Node* byNode = box.createNode(parent.get(), "ByNode");
    ASSERT_TRUE(byNode);
    auto& children = static_cast<MFNode&>(*parent->findField("children"));
    Node* byField = box.createNode(&children, "ByField");
    EXPECT_EQ(children.size(), 2u);
    EXPECT_EQ(children.childNode(0), byNode);
    EXPECT_EQ(children.childNode(1), byField);
    EXPECT_EQ(byNode->refCount(), 1);

    // The metadata field of a box takes only metadata nodes: a box is refused there.
    auto&          metadata = static_cast<SFNode&>(*byNode->findField("metadata"));
    LogCapture     quiet;
    SmartPtr<Node> refused(box.createNode(&metadata, "Refused"));
    EXPECT_TRUE(refused);
    EXPECT_EQ(metadata.node(), nullptr);
}

TEST_F(NodeTypeTest, CreateNodeFailures)
{
    LogCapture log;
    EXPECT_EQ(box.createNode(nullptr, "Nowhere"), nullptr);
    EXPECT_EQ(log.count("Box/%: No valid NodeNameSpace in createNode\n", LOG_FATAL), 1) << log.all();
    EXPECT_EQ(NodeType::createNode(nullptr, "Box", "x", UnknownCreator), nullptr);
    EXPECT_EQ(log.count("Invalid nodespace while creating Node instance\n"), 1);
    EXPECT_EQ(NodeType::createNode(&scope.nodes(), "NoSuchType", "x", UnknownCreator), nullptr);
    EXPECT_EQ(log.count("Could not find/load type NoSuchType to create node\n"), 1);
    // A type from an enclosing scope is found; a sibling scope's is not.
    TypeScope sibling("sibling");
    sibling.declare("OnlyThere", "Node", {});
    EXPECT_EQ(NodeType::createNode(&scope.nodes(), "OnlyThere", nullptr, UnknownCreator), nullptr);
    SmartPtr<Node> base(NodeType::createNode(&scope.nodes(), "Node", nullptr, UnknownCreator));
    EXPECT_TRUE(base);
}

TEST_F(NodeTypeTest, ContextRootTypesMakeANameSpaceOfTheirOwn)
{
    LogCapture log;
    NodeType&  world = scope.declare("TestWorld", "Node", {{"children", ExposedFieldPartType, MFNodeType}}, 2,
                                     {.contextRoot = true});
    EXPECT_EQ(log.count("Register Context Root Type: TestWorld\n", LOG_INFO), 1) << log.all();
    EXPECT_EQ(NodeType::findContextRootType("TestWorld"), &world);
    world.initType();

    SmartPtr<Node> split(world.createNode(nullptr, "scene:top"));
    ASSERT_TRUE(split);
    EXPECT_EQ(split->nameSpace().name(), "scene");
    EXPECT_EQ(split->name(), "top");
    EXPECT_EQ(split->nameSpace().root(), split.get());
    EXPECT_EQ(split->nameSpace().findNode("top"), split.get());
    EXPECT_EQ(log.count("ContextRoot NameSpace: scene, Name: top\n", LOG_INFO), 1);

    SmartPtr<Node> plain(world.createNode(&scope.nodes(), "alone"));
    ASSERT_TRUE(plain);
    EXPECT_EQ(log.count("NameSpace given while create ContextRoot node\n", LOG_WARNING), 1);
    EXPECT_EQ(plain->nameSpace().name(), "testworld");
    // Children of a context root live in its namespace.
    Node* child = box.createNode(plain.get(), "inside");
    ASSERT_TRUE(child);
    EXPECT_EQ(child->contextRoot(), plain.get());
    EXPECT_EQ(plain->nameSpace().findNode("inside"), child);

    // Made for a context, the root is handed to it.
    SmartPtr<Context> context(Context::create());
    Node*             held = world.createNode(context.get(), "held");
    ASSERT_TRUE(held);
    EXPECT_EQ(context->findRoot(world), held);
    EXPECT_EQ(held->context(), context.get());
    EXPECT_EQ(log.count("NameSpace given while create ContextRoot node\n"), 1);
    context->removeRoot(world);

    log.clear();
    scope.declare("TestWorld", "Node", {}, 2, {.contextRoot = true});
    EXPECT_EQ(log.count("Second Context Root Type with equal name: >TestWorld<", LOG_FATAL), 1) << log.all();
}

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

// Bounded and Grouping are abstract types beside the tree; Frame is a Grouping and so a Bounded.
TEST(AdditionalParentTest, KindsFollowAdditionalParentsAliasesAndAlternatives)
{
    TypeScope scope("extra");
    NodeType& bounded = scope.declare("Bounded", "Node", {}, 2, {.abstract = true});
    NodeType& grouping = scope.declare("Grouping", "Node", {}, 2, {.abstract = true});
    NodeType& frame = scope.declare(
        "Frame", "Node",
        {{"kids", ExposedFieldPartType, MFNodeType, 0, nullptr, "Bounded|Missing"}, {"size", ExposedFieldPartType, SFFloatType}});
    NodeType& plain = scope.declare("Plain", "Node", {});
    grouping.addAdditionalParent("Bounded");
    frame.addAdditionalParent("Grouping");
    bounded.addAdditionalParent("Frame");  // would close a cycle
    plain.addAdditionalParent("Nowhere");
    frame.addPartAlias("extent", "size");
    frame.addPartAlias("other", "nothing");

    LogCapture log;
    int failures = 0;
    for (NodeType* type : {&bounded, &grouping, &frame, &plain})
        failures += type->initType();
    EXPECT_EQ(failures, 3);
    EXPECT_TRUE(log.contains("Frame can not be an additional parent of Bounded: it is a kind of it\n", LOG_FATAL));
    EXPECT_TRUE(log.contains("Can't find NodeType for Nowhere, additional parent of Plain\n", LOG_FATAL));
    EXPECT_TRUE(log.contains("Frame: Can not make other an alias of nothing\n", LOG_WARNING));

    EXPECT_TRUE(frame.isKindOf(bounded));
    EXPECT_FALSE(frame.isA(bounded));
    EXPECT_EQ(frame.kindDistance(bounded), 2);
    EXPECT_EQ(frame.kindDistance(Node::classType()), 1);
    EXPECT_FALSE(bounded.isKindOf(frame));
    EXPECT_EQ(plain.kindDistance(bounded), -1);

    EXPECT_EQ(frame.findFieldPart("extent"), frame.findFieldPart("size"));
    EXPECT_EQ(frame.findInSlotPart("set_extent"), frame.findFieldPart("size"));
    EXPECT_EQ(frame.findOutSlotPart("extent_changed"), frame.findFieldPart("size"));

    // The restriction names two alternatives; the unknown one is reported and the other holds.
    SmartPtr<Node> outer = scope.make("Frame"), inner = scope.make("Frame"), stranger = scope.make("Plain");
    auto& kids = static_cast<MFNode&>(*outer->findField("kids"));
    EXPECT_NE(kids.addChild(inner.get()), nullptr);
    EXPECT_TRUE(log.contains("Cannot find Missing for Frame ref\n", LOG_FATAL));
    EXPECT_EQ(kids.addChild(stranger.get()), nullptr);
    EXPECT_TRUE(log.contains("Can't NodeLink::setNode() for node " + stranger->getIDStr() +
                             " of type Plain, because NodeLink needs Bounded|Missing Node\n"));
    EXPECT_NE(outer->addChild(scope.make("Frame").get()), nullptr);
    EXPECT_EQ(kids.size(), 2u);
}

// A parent chain completed after an additional parent can still close a cycle; walks stay finite.
TEST(AdditionalParentTest, ACycleThroughTheParentChainEndsTheWalk)
{
    TypeScope scope("cycle");
    NodeType& inner = scope.declare("Inner", "Outer", {}, 2, {.abstract = true});
    NodeType& outer = scope.declare("Outer", "Node", {}, 2, {.abstract = true});
    NodeType& plain = scope.declare("Plain", "Node", {});
    outer.addAdditionalParent("Inner");
    scope.initAll();
    EXPECT_TRUE(inner.isKindOf(outer));
    EXPECT_FALSE(inner.isKindOf(plain));
    EXPECT_EQ(outer.kindDistance(plain), -1);
}
