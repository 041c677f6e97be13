// What a change of a field's value sets off: marks, the node's reaction, listeners, logs.
#include "base/NodeProc.h"
#include "tests/fields/FieldKit.h"

using namespace Orvane;
using namespace Orvane::Test;

namespace {

// Records what the node's reaction saw; answers with `accept`.
struct RecordingProc : NodeProc {
    std::vector<std::string> calls;
    bool                     accept = true;
    bool*                    destroyed = nullptr;
    SmartPtr<Node>*          dropOnChange = nullptr;

    ~RecordingProc() override
    {
        if (destroyed)
            *destroyed = true;
    }
    bool fieldChanged(Node&, Field& field, const double&, Field* source) override
    {
        calls.push_back(field.nameOrNoName());
        EXPECT_EQ(source, nullptr);
        if (dropOnChange)
            *dropOnChange = nullptr;
        return accept;
    }
};

// Remembers the times of the sends, and their order in `trace` under its id.
struct SendRecorder : Field::Listener {
    std::vector<double> times;
    std::vector<Field*> fields;
    std::string*        trace = nullptr;
    char                id = 0;
    void fieldChanged(const double& time, Field& field) override
    {
        times.push_back(time);
        fields.push_back(&field);
        if (trace)
            *trace += id;
    }
};

enum Part : unsigned { Exposed, ExposedAuto, EventIn, EventOut, PlainField, WithDefault, Vec3, EventOutAuto };

struct FieldChangeTest : ::testing::Test {
    TestNodeType type{"ChangeNode",
                      {{"ef", ExposedFieldPartType, SFFloatType},
                       {"efAuto", ExposedFieldPartType, SFFloatType, NodePartDesc::CtorAutoProcess},
                       {"in", EventInPartType, SFFloatType},
                       {"out", EventOutPartType, SFFloatType},
                       {"fld", FieldPartType, SFFloatType},
                       {"withDefault", ExposedFieldPartType, SFFloatType, 0, "2.5"},
                       {"vec", FieldPartType, SFVec3fType, 0, "0 1 0"},
                       {"outAuto", EventOutPartType, SFFloatType, NodePartDesc::CtorAutoProcess}}};
    SmartPtr<Node> node = type.make();
    RecordingProc* proc = new RecordingProc;
    SendRecorder   sent;

    FieldChangeTest() { node->setProc(proc); }

    SFFloat& field(Part p) { return *static_cast<SFFloat*>(node->findField(p)); }
    bool     masked(Part p) { return node->checkChangedMask(PartMask::bit(p)); }
};

struct ChangeCase {
    const char*       what;
    Part              part;
    NodeState         state;
    Field::CallerType caller;
    bool              accept;
    bool              receives;
    bool              sends;
    double            sendTime;
};

} // namespace

TEST_F(FieldChangeTest, AccessTypeStateAndCallerDecideWhatHappens)
{
    const ChangeCase cases[] = {
        {"exposed, realize, own setter", Exposed, Orvane::Realize, Field::FieldCaller, true, true, false, 0},
        {"exposed, realize, send caller", Exposed, Realize, Field::SendCaller, true, true, true, 7},
        {"exposed, live, own setter", Exposed, Live, Field::FieldCaller, true, true, false, 0},
        {"exposed, send caller, rejected", Exposed, Live, Field::SendCaller, false, true, false, 0},
        {"auto exposed, realize", ExposedAuto, Orvane::Realize, Field::FieldCaller, true, true, true, 7},
        {"auto exposed, rejected", ExposedAuto, Orvane::Realize, Field::FieldCaller, false, true, false, 0},
        {"eventIn, accepted", EventIn, Orvane::Realize, Field::FieldCaller, true, true, true, 7},
        {"eventIn, rejected", EventIn, Live, Field::FieldCaller, false, true, false, 0},
        {"eventOut", EventOut, Orvane::Realize, Field::FieldCaller, false, false, true, 7},
        {"field", PlainField, Live, Field::FieldCaller, false, false, true, 7},
        {"exposed, setup", Exposed, Orvane::Setup, Field::FieldCaller, false, false, true, 0},
        {"auto exposed, creation", ExposedAuto, Creation, Field::SendCaller, true, false, true, 0},
        {"eventIn, dispose", EventIn, Dispose, Field::FieldCaller, true, false, true, 0},
        {"field, setup", PlainField, Orvane::Setup, Field::FieldCaller, true, false, true, 0},
    };
    for (const ChangeCase& c : cases) {
        SCOPED_TRACE(c.what);
        node->clearChangedMask();
        node->setStateUnchecked(c.state);
        proc->calls.clear();
        proc->accept = c.accept;
        SendRecorder listener;
        SFFloat&     f = field(c.part);
        f.addListener(&listener);

        f.setValue(7.0, 1.5f, c.caller);

        EXPECT_EQ(f.value(), 1.5f);
        EXPECT_TRUE(f.changed());
        EXPECT_EQ(node->changedMask(), PartMask::bit(c.part)) << "only this field's bit";
        EXPECT_EQ(proc->calls.size(), c.receives ? 1u : 0u);
        EXPECT_EQ(listener.times, c.sends ? std::vector<double>{c.sendTime} : std::vector<double>{});
        EXPECT_EQ(listener.fields, c.sends ? std::vector<Field*>{&f} : std::vector<Field*>{});
        f.removeListener(&listener);
    }
}

TEST_F(FieldChangeTest, UnknownAccessTypeDoesNothingInTheLiveStates)
{
    LogCapture   log;
    TestNodeType odd{"OddNode", {{"odd", static_cast<NodePartType>(3), SFFloatType}}};
    EXPECT_EQ(log.count("Unknown NodePartType in NodePartDesc Const.: 3\n", LOG_WARNING), 1) << log.all();
    SmartPtr<Node> n = odd.make();
    auto*          p = new RecordingProc;
    n->setProc(p);
    Field* f = n->findField(0);
    ASSERT_NE(f, nullptr);
    f->addListener(&sent);

    n->setStateUnchecked(Live);
    f->processValueChange(1.0, Field::SendCaller);
    EXPECT_FALSE(f->changed());
    EXPECT_TRUE(p->calls.empty());
    EXPECT_TRUE(sent.times.empty());

    n->setStateUnchecked(Orvane::Setup);
    f->processValueChange(1.0, Field::SendCaller);
    EXPECT_TRUE(f->changed());
    EXPECT_EQ(sent.times, std::vector<double>{0.0});
}

TEST_F(FieldChangeTest, WithoutDescriptorNothingHappens)
{
    struct Markable : SFFloat {
        using SFFloat::SFFloat;
        using Field::markChanged;
    };
    node->setStateUnchecked(Realize);
    Markable loose(*node);
    loose.addListener(&sent);
    LogCapture log;
    loose.setValue(3.0, 2.0f, Field::SendCaller);
    loose.setValueByStr(3.0, "4");
    EXPECT_EQ(loose.value(), 4.0f);
    EXPECT_FALSE(loose.changed());
    EXPECT_TRUE(proc->calls.empty() && sent.times.empty());
    EXPECT_EQ(log.size(), 0u) << log.all();

    loose.markChanged();
    EXPECT_EQ(log.count("Field without desc in XField::markChanged()\n", LOG_INFO), 1) << log.all();
    EXPECT_TRUE(node->changedMask().empty());
    EXPECT_FALSE(node->hasFlag(Node::MarkedFlag));
}

TEST_F(FieldChangeTest, FirstChangeMarksTheParentsOnce)
{
    TestNodeType   parentType{"Parent", {{"children", ExposedFieldPartType, MFNodeType}}};
    SmartPtr<Node> parent = parentType.make();
    auto&          children = *static_cast<MFNode*>(parent->findField(0));
    ASSERT_NE(children.addChild(node.get()), nullptr);
    parent->clearChangedMask();
    node->setStateUnchecked(Realize);

    field(PlainField).setValue(1.0, 1.0f);
    EXPECT_TRUE(node->hasFlag(Node::MarkedFlag));
    EXPECT_TRUE(parent->hasFlag(Node::ChildChangedFlag));

    // Already marked: the parents are not told again until the node's mask is cleared.
    parent->clearChangedMask();
    field(EventOut).setValue(2.0, 1.0f);
    EXPECT_FALSE(parent->hasFlag(Node::ChildChangedFlag));
    EXPECT_EQ(node->changedMask(), PartMask::bit(PlainField) | PartMask::bit(EventOut));
    node->clearChangedMask();
    field(PlainField).setValue(3.0, 1.0f);
    EXPECT_TRUE(parent->hasFlag(Node::ChildChangedFlag));
    children.clear();
}

TEST_F(FieldChangeTest, ChangeDuringItsOwnCascadeWarnsOnlyForAutoProcessedFields)
{
    node->setStateUnchecked(Realize);
    LogCapture     log;
    const PartMask changing = PartMask::bit(EventOutAuto) | PartMask::bit(EventOut);
    node->setIsChanging(changing);

    field(EventOutAuto).addListener(&sent);
    field(EventOutAuto).setValue(1.0, 2.0f);
    const std::string warning = "ChangeNode/" + node->getIDStr() + ".outAuto: processValueChange() && _isChangingMask set\n";
    EXPECT_EQ(log.count(warning, LOG_WARNING), 1) << log.all();
    // ... and carries on.
    EXPECT_EQ(sent.times, std::vector<double>{1.0});
    EXPECT_TRUE(masked(EventOutAuto));

    field(EventOut).setValue(1.0, 2.0f);
    EXPECT_TRUE(masked(EventOut));
    EXPECT_FALSE(log.containsFragment(".out: processValueChange() && _isChangingMask set")) << log.all();
    node->clearIsChanging(changing);
    field(EventOutAuto).removeListener(&sent);
}

TEST_F(FieldChangeTest, NodeDebugFlagsLogChangesAndReceives)
{
    node->setStateUnchecked(Live);
    LogCapture        log;
    const std::string id = "ChangeNode/" + node->getIDStr();
    field(Exposed).setValue(2.0, 1.5f);
    EXPECT_EQ(log.size(), 0u) << log.all();

    node->setDebugFlags(32);
    field(Exposed).setValue(2.0, 1.5f);
    EXPECT_EQ(log.count(id + ".ef: processValueChange()\n", LOG_LOG), 1) << log.all();
    EXPECT_EQ(log.size(), 1u) << log.all();

    log.clear();
    node->setDebugFlags(64);
    field(Exposed).setValue(2.0, 1.5f);
    EXPECT_EQ(log.count(id + " Field Receive on ef: 2.000000/1.5\n", LOG_LOG), 1) << log.all();
    EXPECT_EQ(log.size(), 1u) << log.all();
}

TEST_F(FieldChangeTest, ReceiveSurvivesTheNodeDroppingItsLastReference)
{
    bool destroyed = false;
    proc->destroyed = &destroyed;
    proc->dropOnChange = &node;
    proc->accept = false;
    Node* raw = node.get();
    raw->setStateUnchecked(Realize);
    LogCapture log;
    static_cast<SFFloat*>(raw->findField(Exposed))->setValue(1.0, 1.0f);
    EXPECT_EQ(log.count("SubRef to zero in Field::receive()\n", LOG_LOG), 1) << log.all();
    EXPECT_TRUE(destroyed);
    EXPECT_FALSE(node);
}

TEST_F(FieldChangeTest, ListenersAreCalledInOrderWithDuplicates)
{
    std::string  trace;
    SendRecorder one, two;
    one.trace = two.trace = &trace;
    one.id = '1';
    two.id = '2';
    SFFloat& f = field(PlainField);
    auto     call = [&] {
        trace.clear();
        f.callListeners(4.0);
        return trace;
    };
    f.addListener(&one);
    f.addListener(&two);
    f.addListener(&one);
    EXPECT_EQ(call(), "121");
    f.removeListener(&one);
    EXPECT_EQ(call(), "21");
    f.removeListener(&one);
    f.removeListener(&one);
    f.removeListener(&two);
    EXPECT_EQ(call(), "");
}

TEST_F(FieldChangeTest, TimedSettersProcessTheChange)
{
    node->setStateUnchecked(Realize);
    SFFloat& f = field(PlainField);
    f.addListener(&sent);
    f.setValueByStr(1.0, "2.5");
    EXPECT_EQ(f.value(), 2.5f);
    EXPECT_TRUE(f.setAndValidateValueByStr(2.0, "3.5", true));
    EXPECT_EQ(f.value(), 3.5f);
    {
        LogCapture quiet;
        // A refused text still counts as a change.
        EXPECT_FALSE(f.setAndValidateValueByStr(2.5, "x", true));
    }
    EXPECT_EQ(f.value(), 3.5f);
    EXPECT_TRUE(f.setValueByField(3.0, SFFloat(*node, 4.5f)));
    EXPECT_EQ(f.value(), 4.5f);
    EXPECT_EQ(sent.times, (std::vector<double>{1.0, 2.0, 2.5, 3.0}));

    // Untimed setters and the default value do no change processing.
    node->clearChangedMask();
    f.setValue(9.0f);
    f.setDefaultValue(4.0);
    EXPECT_FALSE(f.changed());
    EXPECT_EQ(sent.times.size(), 4u);
    f.removeListener(&sent);
}

TEST_F(FieldChangeTest, DefaultValues)
{
    // A new node's fields start at their declared defaults; setting the default is no change.
    SFFloat& withDefault = field(WithDefault);
    EXPECT_TRUE(withDefault.valueIsDefault());
    withDefault.setValue(2.25f);
    EXPECT_FALSE(withDefault.valueIsDefault());
    withDefault.setDefaultValue(0.0);
    EXPECT_EQ(withDefault.value(), 2.5f);
    EXPECT_FALSE(withDefault.changed());
    auto& vec = *static_cast<SFVec3f*>(node->findField(Vec3));
    vec.setValue(Vec3f(0, 2, 0));
    EXPECT_FALSE(vec.valueIsDefault());
    vec.setValue(Vec3f(0, 1, 0));
    EXPECT_TRUE(vec.valueIsDefault());
    // Without default text an SF field is never at its default, without descriptor always.
    field(PlainField).setValue(0.0f);
    EXPECT_FALSE(field(PlainField).valueIsDefault());
    EXPECT_TRUE(SFFloat(*node, 7.0f).valueIsDefault());

    // Lists without default text are at it when empty; node fields when empty.
    TestNodeType t{"DefaultNode",
                   {{"list", FieldPartType, MFFloatType},
                    {"names", FieldPartType, MFStringType, 0, "\"a\" \"b\""},
                    {"child", FieldPartType, SFNodeType},
                    {"children", FieldPartType, MFNodeType}}};
    SmartPtr<Node> n = t.make();
    std::vector<Field*> fields;
    for (unsigned i = 0; i < 4; ++i)
        fields.push_back(n->findField(i));
    for (Field* f : fields)
        EXPECT_TRUE(f->valueIsDefault()) << f->nameOrNoName();
    auto& names = *static_cast<MFString*>(fields[1]);
    static_cast<MFFloat*>(fields[0])->addValue(0.0f);
    names.clear();
    names.addValue("a");
    static_cast<SFNode*>(fields[2])->setNode(node.get());
    static_cast<MFNode*>(fields[3])->addChild(node.get());
    for (Field* f : fields)
        EXPECT_FALSE(f->valueIsDefault()) << f->nameOrNoName();
    names.addValue("b");
    EXPECT_TRUE(names.valueIsDefault());
    static_cast<SFNode*>(fields[2])->setNode(nullptr);
    fields[3]->clear();
}

TEST_F(FieldChangeTest, NamesDumpsAndCopies)
{
    LogCapture log;
    SFFloat    loose(*node, 0.5f);
    EXPECT_EQ(loose.findName(), nullptr);
    EXPECT_EQ(log.count("Field without desc cannot return name\n", LOG_WARNING), 1) << log.all();
    log.clear();
    field(PlainField).setValue(1.5f);
    field(PlainField).dump();
    loose.dump();
    EXPECT_EQ(log.count("FieldDump: fld, dataType SFFloat, value: 1.5\n"), 1) << log.all();
    EXPECT_EQ(log.count("FieldDump: NoName, dataType SFFloat, value: 0.5\n"), 1) << log.all();
    log.clear();
    field(PlainField).dump(true);
    EXPECT_EQ(log.size(), 2u);
    EXPECT_TRUE(log.containsFragment(" Node: ChangeNode, " + node->getIDStr())) << log.all();

    // Copies take the value; only the full copy takes the descriptor.
    SFFloat& described = field(Exposed);
    SFFloat  valueOnly(*node, described), full(described), assigned(*node);
    assigned = described;
    EXPECT_EQ(valueOnly.desc(), nullptr);
    EXPECT_EQ(assigned.desc(), nullptr);
    EXPECT_EQ(full.desc(), described.desc());
}
