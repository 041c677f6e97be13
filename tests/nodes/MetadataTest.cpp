// The abstract metadata type, and a concrete one as the modules outside this library declare it.
#include "base/MetadataObject.h"
#include "base/SFBool.h"
#include "base/SFNode.h"
#include "base/SFString.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TypeScope.h"

#include <gtest/gtest.h>

using namespace Orvane;
using namespace Orvane::Test;

namespace {

class TestMetadata : public MetadataObject {
public:
    TestMetadata(NodeType& type, NodeNameSpace& ns, const char* name) : MetadataObject(type, ns, name) {}
    static Node*     create(NodeType& type, NodeNameSpace& ns, const char* name) { return new TestMetadata(type, ns, name); }
    static NodeProc* createProc(NodeType&, Node& node) { return new MetadataObjectProc(node); }
};

struct MetadataTest : ::testing::Test {
    TypeScope      scope{"meta"};
    NodeType&      type = scope.declare("TestMetadata", "MetadataObject", {}, 5,
                                        {.isType = &MetadataObject::isType, .create = &TestMetadata::create,
                                         .proc = &TestMetadata::createProc});
    SmartPtr<Node> node{type.createNode(&scope.nodes(), "Info")};
    TestMetadata&  meta = dynamic_cast<TestMetadata&>(*node);
};

} // namespace

TEST_F(MetadataTest, TheAbstractTypeAndItsFields)
{
    NodeType& abstract = MetadataObject::classType();
    EXPECT_TRUE(abstract.isAbstract());
    abstract.initType();
    ASSERT_EQ(abstract.partCount(), 5u);
    const char* names[] = {"logFeature", "metadata", "name", "reference", "enabled"};
    for (unsigned i = 0; i < 5; ++i) {
        EXPECT_EQ(abstract.part(i)->name(), names[i]);
        EXPECT_EQ(abstract.part(i)->partType(), ExposedFieldPartType);
        EXPECT_TRUE(abstract.part(i)->autoProcess());
    }
    EXPECT_EQ(abstract.part(1)->nodeType(), &abstract);

    LogCapture log;
    EXPECT_EQ(MetadataObject::create(&scope.nodes(), "Abstract"), nullptr);
    EXPECT_EQ(log.count("Could not create MetadataObject node in NodeType::createNode()\n"), 1) << log.all();
    EXPECT_TRUE(MetadataObject::init());
    EXPECT_EQ(log.count("Init MetadataObject: OK\n", LOG_INFO), 1);
}

TEST_F(MetadataTest, ANewMetadataNodeIsEnabledAndFitsTheMetadataField)
{
    EXPECT_TRUE(meta.enabled().value());
    EXPECT_TRUE(meta.enabled().valueIsDefault());
    EXPECT_TRUE(MetadataObject::isType(node.get()));

    SmartPtr<Node> holder(NodeType::createNode(&scope.nodes(), "Node", "Holder", UnknownCreator));
    auto&          slot = static_cast<SFNode&>(*holder->findField("metadata"));
    EXPECT_TRUE(slot.setNode(node.get()));
    EXPECT_EQ(holder->metadata()->node(), node.get());
    LogCapture log;
    EXPECT_FALSE(slot.setNode(holder.get()));
    EXPECT_EQ(log.count("Can't NodeLink::setNode() for node Holder of type Node, because NodeLink needs "
                        "MetadataObject Node\n"),
              1)
        << log.all();
}

TEST_F(MetadataTest, TheProcessorReportsItsFieldsAndLoopsAreBroken)
{
    node->setNodeState(0.0, Live);
    LogCapture log;
    meta.name().setValue(1.0, std::string("author"));
    meta.reference().setValue(1.0, std::string("ref"));
    meta.enabled().setValue(1.0, false);
    for (const char* part : {"name", "reference", "enabled"})
        EXPECT_EQ(log.count("MetadataObjectProc::fieldChanged(" + std::string(part) + ") not impl.\n", LOG_FATAL), 1)
            << log.all();

    // A change of name that arrives while name is being processed is dropped.
    log.clear();
    node->setIsChanging(PartMask::bit(2));
    meta.name().setValue(2.0, std::string("again"));
    EXPECT_EQ(log.count("Field TestMetadata/Info.name is already changing; break loop\n", LOG_INFO), 1) << log.all();
    EXPECT_EQ(log.count("MetadataObjectProc::fieldChanged(name) not impl.\n"), 0);
    node->clearIsChanging(PartMask::bit(2));
}

TEST_F(MetadataTest, AChildOfMetadataTypeGoesIntoTheMetadataField)
{
    // The metadata field fits it before a list of any nodes, also while it is not made yet.
    NodeType& group = scope.declare("Group", "Node", {{"children", ExposedFieldPartType, MFNodeType}});
    scope.initAll();
    SmartPtr<Node> holder(group.createNode(&scope.nodes(), "G"));
    ASSERT_EQ(holder->builtField(1), nullptr);
    ASSERT_NE(holder->addChild(node.get()), nullptr);
    EXPECT_EQ(holder->metadata()->node(), node.get());
}
