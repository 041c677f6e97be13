#include "base/Field.h"
#include "base/FieldType.h"
#include "base/SFDouble.h"
#include "base/SFTime.h"
#include "base/XFAny.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TestNodes.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <memory>

using namespace Orvane;
using namespace Orvane::Test;

namespace {

struct FieldTypeTest : ::testing::Test {
    TestNodeType   type{"TypeNode", {}};
    SmartPtr<Node> node = type.make();
};

} // namespace

TEST_F(FieldTypeTest, EveryDataTypeFromOneToFiftyOneIsFilled)
{
    EXPECT_EQ(FieldType::typeCount(), 51u);
    EXPECT_EQ(FieldType::findType(NoDataType), nullptr);
    for (int dt = 1; dt <= 51; ++dt) {
        FieldType* t = FieldType::findType(static_cast<NodePartDataType>(dt));
        ASSERT_NE(t, nullptr) << dt;
        EXPECT_EQ(t->dataType(), dt);
        EXPECT_EQ(FieldType::dataType(t->dataTypeName()), dt) << t->dataTypeName();
        // SF = 2b-1, MF = 2b for the base types 1..24; the three Any types come last.
        if (dt <= 48) {
            EXPECT_EQ(static_cast<int>(t->baseType()), (dt + 1) / 2) << t->dataTypeName();
            EXPECT_EQ(t->isMulti(), dt % 2 == 0) << t->dataTypeName();
            EXPECT_EQ(t->dataTypeName().substr(0, 2), dt % 2 ? "SF" : "MF");
        } else {
            EXPECT_EQ(t->baseType(), BaseType::Any);
        }
        EXPECT_EQ(FieldType::isMultiField(t->dataType()), t->isMulti());

        std::unique_ptr<Field> f(FieldType::create(t->dataType(), *node));
        ASSERT_NE(f, nullptr) << t->dataTypeName();
        EXPECT_EQ(f->dataType(), dt);
        EXPECT_EQ(&f->dataTypeName(), &t->dataTypeName());
        EXPECT_EQ(f->cardinality() == Field::Multi, t->isMulti()) << t->dataTypeName();
    }
}

TEST_F(FieldTypeTest, InitTypeTreeCountsTheTypes)
{
    LogCapture log;
    FieldType::initTypeTree();
    EXPECT_EQ(log.count("init field types: 51 types\n", LOG_INFO), 1) << log.all();
}

TEST_F(FieldTypeTest, NamesAreExactAndCaseSensitive)
{
    EXPECT_EQ(FieldType::dataType("SFVec3f"), SFVec3fType);
    EXPECT_EQ(SFVec3fType, 37);
    EXPECT_EQ(FieldType::dataType("SFVec3"), NoDataType);
    EXPECT_EQ(FieldType::dataType("sfvec3f"), NoDataType);
    EXPECT_EQ(FieldType::dataType("SFVec3f "), NoDataType);
    EXPECT_EQ(FieldType::dataType(""), NoDataType);
    EXPECT_EQ(FieldType::findType("SFVEC3F"), nullptr);

    struct Known { int dt; const char* name; };
    for (Known k : {Known{1, "SFBool"}, {2, "MFBool"}, {29, "SFTime"}, {41, "SFVec4f"}, {42, "MFVec4f"},
                    {43, "SFPlane"}, {44, "MFPlane"}, {45, "SFQubit"}, {46, "MFQubit"}, {47, "SFSound"},
                    {48, "MFSound"}, {49, "XFAny"}, {50, "SFAny"}, {51, "MFAny"}}) {
        EXPECT_EQ(FieldType::dataType(k.name), k.dt) << k.name;
        EXPECT_EQ(FieldType::dataTypeName(static_cast<NodePartDataType>(k.dt)), k.name);
    }
}

TEST_F(FieldTypeTest, BaseTypeLookupPicksSingleOrMulti)
{
    ASSERT_NE(FieldType::findType(BaseType::Float, true), nullptr);
    EXPECT_EQ(FieldType::findType(BaseType::Float, true)->dataTypeName(), "SFFloat");
    EXPECT_EQ(FieldType::findType(BaseType::Float, false)->dataTypeName(), "MFFloat");
    EXPECT_EQ(FieldType::findType(BaseType::Sound, false)->dataTypeName(), "MFSound");

    std::unique_ptr<Field> mf(FieldType::create(BaseType::Vec3f, *node, false));
    ASSERT_NE(mf, nullptr);
    EXPECT_EQ(mf->dataType(), MFVec3fType);

    LogCapture log;
    EXPECT_EQ(FieldType::findType(static_cast<BaseType>(99), true), nullptr);
    EXPECT_EQ(FieldType::create(static_cast<BaseType>(99), *node, true), nullptr);
    EXPECT_EQ(log.count("Can not find _baseTypeMap\n", LOG_FATAL), 2) << log.all();
}

TEST_F(FieldTypeTest, XFAnyIsTheSingleEntryOfAnyButSFAnyStaysFindable)
{
    // XFAny is registered after SFAny and so wins the single slot of the base type.
    ASSERT_NE(FieldType::findType(BaseType::Any, true), nullptr);
    EXPECT_EQ(FieldType::findType(BaseType::Any, true)->dataTypeName(), "XFAny");
    EXPECT_EQ(FieldType::findType(BaseType::Any, false)->dataTypeName(), "MFAny");
    std::unique_ptr<Field> any(FieldType::create(BaseType::Any, *node, true));
    ASSERT_NE(any, nullptr);
    EXPECT_EQ(any->dataType(), XFAnyType);
    EXPECT_NE(dynamic_cast<XFAny*>(any.get()), nullptr);

    EXPECT_EQ(FieldType::findType("SFAny")->dataType(), SFAnyType);
    EXPECT_EQ(FieldType::findType(SFAnyType)->dataTypeName(), "SFAny");
    EXPECT_FALSE(FieldType::isMultiField(SFAnyType));
    EXPECT_FALSE(FieldType::isMultiField(XFAnyType));
    EXPECT_TRUE(FieldType::isMultiField(MFAnyType));
}

TEST_F(FieldTypeTest, TimeSharesTheDoubleStorage)
{
    std::unique_ptr<Field> f(FieldType::create(static_cast<NodePartDataType>(29), *node));
    ASSERT_NE(f, nullptr);
    EXPECT_EQ(f->dataType(), SFTimeType);
    EXPECT_EQ(f->dataTypeName(), "SFTime");
    EXPECT_NE(dynamic_cast<SFTime*>(f.get()), nullptr);
    auto* storage = dynamic_cast<SField<double>*>(f.get());
    ASSERT_NE(storage, nullptr);

    SFDouble d(*node, 2.5);
    EXPECT_NE(dynamic_cast<SField<double>*>(static_cast<Field*>(&d)), nullptr);
    storage->setValue(2.5);
    EXPECT_TRUE(f->equalValue(d));
    EXPECT_TRUE(d.equalValue(*f));
}

TEST_F(FieldTypeTest, ComponentCounts)
{
    struct C { BaseType b; unsigned n; };
    for (C c : {C{BaseType::Any, 1}, {BaseType::Bool, 1}, {BaseType::Color, 3}, {BaseType::ColorRGBA, 4},
                {BaseType::Double, 1}, {BaseType::Float, 1}, {BaseType::Image, 1}, {BaseType::Int32, 1},
                {BaseType::Matrix3d, 9}, {BaseType::Matrix3f, 9}, {BaseType::Matrix4d, 16},
                {BaseType::Matrix4f, 16}, {BaseType::Node, 1}, {BaseType::Rotation, 4},
                {BaseType::String, 1}, {BaseType::Time, 1}, {BaseType::Vec2d, 2}, {BaseType::Vec2f, 2},
                {BaseType::Vec3d, 3}, {BaseType::Vec3f, 3}, {BaseType::Vec4d, 4}, {BaseType::Vec4f, 4},
                {BaseType::Plane, 4}, {BaseType::Qubit, 1}, {BaseType::Sound, 1}}) {
        EXPECT_EQ(FieldType::compNum(c.b), c.n) << static_cast<int>(c.b);
    }
    EXPECT_EQ(FieldType::findType("MFMatrix4d")->compNum(), 16u);
    EXPECT_EQ(FieldType::findType("SFColorRGBA")->compNum(), 4u);
}

TEST_F(FieldTypeTest, DumpNamesTheRecord)
{
    LogCapture log;
    FieldType::findType("SFInt32")->dump();
    EXPECT_TRUE(log.containsFragment("FieldType: SFInt32, index: 13, createMethod: ")) << log.all();
    log.clear();
    FieldType::dumpAll();
    EXPECT_EQ(log.size(), 51u);
}

namespace {

Field* createNothing(Node&)
{
    return nullptr;
}

// The registries are process-wide and never forget a record, so a duplicate registration
// runs in a child process and reports through its exit code.
int registerDuplicateAndCheck()
{
    FieldType* first = FieldType::findType(SFFloatType);
    FieldType* name = FieldType::findType("SFFloat");
    LogCapture log;
    static FieldType twin(BaseType::Float, SFFloatType, "SFFloatTwin", &createNothing, false);
    int failed = 0;
    auto check = [&](bool ok, int bit, const char* what) {
        if (!ok) {
            std::fprintf(stderr, "failed: %s\n", what);
            failed |= bit;
        }
    };
    check(log.count("Cannot register datatype ID 9 a second time for SFFloatTwin\n", LOG_FATAL) == 1, 1,
          "fatal message");
    check(log.count("Add Field Type: SFFloatTwin\n", LOG_INFO) == 1, 2, "add message");
    check(FieldType::findType(SFFloatType) == first, 4, "vector keeps the first");
    check(FieldType::findType("SFFloatTwin") == &twin, 8, "name map has the twin");
    check(FieldType::findType("SFFloat") == name, 16, "old name still there");
    check(FieldType::findType(BaseType::Float, true) == &twin, 32, "base map has the twin");
    check(FieldType::findType(BaseType::Float, false)->dataTypeName() == "MFFloat", 64, "multi untouched");
    check(FieldType::typeCount() == 51, 128, "count unchanged");
    return failed;
}

} // namespace

TEST_F(FieldTypeTest, DuplicateDataTypeKeepsFirstInVectorButWinsTheMaps)
{
    EXPECT_EXIT(std::exit(registerDuplicateAndCheck()), ::testing::ExitedWithCode(0), "");
}
