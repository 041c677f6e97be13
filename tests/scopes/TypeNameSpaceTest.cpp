// Type namespaces: hiding, scoped and numeric addresses, case, registration and references.
#include "base/Node.h"
#include "base/NodeNameSpace.h"
#include "base/NodePartDesc.h"
#include "base/NodeType.h"
#include "base/NodeTypeNameSpace.h"
#include "base/Observer.h"
#include "base/Subject.h"
#include "tests/support/LogCapture.h"

#include <gtest/gtest.h>

#include <memory>

using namespace Orvane;
using namespace Orvane::Test;

namespace {

// Scopes a (below base) with b below it, and c beside a; types are declared into them.
struct TypeNameSpaceTest : ::testing::Test {
    std::unique_ptr<NodeTypeNameSpace>     a{NodeTypeNameSpace::create("a", &theBaseNodeTypeFactory())};
    std::unique_ptr<NodeTypeNameSpace>     b{NodeTypeNameSpace::create("b", a.get())};
    std::unique_ptr<NodeTypeNameSpace>     c{NodeTypeNameSpace::create("c", &theBaseNodeTypeFactory())};
    std::vector<std::unique_ptr<NodeType>> types;

    ~TypeNameSpaceTest() override
    {
        while (!types.empty())
            types.pop_back();
    }

    NodeType& declare(NodeTypeNameSpace& ns, const char* name)
    {
        types.push_back(std::make_unique<NodeType>(ns, name, "Test", "Node", nullptr, "1.0", "Test", nullptr,
                                                   "stable", nullptr, "Orvane", false, false, &Node::isNodeType,
                                                   &Node::createNode, &Node::createProc, nullptr, 0));
        return *types.back();
    }
};

} // namespace

TEST_F(TypeNameSpaceTest, InnerTypesHideOuterOnesUntilTheyGo)
{
    NodeType& outer = declare(*a, "Foo");
    EXPECT_EQ(NodeTypeNameSpace::findType(b.get(), "Foo"), &outer);
    NodeType& inner = declare(*b, "Foo");
    EXPECT_EQ(NodeTypeNameSpace::findType(b.get(), "Foo"), &inner);
    EXPECT_EQ(NodeTypeNameSpace::findType(a.get(), "Foo"), &outer);
    EXPECT_EQ(b->findLocalType("Foo"), &inner);
    types.pop_back();
    EXPECT_EQ(NodeTypeNameSpace::findType(b.get(), "Foo"), &outer);
    // Native types are reached from every scope.
    EXPECT_EQ(NodeTypeNameSpace::findType(b.get(), "Node"), &Node::classType());
    EXPECT_EQ(NodeTypeNameSpace::findType(c.get(), "Foo"), nullptr);
}

TEST_F(TypeNameSpaceTest, ScopedAndNumericAddresses)
{
    NodeType& foo = declare(*b, "Foo");
    NodeType& other = declare(*c, "Other");
    EXPECT_EQ(NodeTypeNameSpace::findType(c.get(), "a::b::Foo"), &foo);
    EXPECT_EQ(NodeTypeNameSpace::findType(a.get(), "b::Foo"), &foo);
    EXPECT_EQ(NodeTypeNameSpace::findType(b.get(), "c::Other"), &other);
    EXPECT_EQ(NodeTypeNameSpace::findType(nullptr, "base::a::b::Foo"), &foo);
    EXPECT_EQ(NodeTypeNameSpace::findAbsolutType("base::a::b::Foo"), &foo);
    EXPECT_EQ(NodeTypeNameSpace::findAbsolutType("Node"), &Node::classType());
    EXPECT_EQ(NodeTypeNameSpace::findType(c.get(), "a::x::Foo"), nullptr);
    EXPECT_EQ(NodeTypeNameSpace::findType(c.get(), "a::b::"), nullptr);
    EXPECT_EQ(b->findNameSpace("a::b"), b.get());
    EXPECT_EQ(NodeTypeNameSpace::findAbsolutNameSpace("base::a"), a.get());

    const std::string id = std::to_string(foo.ID());
    EXPECT_EQ(NodeTypeNameSpace::findType(c.get(), id), &foo);
    EXPECT_EQ(NodeTypeNameSpace::findType(&theBaseNodeTypeFactory(), " " + id + "\n"), &foo);
    EXPECT_EQ(NodeTypeNameSpace::findType(c.get(), "4000000000"), nullptr);

    std::string address;
    EXPECT_TRUE(b->fillAbsolutAddress(address));
    EXPECT_EQ(address, "base::a::b");
    std::unique_ptr<NodeTypeNameSpace> anonymous(NodeTypeNameSpace::create(nullptr, b.get()));
    EXPECT_FALSE(anonymous->hasAbsolutAddress());
}

TEST_F(TypeNameSpaceTest, CaseInsensitiveSearch)
{
    NodeType& transform = declare(*a, "Transform");
    for (const char* spelling : {"transform", "TRANSFORM", "Transform", " tRaNsFoRm "})
        EXPECT_EQ(NodeTypeNameSpace::findType(b.get(), spelling, CaseInsensitive), &transform) << spelling;
    EXPECT_EQ(NodeTypeNameSpace::findType(b.get(), "Transform", CaseSensitive), &transform);
    EXPECT_EQ(NodeTypeNameSpace::findType(b.get(), "transform", CaseSensitive), nullptr);
    EXPECT_EQ(a->findLocalType("TRANSFORM", CaseInsensitive), &transform);
}

TEST_F(TypeNameSpaceTest, BlankAddressesAreRefused)
{
    LogCapture log;
    for (const char* blank : {"", "   ", " \t\r\n "})
        EXPECT_EQ(NodeTypeNameSpace::findType(a.get(), blank), nullptr);
    EXPECT_EQ(log.count("Invalid param (empty address) for findType()\n", LOG_WARNING), 3) << log.all();
}

TEST_F(TypeNameSpaceTest, RegistrationAndRoots)
{
    LogCapture log;
    declare(*a, "Twice");
    NodeType& second = declare(*a, "Twice");
    EXPECT_EQ(log.count("There is already a Twice NodeType registered in a\n", LOG_FATAL), 1) << log.all();
    EXPECT_EQ(a->findLocalType("Twice"), &second);

    const unsigned count = NodeTypeNameSpace::nameSpaceCount();
    std::unique_ptr<NodeTypeNameSpace> root(NodeTypeNameSpace::create("scopesTestRoot", nullptr));
    std::unique_ptr<NodeTypeNameSpace> again(NodeTypeNameSpace::create("scopesTestRoot", nullptr));
    std::unique_ptr<NodeTypeNameSpace> nameless(NodeTypeNameSpace::create(nullptr, nullptr));
    EXPECT_EQ(log.count("There is already root >scopesTestRoot< NodeTypeNameSpace\n"), 1) << log.all();
    EXPECT_EQ(log.count("Root NodeTypeNameSpace without name\n"), 1);
    EXPECT_EQ(NodeTypeNameSpace::nameSpaceCount(), count + 3);
    EXPECT_EQ(NodeTypeNameSpace::findAbsolutNameSpace("scopesTestRoot"), root.get());
    std::vector<NodeTypeNameSpace*> roots;
    NodeTypeNameSpace::getNameSpaceVec(roots, true);
    EXPECT_NE(std::find(roots.begin(), roots.end(), root.get()), roots.end());
    EXPECT_EQ(std::find(roots.begin(), roots.end(), again.get()), roots.end());

    b->setParent(b.get());
    EXPECT_EQ(log.count("Cannot loop Namespaces\n"), 1);
    EXPECT_EQ(b->parent(), a.get());

    log.clear();
    a->dump();
    EXPECT_EQ(log.count("NTNS: a, parent: base, types: 1\n", LOG_LOG), 1) << log.all();
}

TEST_F(TypeNameSpaceTest, ReferencedTypesAndLocalNodes)
{
    NodeType& foo = declare(*c, "Foo");
    EXPECT_EQ(b->refType(foo), &foo);
    EXPECT_EQ(NodeTypeNameSpace::findType(b.get(), "Foo"), &foo);
    EXPECT_EQ(b->refType(foo, "Alias"), &foo);
    EXPECT_EQ(NodeTypeNameSpace::findType(b.get(), "alias", CaseInsensitive), &foo);
    NodeType& bar = declare(*a, "Bar");
    EXPECT_EQ(b->refType(foo, "Bar"), nullptr) << "Bar already means another type here";
    EXPECT_EQ(b->refType(bar), &bar);

    SmartPtr<NodeNameSpace> nodes(new NodeNameSpace("scene", nullptr, b.get()));
    SmartPtr<Node> node(b->createLocalNode(nodes.get(), "Alias", "made"));
    ASSERT_TRUE(node);
    EXPECT_EQ(&node->type(), &foo);
    EXPECT_EQ(nodes->findNode("made"), node.get());
    LogCapture log;
    EXPECT_EQ(b->createLocalNode(nodes.get(), "Nothing", nullptr), nullptr);
    EXPECT_EQ(log.count("Could not find/load type Nothing to create node\n"), 1) << log.all();
    node = nullptr;
    // A type that goes away is forgotten where it was referenced, too.
    types.clear();
    EXPECT_EQ(NodeTypeNameSpace::findType(b.get(), "Alias"), nullptr);
}
