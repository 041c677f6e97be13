// Event delivery along routes: order, cycles, changes during delivery, slots and their logs.
#include "base/EventInSlot.h"
#include "base/EventOutSlot.h"
#include "base/NodeProc.h"
#include "base/Observer.h"
#include "base/Route.h"
#include "base/SFFloat.h"
#include "base/SFInt32.h"
#include "base/SFString.h"
#include "base/Subject.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TypeScope.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

using namespace Orvane;
using namespace Orvane::Test;

namespace {

// What every node's reaction saw, across nodes, in order: "<node>=<value>".
struct Trace {
    std::vector<std::string> calls;
};

// Records each reaction and runs an optional action of the test in the middle of delivery.
struct TraceProc : NodeProc {
    Trace*                             trace;
    std::function<void(Node&, Field&)> onChange;

    explicit TraceProc(Trace& t) : trace(&t) {}
    bool fieldChanged(Node& node, Field& field, const double&, Field*) override
    {
        trace->calls.push_back(node.getIDStr() + "=" + field.strValue());
        if (onChange)
            onChange(node, field);
        return true;
    }
};

enum Part : unsigned { Value, NoAuto, Text, Count };

struct EventSlotTest : ::testing::Test {
    TestNodeType type{"Ev",
                      {{"value", ExposedFieldPartType, SFFloatType, NodePartDesc::CtorAutoProcess},
                       {"noAuto", ExposedFieldPartType, SFFloatType},
                       {"text", ExposedFieldPartType, SFStringType, NodePartDesc::CtorAutoProcess},
                       {"count", ExposedFieldPartType, SFInt32Type, NodePartDesc::CtorAutoProcess}}};
    Trace trace;

    // A named node with a tracing processor, in `state`.
    SmartPtr<Node> make(const char* name, NodeState state = Live)
    {
        SmartPtr<Node> node = type.make(name);
        node->setProc(new TraceProc(trace));
        if (state != Orvane::Setup)
            node->setNodeState(0.0, state);
        return node;
    }
    static TraceProc& proc(Node& node) { return *static_cast<TraceProc*>(node.proc()); }
    static SFFloat&   value(Node& node) { return *static_cast<SFFloat*>(node.findField(Value)); }
    static Route*     route(Node& from, Node& to, Route::Type type = Route::DEFAULT, Part part = Value)
    {
        return Route::create(*from.findField(part), *to.findField(part), type);
    }
};

TEST_F(EventSlotTest, CycleDeliversOnceAroundAndStopsAtTheSender)
{
    SmartPtr<Node> a = make("A"), b = make("B");
    route(*a, *b);
    route(*b, *a);
    // B's reaction changes the value it passes on, so that A's overwrite is visible.
    proc(*b).onChange = [](Node&, Field& f) { static_cast<SFFloat&>(f).setValue(static_cast<SFFloat&>(f).value() * 2); };

    LogCapture log;
    value(*a).setValue(1.0, 1.5f, Field::FieldCaller);

    EXPECT_EQ(trace.calls, (std::vector<std::string>{"A=1.5", "B=1.5"}));
    EXPECT_EQ(log.count("Field Ev/A.value is already changing; break loop\n", LOG_INFO), 1) << log.all();
    EXPECT_FLOAT_EQ(value(*a).value(), 3.0f);
    EXPECT_FLOAT_EQ(value(*b).value(), 3.0f);
    // The guard held only while sending.
    EXPECT_TRUE(a->isChangingMask().empty());
    EXPECT_TRUE(b->isChangingMask().empty());
}

TEST_F(EventSlotTest, NestedSendOfTheSameFieldLiftsTheGuardWhenItEnds)
{
    TestNodeType nest{"Nest",
                      {{"value", ExposedFieldPartType, SFFloatType, NodePartDesc::CtorAutoProcess},
                       {"out", EventOutPartType, SFFloatType, NodePartDesc::CtorAutoProcess}}};
    auto live = [&](const char* name) {
        SmartPtr<Node> node = nest.make(name);
        node->setProc(new TraceProc(trace));
        node->setNodeState(0.0, Live);
        return node;
    };
    SmartPtr<Node> a = live("A"), b = live("B");
    Field& out = *a->findField(1u);
    Route::create(out, *b->findField(0u));
    Route::create(*b->findField(0u), out, Route::DEFAULT, true);
    // B's first reaction sets A.out while A.out is still sending: A.out sends again, nested.
    bool once = true;
    proc(*b).onChange = [&](Node&, Field&) {
        if (std::exchange(once, false))
            static_cast<SFFloat&>(out).setValue(1.0, 5.0f, Field::FieldCaller);
    };

    LogCapture log;
    static_cast<SFFloat&>(out).setValue(1.0, 1.0f, Field::FieldCaller);

    // The nested send sets B but stops there, as B is reacting. Once it is over A.out's guard is
    // down, so the value that B passes on afterwards makes A react, and that stops at B again.
    EXPECT_EQ(trace.calls, (std::vector<std::string>{"B=1", "A=5"}));
    EXPECT_EQ(log.count("Field Nest/B.value is already changing; break loop\n", LOG_INFO), 2) << log.all();
    EXPECT_EQ(log.count("Field Nest/A.out is already changing; break loop\n", LOG_INFO), 0) << log.all();
    EXPECT_TRUE(a->isChangingMask().empty());
    EXPECT_TRUE(b->isChangingMask().empty());
}

TEST_F(EventSlotTest, FanOutIsDepthFirstInCreationOrderAndFanInKeepsTheLastValue)
{
    SmartPtr<Node> a = make("A"), b = make("B"), c = make("C"), d = make("D"), e = make("E");
    route(*a, *b);
    route(*a, *c);
    route(*b, *e);
    route(*c, *d);
    route(*b, *d);
    proc(*c).onChange = [](Node&, Field& f) { static_cast<SFFloat&>(f).setValue(7.0f); };

    value(*a).setValue(1.0, 2.0f, Field::FieldCaller);

    // B's whole cascade (E, then D over the later route) before C's; D hears twice.
    EXPECT_EQ(trace.calls, (std::vector<std::string>{"A=2", "B=2", "E=2", "D=2", "C=2", "D=7"}));
    EXPECT_FLOAT_EQ(value(*d).value(), 7.0f);
}

TEST_F(EventSlotTest, RoutesChangedDuringDeliveryAreSeenInTheSamePass)
{
    SmartPtr<Node> a = make("A"), b = make("B"), c = make("C"), d = make("D");
    route(*a, *b);
    Route* toC = route(*a, *c);
    proc(*b).onChange = [&](Node&, Field&) {
        delete toC;
        route(*a, *d);
    };

    value(*a).setValue(1.0, 4.0f, Field::FieldCaller);

    EXPECT_EQ(trace.calls, (std::vector<std::string>{"A=4", "B=4", "D=4"}));
    EXPECT_EQ(a->findField(Value)->outRouteCount(), 2u);
}

TEST_F(EventSlotTest, TriggerRouteDeliversWithoutMarking)
{
    SmartPtr<Node> a = make("A"), b = make("B"), c = make("C");
    route(*a, *b, Route::TRIGGER);
    route(*a, *c);
    value(*a).setValue(1.0, 5.0f, Field::FieldCaller);

    EXPECT_FLOAT_EQ(value(*b).value(), 5.0f);
    EXPECT_FALSE(value(*b).changed());
    EXPECT_TRUE(value(*c).changed());
    EXPECT_EQ(trace.calls, (std::vector<std::string>{"A=5", "B=5", "C=5"}));
}

TEST_F(EventSlotTest, NodeInSetupHearsOnlyItsInterface)
{
    SmartPtr<Node> a = make("A"), proto = make("P", Orvane::Setup), inner = make("I"), other = make("O");
    SmartPtr<Node> plain = make("S", Orvane::Setup);
    route(*a, *proto, Route::IS);
    route(*proto, *inner, Route::IS);
    route(*proto, *other);
    route(*a, *plain);

    value(*a).setValue(1.0, 6.0f, Field::FieldCaller);

    // P takes the value but does not react, stays in Setup and passes it on over IS only; a
    // DEFAULT route realizes S.
    EXPECT_FLOAT_EQ(value(*proto).value(), 6.0f);
    EXPECT_EQ(trace.calls, (std::vector<std::string>{"A=6", "I=6", "S=6"}));
    EXPECT_EQ(proto->state(), Orvane::Setup);
    EXPECT_FLOAT_EQ(value(*other).value(), 0.0f);
    EXPECT_EQ(plain->state(), Realize);
}

TEST_F(EventSlotTest, RouteCountsAndAnyRouteLookAtOppositeKinds)
{
    SmartPtr<Node> a = make("A"), b = make("B"), c = make("C"), d = make("D");
    EventOutSlot& out = *value(*a).getOutSlot(true);
    EXPECT_FALSE(out.hasAnyRoute(true));
    route(*a, *b);
    EXPECT_TRUE(out.hasAnyRoute(true));
    EXPECT_FALSE(out.hasAnyRoute(false));
    route(*a, *c, Route::TRIGGER);
    route(*a, *d, static_cast<Route::Type>(Route::IS | Route::TRIGGER));
    EXPECT_TRUE(out.hasAnyRoute(false));
    EXPECT_EQ(out.routeCount(true), 3u);
    EXPECT_EQ(out.routeCount(false), 1u);

    // The field's counts add the observers of the slot's subject.
    Observer watcher(out.processEventSubject());
    EXPECT_EQ(value(*a).outRouteCount(true, true), 4u);
    EXPECT_EQ(value(*a).outRouteCount(false, false), 1u);
    EXPECT_EQ(value(*b).inRouteCount(), 1u);
    EXPECT_EQ(value(*b).outRouteCount(), 0u);

    out.disconnectAll();
    EXPECT_EQ(out.routeCount(true), 0u);
    EXPECT_EQ(value(*b).getInSlot()->routeCount(true), 0u);
}

TEST_F(EventSlotTest, ConnectDisconnectAndFindWorkFromBothEnds)
{
    SmartPtr<Node> a = make("A"), b = make("B");
    EventOutSlot& out = *value(*a).getOutSlot(true);
    EventInSlot&  in = *value(*b).getInSlot(true);
    Route* r = in.connect(out);
    ASSERT_NE(r, nullptr);
    EXPECT_EQ(r->type(), Route::DEFAULT);
    EXPECT_EQ(out.findRoute(&in), r);
    EXPECT_EQ(in.findRoute(&out), r);
    EXPECT_EQ(in.findRoute(nullptr), nullptr);
    EXPECT_FALSE(in.disconnect(nullptr));
    EXPECT_TRUE(out.disconnect(&in));
    EXPECT_FALSE(in.disconnect(&out));
    EXPECT_EQ(out.connect(in)->type(), Route::DEFAULT);
    EXPECT_TRUE(in.disconnect(&out));
    EXPECT_EQ(out.routeCount(), 0u);
}

TEST_F(EventSlotTest, SlotsAreMadeOnlyForTheSidesTheAccessTypeHas)
{
    TestNodeType kinds{"Kinds",
                       {{"f", FieldPartType, SFFloatType},
                        {"in", EventInPartType, SFFloatType},
                        {"out", EventOutPartType, SFFloatType}}};
    SmartPtr<Node> n = kinds.make();
    Field& f = *n->findField(0u);
    Field& in = *n->findField(1u);
    Field& out = *n->findField(2u);
    EXPECT_EQ(f.createInSlot(), nullptr);
    EXPECT_EQ(f.getOutSlot(true), nullptr);
    EXPECT_NE(f.getOutSlot(true, true), nullptr);
    EXPECT_NE(in.createInSlot(), nullptr);
    EXPECT_EQ(in.createOutSlot(), nullptr);
    EXPECT_NE(out.createOutSlot(), nullptr);
    EXPECT_EQ(out.createInSlot(), nullptr);
    EXPECT_EQ(out.getInSlot(), nullptr);
    EXPECT_EQ(out.createOutSlot(), out.getOutSlot());
    EXPECT_EQ(in.getInSlot()->typeName(), "eventIn");
}

TEST_F(EventSlotTest, EventLogLinesFollowTheNodeFeatures)
{
    SmartPtr<Node> a = make("A"), b = make("B"), p = make("P", Orvane::Setup);
    route(*a, *b);
    route(*a, *p, Route::IS);
    a->setDebugFlags(1u << LogEventOut);
    b->setDebugFlags(1u << LogEventIn);
    p->setDebugFlags(1u << LogEventIn);

    LogCapture log;
    value(*a).setValue(2.0, 1.25f, Field::FieldCaller);
    EXPECT_EQ(log.count("Ev/Ev/A SendEvent on value: 2.000000/1.25\n", LOG_LOG), 1) << log.all();
    EXPECT_EQ(log.count("Ev/Ev/B/pro ReceiveEvent on value: 2.000000/1.25\n", LOG_LOG), 1) << log.all();
    EXPECT_EQ(log.count("Ev/Ev/P/noPro ReceiveEvent on value: 2.000000/1.25\n", LOG_LOG), 1) << log.all();
    // The lines name the operation they report for.
    for (const LogCapture::Entry& e : log.entries()) {
        const bool receive = e.text.find("ReceiveEvent on") != std::string::npos;
        EXPECT_NE(e.function.find(receive ? "EventInSlot::receiveEvent" : "EventOutSlot::sendEvent"), std::string::npos)
            << e.function;
        EXPECT_EQ(e.source, e.text.find("Receive") != std::string::npos ? "base/EventInSlot" : "base/EventOutSlot");
    }
    // B has no eventOut feature, A no eventIn one.
    EXPECT_EQ(log.count("Ev/Ev/B SendEvent on value: 2.000000/1.25\n"), 0);
    EXPECT_FALSE(log.containsFragment("Ev/Ev/A/pro"));
}

TEST_F(EventSlotTest, SubjectsHearEverySentAndReceivedEvent)
{
    SmartPtr<Node> a = make("A"), b = make("B");
    Route* r = route(*a, *b);
    struct Heard {
        std::vector<BaseObject*> slots, values;
    } any, own;
    auto record = [](const double&, Observer*, BaseObject* slot, BaseObject* value, BaseObject*, const void* data) {
        auto* heard = static_cast<Heard*>(const_cast<void*>(data));
        heard->slots.push_back(slot);
        heard->values.push_back(value);
    };
    Observer anyWatcher(EventSlot::anyProcessEventSubject());
    anyWatcher.addCallback(record, &any);
    Observer ownWatcher(r->inSlot().processEventSubject());
    ownWatcher.addCallback(record, &own);
    EXPECT_EQ(r->inSlot().processEventSubject().name(), std::string("value"));

    value(*a).setValue(1.0, 3.0f, Field::FieldCaller);

    EventSlot* out = &r->outSlot();
    EventSlot* in = &r->inSlot();
    EXPECT_EQ(any.slots, (std::vector<BaseObject*>{out, in}));
    EXPECT_EQ(any.values, (std::vector<BaseObject*>{&value(*a), &value(*a)}));
    EXPECT_EQ(own.slots, (std::vector<BaseObject*>{in}));
}

TEST_F(EventSlotTest, ProcessEventEntriesSetTheFieldFirst)
{
    SmartPtr<Node> a = make("A"), b = make("B");
    route(*a, *b);
    EventInSlot&  in = *value(*a).getInSlot(true);
    EventOutSlot& out = *value(*a).getOutSlot(true);

    in.processEvent(1.0, "2.5");
    EXPECT_EQ(trace.calls, (std::vector<std::string>{"A=2.5", "B=2.5"}));
    EXPECT_TRUE(value(*b).changed());

    trace.calls.clear();
    out.processEvent(1.0, "4");
    EXPECT_EQ(trace.calls, (std::vector<std::string>{"B=4"}));
    EXPECT_FLOAT_EQ(value(*a).value(), 4.0f);

    trace.calls.clear();
    SFFloat source(*b, 8.0f);
    in.processEvent(1.0, source, nullptr);
    EXPECT_EQ(trace.calls, (std::vector<std::string>{"A=8", "B=8"}));

    trace.calls.clear();
    in.processEvent(1.0);
    EXPECT_EQ(trace.calls, (std::vector<std::string>{"A=8", "B=8"}));

    // Without data, a field that does not process on its own refuses the event.
    trace.calls.clear();
    LogCapture log;
    a->findField(NoAuto)->getInSlot(true)->processEvent(1.0);
    EXPECT_EQ(log.count("EventInSlot::receiveEvent without field data on NO_AP field\n", LOG_WARNING), 1);
    EXPECT_TRUE(trace.calls.empty());
}

TEST_F(EventSlotTest, FailedConversionIsReportedAndTheCascadeGoesOn)
{
    SmartPtr<Node> a = make("A"), b = make("B"), c = make("C");
    route(*a, *b, Route::DEFAULT, Text);
    Route::create(*b->findField(Text), *c->findField(Value));
    static_cast<SFFloat&>(*c->findField(Value)).setValue(9.0f);

    LogCapture log;
    static_cast<SFString&>(*a->findField(Text)).setValue(1.0, std::string("abc"), Field::FieldCaller);
    EXPECT_EQ(log.count("receiveEvent(): _field.setValueByField() failed\n", LOG_FATAL), 1) << log.all();
    EXPECT_EQ(log.count("  SFFloat field: Ev.value\n", LOG_FATAL), 1);
    EXPECT_EQ(log.count("  SFString input: Ev.text\n", LOG_FATAL), 1);
    // C keeps its value, is not marked, and still reacts.
    EXPECT_FLOAT_EQ(value(*c).value(), 9.0f);
    EXPECT_FALSE(value(*c).changed());
    EXPECT_EQ(trace.calls.back(), "C=9");

    // A conversion that works delivers the converted value.
    ASSERT_NE(Route::create(*a->findField(Value), *b->findField(Count)), nullptr);
    value(*a).setValue(1.0, 3.0f, Field::FieldCaller);
    EXPECT_EQ(static_cast<SFInt32&>(*b->findField(Count)).value(), 3);
}

TEST_F(EventSlotTest, CopiedSlotReportsAndHasNoRoutes)
{
    SmartPtr<Node> a = make("A"), b = make("B");
    route(*a, *b);
    LogCapture log;
    EventInSlot copyIn(*value(*b).getInSlot());
    EventOutSlot copyOut(*value(*a).getOutSlot());
    EXPECT_EQ(log.count("Calling EventSlot copy constructor\n", LOG_FATAL), 2);
    EXPECT_EQ(log.count("Run invalid EventInSlot copy constructor\n", LOG_FATAL), 1);
    EXPECT_EQ(log.count("Run invalid EventOutSlot copy constructor\n", LOG_FATAL), 1);
    EXPECT_EQ(&copyIn.field(), &value(*b));
    EXPECT_EQ(copyIn.routeCount(), 0u);
    EXPECT_EQ(copyOut.routeCount(), 0u);
}

TEST_F(EventSlotTest, DeletingANodeTakesItsRoutesAlong)
{
    SmartPtr<Node> a = make("A"), b = make("B");
    const unsigned before = Route::routeCount();
    route(*a, *b);
    route(*b, *a);
    EXPECT_EQ(Route::routeCount(), before + 2);
    b = nullptr;
    EXPECT_EQ(Route::routeCount(), before);
    EXPECT_EQ(value(*a).outRouteCount(), 0u);
    EXPECT_EQ(value(*a).inRouteCount(), 0u);
    value(*a).setValue(1.0, 1.0f, Field::FieldCaller);
    EXPECT_EQ(trace.calls, (std::vector<std::string>{"A=1"}));
}

TEST_F(EventSlotTest, ExportedNodeCreatesItsOutSlotWhenSending)
{
    SmartPtr<Node> a = make("A");
    EXPECT_EQ(value(*a).getOutSlot(), nullptr);
    value(*a).setValue(1.0, 1.0f, Field::FieldCaller);
    EXPECT_EQ(value(*a).getOutSlot(), nullptr);
    ASSERT_TRUE(a->nameSpace().exportNode(*a, "A"));
    EXPECT_TRUE(a->isExported());
    value(*a).setValue(1.0, 2.0f, Field::FieldCaller);
    EXPECT_NE(value(*a).getOutSlot(), nullptr);
}

} // namespace
