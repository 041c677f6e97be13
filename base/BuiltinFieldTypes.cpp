#include "base/BuiltinFieldTypes.h"

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

#include <deque>
#include <new>
#include <type_traits>
#include <utility>

namespace Orvane {

namespace {

// Constructs a field of class F where a node's block has room for it.
template <class F>
Field* place(void* at, Node& owner)
{
    return ::new (at) F(owner);
}

template <class F>
using ValueOf = std::decay_t<decltype(std::declval<F&>().value())>;

// A field without descriptor reads the text without change processing.
template <class F>
void* makeDefault(Node& owner, const char* text)
{
    F field(owner);
    field.setValueByStr(0.0, text);
    return new ValueOf<F>(std::move(field.value()));
}

template <class F>
void applyDefault(Field& field, const void* value)
{
    static_cast<F&>(field).value() = *static_cast<const ValueOf<F>*>(value);
}

template <class F>
void destroyDefault(void* value)
{
    delete static_cast<ValueOf<F>*>(value);
}

} // namespace

template <class F>
void BuiltinFieldTypes::add(BaseType baseType, const char* name, bool multi)
{
    // The records live as long as the process (the registries hold plain pointers to them),
    // so they are never destroyed, not even at exit.
    static auto* records = new std::deque<FieldType>;
    FieldType& type = records->emplace_back(baseType, F::DataType, name, &F::create, multi);
    type.setPlacement(sizeof(F), alignof(F), &place<F>);
    // Node values have no text form.
    if constexpr (F::DataType != SFNodeType && F::DataType != MFNodeType)
        type.setDefaultValueMethods({&makeDefault<F>, &applyDefault<F>, &destroyDefault<F>});
}

void BuiltinFieldTypes::registerAll()
{
    add<MFAny>(BaseType::Any, "MFAny", true);
    add<MFBool>(BaseType::Bool, "MFBool", true);
    add<MFColor>(BaseType::Color, "MFColor", true);
    add<MFColorRGBA>(BaseType::ColorRGBA, "MFColorRGBA", true);
    add<MFDouble>(BaseType::Double, "MFDouble", true);
    add<MFFloat>(BaseType::Float, "MFFloat", true);
    add<MFImage>(BaseType::Image, "MFImage", true);
    add<MFInt32>(BaseType::Int32, "MFInt32", true);
    add<MFMatrix3d>(BaseType::Matrix3d, "MFMatrix3d", true);
    add<MFMatrix3f>(BaseType::Matrix3f, "MFMatrix3f", true);
    add<MFMatrix4d>(BaseType::Matrix4d, "MFMatrix4d", true);
    add<MFMatrix4f>(BaseType::Matrix4f, "MFMatrix4f", true);
    add<MFNode>(BaseType::Node, "MFNode", true);
    add<MFPlane>(BaseType::Plane, "MFPlane", true);
    add<MFQubit>(BaseType::Qubit, "MFQubit", true);
    add<MFRotation>(BaseType::Rotation, "MFRotation", true);
    add<MFSound>(BaseType::Sound, "MFSound", true);
    add<MFString>(BaseType::String, "MFString", true);
    add<MFTime>(BaseType::Time, "MFTime", true);
    add<MFVec2d>(BaseType::Vec2d, "MFVec2d", true);
    add<MFVec2f>(BaseType::Vec2f, "MFVec2f", true);
    add<MFVec3d>(BaseType::Vec3d, "MFVec3d", true);
    add<MFVec3f>(BaseType::Vec3f, "MFVec3f", true);
    add<MFVec4d>(BaseType::Vec4d, "MFVec4d", true);
    add<MFVec4f>(BaseType::Vec4f, "MFVec4f", true);
    add<SFAny>(BaseType::Any, "SFAny", false);
    add<SFBool>(BaseType::Bool, "SFBool", false);
    add<SFColor>(BaseType::Color, "SFColor", false);
    add<SFColorRGBA>(BaseType::ColorRGBA, "SFColorRGBA", false);
    add<SFDouble>(BaseType::Double, "SFDouble", false);
    add<SFFloat>(BaseType::Float, "SFFloat", false);
    add<SFImage>(BaseType::Image, "SFImage", false);
    add<SFInt32>(BaseType::Int32, "SFInt32", false);
    add<SFMatrix3d>(BaseType::Matrix3d, "SFMatrix3d", false);
    add<SFMatrix3f>(BaseType::Matrix3f, "SFMatrix3f", false);
    add<SFMatrix4d>(BaseType::Matrix4d, "SFMatrix4d", false);
    add<SFMatrix4f>(BaseType::Matrix4f, "SFMatrix4f", false);
    add<SFNode>(BaseType::Node, "SFNode", false);
    add<SFPlane>(BaseType::Plane, "SFPlane", false);
    add<SFQubit>(BaseType::Qubit, "SFQubit", false);
    add<SFRotation>(BaseType::Rotation, "SFRotation", false);
    add<SFSound>(BaseType::Sound, "SFSound", false);
    add<SFString>(BaseType::String, "SFString", false);
    add<SFTime>(BaseType::Time, "SFTime", false);
    add<SFVec2d>(BaseType::Vec2d, "SFVec2d", false);
    add<SFVec2f>(BaseType::Vec2f, "SFVec2f", false);
    add<SFVec3d>(BaseType::Vec3d, "SFVec3d", false);
    add<SFVec3f>(BaseType::Vec3f, "SFVec3f", false);
    add<SFVec4d>(BaseType::Vec4d, "SFVec4d", false);
    add<SFVec4f>(BaseType::Vec4f, "SFVec4f", false);
    add<XFAny>(BaseType::Any, "XFAny", false);
}

void BuiltinFieldTypes::initAll()
{
    MFAny::init();
    MFBool::init();
    MFColor::init();
    MFColorRGBA::init();
    MFDouble::init();
    MFFloat::init();
    MFImage::init();
    MFInt32::init();
    MFMatrix3d::init();
    MFMatrix3f::init();
    MFMatrix4d::init();
    MFMatrix4f::init();
    MFNode::init();
    MFPlane::init();
    MFQubit::init();
    MFRotation::init();
    MFSound::init();
    MFString::init();
    MFTime::init();
    MFVec2d::init();
    MFVec2f::init();
    MFVec3d::init();
    MFVec3f::init();
    MFVec4d::init();
    MFVec4f::init();
    SFAny::init();
    SFBool::init();
    SFColor::init();
    SFColorRGBA::init();
    SFDouble::init();
    SFFloat::init();
    SFImage::init();
    SFInt32::init();
    SFMatrix3d::init();
    SFMatrix3f::init();
    SFMatrix4d::init();
    SFMatrix4f::init();
    SFNode::init();
    SFPlane::init();
    SFQubit::init();
    SFRotation::init();
    SFSound::init();
    SFString::init();
    SFTime::init();
    SFVec2d::init();
    SFVec2f::init();
    SFVec3d::init();
    SFVec3f::init();
    SFVec4d::init();
    SFVec4f::init();
    XFAny::init();
}

} // namespace Orvane
