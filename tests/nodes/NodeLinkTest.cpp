// The links between parents and children: hooks, subjects, typed slots, lists of links.
#include "base/MFNode.h"
#include "base/MFString.h"
#include "base/SFNode.h"
#include "base/Subject.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TypeScope.h"

#include <gtest/gtest.h>

using namespace Orvane;
using namespace Orvane::Test;

namespace {

struct NodeLinkTest : ::testing::Test {
    std::vector<std::string> trace;
    TypeScope                scope;
    NodeType&                shape = scope.declare("Shape", "Node", {});
    NodeType&                holder = scope.declare("Holder", "Node",
                                                    {{"children", ExposedFieldPartType, MFNodeType},
                                                     {"one", ExposedFieldPartType, SFNodeType},
                                                     {"shape", ExposedFieldPartType, SFNodeType, 0, nullptr, "Shape"}});
    NodeType&                thing = scope.declare("Thing", "Node", {});

    SmartPtr<Node> parent, child;
    int            added = 0, deleted = 0;
    Observer       onNew{"new"}, onDelete{"delete"};

    void SetUp() override
    {
        scope.initAll();
        TypeScope::trace() = &trace;
        parent = scope.make("Holder", "P");
        child = scope.make("Thing", "C");
        trace.clear();
        NodeLink::newLinkSubject().attach(onNew);
        NodeLink::deleteLinkSubject().attach(onDelete);
        onNew.addCallback(countCall, &added);
        onDelete.addCallback(countCall, &deleted);
    }
    void TearDown() override { TypeScope::trace() = nullptr; }

    MFNode&    children() { return static_cast<MFNode&>(*parent->findField(2u)); }
    SFNode&    one() { return static_cast<SFNode&>(*parent->findField(3u)); }
    SFNode&    shapeSlot() { return static_cast<SFNode&>(*parent->findField(4u)); }
    TraceProc& procOf(Node& node) { return static_cast<TraceProc&>(*node.proc()); }
};

using Trace = std::vector<std::string>;

} // namespace

TEST_F(NodeLinkTest, SettingAChildTellsBothSidesAndMarksTheParent)
{
    // Null on an empty link only marks the parent.
    EXPECT_TRUE(one().setNode(nullptr));
    EXPECT_TRUE(trace.empty());
    EXPECT_TRUE(parent->hasFlag(Node::ChildChangedFlag));

    parent->clearChangedMask();
    EXPECT_TRUE(one().setNode(child.get()));
    EXPECT_EQ(one().link().parent(), parent.get());
    EXPECT_EQ(one().link().nodeType(), &thing);
    EXPECT_EQ(one().link().getFieldMask(), PartMask::bit(3));
    EXPECT_EQ(child->getFirstParent(), &one().link());
    EXPECT_EQ(child->refCount(), 2);
    EXPECT_EQ(trace, (Trace{"childAdded:P", "parentAdded:C"}));
    EXPECT_TRUE(parent->hasFlag(Node::ChildChangedFlag));

    // The same child again: nothing happens.
    EXPECT_TRUE(one().setNode(child.get()));
    EXPECT_EQ(trace.size(), 2u);
    EXPECT_EQ(added, 1);

    EXPECT_TRUE(one().setNode(nullptr));
    EXPECT_EQ(trace, (Trace{"childAdded:P", "parentAdded:C", "childRemoved:P", "parentRemoved:C"}));
    EXPECT_EQ(deleted, 1);
    EXPECT_FALSE(child->hasParents());
    EXPECT_EQ(child->refCount(), 1);
}

TEST_F(NodeLinkTest, ANodeInTwoLinksLosesOnlyTheOneCleared)
{
    NodeLink* first = children().addChild(child.get());
    ASSERT_NE(first, nullptr);
    one().setNode(child.get());
    EXPECT_EQ(child->parentCount(), 2u);
    procOf(*child).links.clear();
    trace.clear();

    EXPECT_TRUE(children().removeLink(first));
    EXPECT_EQ(child->parentCount(), 1u);
    EXPECT_EQ(child->getFirstParent(), &one().link());
    EXPECT_EQ(procOf(*child).links.size(), 1u);
    EXPECT_EQ(trace, (Trace{"childRemoved:P", "parentRemoved:C"}));
    EXPECT_EQ(children().size(), 0u);
    EXPECT_EQ(one().node(), child.get());
}

TEST_F(NodeLinkTest, RefusedChildrenLeaveTheLinkEmpty)
{
    SmartPtr<Node> aShape = scope.make("Shape", "S");
    EXPECT_TRUE(shapeSlot().setNode(aShape.get()));
    LogCapture log;
    EXPECT_FALSE(shapeSlot().setNode(child.get()));
    EXPECT_EQ(log.count("Can't NodeLink::setNode() for node C of type Thing, because NodeLink needs Shape Node\n",
                        LOG_WARNING),
              1)
        << log.all();
    // The old child was removed before the check: the link is empty now.
    EXPECT_EQ(shapeSlot().node(), nullptr);
    EXPECT_FALSE(aShape->hasParents());
    EXPECT_FALSE(child->hasParents());
    // A list with a restriction does not keep the refused entry.
    EXPECT_EQ(parent->addChild(child.get(), "shape"), nullptr);

    EXPECT_EQ(children().addChild(nullptr), nullptr);
    EXPECT_EQ(children().insertChild(0, nullptr), nullptr);
    EXPECT_EQ(log.count("Add Child(NULL) to Node(Holder/P), field: children\n", LOG_WARNING), 2) << log.all();
    EXPECT_EQ(children().size(), 0u);
}

TEST_F(NodeLinkTest, ListOperationsKeepTheLinksAttached)
{
    SmartPtr<Node> a = scope.make("Thing", "A"), b = scope.make("Thing", "B");
    children().addChild(a.get());
    children().addChild(b.get());
    children().insertChild(1, child.get());
    EXPECT_EQ(children().strValue(), "A C B");
    for (NodeLink& link : children())
        EXPECT_EQ(link.getField(), &children());
    children().resize(4);
    EXPECT_EQ(children().strValue(), "A C B NULL");
    children().resize(2);
    EXPECT_EQ(children().strValue(), "A C");
    EXPECT_FALSE(b->hasParents());

    // A copy of the list holds the same children through links of its own.
    SmartPtr<Node> other = scope.make("Holder", "Q");
    auto&          copy = static_cast<MFNode&>(*other->findField(2u));
    copy.setValueByField(0.0, children());
    EXPECT_EQ(copy.strValue(), "A C");
    EXPECT_EQ(a->parentCount(), 2u);
    EXPECT_EQ(copy.elem(0).parent(), other.get());

    children().elem(0).swap(children().elem(1));
    EXPECT_EQ(children().strValue(), "C A");
    children().removeValueByIndex(0);
    EXPECT_EQ(children().strValue(), "A");
    children().clear();
    EXPECT_EQ(a->parentCount(), 1u);
}

TEST_F(NodeLinkTest, LogFeaturesLogAddsAndRemovals)
{
    static_cast<MFString*>(parent->findField(0u))->setValueByStr(0.0, "\"child\"");
    LogCapture log;
    one().setNode(child.get());
    one().setNode(nullptr);
    EXPECT_EQ(log.count("Holder/P child Thing/C added (one)\n", LOG_LOG), 1) << log.all();
    EXPECT_EQ(log.count("Holder/P child Thing/C removed (one)\n", LOG_LOG), 1);
    static_cast<MFString*>(parent->findField(0u))->setValueByStr(0.0, "");
    static_cast<MFString*>(child->findField(0u))->setValueByStr(0.0, "\"parent\"");
    log.clear();
    children().addChild(child.get());
    EXPECT_EQ(log.count("Holder/P child Thing/C added (children)\n", LOG_LOG), 1) << log.all();
    children().clear();
}

TEST_F(NodeLinkTest, NodeFieldsHaveNoTextForm)
{
    LogCapture log;
    one().setValueByStr(0.0, "C");
    children().setValueByStr(0.0, "C");
    EXPECT_EQ(log.count("SFNode::setValueByStr( C ) is not impl.\n", LOG_WARNING), 1) << log.all();
    EXPECT_EQ(log.count("In MFNode::setValueByStr\n", LOG_WARNING), 1);
    EXPECT_EQ(one().node(), nullptr);
}
