#include "base/BaseTypeAssign.h"

#include "base/Components.h"
#include "base/ConvertParam.h"
#include "base/Log.h"
#include "base/NumberText.h"
#include "base/ValueText.h"

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

#include <algorithm>
#include <array>
#include <climits>
#include <cmath>
#include <cstdint>
#include <initializer_list>
#include <type_traits>
#include <vector>

namespace Orvane {

namespace {

using K = AssignKind;

// --- the refused pairs: for each target kind, the source kinds it does not take ---

using KindSet = std::uint32_t;

constexpr KindSet kinds(std::initializer_list<AssignKind> list)
{
    KindSet set = 0;
    for (AssignKind kind : list)
        set |= KindSet(1) << static_cast<int>(kind);
    return set;
}

constexpr KindSet matrices = kinds({K::Matrix3d, K::Matrix3f, K::Matrix4d, K::Matrix4f});
constexpr KindSet numbers = kinds({K::Bool, K::Double, K::Float, K::Int32, K::Time});

constexpr KindSet refusedSources(AssignKind target)
{
    switch (target) {
    case K::Bool:
    case K::Double:
    case K::Float:
    case K::Int32:
    case K::Time:
        return matrices | kinds({K::Color3f, K::Color4f, K::Rotation, K::Sound, K::String});
    case K::Color3f:
    case K::Color4f:
        return numbers | matrices | kinds({K::Image, K::Rotation, K::Sound, K::String, K::Vec2d, K::Vec2f});
    case K::Image:
        return numbers | matrices |
               kinds({K::Rotation, K::Sound, K::String, K::Vec2d, K::Vec2f, K::Vec3d, K::Vec3f, K::Vec4d, K::Vec4f});
    case K::Matrix3d:
    case K::Matrix3f:
    case K::Matrix4d:
    case K::Matrix4f:
        return numbers | kinds({K::Color3f, K::Color4f, K::Image, K::Sound, K::String, K::Vec2d, K::Vec2f, K::Vec3d,
                                K::Vec3f, K::Vec4d, K::Vec4f});
    case K::Rotation:
        return kinds({K::Color3f, K::Color4f, K::Image, K::Sound, K::String, K::Vec2d, K::Vec2f});
    case K::Sound:
        return ~kinds({K::Sound});
    case K::String:
        return kinds({K::Image, K::Sound});
    case K::Vec2d:
    case K::Vec2f:
        return numbers | matrices | kinds({K::Color3f, K::Color4f, K::Rotation, K::Sound, K::String});
    case K::Vec3d:
    case K::Vec3f:
        return numbers | matrices | kinds({K::Sound, K::String, K::Vec4d, K::Vec4f});
    case K::Vec4d:
    case K::Vec4f:
        return numbers | matrices | kinds({K::Sound, K::String});
    }
    return 0;
}

constexpr bool refused(AssignKind target, AssignKind source)
{
    return (refusedSources(target) >> static_cast<int>(source)) & 1u;
}

void reportRefused(AssignKind target, AssignKind source)
{
    OSG_LOG(LOG_WARNING, "%s to %s conversion NI!\n", assignKindName(source), assignKindName(target));
}

// --- what kind of value a type is ---

template <class T>
inline constexpr bool isNumber =
    std::is_same_v<T, bool> || std::is_same_v<T, int> || std::is_same_v<T, float> || std::is_same_v<T, double>;

template <class T>
inline constexpr bool isTuple = std::is_same_v<T, Color3f> || std::is_same_v<T, Color4f>;
template <glm::length_t L, class S, glm::qualifier Q>
inline constexpr bool isTuple<glm::vec<L, S, Q>> = true;

template <class T>
inline constexpr bool isMatrix = false;
template <glm::length_t C, glm::length_t R, class S, glm::qualifier Q>
inline constexpr bool isMatrix<glm::mat<C, R, S, Q>> = true;

// Numbers and components that a ConvertParam scale applies to: not booleans.
template <class T>
inline constexpr bool isScaled = (isNumber<T> && !std::is_same_v<T, bool>) || isTuple<T>;

template <class>
inline constexpr bool noRule = false;

// --- scalar steps ---

// A double into the scalar type of a target, without the undefined casts of values that do
// not fit.
template <class S>
S narrow(double value, ConvertParam::Rounding rounding = ConvertParam::TowardZero)
{
    if constexpr (std::is_same_v<S, double>) {
        return value;
    } else if constexpr (std::is_same_v<S, float>) {
        return NumberText::toFloat(value);
    } else {
        static_assert(std::is_same_v<S, int>);
        if (rounding == ConvertParam::Nearest)
            value = std::round(value);
        // Inside these bounds the cast truncates to a valid int; outside (and for NaN) it
        // would be undefined.
        if (value > -2147483649.0 && value < 2147483648.0) [[likely]]
            return static_cast<int>(value);
        if (std::isnan(value))
            return 0;
        return value > 0.0 ? INT_MAX : INT_MIN;
    }
}

bool truthOf(double value)
{
    return value != 0.0 || std::isnan(value);
}

// --- the rules, by the kind of the target ---

// To a number (not bool): the source's number, scaled.
template <class From>
double numberOf(const From& from)
{
    if constexpr (isNumber<From>)
        return static_cast<double>(from);
    else if constexpr (isTuple<From>)
        return static_cast<double>(Components<From>::get(from, 0));
    else if constexpr (std::is_same_v<From, Image>)
        return static_cast<double>(from.pixelCount());
    else
        static_assert(noRule<From>, "no number from this kind");
}

// To a bool.
template <class From>
bool boolOf(const From& from)
{
    if constexpr (isNumber<From>) {
        return truthOf(static_cast<double>(from));
    } else if constexpr (isTuple<From>) {
        for (unsigned i = 0; i < Components<From>::count; ++i)
            if (truthOf(static_cast<double>(Components<From>::get(from, i))))
                return true;
        return false;
    } else if constexpr (std::is_same_v<From, Image>) {
        return from.pixelCount() != 0;
    } else {
        static_assert(noRule<From>, "no bool from this kind");
    }
}

// Component by component: cut, or zero-filled (a missing alpha is opaque).
template <class To, class From>
void tupleFromTuple(To& to, const From& from, double scale)
{
    using CT = Components<To>;
    using CS = Components<From>;
    for (unsigned i = 0; i < CT::count; ++i) {
        double value = std::is_same_v<To, Color4f> && i == 3 ? 1.0 : 0.0;
        if (i < CS::count)
            value = static_cast<double>(CS::get(from, i)) * scale;
        CT::set(to, i, narrow<typename CT::Scalar>(value));
    }
}

template <class To, class From>
void tupleFrom(To& to, const From& from, const ConvertParam& param)
{
    if constexpr (isTuple<From>) {
        tupleFromTuple(to, from, param.scale());
    } else if constexpr (std::is_same_v<From, Image>) {
        tupleFromTuple(to, Vec3d(from.width(), from.height(), from.components()), 1.0);
    } else if constexpr (std::is_same_v<From, Rotation>) {
        Vec3d axis(from.axis());
        double angle = from.angle();
        if constexpr (Components<To>::count == 3) {
            double length = glm::length(axis);
            Vec3d vector = length > 0.0 && std::isfinite(length) ? axis * (angle / length) : Vec3d(0.0);
            tupleFromTuple(to, vector, 1.0);
        } else {
            tupleFromTuple(to, Vec4d(axis, angle), 1.0);
        }
    } else {
        static_assert(noRule<From>, "no vector from this kind");
    }
}

// Matrix to matrix by element: the common block, identity elsewhere.
template <class To, class From>
void matrixFromMatrix(To& to, const From& from)
{
    using S = typename To::value_type;
    constexpr int columns = To::length(), rows = To::col_type::length();
    constexpr int fromColumns = From::length(), fromRows = From::col_type::length();
    for (int c = 0; c < columns; ++c)
        for (int r = 0; r < rows; ++r)
            to[c][r] = c < fromColumns && r < fromRows ? narrow<S>(static_cast<double>(from[c][r]))
                                                       : static_cast<S>(c == r ? 1 : 0);
}

template <class To, class From>
void matrixFrom(To& to, const From& from)
{
    if constexpr (isMatrix<From>)
        matrixFromMatrix(to, from);
    else if constexpr (std::is_same_v<From, Rotation>)
        matrixFromMatrix(to, glm::mat3_cast(from.quaternion()));
    else
        static_assert(noRule<From>, "no matrix from this kind");
}

template <class From>
void rotationFrom(Rotation& to, const From& from)
{
    if constexpr (isNumber<From>) {
        to = Rotation(0.0f, 0.0f, 1.0f, narrow<float>(static_cast<double>(from)));
    } else if constexpr (isTuple<From> && Components<From>::count == 3) {
        Vec3d vector(from);
        double length = glm::length(vector);
        if (!(length > 0.0) || !std::isfinite(length)) {
            to = Rotation();
            return;
        }
        Vec3d axis = vector / length;
        to = Rotation(narrow<float>(axis.x), narrow<float>(axis.y), narrow<float>(axis.z), narrow<float>(length));
    } else if constexpr (isTuple<From> && Components<From>::count == 4) {
        to = Rotation(narrow<float>(from.x), narrow<float>(from.y), narrow<float>(from.z), narrow<float>(from.w));
    } else if constexpr (isMatrix<From>) {
        // The rotation of the upper 3 x 3 block once its columns are of unit length.
        glm::dmat3 block;
        for (int c = 0; c < 3; ++c) {
            Vec3d column(from[c][0], from[c][1], from[c][2]);
            double length = glm::length(column);
            if (!(length > 0.0) || !std::isfinite(length)) {
                to = Rotation();
                return;
            }
            block[c] = column / length;
        }
        glm::dquat q = glm::quat_cast(block);
        to = Rotation(glm::quat(narrow<float>(q.w), narrow<float>(q.x), narrow<float>(q.y), narrow<float>(q.z)));
    } else {
        static_assert(noRule<From>, "no rotation from this kind");
    }
}

std::uint32_t channel(float value)
{
    if (!(value > 0.0f))
        return 0;
    return static_cast<std::uint32_t>(std::lround(std::min(value, 1.0f) * 255.0f));
}

template <class From>
void imageFrom(Image& to, const From& from)
{
    if constexpr (std::is_same_v<From, Color3f>) {
        to.set(1, 1, 3, {channel(from.r) << 16 | channel(from.g) << 8 | channel(from.b)});
    } else if constexpr (std::is_same_v<From, Color4f>) {
        to.set(1, 1, 4, {channel(from.r) << 24 | channel(from.g) << 16 | channel(from.b) << 8 | channel(from.a)});
    } else {
        static_assert(noRule<From>, "no image from this kind");
    }
}

// The single-value text form, or the given number of significant digits.
template <class From>
void textFrom(std::string& to, const From& from, const ConvertParam& param)
{
    to.clear();
    if constexpr (std::is_same_v<From, bool>) {
        ValueText<bool>::writeSF(to, from);
    } else {
        using C = Components<From>;
        if (param.precision() == 0 || std::is_same_v<typename C::Scalar, int>) {
            ValueText<From>::writeSF(to, from);
            return;
        }
        for (unsigned i = 0; i < C::count; ++i) {
            if (i)
                to += ' ';
            NumberText::appendGeneral(to, static_cast<double>(C::get(from, i)), param.precision());
        }
    }
}

// One value converted by the rule of its pair. Only reached for pairs that are not refused.
template <class To, class From>
void convertValue(To& to, const From& from, const ConvertParam& param)
{
    if constexpr (std::is_same_v<To, From>)
        to = from;
    else if constexpr (std::is_same_v<To, std::string>)
        textFrom(to, from, param);
    else if constexpr (std::is_same_v<To, bool>)
        to = boolOf(from);
    else if constexpr (isNumber<To>)
        to = narrow<To>(numberOf(from) * (isScaled<From> ? param.scale() : 1.0), param.rounding());
    else if constexpr (isTuple<To>)
        tupleFrom(to, from, param);
    else if constexpr (isMatrix<To>)
        matrixFrom(to, from);
    else if constexpr (std::is_same_v<To, Rotation>)
        rotationFrom(to, from);
    else if constexpr (std::is_same_v<To, Image>)
        imageFrom(to, from);
    else
        static_assert(noRule<To>, "no conversion rule for this pair");
}

template <AssignKind Target, AssignKind Source, class To, class From>
bool assignValue(To& to, const From& from, const ConvertParam& param)
{
    if constexpr (refused(Target, Source)) {
        reportRefused(Target, Source);
        return false;
    } else {
        convertValue(to, from, param);
        return true;
    }
}

// --- whole fields ---

// The field classes of each kind, by base type.
template <AssignKind>
struct KindFields;

#define ORV_KIND_FIELDS(M)                                                                         \
    M(Bool, Bool, SFBool, MFBool)                                                                  \
    M(Color, Color3f, SFColor, MFColor)                                                            \
    M(ColorRGBA, Color4f, SFColorRGBA, MFColorRGBA)                                                \
    M(Double, Double, SFDouble, MFDouble)                                                          \
    M(Float, Float, SFFloat, MFFloat)                                                              \
    M(Image, Image, SFImage, MFImage)                                                              \
    M(Int32, Int32, SFInt32, MFInt32)                                                              \
    M(Matrix3d, Matrix3d, SFMatrix3d, MFMatrix3d)                                                  \
    M(Matrix3f, Matrix3f, SFMatrix3f, MFMatrix3f)                                                  \
    M(Matrix4d, Matrix4d, SFMatrix4d, MFMatrix4d)                                                  \
    M(Matrix4f, Matrix4f, SFMatrix4f, MFMatrix4f)                                                  \
    M(Rotation, Rotation, SFRotation, MFRotation)                                                  \
    M(Sound, Sound, SFSound, MFSound)                                                              \
    M(String, String, SFString, MFString)                                                          \
    M(Time, Time, SFTime, MFTime)                                                                  \
    M(Vec2d, Vec2d, SFVec2d, MFVec2d)                                                              \
    M(Vec2f, Vec2f, SFVec2f, MFVec2f)                                                              \
    M(Vec3d, Vec3d, SFVec3d, MFVec3d)                                                              \
    M(Vec3f, Vec3f, SFVec3f, MFVec3f)                                                              \
    M(Vec4d, Vec4d, SFVec4d, MFVec4d)                                                              \
    M(Vec4f, Vec4f, SFVec4f, MFVec4f)

#define ORV_KIND_FIELDS_SPECIALIZE(Base, Kind, SingleClass, MultiClass)                            \
    template <>                                                                                    \
    struct KindFields<AssignKind::Kind> {                                                          \
        using Single = SingleClass;                                                                \
        using Multi = MultiClass;                                                                  \
    };
ORV_KIND_FIELDS(ORV_KIND_FIELDS_SPECIALIZE)
#undef ORV_KIND_FIELDS_SPECIALIZE

// The fields hold the values that the kind's functions take.
#define ORV_KIND_CHECK(Kind, Type, ...)                                                            \
    static_assert(std::is_same_v<KindFields<AssignKind::Kind>::Single::ValueType, Type>);          \
    static_assert(std::is_same_v<KindFields<AssignKind::Kind>::Multi::Element, Type>);
ORV_ASSIGN_KINDS(ORV_KIND_CHECK)
#undef ORV_KIND_CHECK

struct PlaneFields {
    using Single = SFPlane;
    using Multi = MFPlane;
};
struct QubitFields {
    using Single = SFQubit;
    using Multi = MFQubit;
};

void reportNotImplemented(const Field& to, const Field& from)
{
    ORV_WARNING("%s to %s not implementet\n", from.dataTypeName().c_str(), to.dataTypeName().c_str());
}

// Walks the elements of two fields whose classes are given: single to multiple makes one
// element, multiple to single takes the first (none: false, target unchanged), multiple to
// multiple converts each in order.
template <class TargetFields, class SourceFields, class Convert>
bool convertElements(Field& to, const Field& from, Convert convert)
{
    using TS = typename TargetFields::Single;
    using TM = typename TargetFields::Multi;
    using SS = typename SourceFields::Single;
    using SM = typename SourceFields::Multi;
    const NodePartDataType toType = to.dataType(), fromType = from.dataType();
    // A field of another class registered under one of these base types is not ours to cast.
    if ((toType != TS::DataType && toType != TM::DataType) || (fromType != SS::DataType && fromType != SM::DataType)) {
        reportNotImplemented(to, from);
        return false;
    }
    if (fromType == SS::DataType) {
        const auto& value = static_cast<const SS&>(from).value();
        if (toType == TS::DataType) {
            convert(static_cast<TS&>(to).value(), value);
        } else {
            auto& target = static_cast<TM&>(to).value();
            target.clear();
            target.emplace_back();
            convert(target.back(), value);
        }
        return true;
    }
    const auto& values = static_cast<const SM&>(from).value();
    if (toType == TS::DataType) {
        if (values.empty())
            return false;
        convert(static_cast<TS&>(to).value(), values.front());
        return true;
    }
    auto& target = static_cast<TM&>(to).value();
    if constexpr (std::is_same_v<std::remove_reference_t<decltype(target)>, std::vector<typename TM::Element>>) {
        target.resize(values.size());
        auto out = target.begin();
        for (const auto& value : values)
            convert(*out++, value);
    } else {
        target.clear();
        for (const auto& value : values) {
            target.emplace_back();
            convert(target.back(), value);
        }
    }
    return true;
}

template <AssignKind Target, AssignKind Source>
bool assignFields(Field& to, const Field& from, const ConvertParam& param)
{
    if constexpr (refused(Target, Source)) {
        reportRefused(Target, Source);
        return false;
    } else {
        return convertElements<KindFields<Target>, KindFields<Source>>(
            to, from, [&param](auto& t, const auto& s) { convertValue(t, s, param); });
    }
}

// Planes and qubits only change cardinality.
template <class Fields>
bool copyElements(Field& to, const Field& from, const ConvertParam&)
{
    return convertElements<Fields, Fields>(to, from, [](auto& t, const auto& s) { t = s; });
}

// Node fields share children: single to multiple, multiple to single (the first child), and
// the same type, always through the links so that the children learn their new parent.
bool assignNodes(Field& to, const Field& from, const ConvertParam&)
{
    std::vector<Node*> children;
    if (auto single = dynamic_cast<const SFNode*>(&from)) {
        if (single->node())
            children.push_back(single->node());
    } else if (auto multi = dynamic_cast<const MFNode*>(&from)) {
        if (multi->empty() && dynamic_cast<SFNode*>(&to))
            return false;
        for (const NodeLink& link : multi->value())
            if (link.node())
                children.push_back(link.node());
    } else {
        reportNotImplemented(to, from);
        return false;
    }
    if (auto single = dynamic_cast<SFNode*>(&to)) {
        single->setNode(children.empty() ? nullptr : children.front());
    } else if (auto multi = dynamic_cast<MFNode*>(&to)) {
        if (multi == &from)
            return true;
        // The source's links hold the children while the target lets go of its own.
        multi->clear();
        for (Node* child : children)
            multi->addChild(child);
    } else {
        reportNotImplemented(to, from);
        return false;
    }
    return true;
}

// The kind of each base type, -1 for those that are not converted.
constexpr int baseTypeCount = static_cast<int>(BaseType::Sound) + 1;
constexpr std::array<int, baseTypeCount> kindOfBase = [] {
    std::array<int, baseTypeCount> kinds{};
    kinds.fill(-1);
#define ORV_ASSIGN_BASE_KIND(Base, Kind, ...) kinds[static_cast<int>(BaseType::Base)] = static_cast<int>(AssignKind::Kind);
    ORV_KIND_FIELDS(ORV_ASSIGN_BASE_KIND)
#undef ORV_ASSIGN_BASE_KIND
    return kinds;
}();

// Every pair of kinds, target by target.
#define ORV_ASSIGN_FIELDS_ENTRY(SourceKind, SourceType, TargetKind, TargetType)                   \
    &assignFields<AssignKind::TargetKind, AssignKind::SourceKind>,
constexpr FieldAssignFunction kindFieldFunctions[assignKindCount * assignKindCount] = {
    ORV_ASSIGN_PAIRS(ORV_ASSIGN_FIELDS_ENTRY)};
#undef ORV_ASSIGN_FIELDS_ENTRY

} // namespace

// --- the named conversions ---

#define ORV_ASSIGN_DEFINE(SourceKind, SourceType, TargetKind, TargetType)                         \
    bool assign##TargetKind##From##SourceKind(TargetType& to, const SourceType& from)              \
    {                                                                                              \
        return assignValue<AssignKind::TargetKind, AssignKind::SourceKind>(to, from, ConvertParam::defaults()); \
    }
ORV_ASSIGN_PAIRS(ORV_ASSIGN_DEFINE)
#undef ORV_ASSIGN_DEFINE

const char* assignKindName(AssignKind kind)
{
#define ORV_ASSIGN_NAME(Kind, Type, ...) #Kind,
    static const char* const names[] = {ORV_ASSIGN_KINDS(ORV_ASSIGN_NAME)};
#undef ORV_ASSIGN_NAME
    int index = static_cast<int>(kind);
    return index >= 0 && index < assignKindCount ? names[index] : "Unknown";
}

bool assignKindOf(BaseType baseType, AssignKind& kind)
{
    int index = static_cast<int>(baseType);
    if (index < 0 || index >= baseTypeCount || kindOfBase[index] < 0)
        return false;
    kind = static_cast<AssignKind>(kindOfBase[index]);
    return true;
}

bool assignRefused(AssignKind target, AssignKind source)
{
    return refused(target, source);
}

FieldAssignFunction fieldAssignFunction(BaseType target, BaseType source)
{
    AssignKind targetKind, sourceKind;
    if (assignKindOf(target, targetKind) && assignKindOf(source, sourceKind))
        return kindFieldFunctions[static_cast<int>(targetKind) * assignKindCount + static_cast<int>(sourceKind)];
    if (target != source)
        return nullptr;
    switch (target) {
    case BaseType::Node:
        return &assignNodes;
    case BaseType::Plane:
        return &copyElements<PlaneFields>;
    case BaseType::Qubit:
        return &copyElements<QubitFields>;
    default:
        return nullptr;
    }
}

} // namespace Orvane
