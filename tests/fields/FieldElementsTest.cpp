#include "base/MFBool.h"
#include "base/MFDouble.h"
#include "base/MFFloat.h"
#include "base/MFInt32.h"
#include "base/MFString.h"
#include "base/MFTime.h"
#include "base/MFVec3f.h"
#include "base/SFColor.h"
#include "base/SFDouble.h"
#include "base/SFFloat.h"
#include "base/SFTime.h"
#include "base/SFVec3f.h"
#include "base/XFAny.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TestNodes.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

using namespace Orvane;
using namespace Orvane::Test;

namespace {

struct FieldElementsTest : ::testing::Test {
    TestNodeType   type{"ElementNode", {}};
    SmartPtr<Node> node = type.make();
};

template <class F>
std::vector<typename F::Element> items(const F& f)
{
    return {f.begin(), f.end()};
}

} // namespace

TEST_F(FieldElementsTest, InsertAtMinusOneOrAtTheSizeAppends)
{
    MFInt32 v(*node);
    v.addValue(1);
    v.insertValue(-1, 2);
    v.insertValue(static_cast<int>(v.size()), 3);
    v.insertValue(0, 0);
    v.insertValue(2, 9);
    EXPECT_EQ(items(v), (std::vector<int>{0, 1, 9, 2, 3}));
    EXPECT_EQ(*v.insertValue(-5, 4), 4);
    EXPECT_EQ(v.back(), 4);

    MFString l(*node);
    l.addValue("b");
    l.insertValue(-1, "c");
    l.insertValue(1, "x");
    l.insertValue(0, "a");
    l.insertValue(static_cast<int>(l.size()), "d");
    EXPECT_EQ(items(l), (std::vector<std::string>{"a", "b", "x", "c", "d"}));
    EXPECT_EQ(*l.insertValue(2, "y"), "y");
}

TEST_F(FieldElementsTest, RemoveValueRemovesEveryCopy)
{
    MFFloat v(*node);
    for (float x : {1.0f, 2.0f, 1.0f, 3.0f, 1.0f})
        v.addValue(x);
    v.removeValue(1.0f);
    EXPECT_EQ(items(v), (std::vector<float>{2.0f, 3.0f}));
    v.removeValue(7.0f);
    EXPECT_EQ(v.size(), 2u);

    MFBool b(*node);
    for (bool x : {true, false, true, true})
        b.addValue(x);
    b.removeValue(true);
    EXPECT_EQ(items(b), std::vector<bool>{false});
}

TEST_F(FieldElementsTest, RemoveByIndex)
{
    MFInt32 v(*node);
    for (int x : {10, 11, 12})
        v.addValue(x);
    v.removeValueByIndex(3);
    EXPECT_EQ(v.size(), 3u);
    v.removeValueByIndex(1);
    EXPECT_EQ(items(v), (std::vector<int>{10, 12}));

    MFString l(*node);
    for (const char* s : {"a", "b", "c", "d"})
        l.addValue(s);
    l.removeValueByIndex(4);
    EXPECT_EQ(l.size(), 4u);
    l.removeValueByIndex(-1);
    l.removeValueByIndex(0);
    EXPECT_EQ(items(l), (std::vector<std::string>{"b", "c"}));
}

TEST_F(FieldElementsTest, ListIndicesCountBackFromTheEnd)
{
    MFString l(*node);
    for (const char* s : {"a", "b", "c"})
        l.addValue(s);
    EXPECT_EQ(l.elem(-1), "c");
    EXPECT_EQ(l.elem(-3), "a");
    EXPECT_EQ(l.elem(1), "b");
    l.setElem(-2, "B");
    l.setElem(0, "A");
    const MFString& cl = l;
    EXPECT_EQ(cl.elem(-2), "B");
    EXPECT_EQ(items(l), (std::vector<std::string>{"A", "B", "c"}));
    l.insertValue(-2, "end");  // negative inserts append
    EXPECT_EQ(l.back(), "end");

    MFBool b(*node);
    b.addValue(false);
    b.addValue(true);
    EXPECT_TRUE(b.elem(-1));
    b.elem(-1) = false;
    EXPECT_FALSE(b.back());
}

TEST_F(FieldElementsTest, ClearKeepsCapacityFreeReleasesIt)
{
    MFVec3f v(*node);
    v.reserve(100);
    for (int i = 0; i < 10; ++i)
        v.addValue(Vec3f(float(i)));
    std::size_t capacity = v.capacity();
    EXPECT_GE(capacity, 100u);
    v.clear();
    EXPECT_TRUE(v.empty());
    EXPECT_EQ(v.capacity(), capacity);
    // Reading a new value empties the field without giving the storage back either.
    v.addValue(Vec3f(1.0f));
    v.setValueByStr(0.0, "1 2 3");
    EXPECT_EQ(v.size(), 1u);
    EXPECT_EQ(v.capacity(), capacity);
    v.free();
    EXPECT_TRUE(v.empty());
    EXPECT_EQ(v.capacity(), 0u);

    MFString l(*node);
    l.reserve(5);  // no effect on a list
    l.addValue("x");
    l.free();
    EXPECT_EQ(l.size(), 0u);
}

TEST_F(FieldElementsTest, ResizeAndSingleValueFieldsAreFixedAtOne)
{
    MFDouble v(*node);
    v.resize(3);
    EXPECT_EQ(items(v), (std::vector<double>{0.0, 0.0, 0.0}));
    v.setElem(1, 2.5);
    v.resize(2);
    EXPECT_EQ(items(v), (std::vector<double>{0.0, 2.5}));
    EXPECT_EQ(v.cardinality(), Field::Multi);

    SFFloat s(*node, 3.0f);
    Field& f = s;
    f.resize(5);
    f.reserve(5);
    f.clear();
    f.free();
    EXPECT_EQ(f.size(), 1u);
    EXPECT_FALSE(f.empty());
    EXPECT_EQ(f.cardinality(), Field::Single);
    EXPECT_EQ(s.value(), 3.0f);

    XFAny any(*node);
    EXPECT_EQ(any.size(), 1u);
    EXPECT_EQ(any.cardinality(), Field::Single);
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
    EXPECT_EQ(items(v), (std::vector<int>{7, 8}));
    v.addValueFieldDep(std::vector<int>{9}, false);
    EXPECT_EQ(items(v), (std::vector<int>{7, 8, 9}));
    v.addValueFieldDep(std::vector<int>{}, true);
    EXPECT_TRUE(v.empty());

    s.addValueFieldDep(5.0f, true);
    EXPECT_EQ(s.value(), 1.0f);
}

TEST_F(FieldElementsTest, EqualValueComparesTheStorageClass)
{
    SFDouble d(*node, 0.5);
    SFTime t(*node, 0.5);
    EXPECT_TRUE(d.equalValue(t));
    EXPECT_TRUE(t.equalValue(d));
    t.setValue(0.25);
    EXPECT_FALSE(d.equalValue(t));

    MFDouble md(*node);
    MFTime mt(*node);
    md.addValue(1.0);
    mt.addValue(1.0);
    EXPECT_TRUE(md.equalValue(mt));
    mt.addValue(1.0);
    EXPECT_FALSE(md.equalValue(mt));

    LogCapture log;
    SFFloat f(*node, 0.5f);
    EXPECT_FALSE(f.equalValue(d));
    EXPECT_FALSE(d.equalValue(f));
    EXPECT_EQ(log.count("Type mismatch in XField::opperator==\n", LOG_FATAL), 2) << log.all();

    // Colours and vectors hold the same three floats but are different types.
    SFColor c(*node);
    SFVec3f v(*node);
    EXPECT_FALSE(c.equalValue(v));
    MFFloat mf(*node);
    SFFloat one(*node, 0.0f);
    EXPECT_FALSE(mf.equalValue(one));
    EXPECT_EQ(log.count("Type mismatch in XField::opperator==\n", LOG_FATAL), 4);
}

TEST_F(FieldElementsTest, EqualValueIsExact)
{
    SFFloat a(*node, 0.1f), b(*node, 0.1f);
    EXPECT_TRUE(a.equalValue(b));
    b.setValue(std::nextafter(0.1f, 1.0f));
    EXPECT_FALSE(a.equalValue(b));
    SFDouble nan1(*node, std::nan("")), nan2(*node, std::nan(""));
    EXPECT_FALSE(nan1.equalValue(nan2));
    SFDouble zero(*node, 0.0), negZero(*node, -0.0);
    EXPECT_TRUE(zero.equalValue(negZero));
}

namespace {

// Records where the splitter hands over the text.
struct SplitMFInt32 : MFInt32 {
    using MFInt32::MFInt32;
    using Field::splitAndAddValues;
    std::vector<std::string> seen;
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
    EXPECT_EQ(v.seen, (std::vector<std::string>{"1 2   3 ", "2   3 ", "3 "}));
    EXPECT_EQ(items(v), (std::vector<int>{1, 2, 3}));

    v.seen.clear();
    EXPECT_EQ(v.splitAndAddValues(";4;;5", ";"), 2);
    EXPECT_EQ(v.seen, (std::vector<std::string>{"4;;5", "5"}));
    EXPECT_EQ(v.splitAndAddValues("", " "), 0);
    EXPECT_EQ(v.splitAndAddValues("   ", " "), 0);
    EXPECT_EQ(v.splitAndAddValues(nullptr, " "), 0);
    EXPECT_EQ(v.splitAndAddValues("7", ""), 1);
    EXPECT_EQ(items(v), (std::vector<int>{1, 2, 3, 4, 5, 7}));
}
