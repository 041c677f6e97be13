// The X3D node catalog: its size, spot checks against the standard, every default of every field,
// every concrete type, the allowed child types with multiple inheritance, and VRML97 names and
// defaults.
#include "base/Component.h"
#include "base/FieldType.h"
#include "base/MFNode.h"
#include "base/NodeNameSpace.h"
#include "base/SFNode.h"
#include "modules/x3d/X3DCatalog.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TypeScope.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdlib>
#include <memory>

using namespace Orvane;
using namespace Orvane::Test;

namespace {

struct X3DCatalogTest : ::testing::Test {
    X3DCatalog&             catalog = X3DCatalog::init();
    SmartPtr<NodeNameSpace> scene{new NodeNameSpace("x3d")};

    static NodeType& type(const char* name)
    {
        NodeType* t = NodeTypeNameSpace::findType(&theBaseNodeTypeFactory(), name, CaseSensitive);
        EXPECT_NE(t, nullptr) << name;
        return *t;
    }
    SmartPtr<Node> make(const char* typeName) { return SmartPtr<Node>(type(typeName).createNode(scene.get())); }
};

// The words of a value text: numbers as numbers, other words without quotes and case.
struct Token {
    bool        number;
    double      value;
    std::string word;
};

std::vector<Token> tokens(const std::string& text)
{
    std::vector<Token> out;
    std::size_t pos = 0;
    while ((pos = text.find_first_not_of(" ,\t\n\"", pos)) != std::string::npos) {
        std::size_t end = text.find_first_of(" ,\t\n\"", pos);
        std::string word = text.substr(pos, end - pos);
        char* stop = nullptr;
        double value = std::strtod(word.c_str(), &stop);
        for (char& c : word)
            c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
        out.push_back({*stop == '\0', value, word});
        pos = end;
    }
    return out;
}

// The same values in both texts: as many words, numbers equal to six digits, words alike.
void expectSameValues(const std::string& expected, const std::string& actual)
{
    std::vector<Token> want = tokens(expected), got = tokens(actual);
    ASSERT_EQ(got.size(), want.size()) << actual;
    for (std::size_t i = 0; i < want.size(); ++i) {
        EXPECT_EQ(got[i].number, want[i].number) << actual;
        if (want[i].number)
            EXPECT_NEAR(got[i].value, want[i].value, 1e-5 * std::max(1.0, std::fabs(want[i].value))) << actual;
        else
            EXPECT_EQ(got[i].word, want[i].word) << actual;
    }
}

} // namespace

TEST_F(X3DCatalogTest, HoldsTheStandardsTypesWithTheirComponents)
{
    EXPECT_EQ(catalog.concreteTypeCount(), 260u);
    EXPECT_EQ(catalog.abstractNodeTypeCount(), 72u);
    EXPECT_EQ(catalog.abstractObjectTypeCount(), 6u);
    EXPECT_EQ(catalog.types().size(), 338u);
    EXPECT_EQ(catalog.failures(), 0);
    EXPECT_EQ(&X3DCatalog::init(), &catalog);

    unsigned abstract = 0;
    for (const SmartPtr<NodeType>& t : catalog.types())
        abstract += t->isAbstract();
    EXPECT_EQ(abstract, 78u);

    NodeType& transform = type("Transform");
    EXPECT_EQ(transform.parentNodeType(), &type("X3DGroupingNode"));
    EXPECT_EQ(transform.compObj(), Component::findComponent("Grouping"));
    EXPECT_EQ(catalog.componentLevel(transform), 1);
    EXPECT_STREQ(catalog.containerField(transform), "children");
    EXPECT_STREQ(catalog.containerField(type("Material")), "material");
    EXPECT_EQ(catalog.componentLevel(type("PhysicalMaterial")), 2);
    EXPECT_EQ(catalog.containerField(Node::classType()), nullptr);
    for (const char* pseudo : {"DEF", "USE", "class", "id", "style", "IS"})
        EXPECT_EQ(transform.findPart(pseudo), nullptr) << pseudo;
    EXPECT_NE(type("FontStyle").findPart("style"), nullptr);
}

TEST_F(X3DCatalogTest, FieldsMatchTheStandard)
{
    struct Case {
        const char*              type;
        const char*              field;
        NodePartType             access;
        NodePartDataType         dataType;
        const char*              defaultValue;
        const char*              valueType;
        NodePartValueRestriction restriction;
    } cases[] = {
        {"Transform", "translation", ExposedFieldPartType, SFVec3fType, "0 0 0", "", NoRestriction},
        {"Transform", "children", ExposedFieldPartType, MFNodeType, "", "X3DChildNode", NodeTypeRestriction},
        {"Transform", "bboxSize", FieldPartType, SFVec3fType, "-1 -1 -1", "", NoRestriction},
        {"Material", "diffuseColor", ExposedFieldPartType, SFColorType, "0.8 0.8 0.8", "[0,1]", NoRestriction},
        {"Material", "shininess", ExposedFieldPartType, SFFloatType, "0.2", "[0,1]", RangeRestriction},
        {"TimeSensor", "cycleInterval", ExposedFieldPartType, SFTimeType, "1.0", "[0,inf)", NoRestriction},
        {"TimeSensor", "loop", ExposedFieldPartType, SFBoolType, "FALSE", "", NoRestriction},
        {"TimeSensor", "fraction_changed", EventOutPartType, SFFloatType, "0.0", "", NoRestriction},
        {"TimeSensor", "cycleTime", EventOutPartType, SFTimeType, "-1.0", "[0,inf)", NoRestriction},
        {"SpotLight", "beamWidth", ExposedFieldPartType, SFFloatType, "0.589049", "(0,1.570796]", RangeRestriction},
        {"NavigationInfo", "type", ExposedFieldPartType, MFStringType, "\"EXAMINE\" \"ANY\"", "", NoRestriction},
        {"Shape", "geometry", ExposedFieldPartType, SFNodeType, "", "X3DGeometryNode", NodeTypeRestriction},
        {"Group", "addChildren", EventInPartType, MFNodeType, "", "X3DChildNode", NodeTypeRestriction},
        {"FloatVertexAttribute", "name", FieldPartType, SFStringType, "", "", NoRestriction},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.type) + "." + c.field);
        NodePartDesc* desc = type(c.type).findPart(c.field);
        ASSERT_NE(desc, nullptr);
        EXPECT_EQ(desc->partType(), c.access);
        EXPECT_EQ(desc->dataType(), c.dataType);
        EXPECT_EQ(desc->defaultValue(), c.defaultValue);
        EXPECT_EQ(desc->valueType(), c.valueType);
        EXPECT_EQ(desc->valueRestriction(), c.restriction);
    }
    NodePartDesc* beam = type("SpotLight").findPart("beamWidth");
    EXPECT_DOUBLE_EQ(beam->minValue(), 0.0);
    EXPECT_DOUBLE_EQ(beam->maxValue(), 1.570796);
    EXPECT_TRUE(std::isinf(type("Sphere").findPart("radius")->maxValue()));
    EXPECT_EQ(type("Transform").findInSlotPart("set_translation"), type("Transform").findPart("translation"));
}

// Every default of every field of every type, abstract ones included, read by its field's text
// setter and written again: nothing logged, and the same values come back.
TEST_F(X3DCatalogTest, EveryDefaultReadsBackThroughItsField)
{
    SmartPtr<Node> owner = make("WorldInfo");
    LogCapture     log;
    unsigned       checked = 0;
    for (const SmartPtr<NodeType>& t : catalog.types()) {
        for (NodePartDesc* desc : t->localParts()) {
            if (desc->defaultValue().empty())
                continue;
            SCOPED_TRACE(t->name() + "." + desc->name() + " = " + desc->defaultValue());
            std::unique_ptr<Field> field(FieldType::create(desc->dataType(), *owner));
            ASSERT_NE(field, nullptr);
            field->setValueByStr(0.0, desc->defaultValue().c_str());
            expectSameValues(desc->defaultValue(), field->strValue());
            ++checked;
        }
    }
    EXPECT_GT(checked, 900u);
    EXPECT_EQ(log.size(), 0u) << log.all();
}

// Every concrete type makes a node with one field per descriptor, at its default, without a
// word in the log; every node restriction names types that exist.
TEST_F(X3DCatalogTest, EveryConcreteTypeCreatesANode)
{
    LogCapture log;
    unsigned   made = 0;
    for (const SmartPtr<NodeType>& t : catalog.types()) {
        for (unsigned id = 0; id < t->partCount(); ++id) {
            NodePartDesc* desc = t->part(id);
            ASSERT_EQ(desc->ID(), id) << t->name();
            desc->acceptsNodeType(Node::classType());  // resolves a node restriction
        }
        if (t->isAbstract())
            continue;
        SmartPtr<Node> node(t->createNode(scene.get()));
        ASSERT_NE(node, nullptr) << t->name();
        for (unsigned id = 0; id < t->partCount(); ++id) {
            Field* field = node->findField(id);
            ASSERT_NE(field, nullptr) << t->name() << " " << id;
            if (!field->desc()->defaultValue().empty()) {
                EXPECT_TRUE(field->valueIsDefault()) << t->name() << "." << field->desc()->name();
            }
        }
        ++made;
    }
    EXPECT_EQ(made, 260u);
    for (const LogCapture::Entry& entry : log.entries())
        EXPECT_GT(entry.level, LOG_WARNING) << entry.text;
}

// The allowed child types honour additional inheritance and alternatives: what the standard
// allows goes in, nothing else does.
TEST_F(X3DCatalogTest, NodeFieldsTakeWhatTheStandardAllows)
{
    struct Case {
        const char* parent;
        const char* field;
        const char* child;
        bool        accepted;
    } cases[] = {
        {"Shape", "geometry", "IndexedFaceSet", true},
        {"Shape", "geometry", "Transform", false},
        {"Transform", "children", "Shape", true},
        {"Transform", "children", "TimeSensor", true},
        {"Transform", "children", "Box", false},
        {"Transform", "metadata", "MetadataFloat", true},  // additionally an X3DMetadataObject
        {"Transform", "metadata", "Box", false},
        {"MetadataSet", "value", "MetadataString", true},
        {"MetadataSet", "value", "Group", false},
        {"TransformSensor", "targetObject", "CADPart", true},  // additionally an X3DGroupingNode
        {"TransformSensor", "targetObject", "Shape", true},
        {"TransformSensor", "targetObject", "Material", false},
        {"IndexedFaceSet", "coord", "CoordinateDouble", true},
        {"IndexedFaceSet", "coord", "Normal", false},
        {"Inline", "metadata", "MetadataInteger", true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.parent) + "." + c.field + " <- " + c.child);
        SmartPtr<Node> parent = make(c.parent), child = make(c.child);
        Field*         field = parent->findField(c.field);
        ASSERT_NE(field, nullptr);
        LogCapture log;
        bool set = field->dataType() == SFNodeType ? static_cast<SFNode*>(field)->setNode(child.get())
                                                   : static_cast<MFNode*>(field)->addChild(child.get()) != nullptr;
        EXPECT_EQ(set, c.accepted);
        EXPECT_EQ(log.contains("Can't NodeLink::setNode() for node " + child->getIDStr() + " of type " + c.child +
                               ", because NodeLink needs " + field->desc()->valueType() + " Node\n"),
                  !c.accepted);
    }
    // Without a field name the first field that holds the child is chosen: not the events
    // addChildren and removeChildren, which come first.
    SmartPtr<Node> sensor = make("TransformSensor"), part = make("CADPart");
    ASSERT_NE(sensor->addChild(part.get()), nullptr);
    EXPECT_EQ(static_cast<SFNode*>(sensor->findField("targetObject"))->node(), part.get());
    SmartPtr<Node> group = make("Transform"), shape = make("Shape");
    ASSERT_NE(group->addChild(shape.get()), nullptr);
    EXPECT_EQ(static_cast<MFNode*>(group->findField("children"))->childNode(0), shape.get());
}

TEST_F(X3DCatalogTest, Vrml97NamesAndDefaults)
{
    struct Alias {
        const char* type;
        const char* alias;
        const char* field;
    } aliases[] = {{"LOD", "level", "children"}, {"Switch", "choice", "children"}, {"Collision", "collide", "enabled"}};
    for (const Alias& a : aliases) {
        SCOPED_TRACE(a.type);
        SmartPtr<Node> node = make(a.type);
        Field*         field = node->findField(a.field);
        ASSERT_NE(field, nullptr);
        EXPECT_EQ(node->findField(a.alias), field);
        EXPECT_EQ(node->findField(std::string("set_") + a.alias, SearchInSlot), field);
        Field* out = node->findField(std::string(a.alias) + "_changed", SearchOutSlot);
        // X3D's own LOD.level_changed (the shown level) keeps its name.
        EXPECT_EQ(out, std::string(a.type) == "LOD" ? node->findField("level_changed") : field);
        EXPECT_NE(out, nullptr);
    }

    struct Default {
        const char* type;
        const char* field;
        const char* vrml97;
    } defaults[] = {
        {"NavigationInfo", "type", "\"WALK\" \"ANY\""},
        {"SpotLight", "beamWidth", "1.570796"},
        {"SpotLight", "cutOffAngle", "0.785398"},
        {"CylinderSensor", "diskAngle", "0.262"},
    };
    for (const Default& d : defaults) {
        SCOPED_TRACE(std::string(d.type) + "." + d.field);
        ASSERT_NE(X3DCatalog::vrml97Default(d.type, d.field), nullptr);
        EXPECT_STREQ(X3DCatalog::vrml97Default(d.type, d.field), d.vrml97);
        SmartPtr<Node> node = make(d.type);
        Field*         field = node->findField(d.field);
        EXPECT_TRUE(field->valueIsDefault());
        LogCapture log;
        EXPECT_GE(X3DCatalog::applyVrml97Defaults(*node), 1);
        EXPECT_FALSE(field->valueIsDefault());
        expectSameValues(d.vrml97, field->strValue());
        EXPECT_EQ(log.size(), 0u) << log.all();
    }
    EXPECT_EQ(X3DCatalog::vrml97Default("Transform", "translation"), nullptr);
    SmartPtr<Node> transform = make("Transform");
    EXPECT_EQ(X3DCatalog::applyVrml97Defaults(*transform), 0);
}

// A second catalog in a scope of its own registers as cleanly as the first and goes away again.
TEST(X3DCatalogScopeTest, RegistersQuietlyAndUnregistersOnDestruction)
{
    std::unique_ptr<NodeTypeNameSpace> types{NodeTypeNameSpace::create("x3dscope", &theBaseNodeTypeFactory())};
    const unsigned                     before = NodeType::typeCount();
    {
        LogCapture log;
        X3DCatalog catalog(*types);
        EXPECT_EQ(catalog.failures(), 0);
        EXPECT_EQ(NodeType::typeCount(), before + 338);
        EXPECT_EQ(types->typeCount(), 338u);
        for (const LogCapture::Entry& entry : log.entries())
            EXPECT_GT(entry.level, LOG_WARNING) << entry.text;
    }
    EXPECT_EQ(NodeType::typeCount(), before);
    EXPECT_EQ(types->typeCount(), 0u);
}
