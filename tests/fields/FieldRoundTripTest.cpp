#include "base/Components.h"
#include "base/FieldType.h"
#include "base/MFBool.h"
#include "base/MFColor.h"
#include "base/MFColorRGBA.h"
#include "base/MFDouble.h"
#include "base/MFFloat.h"
#include "base/MFImage.h"
#include "base/MFInt32.h"
#include "base/MFMatrix3d.h"
#include "base/MFMatrix3f.h"
#include "base/MFMatrix4d.h"
#include "base/MFMatrix4f.h"
#include "base/MFPlane.h"
#include "base/MFQubit.h"
#include "base/MFRotation.h"
#include "base/MFString.h"
#include "base/MFTime.h"
#include "base/MFVec2d.h"
#include "base/MFVec2f.h"
#include "base/MFVec3d.h"
#include "base/MFVec3f.h"
#include "base/MFVec4d.h"
#include "base/MFVec4f.h"
#include "base/SFBool.h"
#include "base/SFColor.h"
#include "base/SFColorRGBA.h"
#include "base/SFDouble.h"
#include "base/SFFloat.h"
#include "base/SFImage.h"
#include "base/SFInt32.h"
#include "base/SFMatrix3d.h"
#include "base/SFMatrix3f.h"
#include "base/SFMatrix4d.h"
#include "base/SFMatrix4f.h"
#include "base/SFPlane.h"
#include "base/SFQubit.h"
#include "base/SFRotation.h"
#include "base/SFSound.h"
#include "base/SFString.h"
#include "base/SFTime.h"
#include "base/SFVec2d.h"
#include "base/SFVec2f.h"
#include "base/SFVec3d.h"
#include "base/SFVec3f.h"
#include "base/SFVec4d.h"
#include "base/SFVec4f.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TestNodes.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <random>
#include <set>
#include <string>

using namespace Orvane;
using namespace Orvane::Test;

namespace {

// Random values that the text form can carry exactly. Floating components are multiples of
// 1/8 below 250 in magnitude: at most six significant digits ("%g" keeps six) and three
// decimals (the fixed MF notation keeps six), and exact in binary, so reading them back gives
// the same float or double. Lone doubles (SFDouble, SFTime and their lists) also get large
// integers of up to 16 digits, which "%.16g" and the fixed notation both keep.
class ValueMaker {
public:
    explicit ValueMaker(std::uint32_t seed) : _rng(seed) {}

    int  pick(int lo, int hi) { return std::uniform_int_distribution<int>(lo, hi)(_rng); }
    bool coin() { return pick(0, 1) == 1; }

    double eighths() { return pick(-1999, 1999) / 8.0; }

    template <class T>
    T make()
    {
        if constexpr (std::is_same_v<T, bool>) {
            return coin();
        } else if constexpr (std::is_same_v<T, int>) {
            return static_cast<int>(_rng());
        } else if constexpr (std::is_same_v<T, double>) {
            return pick(0, 3) == 0 ? static_cast<double>(std::int64_t(_rng()) << 18) : eighths();
        } else if constexpr (std::is_same_v<T, std::string>) {
            return text();
        } else if constexpr (std::is_same_v<T, Image>) {
            int w = pick(0, 3), h = pick(0, 3);
            std::vector<std::uint32_t> pixels(static_cast<std::size_t>(w * h));
            for (auto& p : pixels)
                p = static_cast<std::uint32_t>(_rng());
            return Image(w, h, pick(0, 4), pixels);
        } else if constexpr (std::is_same_v<T, Qubit>) {
            if (pick(0, 3) == 0)
                return Qubit();
            return Qubit({eighths(), eighths()}, {eighths(), eighths()});
        } else if constexpr (std::is_same_v<T, PCMSound>) {
            std::vector<std::int16_t> samples(static_cast<std::size_t>(pick(0, 6)));
            for (auto& s : samples)
                s = static_cast<std::int16_t>(pick(-32768, 32767));
            return PCMSound(samples, pick(0, 2), pick(0, 48000));
        } else {
            using C = Components<T>;
            T v{};
            for (unsigned i = 0; i < C::count; ++i)
                C::set(v, i, static_cast<typename C::Scalar>(eighths()));
            return v;
        }
    }

    // Any bytes but NUL, with quotes, backslashes and separators more often than by chance.
    std::string text()
    {
        static const char tricky[] = "\"'\\ ,\t\nab";
        std::string s(static_cast<std::size_t>(pick(0, 12)), ' ');
        for (char& c : s)
            c = coin() ? tricky[pick(0, sizeof tricky - 2)] : static_cast<char>(pick(1, 255));
        return s;
    }

private:
    std::mt19937 _rng;
};

template <class F>
constexpr bool isMulti = requires { typename F::Element; };

template <class F>
void roundTrip(Node& node, ValueMaker& maker, std::set<int>& covered)
{
    for (int round = 0; round < 40; ++round) {
        F original(node);
        if constexpr (isMulti<F>) {
            // An empty MFString writes the empty text, which reads as one empty element.
            int count = maker.pick(std::is_same_v<F, MFString> ? 1 : 0, 5);
            for (int i = 0; i < count; ++i)
                original.addValue(maker.make<typename F::Element>());
        } else {
            original.setValue(maker.make<typename F::ValueType>());
        }
        const std::string text = original.strValue();

        std::unique_ptr<Field> copy(FieldType::create(F::DataType, node));
        ASSERT_NE(copy, nullptr);
        copy->setValueByStr(0.0, text.c_str());
        ASSERT_TRUE(copy->equalValue(original)) << original.dataTypeName() << " from >" << text << "<";
        EXPECT_EQ(copy->strValue(), text) << original.dataTypeName();
        EXPECT_EQ(copy->size(), original.size()) << original.dataTypeName();
    }
    covered.insert(F::DataType);
}

template <class... F>
void roundTripAll(Node& node, ValueMaker& maker, std::set<int>& covered)
{
    (roundTrip<F>(node, maker, covered), ...);
}

} // namespace

// Node fields (their text names the child), SFAny/MFAny/XFAny (no text form) and MFSound (no
// text form as a list) are left out; every other type must read back what it writes.
TEST(FieldRoundTripTest, EveryTypeWithATextFormReadsBackWhatItWrites)
{
    TestNodeType   type{"RoundNode", {}};
    SmartPtr<Node> node = type.make();
    ValueMaker     maker(20240611u);
    std::set<int>  covered;
    LogCapture     log;

    roundTripAll<SFBool, SFColor, SFColorRGBA, SFDouble, SFFloat, SFImage, SFInt32, SFMatrix3d, SFMatrix3f,
                 SFMatrix4d, SFMatrix4f, SFPlane, SFQubit, SFRotation, SFSound, SFString, SFTime, SFVec2d,
                 SFVec2f, SFVec3d, SFVec3f, SFVec4d, SFVec4f>(*node, maker, covered);
    roundTripAll<MFBool, MFColor, MFColorRGBA, MFDouble, MFFloat, MFImage, MFInt32, MFMatrix3d, MFMatrix3f,
                 MFMatrix4d, MFMatrix4f, MFPlane, MFQubit, MFRotation, MFString, MFTime, MFVec2d, MFVec2f,
                 MFVec3d, MFVec3f, MFVec4d, MFVec4f>(*node, maker, covered);

    const std::set<int> without{SFNodeType, MFNodeType, MFSoundType, XFAnyType, SFAnyType, MFAnyType};
    for (int dt = 1; dt <= 51; ++dt)
        EXPECT_NE(covered.count(dt) + without.count(dt), 0u) << FieldType::dataTypeName(NodePartDataType(dt));
    EXPECT_EQ(covered.size(), 45u);
    EXPECT_EQ(log.size(), 0u) << log.all();
}
