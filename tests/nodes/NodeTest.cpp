#include "base/MFNode.h"
#include "base/Observer.h"
#include "base/SFFloat.h"
#include "base/SFNode.h"
#include "base/SFString.h"
#include "base/Subject.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TypeScope.h"

#include <gtest/gtest.h>

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

    void SetUp() override
    {
        LogCapture quiet;
        for (NodeType* t : {&shape, &box, &holder, &thing})
            t->initType();
    }
};

} // namespace

TEST_F(NodeTest, NamesAndIDTexts)
{
    SmartPtr<Node> named = scope.make("Thing", "Named");
    SmartPtr<Node> unnamed = scope.make("Thing");
    EXPECT_TRUE(named->hasName());
    EXPECT_EQ(named->getIDStr(), "Named");
    EXPECT_FALSE(unnamed->hasName());
    EXPECT_EQ(unnamed->name(), "");
    EXPECT_EQ(unnamed->getIDStr(), "#" + std::to_string(unnamed->ID()));
    EXPECT_EQ(Node::parseIDStr(unnamed->getIDStr()), unnamed->ID());
    EXPECT_EQ(Node::parseIDStr("#12x"), 0u);
    EXPECT_EQ(Node::parseIDStr("12"), 0u);
    EXPECT_FALSE(unnamed->isAutoNamed());

    // The namespace finds unnamed nodes by their ID text.
    EXPECT_EQ(scope.nodes().findNode(unnamed->getIDStr()), unnamed.get());
    EXPECT_EQ(scope.nodes().findNode(" Named\t"), named.get());
    LogCapture log;
    EXPECT_EQ(scope.nodes().findNode("#999999999999"), nullptr);
    EXPECT_EQ(log.count("Unknown node id: >#999999999999<, >999999999999<\n"), 1) << log.all();
    EXPECT_EQ(scope.nodes().findNode(" \t"), nullptr);
    EXPECT_EQ(log.count("Invalid param (empty name) for findNode()\n"), 1);

    std::string address;
    EXPECT_TRUE(named->fillAbsolutAddress(address));
    EXPECT_EQ(address, "test::Named");
    EXPECT_FALSE(unnamed->hasAbsolutAddress());
}

TEST_F(NodeTest, RenameToATakenNameKeepsTheOldName)
{
    SmartPtr<Node> a = scope.make("Thing", "A");
    SmartPtr<Node> b = scope.make("Thing", "B");
    LogCapture log;
    EXPECT_FALSE(b->rename("A"));
    EXPECT_EQ(log.count("Can not rename() node to A, name already give\n", LOG_WARNING), 1) << log.all();
    EXPECT_EQ(b->name(), "B");
    EXPECT_EQ(scope.nodes().findNode("A"), a.get());
    EXPECT_EQ(scope.nodes().findNode("B"), b.get());

    EXPECT_TRUE(b->rename("C"));
    EXPECT_EQ(b->name(), "C");
    EXPECT_EQ(scope.nodes().findNode("C"), b.get());
    EXPECT_EQ(scope.nodes().findNode("B"), nullptr);
    EXPECT_EQ(log.count("Unknown node id"), 0);
}

TEST_F(NodeTest, TheIDMapFollowsTheNodes)
{
    const std::size_t before = Node::idMapSize();
    std::uint64_t id;
    {
        SmartPtr<Node> node = scope.make("Thing");
        id = node->ID();
        EXPECT_EQ(Node::idMapSize(), before + 1);
        EXPECT_EQ(Node::findNode(id), node.get());
        EXPECT_TRUE(Node::findNode(node.get()));
        std::vector<Node*> things;
        EXPECT_EQ(Node::fillNodeVec(things, &thing, false), 1);
        std::vector<Node*> all;
        Node::fillNodeVec(all, &Node::classType(), true);
        EXPECT_GE(all.size(), 1u);
    }
    EXPECT_EQ(Node::idMapSize(), before);
    EXPECT_EQ(Node::findNode(id), nullptr);
}

TEST_F(NodeTest, FindFieldBySearchOrder)
{
    SmartPtr<Node> node = scope.make("Holder");
    Field* children = node->findField(2u);
    ASSERT_NE(children, nullptr);
    EXPECT_EQ(node->findField("children", SearchFieldName), children);
    EXPECT_EQ(node->findField("set_children", SearchFieldName), nullptr);
    EXPECT_EQ(node->findField("set_children", SearchFieldThenSlots), children);
    EXPECT_EQ(node->findField("children_changed", SearchSlotsThenField), children);
    EXPECT_EQ(node->findField("set_children", SearchInSlot), children);
    EXPECT_EQ(node->findField("children", SearchInSlot), children);
    EXPECT_EQ(node->findField("children_changed", SearchInSlot), nullptr);
    EXPECT_EQ(node->findField("children_changed", SearchOutSlot), children);
    EXPECT_EQ(node->findField("out", SearchOutSlot), node->findField(5u));
    EXPECT_EQ(node->findField("in", SearchInSlot), node->findField(4u));
    // The field search answers with a field even where the slot search would not take it.
    EXPECT_EQ(node->findField("plain", SearchOutSlot), node->findField(6u));
    EXPECT_EQ(node->findField(NodeTypeRestriction), node->findField(1u)) << "metadata comes first";
    EXPECT_EQ(node->findField(CDataRestriction), node->findField(6u));
    EXPECT_EQ(node->findField(RangeRestriction), nullptr);
    EXPECT_EQ(node->findField("missing"), nullptr);
}

TEST_F(NodeTest, EventSlotsByNameAndID)
{
    SmartPtr<Node> node = scope.make("Holder", "H");
    Field* children = node->findField(2u);
    LogCapture log;
    EventInSlot* in = node->findEventInSlot("set_children");
    EXPECT_NE(in, nullptr);
    EXPECT_EQ(in, children->getInSlot());
    EXPECT_EQ(node->findEventInSlot(2u), in);
    EventOutSlot* out = node->findEventOutSlot("children_changed");
    EXPECT_NE(out, nullptr);
    EXPECT_EQ(out, children->getOutSlot());
    EXPECT_EQ(node->findEventOutSlot(5u), node->findEventOutSlot("out"));
    EXPECT_EQ(node->findEventInSlotID("in"), 4);
    EXPECT_EQ(node->findEventOutSlotID("children_changed"), 2);
    EXPECT_EQ(node->findEventOutSlotID("in"), -1);
    EXPECT_TRUE(log.all().empty()) << log.all();
    // A plain field has no slots.
    EXPECT_EQ(node->findEventInSlot("plain"), nullptr);
    EXPECT_EQ(node->findEventOutSlot("missing"), nullptr);
    EXPECT_EQ(log.count("There is no inSlot plain in the node H (type: Holder\n", LOG_WARNING), 1) << log.all();
    EXPECT_EQ(log.count("There is no outSlot missing in the node H (type: Holder\n", LOG_WARNING), 1);
}

TEST_F(NodeTest, DynamicFieldsFollowTheTypeParts)
{
    SmartPtr<Node> node = scope.make("Thing");
    EXPECT_FALSE(node->hasDynamicField());
    Field* extra = node->addDynamicField(ExposedFieldPartType, SFFloatType, "extra", 0, "2.5");
    ASSERT_NE(extra, nullptr);
    EXPECT_EQ(extra->desc()->ID(), 3u);
    EXPECT_TRUE(extra->desc()->objExtension());
    EXPECT_FALSE(extra->isNodeTypePart());
    EXPECT_TRUE(node->findField(2u)->isNodeTypePart());
    EXPECT_EQ(static_cast<SFFloat*>(extra)->value(), 2.5f);
    EXPECT_EQ(node->findField("set_extra"), extra);
    EXPECT_EQ(node->dynamicFieldMask(), PartMask::bit(3));
    EXPECT_FALSE(node->removeDynamicField(2));
    EXPECT_TRUE(node->removeDynamicField(3));
    EXPECT_FALSE(node->hasDynamicField());
    EXPECT_EQ(node->partCount(), 3u);
}

TEST_F(NodeTest, FieldChangesDuringTheirOwnProcessingAreDropped)
{
    struct Echo : NodeProc {
        int calls = 0;
        bool fieldChanged(Node&, Field& field, const double& time, Field*) override
        {
            ++calls;
            // A route back to the same field would do this.
            static_cast<SFFloat&>(field).setValue(time, 2.0f);
            return true;
        }
    };
    SmartPtr<Node> node = scope.make("Thing", "Echoing");
    auto* echo = new Echo;
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
    SmartPtr<Node> parent = scope.make("Holder", "P");
    SmartPtr<Node> aBox = scope.make("Box");
    SmartPtr<Node> aThing = scope.make("Thing");
    LogCapture log;
    // A box fits the children list (any node) and, better, the shape slot.
    NodeLink* link = parent->addChild(aBox.get());
    ASSERT_NE(link, nullptr);
    EXPECT_EQ(link->getField(), parent->findField("shape"));
    EXPECT_EQ(link->getFieldID(), 3u);
    EXPECT_EQ(log.count("Remap bestMatch Field in addChild(): 2/3\n", LOG_INFO), 1) << log.all();
    // Asked for the first match, it takes the children list.
    link = parent->addChild(aBox.get(), nullptr, KeepNameSpace, FirstMatch);
    ASSERT_NE(link, nullptr);
    EXPECT_EQ(link->getFieldID(), 2u);
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
    SmartPtr<Node> parent = scope.make("Holder", "P");
    SmartPtr<Node> other = scope.make("Holder", "Q");
    SmartPtr<Node> aBox = scope.make("Box");
    SmartPtr<Node> aThing = scope.make("Thing");
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
    Node* fresh = thing.createNode(&scope.nodes());
    EXPECT_FALSE(parent->removeChild(fresh));
    fresh->removeAllParentLinks(0.0);
    EXPECT_TRUE(Node::findNode(fresh));
    SmartPtr<Node> holdFresh(fresh);

    aThing->removeAllParentLinks(0.0);
    EXPECT_FALSE(aThing->hasParents());
    EXPECT_EQ(parent->childCount(), 0u);
    EXPECT_EQ(other->childCount(), 0u);
    EXPECT_EQ(aThing->refCount(), 1);

    parent->addChild(aThing.get());
    parent->addChild(aBox.get());
    parent->removeAllChildren(0.0);
    EXPECT_EQ(parent->childCount(), 0u);
    EXPECT_EQ(aBox->parentCount(), 0u);
}

TEST_F(NodeTest, ReplaceCloneAndMerge)
{
    SmartPtr<Node> p1 = scope.make("Holder", "P1");
    SmartPtr<Node> p2 = scope.make("Holder", "P2");
    SmartPtr<Node> oldThing = scope.make("Thing", "Old");
    SmartPtr<Node> newThing = scope.make("Thing", "New");
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
    int added = 0, removed = 0;
    auto count = [](const double&, Observer*, BaseObject*, BaseObject*, BaseObject*, const void* user) {
        ++*static_cast<int*>(const_cast<void*>(user));
    };
    Observer onAdd(Node::childAddedSubject(), "add"), onRemove(Node::childRemovedSubject(), "remove");
    onAdd.addCallback(count, &added);
    onRemove.addCallback(count, &removed);
    SmartPtr<Node> parent = scope.make("Holder", "P");
    SmartPtr<Node> child = scope.make("Thing", "C");
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
