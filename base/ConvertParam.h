#ifndef ORVANE_BASE_CONVERTPARAM_H
#define ORVANE_BASE_CONVERTPARAM_H

#include "base/OrvaneExport.h"

namespace Orvane {

// The knobs of a value conversion between fields of different types (Field::setValueByField).
// A null parameter, or a default-constructed one, gives the plain conversions that the
// assign<Target>From<Source> functions perform.
//
// - precision: significant digits of a floating-point number written as text; 0 keeps the
//   field text form (16 digits for Double and Time values, 6 for every other number, the
//   components of double vectors and matrices included); at most 17, which is all a double
//   holds.
// - scale: factor applied to every number taken from a number, vector or colour into a
//   number, vector or colour (Time seconds to Int32 milliseconds: 1000). Booleans, rotations,
//   matrices, images and text are never scaled, and neither is a copy between equal value
//   types (Double to Time included).
// - rounding: how a number becomes an Int32: toward zero like a C cast, or to the nearest
//   integer (halves away from zero). Either way the result saturates at the int range and a
//   NaN gives 0.
class ORVANE_API ConvertParam {
public:
    enum Rounding { TowardZero = 0, Nearest = 1 };

    ConvertParam() = default;
    explicit ConvertParam(int precision, double scale = 1.0, Rounding rounding = TowardZero)
        : _scale(scale), _rounding(rounding)
    {
        setPrecision(precision);
    }

    int      precision() const { return _precision; }
    double   scale() const { return _scale; }
    Rounding rounding() const { return _rounding; }

    static constexpr int maxPrecision = 17;
    void setPrecision(int precision) { _precision = precision < 0 ? 0 : precision > maxPrecision ? maxPrecision : precision; }
    void setScale(double scale) { _scale = scale; }
    void setRounding(Rounding rounding) { _rounding = rounding; }

    // The parameter used when none is given.
    static const ConvertParam& defaults();

private:
    int      _precision = 0;
    double   _scale = 1.0;
    Rounding _rounding = TowardZero;
};

} // namespace Orvane

#endif
