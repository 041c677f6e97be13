// Instances: interface values, the body copy, events through IS routes, node links through
// instances, and the guards against prototypes that instantiate themselves.
#include "tests/protos/ProtoKit.h"

#include "base/Route.h"

#include <string>

using namespace Orvane;
using namespace Orvane::Test;

namespace {

struct ProtoInstanceTest : ProtoKit {
    ProtoDeclaration* box = declareBox(*scene);
};

} // namespace

TEST_F(ProtoInstanceTest, AnInstanceStartsWithTheDeclaredValuesAndPassesThemToItsBody)
{
    LogCapture log;
    SmartPtr<Node> a = make(*scene, "Box", nullptr, false);
    ASSERT_TRUE(a);
    EXPECT_TRUE(log.contains("Create ProtoInstance Box\n", LOG_NOTICE));
    EXPECT_EQ(a->state(), Orvane::Setup);
    EXPECT_FLOAT_EQ(sf(*a, "both"), 1.5f);
    EXPECT_EQ(si(*a, "size"), 7);
    Node* v = body(a, "V");
    ASSERT_TRUE(v);
    EXPECT_NE(v, box->body().findNode("V"));
    // initializeOnly and inputOutput values reach the body when the instance is made.
    EXPECT_FLOAT_EQ(sf(*v, "f"), 1.5f);
    EXPECT_EQ(si(*v, "count"), 7);
    EXPECT_EQ(sn(*v, "child"), sn(*a, "extra"));

    // Defaults are the declaration's values, not the field types' ones; a node value is a copy
    // of the declaration's node, which is no longer the same value.
    for (const char* name : {"both", "size"})
        EXPECT_TRUE(a->findField(name)->valueIsDefault()) << name;
    EXPECT_FALSE(a->findField("extra")->valueIsDefault());
    static_cast<SFFloat*>(box->field(2))->setValue(2.5f);
    EXPECT_FALSE(a->findField("both")->valueIsDefault());
    EXPECT_FLOAT_EQ(sf(*make(*scene, "Box"), "both"), 2.5f);

    // The body follows the instance through its lifecycle.
    a->setNodeState(0.0, Live);
    EXPECT_EQ(v->state(), Live);
    a->setNodeState(0.0, Dispose);
    EXPECT_EQ(v->state(), Dispose);
}

TEST_F(ProtoInstanceTest, TwoInstancesShareNoBodyNodesAndNoNodeValues)
{
    SmartPtr<Node> a = make(*scene, "Box");
    SmartPtr<Node> b = make(*scene, "Box");
    std::vector<Node*> nodesA, nodesB;
    EXPECT_EQ(instance(a).bodyNameSpace()->fillNodeVec(nodesA), 3);
    EXPECT_EQ(instance(b).bodyNameSpace()->fillNodeVec(nodesB), 3);
    for (Node* node : nodesA)
        EXPECT_EQ(std::count(nodesB.begin(), nodesB.end(), node), 0);
    Node* extraA = sn(*a, "extra");
    Node* extraB = sn(*b, "extra");
    ASSERT_TRUE(extraA && extraB);
    EXPECT_NE(extraA, extraB);
    EXPECT_NE(extraA, static_cast<SFNode*>(box->field(4))->link().directNode());
    EXPECT_EQ(&extraA->nameSpace(), instance(a).bodyNameSpace());
    EXPECT_EQ(instance(a).rootNodes().size(), 2u);
    EXPECT_EQ(instance(a).firstNode(), body(a, "V"));
}

TEST_F(ProtoInstanceTest, EventsReachOnlyTheBodyOfTheInstanceTheyAreSentTo)
{
    LogCapture quiet;
    SmartPtr<Node> a = make(*scene, "Box", "A");
    SmartPtr<Node> b = make(*scene, "Box", "B");
    SmartPtr<Node> source = make(*scene, "Value", "S");
    SmartPtr<Node> sink = make(*scene, "Value", "T");
    ASSERT_TRUE(scene->createRoute("S", "f", "A", "setIn"));
    ASSERT_TRUE(scene->createRoute("S", "count", "A", "size") == nullptr);  // initializeOnly takes no events
    ASSERT_TRUE(scene->createRoute("A", "changed", "T", "f"));
    ASSERT_TRUE(scene->createRoute("A", "both", "T", "init") == nullptr);
    ASSERT_TRUE(scene->createRoute("A", "both_changed", "T", "in"));

    // inputOnly: into the body.
    setF(*source, "f", 3.0f);
    EXPECT_FLOAT_EQ(sf(*body(a, "V"), "in"), 3.0f);
    EXPECT_FLOAT_EQ(sf(*body(b, "V"), "in"), 0.0f);

    // outputOnly: out of the body, through the instance's output.
    setF(*body(a, "V"), "out", 4.0f);
    EXPECT_FLOAT_EQ(sf(*a, "changed"), 4.0f);
    EXPECT_FLOAT_EQ(sf(*sink, "f"), 4.0f);
    EXPECT_FLOAT_EQ(sf(*b, "changed"), 0.0f);

    // inputOutput: both ways.
    ASSERT_TRUE(Route::create(*source->findField("f"), *a->findField("both")));
    setF(*source, "f", 5.0f);
    EXPECT_FLOAT_EQ(sf(*body(a, "V"), "f"), 5.0f);
    EXPECT_FLOAT_EQ(sf(*sink, "in"), 5.0f);
    setF(*body(a, "V"), "f", 6.0f);
    EXPECT_FLOAT_EQ(sf(*a, "both"), 6.0f);
    EXPECT_FLOAT_EQ(sf(*sink, "in"), 6.0f);
    EXPECT_FLOAT_EQ(sf(*body(b, "V"), "f"), 1.5f);
    EXPECT_FLOAT_EQ(sf(*b, "both"), 1.5f);
}

TEST_F(ProtoInstanceTest, IllegalIsLinksAreRefused)
{
    struct Case {
        const char* access;
        const char* bodyField;
        bool        legal;
    };
    const Case cases[] = {
        {"inputOnly", "in", true},        {"inputOnly", "f", true},         {"inputOnly", "out", false},
        {"inputOnly", "init", false},     {"outputOnly", "out", true},      {"outputOnly", "f", true},
        {"outputOnly", "in", false},      {"initializeOnly", "init", true}, {"initializeOnly", "f", true},
        {"initializeOnly", "in", false},  {"inputOutput", "f", true},       {"inputOutput", "init", false},
        {"inputOutput", "out", false},
    };
    for (const Case& c : cases) {
        LogCapture log;
        ProtoDeclaration* d = ProtoDeclaration::declare(*scene, "Probe");
        d->addField(c.access, "SFFloat", "x");
        d->createBodyNode("Value", "V");
        EXPECT_EQ(d->addIsLink("x", "V", c.bodyField), c.legal) << c.access << " IS " << c.bodyField;
        EXPECT_EQ(log.containsFragment("refused: a "), !c.legal) << log.all();
    }
    LogCapture log;
    box->addField("inputOutput", "SFInt32", "number");
    EXPECT_FALSE(box->addIsLink("number", "V", "f"));
    EXPECT_TRUE(log.contains("IS link number IS V.f refused: field types SFInt32 and SFFloat differ\n", LOG_WARNING));
    EXPECT_FALSE(box->addIsLink("number", "Nobody", "f"));
    EXPECT_TRUE(log.contains("Cannot find Nobody node in ns Box for IS link\n", LOG_WARNING));
    EXPECT_FALSE(box->addIsLink("nothing", "V", "f"));
    EXPECT_TRUE(log.contains("Cannot field proto-field: nothing\n", LOG_WARNING));
    EXPECT_FALSE(box->addIsLink("number", "V", "nothing"));
    EXPECT_TRUE(log.contains("IS link number: no field nothing in node V\n", LOG_WARNING));
}

TEST_F(ProtoInstanceTest, NodeLinksSeeThroughNestedInstances)
{
    LogCapture log;
    ProtoDeclaration* outer = ProtoDeclaration::declare(*scene, "Outer");
    outer->createBodyNode("Box", "Inner");
    ProtoDeclaration* empty = ProtoDeclaration::declare(*scene, "Empty");
    ASSERT_TRUE(empty);
    SmartPtr<Node> holder = make(*scene, "Group");
    auto& children = static_cast<MFNode&>(*holder->findField("children"));
    SmartPtr<Node> o = make(*scene, "Outer");
    SmartPtr<Node> e = make(*scene, "Empty");
    NodeLink* toOuter = children.addChild(o.get());
    NodeLink* toEmpty = children.addChild(e.get());

    Node* inner = instance(o).firstNode();
    ASSERT_TRUE(ProtoInstance::cast(inner));
    EXPECT_EQ(toOuter->directNode(), o.get());
    EXPECT_EQ(toOuter->node(), ProtoInstance::cast(inner)->firstNode());
    EXPECT_EQ(toOuter->node()->type().name(), "Value");
    EXPECT_EQ(log.count("ProtoChildren field is empty, return Proto\n"), 0);
    EXPECT_EQ(toEmpty->node(), e.get());
    EXPECT_EQ(log.count("ProtoChildren field is empty, return Proto\n", LOG_NOTICE), 1);
    EXPECT_TRUE(log.contains("Empty Proto without body\n", LOG_WARNING));
}

TEST_F(ProtoInstanceTest, PrototypesThatMakeThemselvesAreRefused)
{
    LogCapture log;
    EXPECT_EQ(box->createBodyNode("Box"), nullptr);
    EXPECT_TRUE(log.contains("Recursive PROTO refused: Box -> Box\n", LOG_WARNING));

    ProtoDeclaration* a = ProtoDeclaration::declare(*scene, "A");
    ProtoDeclaration* b = ProtoDeclaration::declare(*scene, "B");
    a->createBodyNode("Value");
    ASSERT_TRUE(b->createBodyNode("A"));
    EXPECT_EQ(a->createBodyNode("B"), nullptr);
    EXPECT_TRUE(log.contains("Recursive PROTO refused: A -> B -> A\n", LOG_WARNING)) << log.all();

    // Made behind the declaration's back, the loop is caught when an instance is made.
    SmartPtr<Node> inner = make(a->body(), "B", nullptr, false);
    ASSERT_TRUE(inner && a->addRootNode(*inner));
    log.clear();
    EXPECT_FALSE(make(*scene, "A", nullptr, false));
    EXPECT_TRUE(log.contains("Recursive PROTO refused: A -> B -> A\n", LOG_WARNING)) << log.all();
    // The refusal ends with the instance refused; the next one is made as usual.
    EXPECT_TRUE(make(*scene, "Box"));
}

TEST_F(ProtoInstanceTest, NestingDeeperThanTheLimitIsRefused)
{
    LogCapture log;
    ProtoDeclaration::declare(*scene, "P0")->createBodyNode("Value");
    unsigned firstRefused = 0;
    for (unsigned k = 1; k <= ProtoDeclaration::MaxNestingDepth + 3 && !firstRefused; ++k) {
        const std::string name = "P" + std::to_string(k), inner = "P" + std::to_string(k - 1);
        if (!ProtoDeclaration::declare(*scene, name.c_str())->createBodyNode(inner.c_str()))
            firstRefused = k;
    }
    // P32 is 33 instances deep.
    EXPECT_EQ(firstRefused, ProtoDeclaration::MaxNestingDepth + 1);
    EXPECT_TRUE(log.containsFragment("PROTO nesting deeper than 32 refused: P32 -> P31 -> "));
}
