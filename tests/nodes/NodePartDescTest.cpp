// Part descriptors: slot names, flags, the value type text and the value list.
#include "base/NodePartDesc.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TypeScope.h"

#include <gtest/gtest.h>

#include <set>

using namespace Orvane;
using namespace Orvane::Test;

namespace {

// A descriptor of the given data type and value type text, initialised in a throw-away type.
struct Parsed {
    NodePartDesc desc;

    // A root type of its own, which initType reports once; quietly.
    static NodeType& ownerType()
    {
        static TestNodeType& type = []() -> TestNodeType& {
            LogCapture          quiet;
            static TestNodeType t{"Owner", {}};
            return t;
        }();
        return type.type();
    }

    Parsed(NodePartDataType dataType, const char* valueType)
        : desc(7, PartMask::bit(7), FieldPartType, dataType, 0, "part", nullptr, nullptr, valueType)
    {
        desc.init(ownerType());
    }
};

} // namespace

TEST(NodePartDescTest, NamesFollowThePartType)
{
    const struct {
        NodePartType type;
        const char * field, *in, *out, *typeName;
    } cases[] = {{ExposedFieldPartType, "p", "set_p", "p_changed", "exposedField"},
                 {EventInPartType, "p", "p", "", "eventIn"},
                 {EventOutPartType, "p", "", "p", "eventOut"},
                 {FieldPartType, "p", "", "", "field"}};
    for (const auto& c : cases) {
        NodePartDesc d(0, PartMask::bit(0), c.type, SFTimeType, 0, "p");
        EXPECT_EQ(d.fieldName(), c.field) << c.typeName;
        EXPECT_EQ(d.inSlotName(), c.in) << c.typeName;
        EXPECT_EQ(d.outSlotName(), c.out) << c.typeName;
        EXPECT_STREQ(d.partTypeName(), c.typeName);
    }

    LogCapture   log;
    NodePartDesc unnamed(4, PartMask(), FieldPartType, SFTimeType, 0, nullptr);
    EXPECT_EQ(log.count("Desc without name in NodePartDesc Const\n"), 1) << log.all();
    NodePartDesc odd(5, PartMask(), static_cast<NodePartType>(5), SFTimeType, 0, "odd");
    EXPECT_EQ(log.count("Unknown NodePartType in NodePartDesc Const.: 5\n"), 1);
    EXPECT_EQ(odd.fieldName(), "");
    EXPECT_STREQ(odd.partTypeName(), "Invalid Part Type");
    EXPECT_EQ(log.count("Invalid partType 5, cannot find name entry\n"), 1);
}

TEST(NodePartDescTest, FlagsArgumentSetsTheUpperFlagBits)
{
    NodePartDesc desc(0, PartMask(), FieldPartType, SFBoolType, 0x1f, "all", "grp", "TRUE", nullptr, "text", 42);
    EXPECT_EQ(desc.flags(), 0xf8u);
    EXPECT_TRUE(desc.autoProcess() && desc.privateAccess() && desc.deprecated() && desc.typeExtension());
    EXPECT_TRUE(desc.hasFlag(NodePartDesc::FurtherFlag));
    EXPECT_FALSE(desc.objExtension());
    PartMask     mask = PartMask::bit(9);
    NodePartDesc copy(desc, &mask);
    EXPECT_EQ(copy.mask(), mask);
    EXPECT_EQ(copy.flags(), desc.flags());
}

TEST(NodePartDescTest, ValueTypeParsing)
{
    Parsed::ownerType();
    LogCapture        log;
    const std::string two = "part.Owner: Need two min;max values in _valueType\n";
    const struct {
        NodePartDataType         dataType;
        const char*              valueType;
        NodePartValueRestriction restriction;
        std::string              warning;
    } cases[] = {
        {SFFloatType, nullptr, NoRestriction, ""},
        {SFStringType, "cdata", CDataRestriction, ""},
        {SFFloatType, "cdata", CDataRestriction, ""},
        {SFStringType, "CDATA", NoRestriction, ""},
        {SFFloatType, "[0,1]", RangeRestriction, ""},
        {MFInt32Type, "(0 1)", RangeRestriction, ""},
        {SFDoubleType, "[0]", NoRestriction, two},
        {SFFloatType, "[0,1,2]", NoRestriction, two},
        {SFNodeType, " [Shape] ", NodeTypeRestriction, ""},
        {MFNodeType, "Shape;Box", NoRestriction, "part.Owner: Only one value allowed in _valueType\n"},
        {MFStringType, "Linear,Quadratic", ListRestriction, ""},
        {SFStringType, "Linear", NoRestriction, ""},
        {SFVec3fType, "0 1", NoRestriction, ""},
        {SFFloatType, " ;, ", NoRestriction, ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.valueType ? c.valueType : "(none)");
        log.clear();
        Parsed p(c.dataType, c.valueType);
        EXPECT_EQ(p.desc.valueRestriction(), c.restriction);
        EXPECT_EQ(log.size(), c.warning.empty() ? 0u : 1u) << log.all();
        EXPECT_TRUE(c.warning.empty() || log.count(c.warning, LOG_WARNING) == 1) << log.all();
    }
    Parsed range(SFFloatType, "[-0.5, 2e1]");
    EXPECT_EQ(range.desc.minValue(), -0.5);
    EXPECT_EQ(range.desc.maxValue(), 20.0);
    EXPECT_EQ(Parsed(SFNodeType, " [Shape] ").desc.valueType(), "Shape");
    EXPECT_EQ(Parsed(MFStringType, "(a; b, c)").desc.valueList(), (std::list<std::string>{"a", "b", "c"}));

    // Node types resolve on first need, not in init.
    log.clear();
    Parsed unknown(SFNodeType, "NeverRegistered");
    EXPECT_EQ(log.size(), 0u);
    EXPECT_EQ(unknown.desc.nodeType(), nullptr);
    EXPECT_EQ(log.count("Cannot find NeverRegistered for Owner ref\n", LOG_FATAL), 1) << log.all();
    Parsed known(MFNodeType, "MetadataObject");
    ASSERT_NE(known.desc.nodeType(), nullptr);
    EXPECT_EQ(known.desc.nodeType()->name(), "MetadataObject");
    NodePartDesc ownerless(0, PartMask(), FieldPartType, SFNodeType, 0, "x", nullptr, nullptr, "Node");
    EXPECT_EQ(ownerless.nodeType(), nullptr) << "not parsed, so no restriction";
}

TEST(NodePartDescTest, ValueListElemSelects)
{
    Parsed              p(MFStringType, "Linear,Quadratic,Cubic");
    const NodePartDesc& d = p.desc;
    using S = NodePartDesc::ListSelect;
    const struct {
        const char* current;
        S           select;
        const char* expected;
    } cases[] = {{"li", S::NextElem, "Quadratic"},         {"Cubic", S::NextElem, "Cubic"},
                 {"quad", S::PrevElem, "Linear"},          {"Linear", S::PrevElem, "Linear"},
                 {"Cubic", S::NextElemWrap, "Linear"},     {"Linear", S::PrevElemWrap, "Cubic"},
                 {"nothing", S::FirstElem, "Linear"},      {"nothing", S::LastElem, "Cubic"},
                 {"CUBIC", static_cast<S>(99), "Cubic"}};
    for (const auto& c : cases)
        EXPECT_EQ(d.valueListElem(c.current, c.select), c.expected) << c.current << " " << int(c.select);
    std::set<std::string> seen;
    for (int i = 0; i < 200; ++i)
        seen.insert(d.valueListElem("", S::RandomElem));
    EXPECT_EQ(seen, (std::set<std::string>{"Linear", "Quadratic", "Cubic"}));

    LogCapture log;
    EXPECT_EQ(d.valueListElem("Spline", S::NextElem), "Spline");
    EXPECT_EQ(log.count("part(Linear,Quadratic,Cubic) Invalid CurrentElem: Spline; can not select\n"), 1)
        << log.all();
    Parsed single(MFStringType, "Only Only");
    EXPECT_EQ(single.desc.valueListElem("Only", S::NextElem), "Only");
    EXPECT_EQ(single.desc.valueListElem("Only", S::PrevElem), "Only");
    Parsed none(SFFloatType, "[0,1]");
    EXPECT_EQ(none.desc.valueListElem("x", S::NextElem), "x");
    EXPECT_EQ(log.count("part is not a list ([0,1])\n", LOG_WARNING), 1);
}

TEST(NodePartDescTest, IsLinksAndDump)
{
    Parsed p(SFFloatType, "[0,1]");
    p.desc.addIsLink("body", 3);
    p.desc.addIsLink("body", 5);
    p.desc.addIsLink("other", 1);
    EXPECT_EQ(p.desc.isLinkMap().at("body"), (std::vector<std::uint32_t>{3, 5}));
    std::string id;
    EXPECT_EQ(p.desc.getIDStr(id), "Owner.part");

    LogCapture log;
    p.desc.dump();
    for (const char* label : {"NodePartDesc:       part\n", "  ID:               7\n", "  Mask value:       128\n",
                              "  partType:         field\n", "  dataType:         SFFloat\n",
                              "  valueType:        [0,1]\n", "  group:             \n", "  isLinkMap size:   2\n"})
        EXPECT_EQ(log.count(label, LOG_LOG), 1) << label << log.all();
    EXPECT_EQ(log.size(), 21u);
}
