#include "base/Context.h"
#include "base/EventInSlot.h"
#include "base/EventOutSlot.h"
#include "base/Observer.h"
#include "base/Route.h"
#include "base/SFBool.h"
#include "base/SFFloat.h"
#include "base/Subject.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TypeScope.h"

#include <gtest/gtest.h>

#include <string>

using namespace Orvane;
using namespace Orvane::Test;

namespace {

struct RouteByNameTest : ::testing::Test {
    TypeScope scope;
    NodeType& sensor = scope.declare("Sensor", "Node",
                                     {{"value", ExposedFieldPartType, SFFloatType, NodePartDesc::CtorAutoProcess},
                                      {"count", ExposedFieldPartType, SFInt32Type, NodePartDesc::CtorAutoProcess},
                                      {"plain", FieldPartType, SFFloatType},
                                      {"fired", EventOutPartType, SFFloatType},
                                      {"trigger", EventInPartType, SFFloatType, NodePartDesc::CtorAutoProcess}});
    NodeNameSpace& ns = scope.nodes();
    SmartPtr<Node> a = make(ns, "A");
    SmartPtr<Node> b = make(ns, "B");

    SmartPtr<Node> make(NodeNameSpace& in, const char* name)
    {
        SmartPtr<Node> node(sensor.createNode(&in, name));
        node->setNodeState(0.0, Live);
        return node;
    }
    static float value(Node& node) { return static_cast<SFFloat*>(node.findField("value"))->value(); }
    static void  send(Node& node, float v)
    {
        static_cast<SFFloat*>(node.findField("value"))->setValue(1.0, v, Field::FieldCaller);
    }
};

// The log line of a refused route: "Can't <what> ROUTE >A.f< TO >B.g<: <reason>", NULL for null names.
struct Refused {
    const char *from, *fromField, *to, *toField, *reason;

    std::string line(const char* what) const
    {
        auto name = [](const char* n) { return std::string(n ? n : "NULL"); };
        return "Can't " + std::string(what) + " ROUTE >" + name(from) + "." + name(fromField) + "< TO >" + name(to) +
               "." + name(toField) + "<: " + reason + "\n";
    }
};

TEST_F(RouteByNameTest, CreateRouteFailsWithEachReason)
{
    LogCapture log;
    // A plain field and an eventIn have no sending side; a missing field name finds nothing.
    const Refused cases[] = {
        {nullptr, "value", "B", "value", "Invalid fromNodeName"}, {"", "value", "B", "value", "Invalid fromNodeName"},
        {"Nobody", "value", "B", "value", "Invalid fromNode"},    {"A", "plain", "B", "value", "Invalid outSlot"},
        {"A", "trigger", "B", "value", "Invalid outSlot"},        {"A", "nothing", "B", "value", "Invalid outSlot"},
        {"A", nullptr, "B", "value", "Invalid outSlot"},          {"A", "value", nullptr, "value", "Invalid toNodeName"},
        {"A", "value", "Nobody", "value", "Invalid toNode"},      {"A", "value", "B", "fired", "Invalid inSlot"},
        {"A", "value", "B", "plain", "Invalid inSlot"},
    };
    for (const Refused& c : cases) {
        SCOPED_TRACE(c.line("create"));
        log.clear();
        EXPECT_EQ(ns.createRoute(c.from, c.fromField, c.to, c.toField), nullptr);
        EXPECT_EQ(log.count(c.line("create"), LOG_WARNING), 1) << log.all();
    }
    EXPECT_EQ(a->findField("plain")->getOutSlot(), nullptr);

    // SFFloat to SFInt32 passes unless the sending node's context forces equal types.
    SmartPtr<Context> context(Context::create());
    context->addRoot(*a);
    static_cast<SFBool*>(context->paramField(Route::forceSingleDataTypeRouteParam()))->setValue(true);
    EXPECT_EQ(ns.createRoute("A", "value", "B", "count"), nullptr);
    EXPECT_EQ(log.count(Refused{"A", "value", "B", "count", "Type mismatch"}.line("create"), LOG_WARNING), 1)
        << log.all();
    context->removeRoot(sensor);
    EXPECT_NE(ns.createRoute("A", "value", "B", "count"), nullptr);
}

TEST_F(RouteByNameTest, CreateRouteBySlotFieldAndIdNames)
{
    SmartPtr<Node> unnamed = make(ns, nullptr);
    const std::string id = unnamed->getIDStr();
    LogCapture log;
    Route* first = ns.createRoute(" A ", "value_changed", id.c_str(), "set_value");
    ASSERT_NE(first, nullptr) << log.all();
    EXPECT_EQ(log.count("CreateRoute: > A .value_changed< to >" + id + ".set_value<\n", LOG_INFO), 1) << log.all();
    EXPECT_EQ(first->type(), Route::DEFAULT);
    EXPECT_EQ(&first->inSlot().node(), unnamed.get());
    // The same route by field names is the same route.
    EXPECT_EQ(ns.createRoute("A", "value", id.c_str(), "value"), first);
    EXPECT_EQ(a->findField("value")->outRouteCount(), 1u);
    // An eventOut feeds an eventIn.
    ASSERT_NE(ns.createRoute("B", "fired", "A", "trigger"), nullptr);

    send(*a, 4.0f);
    EXPECT_FLOAT_EQ(value(*unnamed), 4.0f);
    EXPECT_EQ(ns.dynamicContent() & 2u, 2u);
}

TEST_F(RouteByNameTest, DeleteRouteByNames)
{
    ASSERT_NE(ns.createRoute("A", "value", "B", "value"), nullptr);
    const unsigned routes = Route::routeCount();
    LogCapture log;
    EXPECT_TRUE(ns.deleteRoute("A", "value_changed", "B", "set_value"));
    EXPECT_EQ(log.count("DeleteRoute: >A.value_changed< to >B.set_value<\n", LOG_INFO), 1) << log.all();
    EXPECT_EQ(Route::routeCount(), routes - 1);
    send(*a, 2.0f);
    EXPECT_FLOAT_EQ(value(*b), 0.0f);

    // Deleting makes no slots: a field that never sent has no route to delete.
    const Refused cases[] = {{"A", "value", "B", "value", "Type mismatch"},
                             {nullptr, "value", "B", "value", "Invalid fromNode"},
                             {"A", "fired", "B", "value", "Invalid outSlot"},
                             {"A", "value", "Nobody", "value", "Invalid toNode"},
                             {"A", "value", "B", "count", "Invalid inSlot"}};
    for (const Refused& c : cases) {
        log.clear();
        EXPECT_FALSE(ns.deleteRoute(c.from, c.fromField, c.to, c.toField));
        EXPECT_EQ(log.count(c.line("delete"), LOG_WARNING), 1) << log.all();
    }
    EXPECT_EQ(a->findField("fired")->getOutSlot(), nullptr);
    EXPECT_EQ(Route::routeCount(), routes - 1);
}

TEST_F(RouteByNameTest, ContextRootTypeNameStandsForItsRoot)
{
    NodeType& browser = scope.declare("Browser", "Node",
                                      {{"level", FieldPartType, SFFloatType, NodePartDesc::CtorAutoProcess}}, 2,
                                      TypeOptions{.contextRoot = true});
    LogCapture log;
    // Without a context a root is made, kept by the namespace, and reused; its plain field is
    // given slots all the same.
    Route* toB = ns.createRoute("Browser", "level", "B", "value");
    ASSERT_NE(toB, nullptr) << log.all();
    Node& made = toB->outSlot().node();
    EXPECT_EQ(&made.type(), &browser);
    EXPECT_EQ(made.creator(), SystemCreator);
    Route* toA = ns.createRoute("Browser", "level", "A", "value");
    ASSERT_NE(toA, nullptr);
    EXPECT_EQ(&toA->outSlot().node(), &made);
    Route* back = ns.createRoute("B", "value", "Browser", "level");
    ASSERT_NE(back, nullptr);
    EXPECT_EQ(&back->inSlot().node(), &made);
    EXPECT_TRUE(ns.deleteRoute("Browser", "level", "A", "value"));

    // A context's root of the type wins.
    SmartPtr<Context> context(Context::create());
    SmartPtr<Node> root(browser.createNode(nullptr, "Root", SystemCreator));
    context->addRoot(*a);
    context->addRoot(*root);
    Route* fromRoot = ns.createRoute("Browser", "level", "A", "value");
    ASSERT_NE(fromRoot, nullptr);
    EXPECT_EQ(&fromRoot->outSlot().node(), root.get());
    EXPECT_FALSE(ns.deleteRoute("Browser", "level", "B", "value"));
    context->removeRoot(browser);
    context->removeRoot(sensor);
    // Only context root types count; an ordinary type name is no node.
    EXPECT_EQ(ns.createRoute("Sensor", "value", "B", "value"), nullptr);
}

struct EventCount {
    int         events = 0;
    Field*      lastValue = nullptr;
    BaseObject* lastSlot = nullptr;
    static void note(const double&, Observer*, BaseObject* value, BaseObject* slot, BaseObject*, const void* self)
    {
        auto* count = static_cast<EventCount*>(const_cast<void*>(self));
        ++count->events;
        count->lastValue = static_cast<Field*>(value);
        count->lastSlot = slot;
    }
};

TEST_F(RouteByNameTest, ExportedEventsReachTheImportingNamespace)
{
    SmartPtr<NodeNameSpace> inline_(new NodeNameSpace("inline", &ns));
    SmartPtr<Node> hidden = make(*inline_, "Hidden");
    EXPECT_FALSE(hidden->isExported());
    ASSERT_TRUE(inline_->exportNode("Hidden", "Lamp"));
    EXPECT_TRUE(hidden->isExported());
    EXPECT_EQ(inline_->getExportedNode("Lamp"), hidden.get());
    ASSERT_TRUE(ns.importNode("inline", "Lamp", "MyLamp"));
    EXPECT_EQ(ns.getImportedNode("MyLamp"), hidden.get());
    EXPECT_EQ(ns.findNode("MyLamp"), hidden.get());
    EXPECT_EQ(inline_->importers().size(), 1u);

    EventCount seen;
    Observer watcher(ns.importEventSubject());
    watcher.addCallback(&EventCount::note, &seen);

    // A ROUTE from the imported name joins the exported node itself, as an IMPORT route.
    Route* route = ns.createRoute("MyLamp", "value", "B", "value");
    ASSERT_NE(route, nullptr);
    EXPECT_EQ(route->type(), Route::IMPORT);
    send(*hidden, 3.0f);
    EXPECT_FLOAT_EQ(value(*b), 3.0f);
    EXPECT_EQ(seen.events, 1);
    EXPECT_EQ(seen.lastValue, hidden->findField("value"));
    EXPECT_EQ(seen.lastSlot, hidden->findField("value")->getOutSlot());
    // Nodes that are not exported stay private.
    SmartPtr<Node> other = make(*inline_, "Other");
    send(*other, 1.0f);
    EXPECT_EQ(seen.events, 1);

    // Events the other way go straight into the exported node.
    SFFloat input(*b);
    input.setValue(8.0f);
    EXPECT_TRUE(ns.transferEventToExport(2.0, "MyLamp", "set_value", input));
    EXPECT_FLOAT_EQ(value(*hidden), 8.0f);
    EXPECT_EQ(seen.events, 2);

    // Unpublished, the node's events stay home.
    EXPECT_TRUE(inline_->removeExportedNode("Lamp"));
    EXPECT_FALSE(hidden->isExported());
    send(*hidden, 5.0f);
    EXPECT_EQ(seen.events, 2);
    EXPECT_FLOAT_EQ(value(*b), 5.0f);  // the route itself stays
    watcher.setSubject(nullptr);
}

TEST_F(RouteByNameTest, ImportExportErrors)
{
    SmartPtr<NodeNameSpace> inline_(new NodeNameSpace("inline", &ns));
    SmartPtr<Node> hidden = make(*inline_, "Hidden");
    SmartPtr<NodeNameSpace> loose(new NodeNameSpace("loose", nullptr, &scope.types()));
    SFFloat input(*b);
    LogCapture log;
    auto error = [&](const std::string& text) { return log.count("Import/Export error: " + text, LOG_WARNING); };

    EXPECT_FALSE(inline_->exportNode("Nobody", "X"));
    EXPECT_FALSE(inline_->exportNode(*a, "X"));
    EXPECT_EQ(error("cannot find node\n"), 2) << log.all();
    SmartPtr<Node> unnamed = make(*inline_, nullptr);
    EXPECT_FALSE(inline_->exportNode(*unnamed, ""));
    EXPECT_EQ(error(unnamed->getIDStr() + " missing exportName\n"), 1);
    ASSERT_TRUE(inline_->exportNode("Hidden"));  // under its own name
    EXPECT_EQ(inline_->getExportedNode("Hidden"), hidden.get());

    EXPECT_FALSE(ns.importNode(*inline_, ""));
    EXPECT_EQ(error("inline missing exportName\n"), 1);
    EXPECT_FALSE(ns.importNode(*loose, "Hidden"));
    EXPECT_EQ(error("loose.Hidden no parent namespace\n"), 1);
    EXPECT_FALSE(ns.importNode("nowhere", "Hidden"));
    EXPECT_EQ(error("missing export description\n"), 1);

    // An import may name an export that does not exist (yet); using it reports that.
    ASSERT_TRUE(ns.importNode(*inline_, "Later", "Pending"));
    EXPECT_EQ(ns.getImportedNode("Pending"), nullptr);
    EXPECT_EQ(error("inline.Later cannot find export\n"), 1);
    EXPECT_EQ(ns.createRoute("Pending", "value", "B", "value"), nullptr);
    EXPECT_EQ(log.count("Can't create ROUTE >Pending.value< TO >B.value<: Invalid fromNode\n"), 1);
    EXPECT_FALSE(ns.transferEventToExport(0.0, "Pending", "value", input));
    EXPECT_EQ(error("cannot find node\n"), 3);
    EXPECT_EQ(ns.getImportedNode("NoImport"), nullptr);

    ASSERT_TRUE(ns.importNode(*inline_, "Hidden"));
    EXPECT_FALSE(ns.transferEventToExport(0.0, "Hidden", "missing", input));
    EXPECT_EQ(error("cannot find field\n"), 1);
    EXPECT_FALSE(ns.transferEventToExport(0.0, "Hidden", "fired", input));
    EXPECT_EQ(error("cannot provide inslot\n"), 1);

    // The exporting scene goes: the import stays and reports the missing exporter.
    hidden = nullptr;
    unnamed = nullptr;
    inline_ = nullptr;
    EXPECT_EQ(ns.getImportedNode("Hidden"), nullptr);
    EXPECT_EQ(error("missing export description\n"), 2);
    EXPECT_TRUE(ns.removeImport("Hidden"));
    EXPECT_FALSE(ns.removeImport("Hidden"));
}

TEST_F(RouteByNameTest, ExportsFollowTheirNodes)
{
    SmartPtr<NodeNameSpace> inline_(new NodeNameSpace("inline", &ns));
    SmartPtr<Node> hidden = make(*inline_, "Hidden");
    ASSERT_TRUE(inline_->exportNode("Hidden", "One"));
    ASSERT_TRUE(inline_->exportNode("Hidden", "Two"));
    EXPECT_TRUE(inline_->removeExportedNode("One"));
    EXPECT_TRUE(hidden->isExported());
    // An export name handed to another node takes the export from the first.
    SmartPtr<Node> other = make(*inline_, "Other");
    ASSERT_TRUE(inline_->exportNode("Other", "Two"));
    EXPECT_FALSE(hidden->isExported());
    EXPECT_TRUE(other->isExported());
    ASSERT_TRUE(inline_->exportNode("Hidden", "Two"));
    EXPECT_FALSE(other->isExported());
    // A node that moves or dies takes its exports along.
    EXPECT_TRUE(hidden->transfer(0.0, ns));
    EXPECT_FALSE(hidden->isExported());
    EXPECT_EQ(inline_->getExportedNode("Two"), nullptr);
    EXPECT_EQ(ns.findNode("Hidden"), hidden.get());
    SmartPtr<Node> again = make(*inline_, "Again");
    ASSERT_TRUE(inline_->exportNode("Again", "Two"));
    again = nullptr;
    EXPECT_TRUE(inline_->exportVec().empty());
}

} // namespace
