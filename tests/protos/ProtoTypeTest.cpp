// Proto and alias types: construction, their namespaces, the type walk through prototypes.
#include "tests/protos/ProtoKit.h"

using namespace Orvane;
using namespace Orvane::Test;

namespace {

struct ProtoTypeTest : ProtoKit {
    ProtoDeclaration* box = declareBox(*scene);
    NodeType&         boxType = *box->protoType();
};

} // namespace

TEST_F(ProtoTypeTest, AProtoTypeOwnsItsDeclarationAndItsInterface)
{
    EXPECT_TRUE(boxType.isProto());
    EXPECT_FALSE(boxType.isAbstract());
    EXPECT_EQ(boxType.library(), "PROTO");
    EXPECT_EQ(boxType.protoDeclaration(), box);
    EXPECT_EQ(box->type().name(), "_ProtoDeclaration");
    EXPECT_EQ(&box->nameSpace(), scene.get());
    EXPECT_EQ(box->body().parent(), scene.get());
    EXPECT_EQ(scene->protoTypeNameSpace().firstProto(), &boxType);
    EXPECT_EQ(&boxType.nameSpace(), &scene->nodeTypeNameSpace());
    EXPECT_NE(&boxType.nameSpace(), &scope.types());

    EXPECT_EQ(boxType.initType(), 0);
    EXPECT_EQ(boxType.partCount(), 5u);
    EXPECT_EQ(boxType.protoPartCount(), 5u);
    EXPECT_EQ(boxType.findInSlotPart("set_both"), boxType.part(2));
    EXPECT_EQ(boxType.findOutSlotPart("changed"), boxType.part(1));
    EXPECT_EQ(boxType.part(0)->isLinkMap().at("V"), std::vector<std::uint32_t>{3u});
    EXPECT_EQ(box->isLinks().size(), 5u);

    LogCapture log;
    EXPECT_EQ(ProtoDeclaration::declare(*scene, nullptr), nullptr);
    EXPECT_TRUE(log.contains("PROTO NodeType without a name\n", LOG_WARNING));
    EXPECT_EQ(box->addField("sideways", "SFFloat", "bad"), nullptr);
    EXPECT_EQ(box->addField("inputOnly", "SFWhatever", "bad"), nullptr);
    EXPECT_EQ(box->addField("inputOnly", "SFFloat", "both"), nullptr);
    EXPECT_TRUE(log.contains("PROTO Box: invalid access type sideways for field bad\n", LOG_WARNING));
    EXPECT_TRUE(log.contains("PROTO Box: invalid field type SFWhatever for field bad\n", LOG_WARNING));
    EXPECT_TRUE(log.contains("PROTO Box: field name both is missing or taken\n", LOG_WARNING));

    // Two scenes may declare the same name; the second scene's type is its own.
    SmartPtr<NodeNameSpace> other(new NodeNameSpace("other", &scope.nodes()));
    ProtoDeclaration* second = declareBox(*other);
    EXPECT_NE(second->protoType(), &boxType);
    EXPECT_EQ(NodeTypeNameSpace::findType(&other->nodeTypeNameSpace(), "Box"), second->protoType());
    EXPECT_EQ(NodeTypeNameSpace::findType(&scene->nodeTypeNameSpace(), "Box"), &boxType);
}

TEST_F(ProtoTypeTest, AProtoTypeIsAKindOfItsFirstBodyNode)
{
    LogCapture log;
    EXPECT_TRUE(boxType.isA(value));
    EXPECT_TRUE(boxType.isA(Node::classType()));
    EXPECT_FALSE(boxType.isA(group));
    EXPECT_EQ(boxType.isADistance(boxType), 0);
    EXPECT_EQ(boxType.isADistance(value), 1);
    EXPECT_EQ(boxType.isADistance(Node::classType()), 2);
    EXPECT_EQ(value.isADistance(boxType), -1);

    ProtoDeclaration* outer = ProtoDeclaration::declare(*scene, "Outer");
    outer->createBodyNode("Box");
    NodeType& outerType = *outer->protoType();
    EXPECT_EQ(outerType.isADistance(value), 2);
    log.clear();
    // Through the alias that the body's namespace made for Box.
    EXPECT_EQ(outerType.isADistance(boxType), 1);
    EXPECT_TRUE(log.contains("Box == Box; valid ProtoDeclaration isADistance check\n", LOG_INFO)) << log.all();
    EXPECT_TRUE(outerType.isA(boxType));
    EXPECT_TRUE(log.contains("Box == Box; valid ProtoDeclaration isA check\n", LOG_INFO));

    // Counting follows the walk: an instance counts as a Value.
    const std::uint32_t values = value.objectCount();
    SmartPtr<Node> instance = make(*scene, "Box");
    EXPECT_EQ(boxType.parentNodeType(), &value);
    EXPECT_EQ(value.objectCount(), values + 3);  // the instance, and its body's V and X
}

TEST_F(ProtoTypeTest, UsedFromAnotherTypeNamespaceAPrototypeGoesThroughAnAlias)
{
    SmartPtr<NodeNameSpace> inner(new NodeNameSpace("inner", scene.get()));
    LogCapture log;
    SmartPtr<Node> first = make(*inner, "Box");
    SmartPtr<Node> second = make(*inner, "Box");
    ASSERT_TRUE(first && second);
    NodeType& alias = first->type();
    EXPECT_EQ(&second->type(), &alias);
    EXPECT_EQ(alias.isAliasOf(), &boxType);
    EXPECT_EQ(alias.library(), "ALIAS");
    EXPECT_EQ(alias.protoDeclaration(), box);
    EXPECT_EQ(&alias.nameSpace(), &inner->nodeTypeNameSpace());
    EXPECT_EQ(inner->nodeTypeNameSpace().firstProto(), nullptr);
    EXPECT_EQ(log.count("Valid Alias ProtoDeclaration inner/Box\n", LOG_INFO), 1) << log.all();
    EXPECT_EQ(log.count("Proto Alias Box: Link Free Type\n", LOG_INFO), 1);
    EXPECT_TRUE(alias.isA(boxType));
    EXPECT_TRUE(boxType.isA(alias));
    EXPECT_FLOAT_EQ(sf(*first, "both"), 1.5f);
    EXPECT_TRUE(body(first, "V"));
}

TEST_F(ProtoTypeTest, NamedInstancesInARootlessNamespaceAreReported)
{
    LogCapture log;
    SmartPtr<Node> named = make(*scene, "Box", "Named");
    EXPECT_EQ(log.count("Proto-regNode() on root-less nodeNameSpace\n", LOG_WARNING), 1);
    EXPECT_EQ(scene->findNode("Named"), named.get());
    // Bodies have their first root as root: named nodes there are not reported.
    EXPECT_EQ(instance(named).bodyNameSpace()->root(), body(named, "V"));
}

TEST_F(ProtoTypeTest, ATypeNamespaceStillHoldingALibraryReportsIt)
{
    LogCapture log;
    NodeTypeNameSpace* types = NodeTypeNameSpace::create("held", &scope.types());
    types->setProtoLibrary(&ProtoLibrary::the());
    EXPECT_EQ(types->protoLibrary(), &ProtoLibrary::the());
    delete types;
    EXPECT_TRUE(log.contains("ProtoLibrary != Null in NodeTypeNameSpace destructor\n", LOG_WARNING));
}
