// Nodes: names and IDs, field and slot lookup, dynamic fields, children and parents.
#include "base/MFNode.h"
#include "base/MFString.h"
#include "base/VRMLWriteAction.h"
#include "base/Observer.h"
#include "base/SFFloat.h"
#include "base/SFNode.h"
#include "base/Subject.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TypeScope.h"

#include <gtest/gtest.h>

#include <sstream>

using namespace Orvane;
using namespace Orvane::Test;

namespace {

// Shape <- Box; Holder has a generic children list and a shape slot.
struct NodeTest : ::testing::Test {
    TypeScope scope;
    NodeType& shape = scope.declare("Shape", "Node", {{"color", ExposedFieldPartType, SFColorType}});
    NodeType& box = scope.declare("Box", "Shape", {{"size", ExposedFieldPartType, SFVec3fType}}, 3);
    NodeType& holder = scope.declare("Holder", "Node",
                                     {{"children", ExposedFieldPartType, MFNodeType},
                                      {"shape", ExposedFieldPartType, SFNodeType, 0, nullptr, "Shape"},
                                      {"in", EventInPartType, SFFloatType},
                                      {"out", EventOutPartType, SFFloatType},
                                      {"plain", FieldPartType, SFStringType, 0, nullptr, "cdata"}});
    NodeType& thing = scope.declare("Thing", "Node", {{"value", ExposedFieldPartType, SFFloatType}});

    void SetUp() override { scope.initAll(); }
};

} // namespace

// Lookup by name and ID text is in the namespace tests.
TEST_F(NodeTest, IDTextsAddressesAndTheIDMap)
{
    SmartPtr<Node> named = scope.make("Thing", "Named"), unnamed = scope.make("Thing");
    EXPECT_EQ(named->getIDStr(), "Named");
    EXPECT_EQ(Node::parseIDStr("#12x"), 0u);
    EXPECT_EQ(Node::parseIDStr("12"), 0u);
    std::string address;
    EXPECT_TRUE(named->fillAbsolutAddress(address));
    EXPECT_EQ(address, "test::Named");
    EXPECT_FALSE(unnamed->hasAbsolutAddress());

    const std::uint64_t id = unnamed->ID();
    EXPECT_EQ(Node::findNode(id), unnamed.get());
    unnamed = nullptr;
    EXPECT_EQ(Node::findNode(id), nullptr);
}

// Departures leave holes in the ID map that are squeezed out on the way: the survivors are
// still found by ID and listed in ID order.
TEST_F(NodeTest, IDMapAfterManyDepartures)
{
    const std::size_t before = Node::idMapSize();
    std::vector<SmartPtr<Node>> nodes;
    for (int i = 0; i < 300; ++i)
        nodes.push_back(scope.make("Thing"));
    std::vector<Node*> kept;
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        if (i % 7 == 3)
            kept.push_back(nodes[i].get());
        else
            nodes[i] = nullptr;
    }
    EXPECT_EQ(Node::idMapSize(), before + kept.size());
    for (Node* node : kept)
        EXPECT_EQ(Node::findNode(node->ID()), node);
    std::vector<Node*> listed;
    Node::fillNodeVec(listed, &thing, false);
    EXPECT_EQ(listed, kept);
    SmartPtr<Node> fresh = scope.make("Thing");
    EXPECT_EQ(Node::findNode(fresh->ID()), fresh.get());
    nodes.clear();
    fresh = nullptr;
    EXPECT_EQ(Node::idMapSize(), before);
}

TEST_F(NodeTest, FieldsAndSlotsBySearchOrder)
{
    SmartPtr<Node> node = scope.make("Holder", "H");
    Field*         children = node->findField(2u);
    ASSERT_NE(children, nullptr);
    const struct {
        const char*     name;
        FieldSearchOrder order;
        unsigned        id;  // 99: none
    } cases[] = {{"children", SearchFieldName, 2},        {"set_children", SearchFieldName, 99},
                 {"set_children", SearchFieldThenSlots, 2}, {"children_changed", SearchSlotsThenField, 2},
                 {"set_children", SearchInSlot, 2},       {"children", SearchInSlot, 2},
                 {"children_changed", SearchInSlot, 99},  {"children_changed", SearchOutSlot, 2},
                 {"out", SearchOutSlot, 5},               {"in", SearchInSlot, 4},
                 // The field search answers with a field even where the slot search would not take it.
                 {"plain", SearchOutSlot, 6}};
    for (const auto& c : cases)
        EXPECT_EQ(node->findField(c.name, c.order), c.id == 99 ? nullptr : node->findField(c.id)) << c.name;
    EXPECT_EQ(node->findField(NodeTypeRestriction), node->findField(1u)) << "metadata comes first";
    EXPECT_EQ(node->findField(CDataRestriction), node->findField(6u));
    EXPECT_EQ(node->findField(RangeRestriction), nullptr);

    LogCapture log;
    EventInSlot* in = node->findEventInSlot("set_children");  // made on first need
    EXPECT_EQ(in, children->getInSlot());
    EXPECT_EQ(node->findEventInSlot(2u), in);
    EventOutSlot* out = node->findEventOutSlot("children_changed");
    EXPECT_EQ(out, children->getOutSlot());
    EXPECT_EQ(node->findEventOutSlot(5u), node->findEventOutSlot("out"));
    EXPECT_EQ(node->findEventInSlotID("in"), 4);
    EXPECT_EQ(node->findEventOutSlotID("children_changed"), 2);
    EXPECT_EQ(node->findEventOutSlotID("in"), -1);
    EXPECT_EQ(log.size(), 0u) << log.all();
    // A plain field has no slots.
    EXPECT_EQ(node->findEventInSlot("plain"), nullptr);
    EXPECT_EQ(node->findEventOutSlot("missing"), nullptr);
    EXPECT_EQ(log.count("There is no inSlot plain in the node H (type: Holder\n", LOG_WARNING), 1) << log.all();
    EXPECT_EQ(log.count("There is no outSlot missing in the node H (type: Holder\n", LOG_WARNING), 1);
}

// A chain far deeper than the stack could unwind recursively ends when its head goes.
TEST_F(NodeTest, ReleasingADeepChain)
{
    const std::size_t before = Node::idMapSize();
    SmartPtr<Node> head = scope.make("Holder");
    Node* tail = head.get();
    for (int i = 0; i < 200'000; ++i) {
        SmartPtr<Node> next = scope.make("Holder");
        tail->addChild(next.get(), "children");
        tail = next.get();
    }
    EXPECT_EQ(Node::idMapSize(), before + 200'001);
    head = nullptr;
    EXPECT_EQ(Node::idMapSize(), before);
}

TEST_F(NodeTest, DynamicFieldsFollowTheTypeParts)
{
    SmartPtr<Node> node = scope.make("Thing");
    Field*         extra = node->addDynamicField(ExposedFieldPartType, SFFloatType, "extra", 0, "2.5");
    ASSERT_NE(extra, nullptr);
    EXPECT_TRUE(node->hasDynamicField());
    EXPECT_EQ(extra->desc()->ID(), 3u);
    EXPECT_FALSE(extra->isNodeTypePart());
    EXPECT_TRUE(node->findField(2u)->isNodeTypePart());
    EXPECT_EQ(static_cast<SFFloat*>(extra)->value(), 2.5f);
    EXPECT_EQ(node->findField("set_extra"), extra);
    EXPECT_EQ(node->dynamicFieldMask(), PartMask::bit(3));
    EXPECT_FALSE(node->removeDynamicField(2));
    EXPECT_TRUE(node->removeDynamicField(3));
    EXPECT_FALSE(node->hasDynamicField());
    EXPECT_EQ(node->partCount(), 3u);

    // More dynamic fields than the part table in the node's block holds; a clone has them too.
    for (int i = 0; i < 9; ++i)
        node->addDynamicField(ExposedFieldPartType, SFFloatType, ("d" + std::to_string(i)).c_str(), 0,
                              std::to_string(i).c_str());
    ASSERT_EQ(node->partCount(), 12u);
    SmartPtr<Node> copy = node->clone();
    ASSERT_EQ(copy->partCount(), 12u);
    EXPECT_EQ(static_cast<SFFloat*>(copy->findField("d8"))->value(), 8.0f);
    EXPECT_EQ(copy->findField(2u)->dataType(), SFFloatType);
}

TEST_F(NodeTest, FieldChangesDuringTheirOwnProcessingAreDropped)
{
    struct Echo : NodeProc {
        int  calls = 0;
        bool fieldChanged(Node&, Field& field, const double& time, Field*) override
        {
            ++calls;
            static_cast<SFFloat&>(field).setValue(time, 2.0f);  // as a route back to the field would
            return true;
        }
    };
    SmartPtr<Node> node = scope.make("Thing", "Echoing");
    auto*          echo = new Echo;
    node->setProc(echo);
    node->setNodeState(0.0, Live);
    LogCapture log;
    static_cast<SFFloat*>(node->findField(2u))->setValue(1.0, 1.0f);
    EXPECT_EQ(echo->calls, 1);
    EXPECT_EQ(log.count("Field Thing/Echoing.value is already changing; break loop\n", LOG_INFO), 1) << log.all();
    EXPECT_TRUE(node->isChangingMask().empty());
}

TEST_F(NodeTest, AddChildPicksTheReceivingField)
{
    SmartPtr<Node> parent = scope.make("Holder", "P"), aBox = scope.make("Box"), aThing = scope.make("Thing");
    LogCapture     log;
    // A box fits the children list (any node) and, better, the shape slot.
    NodeLink* link = parent->addChild(aBox.get());
    ASSERT_NE(link, nullptr);
    EXPECT_EQ(link->getField(), parent->findField("shape"));
    EXPECT_EQ(log.count("Remap bestMatch Field in addChild(): 2/3\n", LOG_INFO), 1) << log.all();
    // Asked for the first match, it takes the children list.
    EXPECT_EQ(parent->addChild(aBox.get(), nullptr, KeepNameSpace, FirstMatch)->getFieldID(), 2u);
    // A plain thing only fits the children list; by name it goes where it is told.
    EXPECT_EQ(parent->addChild(aThing.get())->getFieldID(), 2u);
    EXPECT_EQ(parent->addChild(aThing.get(), "children")->getFieldID(), 2u);
    EXPECT_EQ(parent->childCount(), 4u);
    EXPECT_EQ(aThing->parentCount(), 2u);
    EXPECT_EQ(parent->findChildLink(aThing.get())->directNode(), aThing.get());

    // A thing has no field for children at all.
    EXPECT_EQ(aThing->addChild(aBox.get()), nullptr);
    EXPECT_EQ(log.count("node type Thing doesn't have _any_ field with the type Box\n", LOG_WARNING), 1);
}

TEST_F(NodeTest, RemovingChildrenAndParents)
{
    SmartPtr<Node> parent = scope.make("Holder", "P"), other = scope.make("Holder", "Q");
    SmartPtr<Node> aBox = scope.make("Box"), aThing = scope.make("Thing");
    parent->addChild(aBox.get());
    parent->addChild(aBox.get(), "children");
    parent->addChild(aThing.get());
    other->addChild(aThing.get());

    std::vector<Node*> below;
    parent->collectAllChildren(below);
    // In field order, each node once: the children list (box, thing), then the shape slot (box again).
    EXPECT_EQ(below, (std::vector<Node*>{aBox.get(), aThing.get()}));

    EXPECT_TRUE(parent->removeChild(aBox.get()));
    EXPECT_EQ(aBox->parentCount(), 0u);
    EXPECT_EQ(parent->childCount(), 1u);
    EXPECT_FALSE(parent->removeChild(aBox.get()));
    // A node that nobody holds yet survives being asked about.
    SmartPtr<Node> fresh(thing.createNode(&scope.nodes()));
    EXPECT_FALSE(parent->removeChild(fresh.get()));
    fresh->removeAllParentLinks(0.0);
    EXPECT_EQ(fresh->refCount(), 1);

    aThing->removeAllParentLinks(0.0);
    EXPECT_EQ(parent->childCount() + other->childCount(), 0u);
    EXPECT_EQ(aThing->refCount(), 1);
    parent->addChild(aThing.get());
    parent->addChild(aBox.get());
    parent->removeAllChildren(0.0);
    EXPECT_EQ(parent->childCount(), 0u);
    EXPECT_EQ(aBox->parentCount(), 0u);
}

TEST_F(NodeTest, ReplaceCloneAndMerge)
{
    SmartPtr<Node> p1 = scope.make("Holder", "P1"), p2 = scope.make("Holder", "P2");
    SmartPtr<Node> oldThing = scope.make("Thing", "Old"), newThing = scope.make("Thing", "New");
    p1->addChild(oldThing.get());
    p2->addChild(oldThing.get());
    EXPECT_TRUE(oldThing->replace(*newThing));
    EXPECT_EQ(oldThing->parentCount(), 0u);
    EXPECT_EQ(newThing->parentCount(), 2u);
    EXPECT_EQ(static_cast<MFNode*>(p1->findField(2u))->childNode(0), newThing.get());

    static_cast<SFFloat*>(newThing->findField(2u))->setValue(4.5f);
    SmartPtr<Node> copy(p1->clone(nullptr, "P1copy"));
    ASSERT_TRUE(copy);
    EXPECT_EQ(copy->name(), "P1copy");
    EXPECT_TRUE(copy->equalFieldValues(*p1));
    EXPECT_EQ(newThing->parentCount(), 3u) << "children are shared, not copied";
    SmartPtr<Node> thingCopy(newThing->clone());
    EXPECT_EQ(static_cast<SFFloat*>(thingCopy->findField(2u))->value(), 4.5f);
    EXPECT_FALSE(thingCopy->equalFieldValues(*p1));

    LogCapture log;
    EXPECT_FALSE(p1->merge(*p2));
    EXPECT_EQ(log.count("Holder/P1: Skip merge; only allowed for contextRoot nodes\n"), 1) << log.all();
}

TEST_F(NodeTest, ChildSubjectsAndDump)
{
    int      added = 0, removed = 0;
    Observer onAdd(Node::childAddedSubject(), "add"), onRemove(Node::childRemovedSubject(), "remove");
    onAdd.addCallback(countCall, &added);
    onRemove.addCallback(countCall, &removed);
    SmartPtr<Node> parent = scope.make("Holder", "P"), child = scope.make("Thing", "C");
    parent->addChild(child.get());
    parent->removeChild(child.get());
    EXPECT_EQ(added, 1);
    EXPECT_EQ(removed, 1);

    parent->addChild(child.get());
    LogCapture log;
    child->dump();
    EXPECT_EQ(log.count("NodeDump: Thing, C, Setup, test\n", LOG_LOG), 1) << log.all();
    EXPECT_EQ(log.count("test/Thing/C: FieldDump: \n", LOG_LOG), 1);
    EXPECT_EQ(log.count("Check NodeLinkList (Parent links): 1\n", LOG_LOG), 1);
}

// logFeature and metadata, which few nodes ever set, are made when first asked for; until then
// the node acts as if it held them at their defaults, and reading or writing it makes nothing.
TEST_F(NodeTest, InheritedFieldsAreMadeOnFirstUse)
{
    SmartPtr<Node> plain = scope.make("Holder", "Plain"), logged = scope.make("Holder", "Logged");
    SmartPtr<Node> fresh = scope.make("Holder"), child = scope.make("Thing", "C");
    plain->addChild(child.get());
    const auto unmade = [](const Node& node) { return !node.builtField(0) && !node.builtField(1); };
    ASSERT_TRUE(unmade(*plain));
    EXPECT_TRUE(plain->madeOnDemand(1) && !plain->madeOnDemand(2));

    VRMLWriteAction    writer;
    std::ostringstream out;
    ASSERT_TRUE(writer.writeStream(*plain, out));
    SmartPtr<Node> plainCopy(plain->clone());
    std::vector<Node*> children;
    plain->collectAllChildren(children, false);
    EXPECT_EQ(children, std::vector<Node*>{child.get()});
    EXPECT_TRUE(unmade(*plain) && unmade(*plainCopy));
    EXPECT_TRUE(plainCopy->equalFieldValues(*plain));

    // Asked for, a field is there at its default, and a node that made it still equals one
    // that did not.
    Field* feature = logged->findField(std::string("logFeature"));
    ASSERT_NE(feature, nullptr);
    EXPECT_EQ(logged->findField(0u), feature);
    EXPECT_TRUE(feature->valueIsDefault());
    EXPECT_TRUE(logged->equalFieldValues(*fresh) && fresh->equalFieldValues(*logged));
    feature->setValueByStr(0.0, "\"child\"");
    EXPECT_TRUE(logged->checkLogFeature(LogChild));
    EXPECT_FALSE(logged->equalFieldValues(*fresh) || fresh->equalFieldValues(*logged));
    SmartPtr<Node> loggedCopy(logged->clone());
    EXPECT_EQ(loggedCopy->findField(0u)->strValue(), "\"child\"");
    EXPECT_NE(logged->findField(1u), nullptr);
    EXPECT_TRUE(unmade(*plain) && unmade(*fresh));
}
