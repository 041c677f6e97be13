#include "base/FieldType.h"

#include "base/BuiltinFieldTypes.h"
#include "base/Log.h"

namespace Orvane {

FieldType::TypeVec*     FieldType::_typeVec = nullptr;
FieldType::NameMap*     FieldType::_nameMap = nullptr;
FieldType::BaseTypeMap* FieldType::_baseTypeMap = nullptr;

namespace {

// Registration runs while the library loads, on one thread; the flag only keeps a
// registration from starting a second one.
bool builtinsStarted = false;

// Register the built-in types at load time, whatever the order of static constructors.
const bool builtinsAtLoad = (FieldType::typeCount(), true);

} // namespace

void FieldType::ensureBuiltins()
{
    if (builtinsStarted)
        return;
    builtinsStarted = true;
    BuiltinFieldTypes::registerAll();
}

FieldType::FieldType(BaseType baseType, NodePartDataType dataType, const char* name, CreateMethod create,
                     bool multi)
    : _baseType(baseType), _dataType(dataType), _name(name ? name : ""), _create(create), _multi(multi)
{
    // A type registered by another module before any lookup comes after the built-in ones.
    ensureBuiltins();
    if (!_typeVec || !_nameMap || !_baseTypeMap) {
        ORV_INFO("Init field typeMap\n");
        _typeVec = new TypeVec(52, nullptr);
        _nameMap = new NameMap;
        _baseTypeMap = new BaseTypeMap;
    }
    auto index = static_cast<std::size_t>(dataType);
    if (index >= _typeVec->size())
        _typeVec->resize(index + 1, nullptr);
    if ((*_typeVec)[index])
        ORV_FATAL("Cannot register datatype ID %d a second time for %s\n", static_cast<int>(dataType), _name.c_str());
    else
        (*_typeVec)[index] = this;
    (*_nameMap)[_name] = this;
    auto& pair = (*_baseTypeMap)[baseType];
    (multi ? pair.second : pair.first) = this;
    ORV_INFO("Add Field Type: %s\n", _name.c_str());
}

unsigned FieldType::compNum(BaseType baseType)
{
    switch (baseType) {
    case BaseType::Color:     return 3;
    case BaseType::ColorRGBA: return 4;
    case BaseType::Matrix3d:
    case BaseType::Matrix3f:  return 9;
    case BaseType::Matrix4d:
    case BaseType::Matrix4f:  return 16;
    case BaseType::Rotation:  return 4;
    case BaseType::Vec2d:
    case BaseType::Vec2f:     return 2;
    case BaseType::Vec3d:
    case BaseType::Vec3f:     return 3;
    case BaseType::Vec4d:
    case BaseType::Vec4f:
    case BaseType::Plane:     return 4;
    default:                  return 1;
    }
}

void FieldType::dump() const
{
    ORV_PLOG("FieldType: %s, index: %d, createMethod: %p\n", _name.c_str(), static_cast<int>(_dataType),
             reinterpret_cast<void*>(_create));
}

void FieldType::setPlacement(std::uint32_t size, std::uint32_t align, PlaceMethod place)
{
    const bool valid = place && size && align && (align & (align - 1)) == 0;
    _placeSize = valid ? size : 0;
    _placeAlign = valid ? align : 0;
    _place = valid ? place : nullptr;
}

Field* FieldType::create(NodePartDataType dataType, Node& node)
{
    FieldType* type = findType(dataType);
    return type && type->_create ? type->_create(node) : nullptr;
}

Field* FieldType::create(BaseType baseType, Node& node, bool single)
{
    FieldType* type = findType(baseType, single);
    return type && type->_create ? type->_create(node) : nullptr;
}

FieldType* FieldType::findType(const std::string& name)
{
    ensureBuiltins();
    if (!_nameMap) {
        ORV_FATAL("Invalid typemap in FieldType::dataType()\n");
        return nullptr;
    }
    auto found = _nameMap->find(name);
    return found == _nameMap->end() ? nullptr : found->second;
}

FieldType* FieldType::findType(BaseType baseType, bool single)
{
    ensureBuiltins();
    if (!_baseTypeMap) {
        ORV_FATAL("Invalid _baseTypeMap, cannot find FieldType\n");
        return nullptr;
    }
    auto found = _baseTypeMap->find(baseType);
    if (found == _baseTypeMap->end()) {
        ORV_FATAL("Can not find _baseTypeMap\n");
        return nullptr;
    }
    return single ? found->second.first : found->second.second;
}

FieldType* FieldType::findType(NodePartDataType dataType)
{
    ensureBuiltins();
    return _typeVec ? (*_typeVec)[static_cast<std::size_t>(dataType)] : nullptr;
}

NodePartDataType FieldType::dataType(const std::string& name)
{
    FieldType* type = findType(name);
    return type ? type->_dataType : NoDataType;
}

const std::string& FieldType::dataTypeName(NodePartDataType dataType)
{
    return findType(dataType)->_name;
}

bool FieldType::isMultiField(NodePartDataType dataType)
{
    FieldType* type = findType(dataType);
    return type && type->_multi;
}

unsigned FieldType::typeCount()
{
    ensureBuiltins();
    if (!_typeVec)
        return 0;
    unsigned count = 0;
    for (FieldType* type : *_typeVec)
        count += type != nullptr;
    return count;
}

void FieldType::initTypeTree()
{
    BuiltinFieldTypes::initAll();
    ORV_INFO("init field types: %d types\n", static_cast<int>(typeCount()));
}

void FieldType::dumpAll()
{
    if (!_typeVec) {
        ORV_PLOG("FieldType static map is not initialized, skip obj dump\n");
        return;
    }
    for (FieldType* type : *_typeVec)
        if (type)
            type->dump();
}

} // namespace Orvane
