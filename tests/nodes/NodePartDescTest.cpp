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
    NodeType*    owner;

    // A root type of its own, which initType reports once; quietly.
    static NodeType& ownerType()
    {
        static TestNodeType& type = [] () -> TestNodeType& {
            LogCapture quiet;
            static TestNodeType t{"Owner", {}};
            return t;
        }();
        return type.type();
    }

    Parsed(NodePartDataType dataType, const char* valueType)
        : desc(7, PartMask::bit(7), FieldPartType, dataType, 0, "part", nullptr, nullptr, valueType),
          owner(&ownerType())
    {
        desc.init(*owner);
    }
};

} // namespace

TEST(NodePartDescTest, NamesFollowThePartType)
{
    NodePartDesc exposed(0, PartMask::bit(0), ExposedFieldPartType, SFVec3fType, 0, "translation");
    EXPECT_EQ(exposed.fieldName(), "translation");
    EXPECT_EQ(exposed.inSlotName(), "set_translation");
    EXPECT_EQ(exposed.outSlotName(), "translation_changed");
    NodePartDesc in(1, PartMask::bit(1), EventInPartType, SFTimeType, 0, "touch");
    EXPECT_EQ(in.inSlotName(), "touch");
    EXPECT_EQ(in.outSlotName(), "");
    NodePartDesc out(2, PartMask::bit(2), EventOutPartType, SFTimeType, 0, "fired");
    EXPECT_EQ(out.outSlotName(), "fired");
    EXPECT_EQ(out.inSlotName(), "");
    NodePartDesc field(3, PartMask::bit(3), FieldPartType, SFTimeType, 0, "plain");
    EXPECT_EQ(field.inSlotName() + field.outSlotName(), "");
    EXPECT_STREQ(exposed.partTypeName(), "exposedField");
    EXPECT_STREQ(field.partTypeName(), "field");

    LogCapture log;
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
    EXPECT_TRUE(desc.autoProcess());
    EXPECT_TRUE(desc.privateAccess());
    EXPECT_TRUE(desc.deprecated());
    EXPECT_TRUE(desc.typeExtension());
    EXPECT_TRUE(desc.hasFlag(NodePartDesc::FurtherFlag));
    EXPECT_FALSE(desc.objExtension());
    EXPECT_EQ(desc.further(), 42u);
    PartMask mask = PartMask::bit(9);
    NodePartDesc copy(desc, &mask);
    EXPECT_EQ(copy.mask(), mask);
    EXPECT_EQ(copy.flags(), desc.flags());
    EXPECT_EQ(copy.group(), "grp");
}

TEST(NodePartDescTest, ValueTypeParsing)
{
    Parsed::ownerType();
    LogCapture log;
    const struct {
        NodePartDataType         dataType;
        const char*              valueType;
        NodePartValueRestriction restriction;
        const char*              warning;
    } cases[] = {
        {SFFloatType, nullptr, NoRestriction, nullptr},
        {SFStringType, "cdata", CDataRestriction, nullptr},
        {SFFloatType, "cdata", CDataRestriction, nullptr},
        {SFStringType, "CDATA", NoRestriction, nullptr},
        {SFFloatType, "[0,1]", RangeRestriction, nullptr},
        {MFInt32Type, "(0 1)", RangeRestriction, nullptr},
        {SFDoubleType, "[0]", NoRestriction, "part.Owner: Need two min;max values in _valueType\n"},
        {SFFloatType, "[0,1,2]", NoRestriction, "part.Owner: Need two min;max values in _valueType\n"},
        {SFNodeType, " [Shape] ", NodeTypeRestriction, nullptr},
        {MFNodeType, "Shape;Box", NoRestriction, "part.Owner: Only one value allowed in _valueType\n"},
        {MFStringType, "Linear,Quadratic", ListRestriction, nullptr},
        {SFStringType, "Linear", NoRestriction, nullptr},
        {SFVec3fType, "0 1", NoRestriction, nullptr},
        {SFFloatType, " ;, ", NoRestriction, nullptr},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.valueType ? c.valueType : "(none)");
        log.clear();
        Parsed p(c.dataType, c.valueType);
        EXPECT_EQ(p.desc.valueRestriction(), c.restriction);
        if (c.warning)
            EXPECT_EQ(log.count(c.warning, LOG_WARNING), 1) << log.all();
        else
            EXPECT_EQ(log.size(), 0u) << log.all();
    }
    Parsed range(SFFloatType, "[-0.5, 2e1]");
    EXPECT_EQ(range.desc.minValue(), -0.5);
    EXPECT_EQ(range.desc.maxValue(), 20.0);
    Parsed node(SFNodeType, " [Shape] ");
    EXPECT_EQ(node.desc.valueType(), "Shape");
    Parsed list(MFStringType, "(a; b, c)");
    EXPECT_EQ(list.desc.valueList(), (std::list<std::string>{"a", "b", "c"}));
}

TEST(NodePartDescTest, RestrictedNodeTypesResolveOnFirstNeed)
{
    Parsed::ownerType();
    LogCapture log;
    Parsed unknown(SFNodeType, "NeverRegistered");
    EXPECT_EQ(log.size(), 0u) << "init does not resolve";
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
    Parsed p(MFStringType, "Linear,Quadratic,Cubic");
    const NodePartDesc& d = p.desc;
    EXPECT_EQ(d.valueListElem("li", NodePartDesc::NextElem), "Quadratic");
    EXPECT_EQ(d.valueListElem("Cubic", NodePartDesc::NextElem), "Cubic");
    EXPECT_EQ(d.valueListElem("quad", NodePartDesc::PrevElem), "Linear");
    EXPECT_EQ(d.valueListElem("Linear", NodePartDesc::PrevElem), "Linear");
    EXPECT_EQ(d.valueListElem("Cubic", NodePartDesc::NextElemWrap), "Linear");
    EXPECT_EQ(d.valueListElem("Linear", NodePartDesc::PrevElemWrap), "Cubic");
    EXPECT_EQ(d.valueListElem("nothing", NodePartDesc::FirstElem), "Linear");
    EXPECT_EQ(d.valueListElem("nothing", NodePartDesc::LastElem), "Cubic");
    EXPECT_EQ(d.valueListElem("CUBIC", static_cast<NodePartDesc::ListSelect>(99)), "Cubic");
    std::set<std::string> seen;
    for (int i = 0; i < 200; ++i)
        seen.insert(d.valueListElem("", NodePartDesc::RandomElem));
    EXPECT_EQ(seen, (std::set<std::string>{"Linear", "Quadratic", "Cubic"}));

    LogCapture log;
    EXPECT_EQ(d.valueListElem("Spline", NodePartDesc::NextElem), "Spline");
    EXPECT_EQ(log.count("part(Linear,Quadratic,Cubic) Invalid CurrentElem: Spline; can not select\n"), 1)
        << log.all();
    Parsed single(MFStringType, "Only Only");
    EXPECT_EQ(single.desc.valueListElem("Only", NodePartDesc::NextElem), "Only");
    EXPECT_EQ(single.desc.valueListElem("Only", NodePartDesc::PrevElem), "Only");
    Parsed none(SFFloatType, "[0,1]");
    EXPECT_EQ(none.desc.valueListElem("x", NodePartDesc::NextElem), "x");
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
    const char* labels[] = {"NodePartDesc:       part\n", "  ID:               7\n", "  Mask value:       128\n",
                            "  partType:         field\n", "  dataType:         SFFloat\n",
                            "  valueType:        [0,1]\n", "  group:             \n", "  isLinkMap size:   2\n"};
    for (const char* label : labels)
        EXPECT_EQ(log.count(label, LOG_LOG), 1) << label << log.all();
    EXPECT_EQ(log.size(), 21u);
}
