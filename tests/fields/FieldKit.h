#ifndef ORVANE_TESTS_FIELDKIT_H
#define ORVANE_TESTS_FIELDKIT_H

// Every field class, and what the field tests share: random values and element lists.
#include "base/Components.h"
#include "base/ConvertParam.h"
#include "base/FieldType.h"
#include "base/MFAny.h"
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
#include "base/MFNode.h"
#include "base/MFPlane.h"
#include "base/MFQubit.h"
#include "base/MFRotation.h"
#include "base/MFSound.h"
#include "base/MFString.h"
#include "base/MFTime.h"
#include "base/MFVec2d.h"
#include "base/MFVec2f.h"
#include "base/MFVec3d.h"
#include "base/MFVec3f.h"
#include "base/MFVec4d.h"
#include "base/MFVec4f.h"
#include "base/SFAny.h"
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
#include "base/SFNode.h"
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
#include "base/XFAny.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TypeScope.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace Orvane::Test {

template <class F>
constexpr bool isMulti = requires { typename F::Element; };

template <class F>
std::vector<typename F::Element> items(const F& f)
{
    return {f.begin(), f.end()};
}

// Random values of every element type. For text, floating components are multiples of 1/8
// below 250 in magnitude (exact in binary, within the six digits of "%g" and the fixed MF
// notation), lone doubles also get integers of up to 16 digits, and strings carry no NUL, as
// text reaches the parsers as a C string. For binary, anything goes.
class RandomValues {
public:
    RandomValues(std::uint32_t seed, bool forText) : _rng(seed), _text(forText) {}

    int    pick(int lo, int hi) { return std::uniform_int_distribution<int>(lo, hi)(_rng); }
    double real() { return _text ? pick(-1999, 1999) / 8.0 : std::uniform_real_distribution<double>(-1e6, 1e6)(_rng); }

    template <class T>
    T make()
    {
        if constexpr (std::is_same_v<T, bool>) {
            return pick(0, 1) == 1;
        } else if constexpr (std::is_same_v<T, int>) {
            return static_cast<int>(_rng());
        } else if constexpr (std::is_same_v<T, double>) {
            return _text && pick(0, 3) == 0 ? static_cast<double>(std::int64_t(_rng()) << 18) : real();
        } else if constexpr (std::is_same_v<T, std::string>) {
            static const char tricky[] = "\"'\\ ,\t\nab";
            std::string s(static_cast<std::size_t>(pick(0, 15)), ' ');
            for (char& c : s)
                c = pick(0, 1) ? tricky[pick(0, sizeof tricky - 2)] : static_cast<char>(pick(_text ? 1 : 0, 255));
            return s;
        } else if constexpr (std::is_same_v<T, Image>) {
            int w = pick(0, 3), h = pick(0, 3);
            std::vector<std::uint32_t> pixels(static_cast<std::size_t>(w * h));
            for (auto& p : pixels)
                p = static_cast<std::uint32_t>(_rng());
            return Image(w, h, pick(_text ? 0 : 1, 4), pixels);
        } else if constexpr (std::is_same_v<T, Qubit>) {
            return pick(0, 3) ? Qubit({real(), real()}, {real(), real()}) : Qubit();
        } else if constexpr (std::is_same_v<T, PCMSound>) {
            std::vector<std::int16_t> samples(static_cast<std::size_t>(pick(0, 6)));
            for (auto& s : samples)
                s = static_cast<std::int16_t>(pick(-32768, 32767));
            return PCMSound(samples, pick(0, 2), pick(0, 48000));
        } else {
            if constexpr (std::is_same_v<T, Rotation>)
                if (!_text && pick(0, 1))  // a turn given as a quaternion
                    return Rotation(glm::angleAxis(float(real() * 1e-6), glm::normalize(Vec3f(1, float(real()), 2))));
            T v{};
            for (unsigned i = 0; i < Components<T>::count; ++i)
                Components<T>::set(v, i, static_cast<typename Components<T>::Scalar>(real()));
            return v;
        }
    }

    // A random value for the field; a list gets minCount to five elements.
    template <class F>
    void fill(F& field, int minCount = 0)
    {
        if constexpr (isMulti<F>) {
            field.clear();
            for (int n = pick(minCount, 5); n > 0; --n)
                field.addValue(make<typename F::Element>());
        } else {
            field.setValue(make<typename F::ValueType>());
        }
    }

private:
    std::mt19937 _rng;
    bool         _text;
};

} // namespace Orvane::Test

#endif
