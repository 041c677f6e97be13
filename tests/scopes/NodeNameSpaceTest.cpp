#include "base/Observer.h"
#include "base/Subject.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TypeScope.h"

#include <gtest/gtest.h>

using namespace Orvane;
using namespace Orvane::Test;

TEST(NodeNameSpaceTest, DefNamesAndTheirWarnings)
{
    TypeScope scope;
    scope.declare("Thing", "Node", {});
    SmartPtr<Node> first = scope.make("Thing", "Twin");
    LogCapture log;
    SmartPtr<Node> second = scope.make("Thing", "Twin");
    EXPECT_EQ(log.count("There is already a >Twin< node DEFined in nameSpace test\n", LOG_WARNING), 1) << log.all();
    // The later definition wins; the first keeps its name.
    EXPECT_EQ(scope.nodes().findNode("Twin"), second.get());
    EXPECT_EQ(first->name(), "Twin");
    second = nullptr;
    EXPECT_EQ(scope.nodes().findNode("Twin"), nullptr);
    EXPECT_EQ(scope.nodes().nodeCount(), 1);

    EXPECT_TRUE(scope.nodes().regNode(*first, first->type(), "Generated", true));
    EXPECT_TRUE(first->isAutoNamed());
    EXPECT_EQ(scope.nodes().findNode("Generated"), first.get());

    EXPECT_TRUE(scope.nodes().setRoot(*first));
    EXPECT_FALSE(scope.nodes().setRoot(*first));
    EXPECT_EQ(log.count("NodeNameSpace::setRoot call and _root != 0\n"), 1);
}

TEST(NodeNameSpaceTest, NestingAndAddresses)
{
    SmartPtr<NodeNameSpace> top(new NodeNameSpace("top"));
    SmartPtr<NodeNameSpace> inner(new NodeNameSpace("inner", top.get()));
    EXPECT_EQ(inner->parent(), top.get());
    EXPECT_EQ(&inner->nodeTypeNameSpace(), &theBaseNodeTypeFactory());
    std::string address;
    EXPECT_TRUE(inner->fillAbsolutAddress(address));
    EXPECT_EQ(address, "top::inner");
    LogCapture log;
    EXPECT_FALSE(top->setParent(inner.get()));
    EXPECT_EQ(log.count("Cannot loop Namespaces\n"), 1) << log.all();
    EXPECT_EQ(top->parent(), nullptr);
    inner = nullptr;
    EXPECT_EQ(log.count("Run NodeNameSpace \"inner\" destructor and _nodeCount == 0\n", LOG_INFO), 1) << log.all();
}
