// The demo: what the library does, as far as it stands. A node type declared in code, a node of
// it with its fields set from text and printed back while a listener sees every change, a small
// scene of X3D catalog nodes with a shared (DEF/USE) node, printed as a tree, and events routed
// through a scene, one route loop included, with what each node received.
#include "base/Context.h"
#include "base/ConvertParam.h"
#include "base/CopyAction.h"
#include "base/FieldType.h"
#include "base/GXDWriteAction.h"
#include "base/Log.h"
#include "base/MFNode.h"
#include "base/MFString.h"
#include "base/MFVec3f.h"
#include "base/Node.h"
#include "base/NodePartDesc.h"
#include "base/NodeNameSpace.h"
#include "base/NodeProc.h"
#include "base/NodeType.h"
#include "base/NodeTypeNameSpace.h"
#include "base/ProtoDeclaration.h"
#include "base/ProtoInstance.h"
#include "base/SFBool.h"
#include "base/SFColor.h"
#include "base/SFFloat.h"
#include "base/SFInt32.h"
#include "base/SFNode.h"
#include "base/SFRotation.h"
#include "base/SFString.h"
#include "base/Route.h"
#include "base/SFTime.h"
#include "base/SmartPtr.h"
#include "base/ImageDownloadCache.h"
#include "base/Observer.h"
#include "base/System.h"
#include "base/TaskManager.h"
#include "base/VRMLWriteAction.h"
#include "base/X3DWriteAction.h"
#include "modules/x3d/X3DCatalog.h"
#include "platform/tessil/Thread.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>

using namespace Orvane;

void arrayDecodingDemo();  // ArrayDecodingDemo.cpp

namespace {

// Prints every change of the field it listens to.
class PrintChanges : public Field::Listener {
public:
    void fieldChanged(const double& time, Field& field) override
    {
        std::printf("  changed at %.2f: %s = %s\n", time, field.findName(), field.strValue().c_str());
    }
};

// Prints a node and everything below it; a node met before is printed as USE.
void printTree(const Node& node, int depth, std::set<const Node*>& seen, const char* field = nullptr)
{
    std::string indent(static_cast<std::size_t>(depth) * 2, ' ');
    std::string label = field ? std::string(field) + ": " : std::string();
    if (!seen.insert(&node).second) {
        std::printf("%s%sUSE %s\n", indent.c_str(), label.c_str(), node.getIDStr().c_str());
        return;
    }
    std::string def = node.hasName() ? "DEF " + node.name() + " " : std::string();
    std::string id = node.hasName() ? std::string() : " " + node.getIDStr();
    std::printf("%s%s%s%s%s (%u parents, %s)\n", indent.c_str(), label.c_str(), def.c_str(),
                node.type().name().c_str(), id.c_str(), node.parentCount(), node.stateName());
    for (unsigned i = 0; i < node.partCount(); ++i) {
        Field* f = node.findField(i);
        if (!f || (f->dataType() != SFNodeType && f->dataType() != MFNodeType)) {
            if (f && i > 1 && !f->valueIsDefault() && !f->strValue().empty())
                std::printf("%s  %s %s\n", indent.c_str(), f->findName(), f->strValue().c_str());
            continue;
        }
        if (f->dataType() == SFNodeType) {
            if (Node* child = static_cast<SFNode*>(f)->node())
                printTree(*child, depth + 1, seen, f->findName());
        } else {
            for (NodeLink& link : *static_cast<MFNode*>(f))
                printTree(*link.node(), depth + 1, seen, f->findName());
        }
    }
}

// A node as a loader makes one: created in its parent, its fields at their defaults.
Node* make(BaseObject* parent, const char* type, const char* name)
{
    Node* node = NodeType::createNode(parent, type, name, LoaderCreator);
    for (unsigned i = 2; node && i < node->partCount(); ++i)
        node->findField(i)->setDefaultValue(0.0);
    return node;
}

void sceneDemo()
{
    // The standard's node types come from the X3D catalog module.
    X3DCatalog& catalog = X3DCatalog::init();
    NodeType&   geometry = *NodeTypeNameSpace::findType(&theBaseNodeTypeFactory(), "X3DGeometryNode");
    std::printf("\nNode types: %u registered, %u of them concrete X3D types; Sphere is an X3DGeometryNode at "
                "distance %d\n",
                NodeType::typeCount(), catalog.concreteTypeCount(),
                NodeTypeNameSpace::findType(&theBaseNodeTypeFactory(), "Sphere")->isADistance(geometry));

    // A scene: a transform and a group that share one DEF'd shape, and a clock.
    SmartPtr<NodeNameSpace> scene(new NodeNameSpace("scene"));
    SmartPtr<Node> root(make(scene.get(), "Transform", "Root"));
    Node* left = make(root.get(), "Transform", "Left");
    left->findField("translation")->setValueByStr(0.0, "-2 0 0");
    Node* right = make(root.get(), "Group", nullptr);
    Node* shape = make(left, "Shape", "SharedBox");
    make(shape, "Box", nullptr)->findField("size")->setValueByStr(0.0, "1 2 3");
    right->addChild(shape);  // USE SharedBox
    make(make(right, "Shape", nullptr), "Sphere", nullptr)->findField("radius")->setValueByStr(0.0, "0.5");
    make(root.get(), "TimeSensor", "Clock")->findField("loop")->setValueByStr(0.0, "TRUE");
    // Only child nodes go into children: a Material is refused there.
    SmartPtr<Node> material(make(scene.get(), "Material", nullptr));
    Log::the().setLevel(LOG_LOG);
    std::printf("A Material among the root's children: %s\n",
                root->addChild(material.get(), "children") ? "taken" : "refused");
    Log::the().setLevel(LOG_NOTICE);
    root->setTreeState(0.0, Live);

    std::printf("\nThe scene, %d nodes in namespace \"%s\"; the shared shape is found by name: %s\n",
                scene->nodeCount(), scene->name().c_str(), scene->findNode("SharedBox") == shape ? "yes" : "no");
    std::set<const Node*> seen;
    printTree(*root, 1, seen);

    std::printf("\nGeometry nodes alive: %u; removing the shape from Left leaves it in the unnamed group:\n",
                geometry.objectCount());
    left->removeChild(shape);
    seen.clear();
    printTree(*root, 1, seen);
}

// Tells what its node received, and from where.
class PrintReceived : public NodeProc {
public:
    using NodeProc::NodeProc;
    bool fieldChanged(Node& node, Field& field, const double& time, Field* source) override
    {
        std::string from = source ? " from " + source->owner().getIDStr() + "." + source->findName() : "";
        std::printf("  t=%.0f  %-6s received %s = %s%s\n", time, node.getIDStr().c_str(), field.findName(),
                    field.strValue().c_str(), from.c_str());
        return true;
    }
    static NodeProc* create(NodeType&, Node& node) { return new PrintReceived(node); }
};

// Shows the library's own notices and infos while the events run.
class PrintLog : public LogSink {
public:
    void write(const LogRecord& record) override
    {
        std::printf("  (log) %.*s", static_cast<int>(record.text.size()), record.text.data());
    }
};

void eventDemo()
{
    static NodePartDesc relayParts[] = {
        NodePartDesc(2, PartMask::bit(2), ExposedFieldPartType, SFFloatType, NodePartDesc::CtorAutoProcess, "value",
                     nullptr, "0"),
        NodePartDesc(3, PartMask::bit(3), ExposedFieldPartType, SFInt32Type, NodePartDesc::CtorAutoProcess, "level",
                     nullptr, "0"),
    };
    static NodeType relay(theBaseNodeTypeFactory(), "Relay", "Demo", "Node", nullptr, "1.0", "Demo", nullptr,
                          "stable", nullptr, "Orvane", false, false, &Node::isNodeType, &Node::createNode,
                          &PrintReceived::create, relayParts, 2);
    relay.initType();

    // A context that forces routes between equal types, made before the log is shown.
    SmartPtr<Context> strict(Context::create());
    strict->contextSetup();

    PrintLog printLog;
    Log::the().setLevel(LOG_INFO);
    Log::the().setDefaultSinkEnabled(false);
    Log::the().addSink(printLog);

    std::printf("\nEvents routed through a scene:\n");
    SmartPtr<NodeNameSpace> scene(new NodeNameSpace("events"));
    SmartPtr<Node> source(relay.createNode(scene.get(), "Source"));
    SmartPtr<Node> lamp(relay.createNode(scene.get(), "Lamp"));
    SmartPtr<Node> meter(relay.createNode(scene.get(), "Meter"));
    SmartPtr<Node> echo(relay.createNode(scene.get(), "Echo"));
    for (Node* n : {source.get(), lamp.get(), meter.get(), echo.get()})
        n->setNodeState(0.0, Live);

    // Source.value fans out to Lamp and, converted, to Meter's integer level; Lamp and Echo pass
    // the value back and forth, a loop that the sending guard stops. The ROUTE statements go by
    // DEF and field names through the scene's namespace, as a loader makes them.
    std::printf("  ROUTE Source.value_changed TO Lamp.set_value\n");
    scene->createRoute("Source", "value_changed", "Lamp", "set_value");
    std::printf("  ROUTE Source.value TO Meter.level\n");
    scene->createRoute("Source", "value", "Meter", "level");
    std::printf("  ROUTE Lamp.value TO Echo.value, and back\n");
    scene->createRoute("Lamp", "value", "Echo", "value");
    scene->createRoute("Echo", "value", "Lamp", "value");
    std::printf("  ROUTE Lamp.value TO Nobody.value\n");
    scene->createRoute("Lamp", "value", "Nobody", "value");
    std::printf("  %u routes registered\n", Route::routeCount());

    for (int frame = 1; frame <= 2; ++frame) {
        std::printf(" frame %d: Source.value set to %.1f\n", frame, frame * 2.5);
        static_cast<SFFloat*>(source->findField("value"))->setValue(frame, frame * 2.5f, Field::FieldCaller);
    }

    // In it the mismatched route is refused.
    strict->addRoot(*source);
    static_cast<SFBool*>(strict->paramField("forceSingleDataTypeRoute"))->setValue(true);
    std::printf(" in a context with forceSingleDataTypeRoute: Source.value TO Echo.level is %s\n",
                scene->createRoute("Source", "value", "Echo", "level") ? "made" : "refused");
    strict->removeRoot(source->type());

    Log::the().removeSink(printLog);
    Log::the().setDefaultSinkEnabled(true);
    Log::the().setLevel(LOG_NOTICE);
}

// ---- Prototypes: a PROTO declared in code, two instances, events into one of them ----------

void protoDemo()
{
    static NodePartDesc bulbParts[] = {
        NodePartDesc(2, PartMask::bit(2), ExposedFieldPartType, SFFloatType, NodePartDesc::CtorAutoProcess,
                     "brightness", nullptr, "0"),
    };
    static NodeType bulb(theBaseNodeTypeFactory(), "Bulb", "Demo", "Node", nullptr, "1.0", "Demo", nullptr, "stable",
                         nullptr, "Orvane", false, false, &Node::isNodeType, &Node::createNode,
                         &PrintReceived::create, bulbParts, 1);
    bulb.initType();

    std::printf("\nPrototypes:\n");
    std::printf("  PROTO DimmedLamp [ inputOutput SFFloat level 0.5 ] { DEF Filament Bulb { brightness IS level } }\n");
    SmartPtr<NodeNameSpace> scene(new NodeNameSpace("protos"));
    ProtoDeclaration* lamp = ProtoDeclaration::declare(*scene, "DimmedLamp");
    lamp->addField("inputOutput", "SFFloat", "level", "0.5");
    lamp->createBodyNode("Bulb", "Filament");
    lamp->addIsLink("level", "Filament", "brightness");

    std::printf("  DEF Dimmer Bulb {}  DEF Kitchen DimmedLamp {}  DEF Hall DimmedLamp {}\n");
    SmartPtr<Node> dimmer(NodeType::createNode(scene.get(), "Bulb", "Dimmer", LoaderCreator));
    scene->setRoot(*dimmer);
    SmartPtr<Node> kitchen(NodeType::createNode(scene.get(), "DimmedLamp", "Kitchen", LoaderCreator));
    SmartPtr<Node> hall(NodeType::createNode(scene.get(), "DimmedLamp", "Hall", LoaderCreator));
    for (Node* n : {kitchen.get(), hall.get(), dimmer.get()})
        n->setNodeState(0.0, Live);
    std::printf("  ROUTE Dimmer.brightness TO Kitchen.level\n");
    scene->createRoute("Dimmer", "brightness", "Kitchen", "level");

    std::printf(" Dimmer.brightness set to 0.8:\n");
    static_cast<SFFloat*>(dimmer->findField("brightness"))->setValue(1.0, 0.8f, Field::FieldCaller);
    for (Node* instance : {kitchen.get(), hall.get()}) {
        Node* filament = ProtoInstance::cast(instance)->firstNode();
        std::printf("  %-7s level %s, its Filament's brightness %s\n", instance->getIDStr().c_str(),
                    instance->findField("level")->strValue().c_str(), filament->findField("brightness")->strValue().c_str());
    }
}

// ---- end of prototypes ----------------------------------------------------------------------

// ---- Writers: the scene saved as classic VRML, as a component graph and as X3D XML ---------

// Prints a file written by the demo, then removes it.
void printFile(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    std::string   line;
    while (std::getline(in, line))
        std::printf("  | %s\n", line.c_str());
    std::remove(path.c_str());
}

void writerDemo()
{
    X3DCatalog::init();
    SmartPtr<NodeNameSpace> scene(new NodeNameSpace("saved"));

    // PROTO Pulse [ inputOutput SFFloat level 0.5 ] { Shape { appearance Appearance {
    //   material DEF Glow Material { transparency IS level } } geometry Box {} } }
    ProtoDeclaration* pulse = ProtoDeclaration::declare(*scene, "Pulse");
    pulse->addField("inputOutput", "SFFloat", "level", "0.5");
    Node* body = pulse->createBodyNode("Shape", "Body");
    pulse->createBodyNode("Material", "Glow", pulse->createBodyNode("Appearance", nullptr, body));
    pulse->createBodyNode("Box", nullptr, body);
    pulse->addIsLink("level", "Glow", "transparency");

    // DEF Root Transform { children [ DEF Left Transform { translation -2 0 0 children [ DEF SharedBox
    //   Shape { geometry Box { size 1 2 3 } } ] } Group { children [ USE SharedBox DEF Beat Pulse {} ] }
    //   DEF Clock TimeSensor { loop TRUE } ] }  ROUTE Clock.fraction_changed TO Beat.set_level
    //   EXPORT SharedBox AS Crate
    SmartPtr<Node> root(make(scene.get(), "Transform", "Root"));
    Node* left = make(root.get(), "Transform", "Left");
    left->findField("translation")->setValueByStr(0.0, "-2 0 0");
    Node* shared = make(left, "Shape", "SharedBox");
    make(shared, "Box", nullptr)->findField("size")->setValueByStr(0.0, "1 2 3");
    Node* right = make(root.get(), "Group", nullptr);
    right->addChild(shared);
    SmartPtr<Node> beat(NodeType::createNode(scene.get(), "Pulse", "Beat", LoaderCreator));
    right->addChild(beat.get());
    make(root.get(), "TimeSensor", "Clock")->findField("loop")->setValueByStr(0.0, "TRUE");
    scene->createRoute("Clock", "fraction_changed", "Beat", "set_level");
    scene->exportNode("SharedBox", "Crate");

    std::string dir = std::filesystem::temp_directory_path().string();
    std::string wrl = dir + "/orvane-demo.wrl", gxd = dir + "/orvane-demo.gxd", x3d = dir + "/orvane-demo.x3d";
    VRMLWriteAction vrml;
    GXDWriteAction  graph;
    X3DWriteAction  xml;
    bool vrmlDone = vrml.writeFile(*root, wrl);
    bool graphDone = graph.writeFile(*root, gxd);
    bool xmlDone = xml.writeFile(*root, x3d);
    std::printf("\nThe scene written as classic VRML (%s):\n", vrmlDone ? "written" : "failed");
    printFile(wrl);
    std::printf("\nThe same scene as a component graph (%s):\n", graphDone ? "written" : "failed");
    printFile(gxd);
    std::printf("\nThe same scene as X3D in its XML encoding (%s):\n", xmlDone ? "written" : "failed");
    printFile(x3d);
}

// ---- end of writers -------------------------------------------------------------------------

} // namespace

// A value copied into fields of other types, and a field through its binary form.
void conversionDemo(Node& lamp)
{
    std::printf("\nValues converted across types:\n");
    Field& points = *lamp.findField("points");
    MFString texts(lamp);
    texts.setValueByField(0.0, points);
    std::printf("  points as MFString:         %s\n", texts.strValue().c_str());
    SFInt32 percent(lamp);
    ConvertParam toPercent(0, 100.0, ConvertParam::Nearest);
    percent.setValueByField(0.0, *lamp.findField("intensity"), &toPercent);
    std::printf("  intensity as SFInt32 (%%):   %d\n", percent.value());
    SFFloat number(lamp);
    bool taken = number.setValueByField(0.0, SFString(lamp, std::string("12")));
    std::printf("  SFString into SFFloat:      %s (a refused pair)\n", taken ? "converted" : "refused");

    std::string bytes = points.getBinValue();
    MFVec3f copy(lamp);
    copy.setValueByBin(0.0, bytes);
    std::printf("Binary round trip of points: %zu bytes, back as %s (%s)\n", bytes.size(), copy.strValue().c_str(),
                copy.equalValue(points) ? "equal" : "different");
}

// ---- Deep copy: a subtree copied into a second namespace, with its routes ----------------

namespace {

// Tells which copy of a node received a value: the namespace shows original or copy.
class ShowCopyEvents : public NodeProc {
public:
    using NodeProc::NodeProc;
    using NodeProc::copy;
    bool fieldChanged(Node& node, Field& field, const double&, Field*) override
    {
        std::printf("    %s/%s received %s = %s\n", node.nameSpace().name().c_str(), node.getIDStr().c_str(),
                    field.findName(), field.strValue().c_str());
        return true;
    }
    static NodeProc* create(NodeType&, Node& node) { return new ShowCopyEvents(node); }
};

void copyDemo()
{
    static NodePartDesc parts[] = {
        NodePartDesc(2, PartMask::bit(2), ExposedFieldPartType, SFFloatType, NodePartDesc::CtorAutoProcess, "level",
                     nullptr, "0"),
        NodePartDesc(3, PartMask::bit(3), ExposedFieldPartType, MFNodeType, NodePartDesc::CtorAutoProcess,
                     "children"),
    };
    static NodeType wire(theBaseNodeTypeFactory(), "Wire", "Demo", "Node", nullptr, "1.0", "Demo", nullptr, "stable",
                         nullptr, "Orvane", false, false, &Node::isNodeType, &Node::createNode,
                         &ShowCopyEvents::create, parts, 2);
    wire.initType();

    // Panel { children [ DEF Switch Wire { children DEF Bulb Wire }, DEF Dimmer Wire { children USE Bulb } ] }
    // with ROUTE Switch.level TO Dimmer.level and ROUTE Dimmer.level TO Bulb.level.
    SmartPtr<NodeNameSpace> original(new NodeNameSpace("original"));
    SmartPtr<Node> panel(wire.createNode(original.get(), "Panel"));
    Node* toggle = wire.createNode(panel->findField("children"), "Switch");
    Node* dimmer = wire.createNode(panel->findField("children"), "Dimmer");
    Node* bulb = wire.createNode(toggle->findField("children"), "Bulb");
    static_cast<MFNode*>(dimmer->findField("children"))->addChild(bulb);
    original->createRoute("Switch", "level", "Dimmer", "level");
    original->createRoute("Dimmer", "level", "Bulb", "level");
    panel->setTreeState(0.0, Live);

    SmartPtr<NodeNameSpace> second(new NodeNameSpace("copy"));
    CopyAction action(0.0, *original, *second);
    SmartPtr<Node> copy(action.copy(*panel));
    copy->setTreeState(0.0, Live);
    Node* bulbCopy = second->findNode("Bulb");
    std::printf("\nDeep copy of the Panel subtree into namespace \"copy\": %d nodes, %zu routes made again; the "
                "copied Bulb has %u parents, like the original\n",
                second->nodeCount(), action.routes().size(), bulbCopy->parentCount());

    std::printf("  copy/Switch.level set to 0.5:\n");
    static_cast<SFFloat*>(second->findNode("Switch")->findField("level"))->setValue(1.0, 0.5f);
    std::printf("  original/Switch.level set to 0.25:\n");
    static_cast<SFFloat*>(toggle->findField("level"))->setValue(2.0, 0.25f);
    std::printf("  Bulb levels: original %s, copy %s\n", bulb->findField("level")->strValue().c_str(),
                bulbCopy->findField("level")->strValue().c_str());
}

} // namespace

// ===== The runtime: System, a context run frame by frame, a queued load, a background read =====

namespace runtime {

// Tells what a node received through its routes.
class Announce : public NodeProc {
public:
    using NodeProc::NodeProc;
    bool fieldChanged(Node& node, Field& field, const double& time, Field* source) override
    {
        if (source)
            std::printf("    t=%.1f  %s.%s = %s (from %s)\n", time, node.name().c_str(), field.findName(),
                        field.strValue().c_str(), source->owner().name().c_str());
        return true;
    }
    static NodeProc* create(NodeType&, Node& node) { return new Announce(node); }
};

// The world root's processor plays the frame clock: it hands the context its frame values.
class WorldClock : public NodeProc {
public:
    using NodeProc::NodeProc;
    void tick(double time) { setContextState(time, 10.0, 10.0, 0.1, 1.0f); }
    static NodeProc* create(NodeType&, Node& node) { return new WorldClock(node); }
};

// The downloaded file arrives here, on the application thread, at a frame.
class FileArrived : public ImageDownloadCache::Listener {
public:
    void downloadFinished(ImageDownloadCache::Entry& entry) override
    {
        std::printf("    download finished: %zu bytes, \"%s\", on the application thread: %s\n",
                    entry.data().size(), entry.data().c_str(), Tessil::Thread::self() == app ? "yes" : "no");
    }
    Tessil::Thread::Id app = Tessil::Thread::self();
};

// Shows the library's plain lines and warnings as they come.
class PrintLines : public LogSink {
public:
    void write(const LogRecord& record) override
    {
        std::printf("  (log) %.*s", static_cast<int>(record.text.size()), record.text.data());
    }
};

// Every frame the "runFrame" observer moves the clock node to the frame time; routes carry it on.
void moveClock(const double& time, Observer*, BaseObject*, BaseObject*, BaseObject*, const void* clock)
{
    auto* node = static_cast<Node*>(const_cast<void*>(clock));
    static_cast<SFTime*>(node->findField("time"))->setValue(time, time, Field::FieldCaller);
}

void runtimeDemo()
{
    static NodePartDesc worldParts[] = {
        NodePartDesc(2, PartMask::bit(2), ExposedFieldPartType, MFNodeType, NodePartDesc::CtorAutoProcess,
                     "children"),
    };
    static NodePartDesc tickerParts[] = {
        NodePartDesc(2, PartMask::bit(2), ExposedFieldPartType, SFTimeType, NodePartDesc::CtorAutoProcess, "time",
                     nullptr, "0"),
    };
    // A context root type, and a node that passes a time on.
    static NodeType world(theBaseNodeTypeFactory(), "DemoWorld", "Demo", "Node", nullptr, "1.0", "Demo", nullptr,
                          "stable", "A demo scene root", "Orvane", false, true, &Node::isNodeType, &Node::createNode,
                          &WorldClock::create, worldParts, 1);
    static NodeType ticker(theBaseNodeTypeFactory(), "Ticker", "Demo", "Node", nullptr, "1.0", "Demo", nullptr,
                           "stable", "Passes a time on", "Orvane", false, false, &Node::isNodeType,
                           &Node::createNode, &Announce::create, tickerParts, 1);

    PrintLines lines;
    Log::the().setLevel(LOG_WARNING);
    Log::the().setDefaultSinkEnabled(false);
    Log::the().addSink(lines);

    std::printf("\nThe runtime, driven through System:\n");
    System::the().init(0, nullptr, System::BackendInitParam | System::BackendExitParam);

    // The main scene: a clock routed to a hand, and the hand to a dial, so events cascade.
    SmartPtr<Context> context(Context::create("main"));
    System::the().addContext(*context);
    Node* root = world.createNode(context.get());
    Node* clock = ticker.createNode(root, "Clock");
    ticker.createNode(root, "Hand");
    ticker.createNode(root, "Dial");
    root->nameSpace().createRoute("Clock", "time", "Hand", "time");
    root->nameSpace().createRoute("Hand", "time", "Dial", "time");
    context->setRootState(0.0, Live);
    Observer frames(context->runFrameSubject());
    frames.addCallback(&moveClock, clock);

    // A second scene, queued with load and merged into the running one at the next frame.
    SmartPtr<Context> extra(Context::create("extra"));
    Node* extraRoot = world.createNode(extra.get());
    ticker.createNode(extraRoot, "Late");

    // A file read on the worker pool and handed over at a frame.
    TaskManager::the().setNumThreads(2);
    const std::string path = (std::filesystem::temp_directory_path() / "orvane-demo-download.txt").string();
    std::FILE* out = std::fopen(path.c_str(), "w");
    if (out) {
        std::fputs("hello from disk", out);
        std::fclose(out);
    }
    FileArrived arrived;
    ImageDownloadCache::the().request(path, &arrived);

    auto* worldClock = static_cast<WorldClock*>(root->proc());
    for (int frame = 1; frame <= 4; ++frame) {
        worldClock->tick(frame * 0.1);
        if (frame == 3) {
            context->load(*extra, Context::MergeLoad);
            std::printf("  frame %d: scene \"extra\" queued\n", frame);
        } else {
            std::printf("  frame %d:\n", frame);
        }
        double next = System::runContextBag();
        std::printf("    next frame in %.2f s; the world has %u children\n", next,
                    static_cast<MFNode*>(root->findField("children"))->size());
        Tessil::Thread::sleep(20);
    }

    context = nullptr;
    extra = nullptr;
    std::remove(path.c_str());
    std::printf("  exit:\n");
    System::the().exit();

    Log::the().removeSink(lines);
    Log::the().setDefaultSinkEnabled(true);
}

} // namespace runtime

// ===== end of the runtime part =====

int main()
{
    Log::the().setLevel(LOG_NOTICE);
    std::printf("Orvane demo: %u field types registered\n\n", FieldType::typeCount());

    // A node type declared in code: one descriptor per field, in slot order.
    NodePartDesc parts[] = {
        NodePartDesc(2, PartMask::bit(2), ExposedFieldPartType, SFFloatType, NodePartDesc::CtorAutoProcess,
                     "intensity", nullptr, "1"),
        NodePartDesc(3, PartMask::bit(3), ExposedFieldPartType, SFColorType, NodePartDesc::CtorAutoProcess,
                     "color", nullptr, "1 1 1"),
        NodePartDesc(4, PartMask::bit(4), ExposedFieldPartType, SFRotationType, NodePartDesc::CtorAutoProcess,
                     "orientation", nullptr, "0 0 1 0"),
        NodePartDesc(5, PartMask::bit(5), ExposedFieldPartType, MFVec3fType, NodePartDesc::CtorAutoProcess,
                     "points"),
        NodePartDesc(6, PartMask::bit(6), ExposedFieldPartType, MFStringType, NodePartDesc::CtorAutoProcess,
                     "labels"),
        NodePartDesc(7, PartMask::bit(7), FieldPartType, SFBoolType, 0, "visible", nullptr, "TRUE"),
        NodePartDesc(8, PartMask::bit(8), EventOutPartType, SFTimeType, 0, "touchTime"),
    };
    NodeType lampType(theBaseNodeTypeFactory(), "Lamp", "Demo", "Node", nullptr, "1.0", "Demo", nullptr, "stable",
                      nullptr, "Orvane", false, false, &Node::isNodeType, &Node::createNode, &Node::createProc, parts,
                      sizeof parts / sizeof parts[0]);
    SmartPtr<NodeNameSpace> lampScene(new NodeNameSpace("lamps"));
    SmartPtr<Node> lamp(lampType.createNode(lampScene.get(), "Lamp1"));
    for (unsigned i = 2; i < lamp->partCount(); ++i)
        lamp->findField(i)->setDefaultValue(0.0);
    lamp->setNodeState(0.0, Live);

    PrintChanges printer;
    for (unsigned i = 2; i < lamp->partCount(); ++i)
        lamp->findField(i)->addListener(&printer);

    std::printf("Fields set from text:\n");
    const char* texts[][2] = {
        {"intensity", "  0.75"},
        {"color", "1 0.5 0"},
        {"orientation", "0 1 0 1.5708"},
        {"points", "0 0 0, 1 0 0, 1 1 0"},
        {"labels", "\"left \\\"wing\\\"\" 'right'"},
        {"visible", "no"},
        {"touchTime", "1234567890.123456"},
    };
    for (unsigned i = 2; i < lamp->partCount(); ++i)
        lamp->findField(i)->setValueByStr(i - 1.0, texts[i - 2][1]);

    std::printf("\nThe node's fields, printed back:\n");
    for (unsigned i = 2; i < lamp->partCount(); ++i) {
        Field* field = lamp->findField(i);
        std::printf("  %-10s %-12s %-12s %s%s\n", field->dataTypeName().c_str(), field->findName(),
                    NodePartDesc::partTypeName(field->type()), field->strValue().c_str(),
                    field->valueIsDefault() ? "  (default)" : "");
    }
    std::printf("\nChanged mask of the node: 0x%llx\n", lamp->changedMask().value());
    for (unsigned i = 2; i < lamp->partCount(); ++i)
        lamp->findField(i)->removeListener(&printer);

    conversionDemo(*lamp);
    sceneDemo();
    eventDemo();
    copyDemo();
    protoDemo();
    writerDemo();
    arrayDecodingDemo();
    runtime::runtimeDemo();
    return 0;
}
