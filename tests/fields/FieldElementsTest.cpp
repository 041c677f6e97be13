// Element operations of the list fields, on vector storage (MFInt32, MFFloat, ...) and on the
// list storage of MFString; value comparison.
#include "tests/fields/FieldKit.h"

#include <cmath>

using namespace Orvane;
using namespace Orvane::Test;

namespace {

struct FieldElementsTest : ::testing::Test {
    TestNodeType   type{"ElementNode", {}};
    SmartPtr<Node> node = type.make();

    template <class F, class... V>
    F make(V... values)
    {
        F f(*node);
        (f.addValue(values), ...);
        return f;
    }
};

using Strings = std::vector<std::string>;

} // namespace

TEST_F(FieldElementsTest, InsertAtANegativeIndexOrAtTheSizeAppends)
{
    auto v = make<MFInt32>(1);
    v.insertValue(-1, 2);
    v.insertValue(static_cast<int>(v.size()), 3);
    v.insertValue(0, 0);
    v.insertValue(2, 9);
    EXPECT_EQ(*v.insertValue(-5, 4), 4);
    EXPECT_EQ(items(v), (std::vector<int>{0, 1, 9, 2, 3, 4}));

    auto l = make<MFString>("b");
    l.insertValue(-1, "c");
    l.insertValue(1, "x");
    l.insertValue(0, "a");
    l.insertValue(static_cast<int>(l.size()), "d");
    EXPECT_EQ(*l.insertValue(-2, "e"), "e");
    EXPECT_EQ(items(l), (Strings{"a", "b", "x", "c", "d", "e"}));
}

TEST_F(FieldElementsTest, Remove)
{
    // By value: every copy.
    auto v = make<MFFloat>(1.0f, 2.0f, 1.0f, 3.0f, 1.0f);
    v.removeValue(1.0f);
    v.removeValue(7.0f);
    EXPECT_EQ(items(v), (std::vector<float>{2.0f, 3.0f}));
    auto b = make<MFBool>(true, false, true, true);
    b.removeValue(true);
    EXPECT_EQ(items(b), std::vector<bool>{false});

    // By index; one past the end is no element, on a list a negative index neither.
    auto i = make<MFInt32>(10, 11, 12);
    i.removeValueByIndex(3);
    i.removeValueByIndex(1);
    EXPECT_EQ(items(i), (std::vector<int>{10, 12}));
    auto l = make<MFString>("a", "b", "c", "d");
    l.removeValueByIndex(4);
    l.removeValueByIndex(-1);
    l.removeValueByIndex(0);
    EXPECT_EQ(items(l), (Strings{"b", "c"}));
}

TEST_F(FieldElementsTest, ListIndicesCountBackFromTheEnd)
{
    auto l = make<MFString>("a", "b", "c");
    EXPECT_EQ(l.elem(-1), "c");
    EXPECT_EQ(l.elem(-3), "a");
    EXPECT_EQ(l.elem(1), "b");
    l.setElem(-2, "B");
    l.setElem(0, "A");
    EXPECT_EQ(static_cast<const MFString&>(l).elem(-2), "B");
    EXPECT_EQ(items(l), (Strings{"A", "B", "c"}));

    auto b = make<MFBool>(false, true);
    EXPECT_TRUE(b.elem(-1));
    b.elem(-1) = false;
    EXPECT_FALSE(b.back());
}

TEST_F(FieldElementsTest, CapacityResizeAndSingleValueFields)
{
    // Clearing and reading a new value keep the storage; free gives it back.
    MFVec3f v(*node);
    v.reserve(100);
    v.addValue(Vec3f(1.0f));
    const std::size_t capacity = v.capacity();
    EXPECT_GE(capacity, 100u);
    v.clear();
    v.setValueByStr(0.0, "1 2 3");
    EXPECT_EQ(v.size(), 1u);
    EXPECT_EQ(v.capacity(), capacity);
    v.free();
    EXPECT_EQ(v.capacity(), 0u);
    auto l = make<MFString>("x");
    l.reserve(5);  // no effect on a list
    l.free();
    EXPECT_EQ(l.size(), 0u);

    MFDouble d(*node);
    d.resize(3);
    d.setElem(1, 2.5);
    d.resize(2);
    EXPECT_EQ(items(d), (std::vector<double>{0.0, 2.5}));

    // A single value stays one.
    SFFloat s(*node, 3.0f);
    Field&  f = s;
    f.resize(5);
    f.reserve(5);
    f.clear();
    f.free();
    EXPECT_EQ(f.size(), 1u);
    EXPECT_EQ(s.value(), 3.0f);
    EXPECT_EQ(XFAny(*node).size(), 1u);
}

TEST_F(FieldElementsTest, AddValueFieldDepReplacesOrAppends)
{
    struct Dep : MFInt32 {
        using MFInt32::MFInt32;
        using MFInt32::addValueFieldDep;
    } v(*node);
    struct SDep : SFFloat {
        using SFFloat::SFFloat;
        using SFFloat::addValueFieldDep;
    } s(*node, 1.0f);

    for (int x : {1, 2, 3, 4})
        v.addValue(x);
    v.addValueFieldDep(std::vector<int>{7, 8}, true);
    v.addValueFieldDep(std::vector<int>{9}, false);
    EXPECT_EQ(items(v), (std::vector<int>{7, 8, 9}));
    v.addValueFieldDep(std::vector<int>{}, true);
    EXPECT_TRUE(v.empty());
    s.addValueFieldDep(5.0f, true);
    EXPECT_EQ(s.value(), 1.0f);
}

TEST_F(FieldElementsTest, EqualValueIsExactAndComparesTheStorageClass)
{
    SFDouble d(*node, 0.5);
    SFTime   t(*node, 0.5);
    EXPECT_TRUE(d.equalValue(t));
    EXPECT_TRUE(t.equalValue(d));
    t.setValue(0.25);
    EXPECT_FALSE(d.equalValue(t));
    auto md = make<MFDouble>(1.0);
    auto mt = make<MFTime>(1.0);
    EXPECT_TRUE(md.equalValue(mt));
    mt.addValue(1.0);
    EXPECT_FALSE(md.equalValue(mt));

    SFFloat a(*node, 0.1f), b(*node, std::nextafter(0.1f, 1.0f));
    EXPECT_FALSE(a.equalValue(b));
    EXPECT_FALSE(SFDouble(*node, std::nan("")).equalValue(SFDouble(*node, std::nan(""))));
    EXPECT_TRUE(SFDouble(*node, 0.0).equalValue(SFDouble(*node, -0.0)));

    // Colours and vectors hold the same three floats but are different types.
    LogCapture log;
    EXPECT_FALSE(a.equalValue(d));
    EXPECT_FALSE(d.equalValue(a));
    EXPECT_FALSE(SFColor(*node).equalValue(SFVec3f(*node)));
    EXPECT_FALSE(MFFloat(*node).equalValue(SFFloat(*node, 0.0f)));
    EXPECT_EQ(log.count("Type mismatch in XField::opperator==\n", LOG_FATAL), 4) << log.all();
}

namespace {

// Records where the splitter hands over the text.
struct SplitMFInt32 : MFInt32 {
    using MFInt32::MFInt32;
    using Field::splitAndAddValues;
    Strings     seen;
    const char* addValueByStr(const char* text, Cardinality cardinality) override
    {
        EXPECT_EQ(cardinality, Single);
        seen.emplace_back(text);
        return MFInt32::addValueByStr(text, cardinality);
    }
};

} // namespace

TEST_F(FieldElementsTest, SplitAndAddValuesCallsOncePerRun)
{
    SplitMFInt32 v(*node);
    EXPECT_EQ(v.splitAndAddValues("  1 2   3 ", " "), 3);
    EXPECT_EQ(v.seen, (Strings{"1 2   3 ", "2   3 ", "3 "}));
    v.seen.clear();
    EXPECT_EQ(v.splitAndAddValues(";4;;5", ";"), 2);
    EXPECT_EQ(v.seen, (Strings{"4;;5", "5"}));
    for (const char* nothing : {"", "   ", (const char*)nullptr})
        EXPECT_EQ(v.splitAndAddValues(nothing, " "), 0);
    EXPECT_EQ(v.splitAndAddValues("7", ""), 1);
    EXPECT_EQ(items(v), (std::vector<int>{1, 2, 3, 4, 5, 7}));
}
