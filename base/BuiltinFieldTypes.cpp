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

namespace Orvane {

namespace {

void add(BaseType baseType, NodePartDataType dataType, const char* name, FieldType::CreateMethod create, bool multi)
{
    // The records live as long as the process (the registries hold plain pointers to them),
    // so they are never destroyed, not even at exit.
    static auto* records = new std::deque<FieldType>;
    records->emplace_back(baseType, dataType, name, create, multi);
}

} // namespace

void BuiltinFieldTypes::registerAll()
{
    add(BaseType::Any, MFAny::DataType, "MFAny", &MFAny::create, true);
    add(BaseType::Bool, MFBool::DataType, "MFBool", &MFBool::create, true);
    add(BaseType::Color, MFColor::DataType, "MFColor", &MFColor::create, true);
    add(BaseType::ColorRGBA, MFColorRGBA::DataType, "MFColorRGBA", &MFColorRGBA::create, true);
    add(BaseType::Double, MFDouble::DataType, "MFDouble", &MFDouble::create, true);
    add(BaseType::Float, MFFloat::DataType, "MFFloat", &MFFloat::create, true);
    add(BaseType::Image, MFImage::DataType, "MFImage", &MFImage::create, true);
    add(BaseType::Int32, MFInt32::DataType, "MFInt32", &MFInt32::create, true);
    add(BaseType::Matrix3d, MFMatrix3d::DataType, "MFMatrix3d", &MFMatrix3d::create, true);
    add(BaseType::Matrix3f, MFMatrix3f::DataType, "MFMatrix3f", &MFMatrix3f::create, true);
    add(BaseType::Matrix4d, MFMatrix4d::DataType, "MFMatrix4d", &MFMatrix4d::create, true);
    add(BaseType::Matrix4f, MFMatrix4f::DataType, "MFMatrix4f", &MFMatrix4f::create, true);
    add(BaseType::Node, MFNode::DataType, "MFNode", &MFNode::create, true);
    add(BaseType::Plane, MFPlane::DataType, "MFPlane", &MFPlane::create, true);
    add(BaseType::Qubit, MFQubit::DataType, "MFQubit", &MFQubit::create, true);
    add(BaseType::Rotation, MFRotation::DataType, "MFRotation", &MFRotation::create, true);
    add(BaseType::Sound, MFSound::DataType, "MFSound", &MFSound::create, true);
    add(BaseType::String, MFString::DataType, "MFString", &MFString::create, true);
    add(BaseType::Time, MFTime::DataType, "MFTime", &MFTime::create, true);
    add(BaseType::Vec2d, MFVec2d::DataType, "MFVec2d", &MFVec2d::create, true);
    add(BaseType::Vec2f, MFVec2f::DataType, "MFVec2f", &MFVec2f::create, true);
    add(BaseType::Vec3d, MFVec3d::DataType, "MFVec3d", &MFVec3d::create, true);
    add(BaseType::Vec3f, MFVec3f::DataType, "MFVec3f", &MFVec3f::create, true);
    add(BaseType::Vec4d, MFVec4d::DataType, "MFVec4d", &MFVec4d::create, true);
    add(BaseType::Vec4f, MFVec4f::DataType, "MFVec4f", &MFVec4f::create, true);
    add(BaseType::Any, SFAny::DataType, "SFAny", &SFAny::create, false);
    add(BaseType::Bool, SFBool::DataType, "SFBool", &SFBool::create, false);
    add(BaseType::Color, SFColor::DataType, "SFColor", &SFColor::create, false);
    add(BaseType::ColorRGBA, SFColorRGBA::DataType, "SFColorRGBA", &SFColorRGBA::create, false);
    add(BaseType::Double, SFDouble::DataType, "SFDouble", &SFDouble::create, false);
    add(BaseType::Float, SFFloat::DataType, "SFFloat", &SFFloat::create, false);
    add(BaseType::Image, SFImage::DataType, "SFImage", &SFImage::create, false);
    add(BaseType::Int32, SFInt32::DataType, "SFInt32", &SFInt32::create, false);
    add(BaseType::Matrix3d, SFMatrix3d::DataType, "SFMatrix3d", &SFMatrix3d::create, false);
    add(BaseType::Matrix3f, SFMatrix3f::DataType, "SFMatrix3f", &SFMatrix3f::create, false);
    add(BaseType::Matrix4d, SFMatrix4d::DataType, "SFMatrix4d", &SFMatrix4d::create, false);
    add(BaseType::Matrix4f, SFMatrix4f::DataType, "SFMatrix4f", &SFMatrix4f::create, false);
    add(BaseType::Node, SFNode::DataType, "SFNode", &SFNode::create, false);
    add(BaseType::Plane, SFPlane::DataType, "SFPlane", &SFPlane::create, false);
    add(BaseType::Qubit, SFQubit::DataType, "SFQubit", &SFQubit::create, false);
    add(BaseType::Rotation, SFRotation::DataType, "SFRotation", &SFRotation::create, false);
    add(BaseType::Sound, SFSound::DataType, "SFSound", &SFSound::create, false);
    add(BaseType::String, SFString::DataType, "SFString", &SFString::create, false);
    add(BaseType::Time, SFTime::DataType, "SFTime", &SFTime::create, false);
    add(BaseType::Vec2d, SFVec2d::DataType, "SFVec2d", &SFVec2d::create, false);
    add(BaseType::Vec2f, SFVec2f::DataType, "SFVec2f", &SFVec2f::create, false);
    add(BaseType::Vec3d, SFVec3d::DataType, "SFVec3d", &SFVec3d::create, false);
    add(BaseType::Vec3f, SFVec3f::DataType, "SFVec3f", &SFVec3f::create, false);
    add(BaseType::Vec4d, SFVec4d::DataType, "SFVec4d", &SFVec4d::create, false);
    add(BaseType::Vec4f, SFVec4f::DataType, "SFVec4f", &SFVec4f::create, false);
    add(BaseType::Any, XFAny::DataType, "XFAny", &XFAny::create, false);
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
