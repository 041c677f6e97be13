#include "base/VRMLWriteAction.h"

#include "base/EventInSlot.h"
#include "base/EventOutSlot.h"
#include "base/Field.h"
#include "base/Log.h"
#include "base/Node.h"
#include "base/NodeLink.h"
#include "base/NodeNameSpace.h"
#include "base/NodePartDesc.h"
#include "base/NodeProc.h"
#include "base/NodeType.h"
#include "base/NodeTypeNameSpace.h"
#include "base/ProtoDeclaration.h"
#include "base/Route.h"
#include "base/SFNode.h"

#include <algorithm>

namespace Orvane {

namespace {

bool isValuePart(const Field& field)
{
    NodePartType type = field.desc() ? field.desc()->partType() : field.type();
    return type == FieldPartType || type == ExposedFieldPartType;
}

bool isInterface(WriteAction::FieldStyle style)
{
    return style == WriteAction::InterfaceStyle || style == WriteAction::ExternInterfaceStyle;
}

} // namespace

VRMLWriteAction::VRMLWriteAction(const double& timeStamp) : WriteAction(timeStamp)
{
    VRMLWriteAction::reset();
}

VRMLWriteAction::VRMLWriteAction(const VRMLWriteAction& other)
    : WriteAction(other), _openFields(other._openFields), _deferred(other._deferred)
{
    VRMLWriteAction::reset();
}

VRMLWriteAction::VRMLWriteAction(const WriteAction& other) : WriteAction(other)
{
    VRMLWriteAction::reset();
}

VRMLWriteAction& VRMLWriteAction::operator=(const VRMLWriteAction& other)
{
    if (this != &other) {
        copyDocumentState(other);
        _openFields = other._openFields;
        _deferred = other._deferred;
    }
    return *this;
}

VRMLWriteAction::~VRMLWriteAction() = default;

void VRMLWriteAction::reset()
{
    WriteAction::reset();
    _openFields.clear();
    setOption(VrmlResetOption, true);
}

void VRMLWriteAction::writeHeader()
{
    put("#VRML V2.0 utf8\n\n");
}

const char* VRMLWriteAction::accessName(NodePartType partType) const
{
    return NodePartDesc::partTypeName(partType);
}

void VRMLWriteAction::begin(std::ostream& stream, const std::string&)
{
    setStream(stream);
    startDocument();
    if (good())
        writeHeader();
    setCurrentNameSpace(nullptr);
}

void VRMLWriteAction::end()
{
    if (good())
        put("\n\n");
    flushRouteBag(true);
    if (NodeNameSpace* current = currentNameSpace())
        writeImportRoutes(*current);
    resetStream();
}

void VRMLWriteAction::writePrototypes(NodeNameSpace& nameSpace)
{
    if (&nameSpace == currentNameSpace())
        return;
    setCurrentNameSpace(&nameSpace);
    writeProto(nameSpace);
    setCurrentNameSpace(&nameSpace);
}

bool VRMLWriteAction::beginNode(Node& node)
{
    writePrototypes(node.nameSpace());
    const std::string& typeName = writtenType(node).name();
    if (!good())
        return true;
    if (!_openFields.empty() && _openFields.back()->dataType() == MFNodeType)
        indent();

    const std::string* name;
    unsigned           copy;
    switch (markNode(node, typeName, name, copy)) {
    case UsedNode:
        put("USE ");
        put(*name);
        put('\n');
        return false;
    case DefinedNode:
        put("DEF ");
        put(*name);
        if (copy) {
            put('_');
            putInt(copy);
        }
        put(' ');
        break;
    case PlainNode:
        break;
    }
    put(typeName);
    put(" {");

    if (writeProcInfo() && node.proc()) {
        std::string info = node.proc()->info();
        if (!info.empty()) {
            put("# ");
            put(node.stateName());
            put("; ");
            put(info);
            put('\n');
        }
    }
    put('\n');

    if (&ownNameSpace(node) != &node.nameSpace())
        routeBagStack().emplace_back();
    setIndentLevel(indentLevel() + 1);
    return true;
}

int VRMLWriteAction::endNode(Node& node)
{
    if (!good())
        return indentLevel();

    // Held-back fields; each is written while still listed, so that writeField does not hold
    // it back again.
    for (std::size_t i = 0; i < _deferred.size();) {
        Field* field = _deferred[i];
        if (&field->owner() == &node) {
            writeField(*field, NormalStyle);
            _deferred.erase(_deferred.begin() + static_cast<std::ptrdiff_t>(i));
        } else {
            ++i;
        }
    }

    NodeNameSpace& own = ownNameSpace(node);
    if (!(node.hasParents() && &own == &node.nameSpace())) {
        writeExports(own);
        flushRouteBag(true);
        writeImportRoutes(node.nameSpace());
    }
    setCurrentNameSpace(node.hasParents() ? &node.nameSpace() : nullptr);

    if (!isMapStack().empty() && !isMapStack().back().empty()) {
        const IsMap& map = isMapStack().back();
        for (unsigned id = 0, count = node.partCount(); id < count; ++id) {
            Field* field = node.builtField(id);
            auto   it = field ? map.find(field) : map.end();
            if (it == map.end())
                continue;
            indent();
            put(field->nameOrNoName());
            put(" IS ");
            put(it->second->name());
            put('\n');
        }
    }

    setIndentLevel(indentLevel() - 1);
    indent();
    put("}\n");

    if (node.hasName() && !node.nameSpace().importVec().empty())
        writeImports(node);
    return indentLevel();
}

void VRMLWriteAction::writeDeclaration(const Field& field, FieldStyle style)
{
    if (!isInterface(style))
        return;
    put(accessName(field.desc() ? field.desc()->partType() : field.type()));
    put(' ');
    put(field.dataTypeName());
    put(' ');
}

void VRMLWriteAction::writeValue(const Field& field)
{
    if (field.dataType() == SFStringType) {
        put(' ');
        putQuoted(valueText(field));
    } else if (field.cardinality() == Field::Multi && field.empty()) {
        put(" []");
    } else if (field.size() < 2) {
        put(' ');
        putValue(field);
    } else {
        put(" [ ");
        putValue(field);
        put(" ]");
    }
}

void VRMLWriteAction::putQuoted(std::string_view text)
{
    put('"');
    std::size_t from = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '"' || text[i] == '\\') {
            put(text.substr(from, i - from));
            put('\\');
            from = i;
        }
    }
    put(text.substr(from));
    put('"');
}

void VRMLWriteAction::writeField(Field& field, FieldStyle style)
{
    style = resolveStyle(field, style);
    if (!good())
        return;
    if (style == NormalStyle && field.desc() && field.desc()->further() == 2
        && std::find(_deferred.begin(), _deferred.end(), &field) == _deferred.end()) {
        _deferred.push_back(&field);
        return;
    }
    indent();
    writeDeclaration(field, style);
    put(field.nameOrNoName());
    NodePartDesc* interfaceDesc = isInterface(style) ? getInterfaceDesc(field) : nullptr;
    if (interfaceDesc) {
        put(" IS ");
        put(interfaceDesc->name());
        isMapStack().back().erase(&field);
    } else if (style != ExternInterfaceStyle && isValuePart(field)) {
        writeValue(field);
    }
    put('\n');
}

bool VRMLWriteAction::openNodeField(Field& field, FieldStyle& style)
{
    _openFields.push_back(&field);
    style = resolveStyle(field, style);
    if (!good())
        return false;
    indent();
    writeDeclaration(field, style);
    put(field.nameOrNoName());
    return true;
}

bool VRMLWriteAction::beginSFNode(Field& field, FieldStyle style)
{
    if (!openNodeField(field, style))
        return true;
    put(' ');
    if (style != ExternInterfaceStyle && isValuePart(field)) {
        if (!linkedNode(static_cast<SFNode&>(field).link()))
            put("NULL\n");
    } else {
        put('\n');
    }
    return true;
}

void VRMLWriteAction::endSFNode(FieldStyle)
{
    if (!_openFields.empty())
        _openFields.pop_back();
}

bool VRMLWriteAction::beginMFNode(Field& field, FieldStyle style)
{
    if (!openNodeField(field, style))
        return true;
    if (style != ExternInterfaceStyle && isValuePart(field))
        put(field.empty() ? " []" : " [");
    put('\n');
    setIndentLevel(indentLevel() + 1);
    return true;
}

void VRMLWriteAction::endMFNode(FieldStyle style)
{
    if (_openFields.empty())
        return;
    Field* field = _openFields.back();
    _openFields.pop_back();
    // With a failed stream beginMFNode did not raise the level.
    if (!good())
        return;
    setIndentLevel(indentLevel() - 1);
    style = resolveStyle(*field, style);
    if (style != ExternInterfaceStyle && isValuePart(*field) && !field->empty()) {
        indent();
        put("]\n");
    }
}

void VRMLWriteAction::writeRoute(Route& route)
{
    bagRoute(route);
}

void VRMLWriteAction::flushRouteBag(bool pop)
{
    flushRoutes(pop);
}

void VRMLWriteAction::writeSingleRoute(const char* fromNode, const char* fromField, const char* toNode,
                                       const char* toField)
{
    if (!good())
        return;
    indent();
    put("ROUTE ");
    put(fromNode);
    put('.');
    put(fromField);
    put(" TO ");
    put(toNode);
    put('.');
    put(toField);
    put('\n');
}

void VRMLWriteAction::writeExports(NodeNameSpace& nameSpace)
{
    // Only the first line is indented.
    writeExportLines(nameSpace, false);
}

void VRMLWriteAction::writeExportLines(NodeNameSpace& nameSpace, bool indentEach)
{
    if (!good())
        return;
    if (!indentEach)
        indent();
    for (const NodeNameSpace::Export& entry : nameSpace.exportVec()) {
        const std::string& local = entry.node->name();
        if (indentEach)
            indent();
        put("EXPORT ");
        put(local);
        if (!entry.name.empty() && entry.name != local) {
            put(" AS ");
            put(entry.name);
        }
        put('\n');
    }
}

void VRMLWriteAction::writeImports(Node& node)
{
    // Only the first line is indented.
    writeImportLines(node, false);
}

void VRMLWriteAction::writeImportLines(Node& node, bool indentEach)
{
    if (!good())
        return;
    if (!indentEach)
        indent();
    NodeNameSpace* inner = importScope(node);
    for (const NodeNameSpace::Import& entry : node.nameSpace().importVec()) {
        if (!inner || entry.from != inner)
            continue;
        if (indentEach)
            indent();
        put("IMPORT ");
        put(node.name());
        put('.');
        put(entry.exportName);
        if (!entry.localName.empty() && entry.localName != entry.exportName) {
            put(" AS ");
            put(entry.localName);
        }
        put('\n');
    }
}

void VRMLWriteAction::writeProto(NodeNameSpace& nameSpace)
{
    std::vector<NodeType*> protos = prototypesToDeclare(nameSpace);
    if (protos.empty() || !good())
        return;
    indent();
    put("# ");
    putInt(static_cast<long long>(protos.size()));
    put(" proto declaration\n");

    for (NodeType* type : protos) {
        ProtoDeclaration* declaration = type->protoDeclaration();
        if (!declaration)
            continue;
        if (declaration->isExternal()) {
            indent();
            put("EXTERNPROTO ");
            put(type->name());
            put(" [\n");
            setIndentLevel(indentLevel() + 1);
            isMapStack().emplace_back();
            for (unsigned i = 0; i < declaration->fieldCount(); ++i)
                writeInterfaceField(*declaration->field(i), ExternInterfaceStyle);
            setIndentLevel(indentLevel() - 1);
            isMapStack().pop_back();
            indent();
            put("] \"");
            put(externUrl(*type, *declaration));
            put("\"\n\n");
            continue;
        }

        indent();
        put("PROTO ");
        put(type->name());
        put(" [\n");
        setIndentLevel(indentLevel() + 1);
        pushIsLinks(*declaration);
        for (unsigned i = 0; i < declaration->fieldCount(); ++i)
            writeInterfaceField(*declaration->field(i), InterfaceStyle);
        setIndentLevel(indentLevel() - 1);
        indent();
        put("] {\n");
        setIndentLevel(indentLevel() + 1);
        setCurrentNameSpace(&declaration->body());
        writeProto(declaration->body());
        for (const SmartPtr<Node>& root : declaration->rootNodes()) {
            if (!root)
                continue;
            indent();
            writeNode(*root);
        }
        isMapStack().pop_back();
        flushRouteBag(true);
        setCurrentNameSpace(nullptr);
        setIndentLevel(indentLevel() - 1);
        indent();
        put("}\n\n");
    }
}

} // namespace Orvane
