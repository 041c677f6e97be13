// The binary form of field values: round trips, the exact byte layout, the classes that
// refuse it, and input that is short, corrupt or random.
#include "platform/pordane/obinstream.h"
#include "tests/fields/FieldKit.h"

#include <algorithm>
#include <memory>

using namespace Orvane;
using namespace Orvane::Test;

namespace {

struct BinaryTest : ::testing::Test {
    TestNodeType   type{"BinaryNode", {}};
    SmartPtr<Node> node = type.make();
};

std::string floats(std::initializer_list<float> values)
{
    Pordane::obinstream out;
    for (float v : values)
        out << v;
    return out.str();
}

std::string bytes(std::initializer_list<int> values)
{
    std::string out;
    for (int v : values)
        out += static_cast<char>(v);
    return out;
}

template <class F>
struct BinaryRoundTrip : BinaryTest {};

using Supporting = ::testing::Types<SFBool, SFColor, SFColorRGBA, SFDouble, SFFloat, SFImage, SFInt32, SFMatrix4f,
                                    SFRotation, SFString, SFTime, SFVec2d, SFVec2f, SFVec3d, SFVec3f, SFVec4f, MFColor,
                                    MFColorRGBA, MFDouble, MFFloat, MFInt32, MFRotation, MFString, MFTime, MFVec2d,
                                    MFVec2f, MFVec3d, MFVec3f>;
TYPED_TEST_SUITE(BinaryRoundTrip, Supporting);

} // namespace

TYPED_TEST(BinaryRoundTrip, RandomValuesComeBackWhole)
{
    RandomValues random(11, false);
    LogCapture   log;
    for (int round = 0; round < 50; ++round) {
        TypeParam original(*this->node), copy(*this->node), elements(*this->node);
        random.fill(original);
        random.fill(copy);
        copy.setValueByBin(0.0, original.getBinValue());
        EXPECT_TRUE(copy.equalValue(original)) << original.strValue() << " / " << copy.strValue();

        // Element by element into a field of the same size.
        random.fill(elements);
        elements.resize(original.size());
        for (int i = 0; i < int(original.size()); ++i)
            elements.set1ValueByBin(i, original.get1ValueAsBin(i));
        EXPECT_TRUE(elements.equalValue(original));
    }
    EXPECT_EQ(log.size(), 0u) << log.all();
}

// Short and random bytes: no crash, no read past the data (the sanitizers watch), no more
// elements than the bytes can hold.
TYPED_TEST(BinaryRoundTrip, ShortAndRandomInputIsSafe)
{
    RandomValues random(12, false);
    LogCapture   log;
    TypeParam    original(*this->node);
    random.fill(original, 3);
    const std::string whole = original.getBinValue();
    for (std::size_t length = 0; length <= whole.size(); ++length) {
        TypeParam target(*this->node);
        target.setValueByBin(0.0, whole.substr(0, length));
        EXPECT_LE(target.size(), original.size());
    }
    for (int round = 0; round < 300; ++round) {
        std::string noise(std::size_t(random.pick(0, 39)), '\0');
        for (char& c : noise)
            c = static_cast<char>(random.pick(0, 255));
        TypeParam target(*this->node);
        target.setValueByBin(0.0, noise);
        EXPECT_LE(target.size(), std::max<std::size_t>(noise.size(), 1));
        target.set1ValueByBin(0, noise);
        target.set1ValueByBin(1000, noise);
    }
}

TEST_F(BinaryTest, ByteLayout)
{
    EXPECT_EQ(SFVec3f(*node, Vec3f(1, 2, 3)).getBinValue(), floats({1, 2, 3}));
    EXPECT_EQ(SFRotation(*node, Rotation(0, 1, 0, 0.5f)).getBinValue(), floats({0, 1, 0, 0.5f}));
    Matrix4f m(0.0f);
    for (int i = 0; i < 16; ++i)
        valuePtr(m)[i] = float(i);
    EXPECT_EQ(SFMatrix4f(*node, m).getBinValue(), floats({0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15}));
    EXPECT_EQ(SFBool(*node, true).getBinValue(), bytes({1}));
    EXPECT_EQ(SFInt32(*node, -2).getBinValue(), bytes({0xFE, 0xFF, 0xFF, 0xFF}));
    EXPECT_EQ(SFString(*node, std::string("ab")).getBinValue(), bytes({2, 0, 0, 0, 'a', 'b'}));

    MFFloat values(*node);
    EXPECT_EQ(values.getBinValue(), bytes({0, 0, 0, 0}));
    values.value() = {1, 2, 3};
    EXPECT_EQ(values.getBinValue(), bytes({3, 0, 0, 0}) + floats({1, 2, 3}));
    EXPECT_EQ(values.get1ValueAsBin(2), floats({3}));
    EXPECT_EQ(values.get1ValueAsBin(3), "");
    EXPECT_EQ(values.get1ValueAsBin(-1), "");
    values.set1ValueByBin(1, floats({7}));
    EXPECT_EQ(values.value(), (std::vector<float>{1, 7, 3}));
    values.setValueByBin(0.0, bytes({0, 0, 0, 0}));
    EXPECT_TRUE(values.empty());

    MFString texts(*node);
    texts.value() = {"x", ""};
    EXPECT_EQ(texts.getBinValue(), bytes({2, 0, 0, 0, 1, 0, 0, 0, 'x', 0, 0, 0, 0}));
}

TEST_F(BinaryTest, CorruptCountsStayBounded)
{
    MFFloat values(*node);
    values.setValueByBin(0.0, bytes({0xFF, 0xFF, 0xFF, 0x7F}) + floats({1, 2}));
    EXPECT_EQ(values.value(), (std::vector<float>{1, 2}));
    // A partial last element is completed with zeros; a negative count is no element.
    values.setValueByBin(0.0, bytes({2, 0, 0, 0}) + floats({5}) + bytes({1}));
    EXPECT_EQ(values.value(), (std::vector<float>{5, 0}));
    values.setValueByBin(0.0, bytes({0xFF, 0xFF, 0xFF, 0xFF}) + floats({1}));
    EXPECT_TRUE(values.empty());
    values.setValueByBin(0.0, bytes({3, 0}));
    EXPECT_TRUE(values.empty());

    MFString texts(*node);
    texts.setValueByBin(0.0, bytes({0xFF, 0xFF, 0xFF, 0x7F, 1, 0, 0, 0, 'a', 0xFF, 0xFF, 0xFF, 0x7F}));
    EXPECT_LE(texts.size(), 3u);
    EXPECT_EQ(texts.value().front(), "a");

    MFVec3f points(*node);
    points.setValueByBin(0.0, bytes({0x00, 0x00, 0x00, 0x40}) + floats({1, 2, 3, 4}));
    EXPECT_EQ(points.value(), (std::vector<Vec3f>{Vec3f(1, 2, 3), Vec3f(4, 0, 0)}));
}

TEST_F(BinaryTest, ImageComponents)
{
    LogCapture   log;
    const Image  kept(2, 1, 3, {0xFF0000, 0x00FF00});
    SFImage      image(*node, kept);
    const std::string data = image.getBinValue();
    EXPECT_EQ(data.size(), 5u * 4u);
    EXPECT_NE(SFImage(*node).getBinValue(), "");  // the empty image "0 0 0"
    EXPECT_EQ(SFImage(*node, Image(2, 1, 0, {1, 2})).getBinValue(), "");
    EXPECT_EQ(log.count("SFImage::getBinValue(): Invalid component (0)\n"), 1);

    for (int components : {7, 0}) {
        Pordane::obinstream bad;
        bad << 1 << 1 << components << 5;
        image.setValueByBin(0.0, bad.str());
        EXPECT_EQ(log.count("SFImage::setValueByBin(): Invalid number of components (" + std::to_string(components) +
                            ")\n"),
                  1);
    }
    // Neither a short image nor one larger than its bytes is taken.
    image.setValueByBin(0.0, data.substr(0, data.size() - 1));
    Pordane::obinstream huge;
    huge << 100000 << 100000 << 3;
    image.setValueByBin(0.0, huge.str());
    EXPECT_EQ(image.value(), kept);
}

// Every class without a binary form says so for each operation and keeps its value.
TEST_F(BinaryTest, RefusingClasses)
{
    const char* refusing[] = {"MFAny",      "MFBool",     "MFImage",    "MFMatrix3d", "MFMatrix3f", "MFMatrix4d",
                              "MFMatrix4f", "MFPlane",    "MFQubit",    "MFSound",    "MFVec4d",    "MFVec4f",
                              "SFAny",      "SFMatrix3d", "SFMatrix3f", "SFMatrix4d", "SFPlane",    "SFQubit",
                              "SFSound",    "SFVec4d",    "XFAny",      "SFNode",     "MFNode"};
    const std::string noise = bytes({1, 0, 0, 0, 0, 0, 0x80, 0x3F});
    for (const std::string name : refusing) {
        SCOPED_TRACE(name);
        std::unique_ptr<Field> field(FieldType::create(FieldType::dataType(name), *node));
        ASSERT_TRUE(field);
        LogCapture log;
        field->setValueByStr(0.0, "1 2 3 4");
        const std::string before = field->strValue();
        log.clear();
        EXPECT_EQ(field->getBinValue(), "");
        EXPECT_EQ(field->get1ValueAsBin(0), "");
        field->setValueByBin(0.0, noise);
        field->set1ValueByBin(0, noise);
        for (const char* op : {"getBinValue", "get1ValueByBin", "setValueByBin", "set1ValueByBin"})
            EXPECT_EQ(log.count(name + "::" + op + "() is not imp\n"), 1) << log.all();
        EXPECT_EQ(field->strValue(), before);
    }
}

// The raw-buffer forms exist in no class.
TEST_F(BinaryTest, RawBufferFormsAreNotImplemented)
{
    unsigned char buffer[16] = {};
    for (int type = 1; type <= 51; ++type) {
        std::unique_ptr<Field> field(FieldType::create(NodePartDataType(type), *node));
        ASSERT_TRUE(field) << type;
        const std::string path = "base/" + field->dataTypeName();
        LogCapture log;
        EXPECT_EQ(field->getBinSize(), 0u);
        EXPECT_EQ(field->getBinValue(buffer), 0u);
        field->setValueByBin(0.0, buffer, sizeof buffer);
        for (const char* op : {" getBinSize", " getBinValue", " setValueByBin"})
            EXPECT_EQ(log.count(path + op + " not Impl\n", LOG_FATAL), 1) << path;
    }
}
