#include "modules/loader/PlainList.h"

#include "base/Components.h"
#include "base/MFColor.h"
#include "base/MFColorRGBA.h"
#include "base/MFDouble.h"
#include "base/MFFloat.h"
#include "base/MFInt32.h"
#include "base/MFRotation.h"
#include "base/MFTime.h"
#include "base/MFVec2d.h"
#include "base/MFVec2f.h"
#include "base/MFVec3d.h"
#include "base/MFVec3f.h"
#include "base/MFVec4d.h"
#include "base/MFVec4f.h"
#include "base/NumberText.h"
#include "modules/loader/SceneBuilder.h"

#include <charconv>
#include <type_traits>
#include <vector>

namespace Orvane {

namespace {

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

// One number at p, as the text setters read it, when its text is one the value check accepts
// as well: digits, an optional minus, fraction and exponent (no plus, hexadecimal, inf or nan);
// null otherwise.
template <class Scalar>
const char* number(const char* p, const char* last, Scalar& value)
{
    const char* first = *p == '-' ? p + 1 : p;
    if (first >= last || !(isDigit(*first) || (!std::is_integral_v<Scalar> && *first == '.')))
        return nullptr;
    if constexpr (std::is_integral_v<Scalar>) {
        long n = 0;
        auto [ptr, ec] = std::from_chars(p, last, n);
        if (ec != std::errc())
            return nullptr;
        value = static_cast<Scalar>(n);
        return ptr;
    } else {
        double d = 0;
        auto [ptr, ec] = std::from_chars(p, last, d);
        if (ec != std::errc())
            return nullptr;
        if constexpr (std::is_same_v<Scalar, float>)
            value = NumberText::toFloat(d);
        else
            value = d;
        return ptr;
    }
}

template <class F>
const char* readInto(Field& field, const char* p, const char* last, char close)
{
    using Container = std::remove_reference_t<decltype(static_cast<F&>(field).value())>;
    using T = typename Container::value_type;
    using C = Components<T>;
    Container values;
    T         element{};
    unsigned  component = 0;
    for (;;) {
        while (p < last && SceneBuilder::isSeparator(*p))
            ++p;
        if (p >= last || (close && *p == close))
            break;
        typename C::Scalar value{};
        p = number(p, last, value);
        if (!p || (p < last && !(close && *p == close) && !SceneBuilder::isSeparator(*p)))
            return nullptr;
        C::set(element, component, value);
        if (++component == C::count) {
            values.push_back(element);
            element = T();
            component = 0;
        }
    }
    if (component || (close && (p >= last || *p != close)))
        return nullptr;
    static_cast<F&>(field).value().swap(values);
    field.processValueChange(0.0, Field::FieldCaller);
    return p;
}

} // namespace

const char* PlainList::read(Field& field, const char* p, const char* last, char close)
{
    switch (field.dataType()) {
    case MFFloatType: return readInto<MFFloat>(field, p, last, close);
    case MFDoubleType: return readInto<MFDouble>(field, p, last, close);
    case MFTimeType: return readInto<MFTime>(field, p, last, close);
    case MFInt32Type: return readInto<MFInt32>(field, p, last, close);
    case MFVec2fType: return readInto<MFVec2f>(field, p, last, close);
    case MFVec3fType: return readInto<MFVec3f>(field, p, last, close);
    case MFVec4fType: return readInto<MFVec4f>(field, p, last, close);
    case MFVec2dType: return readInto<MFVec2d>(field, p, last, close);
    case MFVec3dType: return readInto<MFVec3d>(field, p, last, close);
    case MFVec4dType: return readInto<MFVec4d>(field, p, last, close);
    case MFColorType: return readInto<MFColor>(field, p, last, close);
    case MFColorRGBAType: return readInto<MFColorRGBA>(field, p, last, close);
    case MFRotationType: return readInto<MFRotation>(field, p, last, close);
    default: return nullptr;
    }
}

} // namespace Orvane
