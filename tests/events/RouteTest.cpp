// Routes: duplicates, type checks, hooks and subjects, scope marks, listing, logs.
#include "base/Context.h"
#include "base/EventInSlot.h"
#include "base/EventOutSlot.h"
#include "base/NodeProc.h"
#include "base/Observer.h"
#include "base/Route.h"
#include "base/SFBool.h"
#include "base/SFFloat.h"
#include "base/Subject.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TypeScope.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

using namespace Orvane;
using namespace Orvane::Test;

namespace {

std::vector<std::string>* hookLog = nullptr;

struct HookProc : NodeProc {
    void routeAdded(Route&) override { hookLog->push_back("added " + node()->getIDStr()); }
    void routeRemoved(Route&) override { hookLog->push_back("removed " + node()->getIDStr()); }
};

enum Part : unsigned { F, I, Any, Plain };

// Two types of the same parts, each in a scope of its own.
const std::vector<PartSpec> parts = {{"f", ExposedFieldPartType, SFFloatType, NodePartDesc::CtorAutoProcess},
                                     {"i", ExposedFieldPartType, SFInt32Type, NodePartDesc::CtorAutoProcess},
                                     {"any", ExposedFieldPartType, SFAnyType},
                                     {"plain", FieldPartType, SFFloatType}};

struct RouteTest : ::testing::Test {
    TestNodeType out{"Out", parts};
    TestNodeType in{"In", parts};
    SmartPtr<Node> a = out.make("A");
    SmartPtr<Node> b = in.make("B");
    std::vector<std::string> hooks;

    RouteTest()
    {
        hookLog = &hooks;
        a->setProc(new HookProc);
        b->setProc(new HookProc);
    }
    ~RouteTest() override
    {
        a = nullptr;
        b = nullptr;
        hookLog = nullptr;
    }

    EventOutSlot& outSlot(Node& n, Part p) { return *n.findField(p)->getOutSlot(true, true); }
    EventInSlot&  inSlot(Node& n, Part p) { return *n.findField(p)->getInSlot(true, true); }
};

// A context whose "forceSingleDataTypeRoute" is set, bound to the namespace of `root`.
struct ForcingContext {
    SmartPtr<Context> context{Context::create()};
    NodeType*         rootType;

    explicit ForcingContext(Node& root) : rootType(&root.type())
    {
        LogCapture quiet;
        context->addRoot(root);
        static_cast<SFBool*>(context->paramField(Route::forceSingleDataTypeRouteParam()))->setValue(true);
    }
    ~ForcingContext() { context->removeRoot(*rootType); }
};

TEST_F(RouteTest, SecondIdenticalRouteReturnsTheFirst)
{
    const unsigned before = Route::routeCount();
    Route* first = Route::create(outSlot(*a, F), inSlot(*b, F), Route::DEFAULT);
    ASSERT_NE(first, nullptr);
    LogCapture log;
    Route* second = Route::create(outSlot(*a, F), inSlot(*b, F), Route::TRIGGER);
    EXPECT_EQ(second, first);
    EXPECT_EQ(log.count("Will not create a Route a second time:\n", LOG_FATAL), 1);
    EXPECT_EQ(log.count("Route: DEFAULT\n", LOG_LOG), 1);
    EXPECT_EQ(outSlot(*a, F).routeCount(), 1u);
    EXPECT_EQ(inSlot(*b, F).routeCount(), 1u);
    EXPECT_EQ(Route::routeCount(), before + 1);
}

TEST_F(RouteTest, TypeMismatchIsAllowedUnlessTheOutNodesContextForbidsIt)
{
    {
        LogCapture log;
        Route* r = Route::create(outSlot(*a, F), inSlot(*b, I));
        EXPECT_NE(r, nullptr);
        EXPECT_EQ(log.count("Valid type mismatch in Route::create(): \n", LOG_NOTICE), 1) << log.all();
        delete r;
    }
    {
        // Forced only on the receiving side: the sender's context decides.
        ForcingContext forcing(*b);
        LogCapture log;
        Route* r = Route::create(outSlot(*a, F), inSlot(*b, I));
        EXPECT_NE(r, nullptr);
        EXPECT_EQ(log.count("Valid type mismatch in Route::create(): \n", LOG_NOTICE), 1);
        delete r;
    }
    {
        ForcingContext forcing(*a);
        LogCapture log;
        EXPECT_EQ(Route::create(outSlot(*a, F), inSlot(*b, I)), nullptr);
        EXPECT_EQ(log.count("Invalid type mismatch in Route::create(): \n", LOG_WARNING), 1) << log.all();
        EXPECT_EQ(log.count("eventOut: f, dataType SFFloat, routes: 0\n", LOG_LOG), 1);
        EXPECT_EQ(log.count("eventIn: i, dataType SFInt32, routes: 0\n", LOG_LOG), 1);
        EXPECT_EQ(outSlot(*a, F).routeCount(), 0u);

        // A wildcard end passes, equal types pass, without a word.
        log.clear();
        EXPECT_NE(Route::create(outSlot(*a, Any), inSlot(*b, I)), nullptr);
        EXPECT_NE(Route::create(outSlot(*a, F), inSlot(*b, Any)), nullptr);
        EXPECT_NE(Route::create(outSlot(*a, I), inSlot(*b, I)), nullptr);
        EXPECT_EQ(log.size(), 0u) << log.all();
    }
}

TEST_F(RouteTest, ConstructionAndDestructionTellBothProcessorsAndTheSubjects)
{
    std::vector<std::string> told;
    auto record = [](const double&, Observer*, BaseObject* route, BaseObject*, BaseObject*, const void* data) {
        static_cast<std::vector<BaseObject*>*>(const_cast<void*>(data))->push_back(route);
    };
    std::vector<BaseObject*> made, deleted;
    Observer onNew(Route::newRouteSubject());
    onNew.addCallback(record, &made);
    Observer onDelete(Route::deleteRouteSubject());
    onDelete.addCallback(record, &deleted);

    Route* r = Route::create(outSlot(*a, F), inSlot(*b, F));
    EXPECT_EQ(hooks, (std::vector<std::string>{"added A", "added B"}));
    EXPECT_EQ(made, (std::vector<BaseObject*>{r}));
    delete r;
    EXPECT_EQ(hooks, (std::vector<std::string>{"added A", "added B", "removed A", "removed B"}));
    EXPECT_EQ(deleted, made);
    EXPECT_EQ(outSlot(*a, F).routeCount(), 0u);
    EXPECT_EQ(inSlot(*b, F).routeCount(), 0u);
}

TEST_F(RouteTest, RouteLogLinesNameTheReceivingEndFirst)
{
    b->setDebugFlags(1u << LogRoute);
    LogCapture log;
    Route* r = Route::create(outSlot(*a, F), inSlot(*b, F), static_cast<Route::Type>(Route::TRIGGER | Route::IS));
    EXPECT_EQ(log.count("Create TRIGGERIS-Route In/B.f to Out/A.f\n", LOG_LOG), 1) << log.all();
    delete r;
    EXPECT_EQ(log.count("Remove Route In/B.f to Out/A.f\n", LOG_LOG), 1) << log.all();

    // A field without descriptor prints as NoName.
    log.clear();
    SFFloat loose(*a);
    Route* fromLoose = Route::create(*loose.getOutSlot(true, true), inSlot(*b, F));
    EXPECT_EQ(log.count("Create DEFAULT-Route In/B.f to Out/A.NoName\n", LOG_LOG), 1) << log.all();
    delete fromLoose;
}

TEST_F(RouteTest, DataFlowRoutesMarkBothScopesAndTriggersDoNot)
{
    Route* trigger = Route::create(outSlot(*a, F), inSlot(*b, F), Route::TRIGGER);
    EXPECT_EQ(out.nameSpace().dynamicContent(), 0u);
    EXPECT_EQ(in.nameSpace().dynamicContent(), 0u);
    delete trigger;

    b->setFlag(static_cast<Node::Flag>(2));
    delete Route::create(outSlot(*a, F), inSlot(*b, F));
    EXPECT_EQ(out.nameSpace().dynamicContent(), 0u);
    b->clearFlag(static_cast<Node::Flag>(2));

    Route::create(outSlot(*a, F), inSlot(*b, F));
    EXPECT_EQ(out.nameSpace().dynamicContent(), 2u);
    EXPECT_EQ(in.nameSpace().dynamicContent(), 2u);
}

TEST_F(RouteTest, FieldsGetTheirSlotsOnlyWhereTheAccessTypeAllows)
{
    {
        LogCapture log;
        EXPECT_EQ(Route::create(*a->findField(Plain), *b->findField(F)), nullptr);
        EXPECT_EQ(log.count("Route::create() on field failed A.plain to B.f\n", LOG_FATAL), 1) << log.all();
    }
    Route* forced = Route::create(*a->findField(Plain), *b->findField(Plain), Route::DEFAULT, true);
    ASSERT_NE(forced, nullptr);
    EXPECT_EQ(&forced->outSlot().field(), a->findField(Plain));
    EXPECT_EQ(&forced->inSlot().field(), b->findField(Plain));
}

TEST_F(RouteTest, FillRouteVecFiltersByTypeAndScopeAndReturnsTheTotal)
{
    SmartPtr<Node> c = in.make("C");
    Route* ab = Route::create(outSlot(*a, F), inSlot(*b, F));
    Route* ac = Route::create(outSlot(*a, I), inSlot(*c, I), Route::IS);
    Route* ba = Route::create(outSlot(*b, F), inSlot(*a, F));

    std::vector<Route*> found;
    EXPECT_EQ(Route::fillRouteVec(found, &out.nameSpace(), static_cast<Route::Type>(~0u)), 2u);
    std::sort(found.begin(), found.end());
    std::vector<Route*> expected{ab, ac};
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(found, expected);

    // Appended after what the vector held: the result is the new size.
    EXPECT_EQ(Route::fillRouteVec(found, &out.nameSpace(), Route::IS), 3u);
    EXPECT_EQ(found.back(), ac);
    EXPECT_EQ(Route::fillRouteVec(found, &in.nameSpace(), Route::DEFAULT), 4u);
    EXPECT_EQ(found.back(), ba);

    std::vector<Route*> all;
    Route::fillRouteVec(all, nullptr, static_cast<Route::Type>(~0u));
    EXPECT_EQ(all.size(), Route::routeCount());
    EXPECT_NE(std::find(all.begin(), all.end(), ba), all.end());
}

TEST_F(RouteTest, DumpNamesTheTypeAndBothSlots)
{
    Route* odd = Route::create(outSlot(*a, F), inSlot(*b, F), static_cast<Route::Type>(3));
    LogCapture log;
    odd->dump();
    EXPECT_EQ(log.count("Route: INVALID\n", LOG_LOG), 1);
    EXPECT_EQ(log.count("eventOut: f, dataType SFFloat, routes: 1\n", LOG_LOG), 1);
    EXPECT_EQ(log.count("eventIn: f, dataType SFFloat, routes: 1\n", LOG_LOG), 1);
    EXPECT_STREQ(Route::typeName(8), "IMPORT");
    EXPECT_STREQ(Route::typeName(4), "IS");
    EXPECT_STREQ(Route::typeName(9), "INVALID");
}

} // namespace
