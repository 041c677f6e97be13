#ifndef ORVANE_BASE_BASETYPEASSIGN_H
#define ORVANE_BASE_BASETYPEASSIGN_H

#include "base/Color3f.h"
#include "base/Color4f.h"
#include "base/FieldType.h"
#include "base/Image.h"
#include "base/MathTypes.h"
#include "base/OrvaneExport.h"
#include "base/PCMSound.h"
#include "base/Rotation.h"

#include <string>

namespace Orvane {

class ConvertParam;
class Field;

// Conversion of one value between the kinds of field values: one function
//     bool assign<Target>From<Source>(Target& to, const Source& from)
// per ordered pair of the kinds below (assignColor3fFromBool, assignVec4fFromTime, ...).
//
// Some pairs are deliberately not converted: they log "<Source> to <Target> conversion NI!\n"
// as a warning of the "OpenSG" module, leave the target untouched and return false. Which
// ones is a single table in BaseTypeAssign.cpp; notably every kind but String itself refuses
// a String source, String refuses only Image and Sound, a Vec3 refuses a Vec4 while a Vec4
// takes a Vec3, and Rotation refuses colours, Vec2, Image, Sound and String.
//
// Every other pair converts and returns true, by these rules (where a pair is refused, the
// rule simply never applies):
// - Equal C++ types copy (Double and Time are both double).
// - Numbers (Bool, Int32, Float, Double, Time): by value; a bool counts as 0 or 1. A number
//   becomes a bool by being non-zero (NaN counts as non-zero, as in the text form). To Int32
//   toward zero like a C cast, saturating at the int range, NaN giving 0.
// - Vectors and colours: component by component in x, y, z, w (r, g, b, a) order; a smaller
//   target drops the trailing components, a larger one is filled with zeros, except that the
//   missing alpha of a Color4f is 1 (opaque). No scalar is broadcast into a vector: those
//   pairs are refused.
// - Vector or colour to a number: its first component; to a bool: any component non-zero.
// - Image to a number: its pixel count (width * height); to a bool: whether it has pixels;
//   to a vector: (width, height, components), cut or zero-filled.
// - Colour to Image: a 1 x 1 image of 3 (Color3f) or 4 (Color4f) components holding the
//   colour, each channel clamped to 0..1 and scaled to 0..255.
// - Rotation from a number: that angle (radians) about the z axis. From a Vec3: the rotation
//   vector, turning by its length about its direction (a zero vector gives no rotation).
//   From a Vec4: axis x, y, z and angle w, as the text form writes a rotation. From a matrix:
//   the rotation part of its upper 3 x 3 block, after dividing out the column lengths.
// - Rotation to a Vec3: the rotation vector (unit axis times angle); to a Vec4: axis x, y, z
//   and angle; to a matrix: its rotation matrix (a 4 x 4 one without translation).
// - Matrix to matrix: the upper-left 3 x 3 block of a 4 x 4 one, and a 3 x 3 one embedded in
//   the identity 4 x 4; float and double by value.
// - To String: the single-value field text form of the source (TRUE/FALSE, "%d", "%.16g"
//   for Double and Time, "%g" for Float and for every component of a vector, colour,
//   rotation or matrix, double ones included; components separated by one space, matrices
//   in storage order).
// - Image to Image and Sound to Sound copy.
// - Text is never parsed here: no kind but String itself takes a String.
// A ConvertParam, where Field::assign is given one, can change the digits of numbers written
// as text, scale numbers, and round to nearest for Int32; see ConvertParam.h.

// The kinds: the word in the function names and its value type, in alphabetical order.
// ORV_ASSIGN_KINDS(M, args...) expands M(Kind, Type, args...) for each.
#define ORV_ASSIGN_KINDS(M, ...)                                                                   \
    M(Bool, bool, __VA_ARGS__)                                                                     \
    M(Color3f, Color3f, __VA_ARGS__)                                                               \
    M(Color4f, Color4f, __VA_ARGS__)                                                               \
    M(Double, double, __VA_ARGS__)                                                                 \
    M(Float, float, __VA_ARGS__)                                                                   \
    M(Image, Image, __VA_ARGS__)                                                                   \
    M(Int32, int, __VA_ARGS__)                                                                     \
    M(Matrix3d, Matrix3d, __VA_ARGS__)                                                             \
    M(Matrix3f, Matrix3f, __VA_ARGS__)                                                             \
    M(Matrix4d, Matrix4d, __VA_ARGS__)                                                             \
    M(Matrix4f, Matrix4f, __VA_ARGS__)                                                             \
    M(Rotation, Rotation, __VA_ARGS__)                                                             \
    M(Sound, PCMSound, __VA_ARGS__)                                                                \
    M(String, std::string, __VA_ARGS__)                                                            \
    M(Time, double, __VA_ARGS__)                                                                   \
    M(Vec2d, Vec2d, __VA_ARGS__)                                                                   \
    M(Vec2f, Vec2f, __VA_ARGS__)                                                                   \
    M(Vec3d, Vec3d, __VA_ARGS__)                                                                   \
    M(Vec3f, Vec3f, __VA_ARGS__)                                                                   \
    M(Vec4d, Vec4d, __VA_ARGS__)                                                                   \
    M(Vec4f, Vec4f, __VA_ARGS__)

// ORV_ASSIGN_PAIRS(M) expands M(SourceKind, SourceType, TargetKind, TargetType) for every
// ordered pair, target by target. The list is walked inside its own expansion, which the
// preprocessor allows only once the inner walk is deferred by one rescan.
#define ORV_ASSIGN_EMPTY()
#define ORV_ASSIGN_DEFER(m) m ORV_ASSIGN_EMPTY()
#define ORV_ASSIGN_EXPAND(...) __VA_ARGS__
#define ORV_ASSIGN_KINDS_AGAIN() ORV_ASSIGN_KINDS
#define ORV_ASSIGN_ROW(TargetKind, TargetType, M) ORV_ASSIGN_DEFER(ORV_ASSIGN_KINDS_AGAIN)()(M, TargetKind, TargetType)
#define ORV_ASSIGN_PAIRS(M) ORV_ASSIGN_EXPAND(ORV_ASSIGN_KINDS(ORV_ASSIGN_ROW, M))

#define ORV_ASSIGN_ENUMERATOR(Kind, Type, ...) Kind,
enum class AssignKind : int { ORV_ASSIGN_KINDS(ORV_ASSIGN_ENUMERATOR) };
#undef ORV_ASSIGN_ENUMERATOR
inline constexpr int assignKindCount = static_cast<int>(AssignKind::Vec4f) + 1;

#define ORV_ASSIGN_DECLARE(SourceKind, SourceType, TargetKind, TargetType)                        \
    ORVANE_API bool assign##TargetKind##From##SourceKind(TargetType& to, const SourceType& from);
ORV_ASSIGN_PAIRS(ORV_ASSIGN_DECLARE)
#undef ORV_ASSIGN_DECLARE

// The kind word ("Color3f", "Sound", ...).
ORVANE_API const char* assignKindName(AssignKind kind);

// The kind whose values fields of this base type hold; false for Any, Node, Plane and Qubit,
// which are not converted.
ORVANE_API bool assignKindOf(BaseType baseType, AssignKind& kind);

// Whether the pair is one of the refused conversions.
ORVANE_API bool assignRefused(AssignKind target, AssignKind source);

// Copies or converts the whole value of a field into a field of another type: what
// Field::assign does once it knows both base types. Null when the pair of base types is not
// handled at all.
using FieldAssignFunction = bool (*)(Field& to, const Field& from, const ConvertParam& param);
FieldAssignFunction fieldAssignFunction(BaseType target, BaseType source);

} // namespace Orvane

#endif
