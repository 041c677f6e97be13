#include "modules/x3d/X3DCatalog.h"

#include "base/Field.h"
#include "base/Log.h"
#include "base/Node.h"
#include "base/NodeType.h"
#include "base/NodeTypeNameSpace.h"
#include "modules/x3d/X3DCatalogTable.h"

#include <cstring>
#include <string_view>

namespace Orvane {

namespace {

using X3DTable::TypeFact;

// Field names that X3D gave a new name, kept as aliases so that VRML97 files still read.
const struct {
    const char* type;
    const char* alias;
    const char* field;
} vrml97Aliases[] = {
    {"LOD", "level", "children"},
    {"Switch", "choice", "children"},
    {"Collision", "collide", "enabled"},
};

// VRML97 defaults that X3D changed, in the classic text form.
const struct {
    const char* type;
    const char* field;
    const char* value;
} vrml97Defaults[] = {
    {"CylinderSensor", "diskAngle", "0.262"},
    {"NavigationInfo", "type", "\"WALK\" \"ANY\""},
    {"SpotLight", "beamWidth", "1.570796"},
    {"SpotLight", "cutOffAngle", "0.785398"},
};

// Calls `each` with every '|'-separated name of `list`.
template <class Each>
void forEachName(const char* list, Each each)
{
    std::string_view rest(list);
    while (!rest.empty()) {
        auto end = rest.find('|');
        std::string_view name = rest.substr(0, end);
        if (!name.empty())
            each(std::string(name));
        rest = end == std::string_view::npos ? std::string_view() : rest.substr(end + 1);
    }
}

unsigned kindCount(X3DTable::TypeKind kind)
{
    unsigned count = 0;
    for (unsigned i = 0; i < X3DTable::typeCount; ++i)
        count += X3DTable::types[i].kind == kind;
    return count;
}

} // namespace

X3DCatalog::X3DCatalog(NodeTypeNameSpace& nameSpace) : _nameSpace(&nameSpace)
{
    const unsigned typeCount = X3DTable::typeCount;
    std::unordered_map<std::string_view, unsigned> row;
    row.reserve(typeCount);
    for (unsigned i = 0; i < typeCount; ++i)
        row.emplace(X3DTable::types[i].name, i);

    // The slot of a type's first own part is the number of parts it inherits: through the table
    // down to a core type, whose parts are counted once it is complete.
    std::vector<int> inherited(typeCount, -1);
    auto partsBefore = [&](auto& self, unsigned i, unsigned depth) -> int {
        if (inherited[i] >= 0)
            return inherited[i];
        int base = 0;
        auto parent = row.find(X3DTable::types[i].parent);
        if (parent == row.end()) {
            if (NodeType* core = NodeTypeNameSpace::findType(_nameSpace, X3DTable::types[i].parent, CaseSensitive)) {
                core->initType(false);
                base = static_cast<int>(core->partCount());
            }
        } else if (depth < typeCount) {  // a generated table has no cycle; stop anyway
            base = self(self, parent->second, depth + 1) + static_cast<int>(X3DTable::types[parent->second].fieldCount);
        }
        return inherited[i] = base;
    };
    for (unsigned i = 0; i < typeCount; ++i)
        partsBefore(partsBefore, i, 0);

    // One block for every descriptor: reserved once, so the types' pointers into it stay valid.
    _descs.reserve(X3DTable::fieldCount);
    _types.reserve(typeCount);
    _index.reserve(typeCount);
    for (unsigned i = 0; i < typeCount; ++i) {
        const TypeFact& fact = X3DTable::types[i];
        NodePartDesc* first = _descs.data() + _descs.size();
        for (unsigned f = 0; f < fact.fieldCount; ++f) {
            const X3DTable::FieldFact& field = X3DTable::fields[fact.firstField + f];
            unsigned id = static_cast<unsigned>(inherited[i]) + f;
            _descs.emplace_back(id, id < 64 ? PartMask::bit(id) : PartMask(), field.access, field.type,
                                NodePartDesc::CtorAutoProcess, field.name, nullptr, field.defaultValue,
                                field.valueType);
        }
        const bool concrete = fact.kind == X3DTable::Concrete;
        // Scripts and programmable shaders take field declarations of their own.
        const bool extensible = std::string_view(fact.parent) == "X3DScriptNode"
                                || std::string_view(fact.additional).find("X3DProgrammableShaderObject")
                                       != std::string_view::npos;
        NodeType* type = new NodeType(nameSpace, fact.name, "X3D", fact.parent, nullptr, "4.0", fact.component,
                                      nullptr, "stable", nullptr, "X3D4.0", extensible, false, &Node::isNodeType,
                                      concrete ? &Node::createNode : nullptr, concrete ? &Node::createProc : nullptr,
                                      first, fact.fieldCount);
        forEachName(fact.additional, [type](const std::string& name) { type->addAdditionalParent(name.c_str()); });
        if (concrete)
            type->setContainerField(fact.containerField);
        _index.emplace(type, i);
        _types.emplace_back(type);
    }
    for (const auto& alias : vrml97Aliases) {
        auto found = row.find(alias.type);
        if (found != row.end())
            _types[found->second]->addPartAlias(alias.alias, alias.field);
    }
    for (const SmartPtr<NodeType>& type : _types)
        _failures += type->initType(false);
    if (_failures)
        ORV_WARNING("X3D catalog: %d failures while completing its types\n", _failures);
}

// The types go first, the most derived first: they point into the descriptor block.
X3DCatalog::~X3DCatalog()
{
    _index.clear();
    while (!_types.empty())
        _types.pop_back();
}

X3DCatalog& X3DCatalog::init()
{
    static X3DCatalog catalog(theBaseNodeTypeFactory());
    return catalog;
}

unsigned X3DCatalog::concreteTypeCount() const
{
    return kindCount(X3DTable::Concrete);
}

unsigned X3DCatalog::abstractNodeTypeCount() const
{
    return kindCount(X3DTable::AbstractNode);
}

unsigned X3DCatalog::abstractObjectTypeCount() const
{
    return kindCount(X3DTable::AbstractObject);
}

const char* X3DCatalog::containerField(const NodeType& type) const
{
    auto found = _index.find(&type);
    return found == _index.end() ? nullptr : X3DTable::types[found->second].containerField;
}

int X3DCatalog::componentLevel(const NodeType& type) const
{
    auto found = _index.find(&type);
    return found == _index.end() ? 0 : X3DTable::types[found->second].level;
}

const char* X3DCatalog::vrml97Default(const std::string& typeName, const std::string& fieldName)
{
    for (const auto& entry : vrml97Defaults)
        if (typeName == entry.type && fieldName == entry.field)
            return entry.value;
    return nullptr;
}

int X3DCatalog::applyVrml97Defaults(Node& node)
{
    int count = 0;
    for (const auto& entry : vrml97Defaults) {
        if (node.type().name() != entry.type)
            continue;
        Field* field = node.findField(entry.field, SearchFieldName);
        if (!field) {
            ORV_WARNING("%s/%s: no field %s for its VRML97 default\n", node.type().name().c_str(),
                        node.getIDStr().c_str(), entry.field);
            continue;
        }
        field->setValueByStr(0.0, entry.value);
        ++count;
    }
    return count;
}

} // namespace Orvane
