#ifndef ORVANE_BASE_FIELDTYPE_H
#define ORVANE_BASE_FIELDTYPE_H

#include "base/BaseObject.h"

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace Orvane {

class Field;
class Node;

// The kind of a value, without cardinality. The numbers are persistent.
// Scoped, because several kinds share their names with value classes (BaseType::Image, ::Node).
enum class BaseType : std::int32_t {
    Any = 0, Bool, Color, ColorRGBA, Double, Float, Image, Int32, Matrix3d, Matrix3f, Matrix4d, Matrix4f,
    Node, Rotation, String, Time, Vec2d, Vec2f, Vec3d, Vec3f, Vec4d, Vec4f, Plane, Qubit, Sound
};

// The field type with its cardinality: SF = 2 * base - 1, MF = 2 * base; the three types of
// base type Any come last. The numbers are stored in files and must not change.
enum NodePartDataType : std::int32_t {
    NoDataType = 0,
    SFBoolType = 1, MFBoolType, SFColorType, MFColorType, SFColorRGBAType, MFColorRGBAType,
    SFDoubleType, MFDoubleType, SFFloatType, MFFloatType, SFImageType, MFImageType,
    SFInt32Type, MFInt32Type, SFMatrix3dType, MFMatrix3dType, SFMatrix3fType, MFMatrix3fType,
    SFMatrix4dType, MFMatrix4dType, SFMatrix4fType, MFMatrix4fType, SFNodeType, MFNodeType,
    SFRotationType, MFRotationType, SFStringType, MFStringType, SFTimeType, MFTimeType,
    SFVec2dType, MFVec2dType, SFVec2fType, MFVec2fType, SFVec3dType, MFVec3dType,
    SFVec3fType, MFVec3fType, SFVec4dType, MFVec4dType, SFVec4fType, MFVec4fType,
    SFPlaneType, MFPlaneType, SFQubitType, MFQubitType, SFSoundType, MFSoundType,
    XFAnyType = 49, SFAnyType = 50, MFAnyType = 51
};

// The run-time record of one field type, kept in three process-wide registries.
class ORVANE_API FieldType : public BaseObject {
public:
    using CreateMethod = Field* (*)(Node&);
    // Constructs the field at `at`, which has placeSize() bytes aligned to placeAlign().
    using PlaceMethod = Field* (*)(void* at, Node& owner);
    // A value read once from a default text and given to many new fields: `make` returns the
    // value a field of the type reads from the text (a field owned by `owner` does the reading),
    // `apply` gives a field that value without change processing, `destroy` frees it.
    struct DefaultValueMethods {
        void* (*make)(Node& owner, const char* text) = nullptr;
        void (*apply)(Field& field, const void* value) = nullptr;
        void (*destroy)(void* value) = nullptr;
    };

    FieldType(BaseType baseType, NodePartDataType dataType, const char* name, CreateMethod create,
              bool multi);
    ~FieldType() override = default;

    BaseType           baseType() const { return _baseType; }
    NodePartDataType   dataType() const { return _dataType; }
    const std::string& dataTypeName() const { return _name; }
    bool               isMulti() const { return _multi; }
    CreateMethod       createMethod() const { return _create; }
    // How a node lays the field out inside its own storage; a type without placement (size 0)
    // is made on the heap by createMethod().
    void               setPlacement(std::uint32_t size, std::uint32_t align, PlaceMethod place);
    std::uint32_t      placeSize() const { return _placeSize; }
    std::uint32_t      placeAlign() const { return _placeAlign; }
    PlaceMethod        placeMethod() const { return _place; }
    // Null methods for a type whose defaults are read field by field.
    void                       setDefaultValueMethods(const DefaultValueMethods& methods) { _defaults = methods; }
    const DefaultValueMethods& defaultValueMethods() const { return _defaults; }
    unsigned           compNum() const { return compNum(_baseType); }
    void               dump() const;

    static unsigned compNum(BaseType baseType);

    static Field*             create(NodePartDataType dataType, Node& node);
    static Field*             create(BaseType baseType, Node& node, bool single);
    static FieldType*         findType(const std::string& name);
    static FieldType*         findType(BaseType baseType, bool single);
    static FieldType*         findType(NodePartDataType dataType);
    static NodePartDataType   dataType(const std::string& name);
    static const std::string& dataTypeName(NodePartDataType dataType);
    static bool               isMultiField(NodePartDataType dataType);
    static unsigned           typeCount();
    static void               initTypeTree();
    static void               dumpAll();

    using TypeVec     = std::vector<FieldType*>;
    using NameMap     = std::map<std::string, FieldType*>;
    using BaseTypeMap = std::map<BaseType, std::pair<FieldType*, FieldType*>>;

private:
    // The registries; the built-in types are registered the first time any of them is needed,
    // so that no lookup depends on the order of static constructors.
    static void ensureBuiltins();

    BaseType         _baseType;
    NodePartDataType _dataType;
    std::string      _name;
    CreateMethod     _create;
    bool             _multi;
    std::uint32_t    _placeSize = 0;
    std::uint32_t    _placeAlign = 0;
    PlaceMethod      _place = nullptr;
    DefaultValueMethods _defaults;

    static TypeVec*     _typeVec;
    static NameMap*     _nameMap;
    static BaseTypeMap* _baseTypeMap;
};

} // namespace Orvane

#endif
