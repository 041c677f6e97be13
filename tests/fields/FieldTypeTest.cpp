// The registry of field types: the 51 types by ID, name and base type.
#include "tests/fields/FieldKit.h"

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
        const std::string& name = t->dataTypeName();
        EXPECT_EQ(t->dataType(), dt);
        EXPECT_EQ(FieldType::dataType(name), dt) << name;
        // SF = 2b-1, MF = 2b for the base types 1..24; the three Any types come last.
        if (dt <= 48) {
            EXPECT_EQ(static_cast<int>(t->baseType()), (dt + 1) / 2) << name;
            EXPECT_EQ(t->isMulti(), dt % 2 == 0) << name;
            EXPECT_EQ(name.substr(0, 2), dt % 2 ? "SF" : "MF");
        } else {
            EXPECT_EQ(t->baseType(), BaseType::Any);
        }
        EXPECT_EQ(FieldType::isMultiField(t->dataType()), t->isMulti());

        std::unique_ptr<Field> f(FieldType::create(t->dataType(), *node));
        ASSERT_NE(f, nullptr) << name;
        EXPECT_EQ(f->dataType(), dt);
        EXPECT_EQ(&f->dataTypeName(), &name);
        EXPECT_EQ(f->cardinality() == Field::Multi, t->isMulti()) << name;
    }
    EXPECT_EQ(FieldType::compNum(BaseType::Matrix4d), 16u);
    EXPECT_EQ(FieldType::compNum(BaseType::Rotation), 4u);
    EXPECT_EQ(FieldType::compNum(BaseType::Image), 1u);
    EXPECT_EQ(FieldType::findType("MFColor")->compNum(), 3u);
}

TEST_F(FieldTypeTest, NamesAreExactAndCaseSensitive)
{
    EXPECT_EQ(FieldType::dataType("SFVec3f"), 37);
    for (const char* wrong : {"SFVec3", "sfvec3f", "SFVec3f ", ""})
        EXPECT_EQ(FieldType::dataType(wrong), NoDataType) << wrong;
    EXPECT_EQ(FieldType::findType("SFVEC3F"), nullptr);

    struct Known { int dt; const char* name; };
    for (Known k : {Known{1, "SFBool"}, {2, "MFBool"}, {29, "SFTime"}, {41, "SFVec4f"}, {43, "SFPlane"},
                    {46, "MFQubit"}, {47, "SFSound"}, {48, "MFSound"}, {49, "XFAny"}, {50, "SFAny"}, {51, "MFAny"}}) {
        EXPECT_EQ(FieldType::dataType(k.name), k.dt) << k.name;
        EXPECT_EQ(FieldType::dataTypeName(static_cast<NodePartDataType>(k.dt)), k.name);
    }
}

TEST_F(FieldTypeTest, BaseTypeLookupAndTheOrderOfAny)
{
    EXPECT_EQ(FieldType::findType(BaseType::Float, true)->dataTypeName(), "SFFloat");
    EXPECT_EQ(FieldType::findType(BaseType::Sound, false)->dataTypeName(), "MFSound");
    std::unique_ptr<Field> mf(FieldType::create(BaseType::Vec3f, *node, false));
    ASSERT_NE(mf, nullptr);
    EXPECT_EQ(mf->dataType(), MFVec3fType);

    // XFAny is registered after SFAny and so wins the single slot of the base type.
    EXPECT_EQ(FieldType::findType(BaseType::Any, true)->dataTypeName(), "XFAny");
    EXPECT_EQ(FieldType::findType(BaseType::Any, false)->dataTypeName(), "MFAny");
    std::unique_ptr<Field> any(FieldType::create(BaseType::Any, *node, true));
    EXPECT_NE(dynamic_cast<XFAny*>(any.get()), nullptr);
    EXPECT_EQ(FieldType::findType("SFAny")->dataType(), SFAnyType);
    EXPECT_FALSE(FieldType::isMultiField(SFAnyType));
    EXPECT_FALSE(FieldType::isMultiField(XFAnyType));

    LogCapture log;
    EXPECT_EQ(FieldType::findType(static_cast<BaseType>(99), true), nullptr);
    EXPECT_EQ(FieldType::create(static_cast<BaseType>(99), *node, true), nullptr);
    EXPECT_EQ(log.count("Can not find _baseTypeMap\n", LOG_FATAL), 2) << log.all();
}

TEST_F(FieldTypeTest, InitAndDumpLog)
{
    LogCapture log;
    FieldType::initTypeTree();
    EXPECT_EQ(log.count("init field types: 51 types\n", LOG_INFO), 1) << log.all();
    log.clear();
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
    int  failed = 0;
    auto check = [&](bool ok, const char* what) {
        if (!ok)
            std::fprintf(stderr, "failed: %s\n", what);
        failed += !ok;
    };
    check(log.count("Cannot register datatype ID 9 a second time for SFFloatTwin\n", LOG_FATAL) == 1, "fatal");
    check(log.count("Add Field Type: SFFloatTwin\n", LOG_INFO) == 1, "add message");
    check(FieldType::findType(SFFloatType) == first, "vector keeps the first");
    check(FieldType::findType("SFFloatTwin") == &twin, "name map has the twin");
    check(FieldType::findType("SFFloat") == name, "old name still there");
    check(FieldType::findType(BaseType::Float, true) == &twin, "base map has the twin");
    check(FieldType::findType(BaseType::Float, false)->dataTypeName() == "MFFloat", "multi untouched");
    check(FieldType::typeCount() == 51, "count unchanged");
    return failed;
}

} // namespace

TEST_F(FieldTypeTest, DuplicateDataTypeKeepsFirstInVectorButWinsTheMaps)
{
    EXPECT_EXIT(std::exit(registerDuplicateAndCheck()), ::testing::ExitedWithCode(0), "");
}
