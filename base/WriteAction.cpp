#include "base/WriteAction.h"

#include "base/EventInSlot.h"
#include "base/EventOutSlot.h"
#include "base/Field.h"
#include "base/Log.h"
#include "base/MFNode.h"
#include "base/Node.h"
#include "base/NodeLink.h"
#include "base/NodeNameSpace.h"
#include "base/NodePartDesc.h"
#include "base/NodeProc.h"
#include "base/NodeType.h"
#include "base/NodeTypeNameSpace.h"
#include "base/NumberText.h"
#include "base/ProtoDeclaration.h"
#include "base/Route.h"
#include "base/SFNode.h"
#include "base/SFString.h"

#include "base/MFColor.h"
#include "base/MFColorRGBA.h"
#include "base/MFDouble.h"
#include "base/MFFloat.h"
#include "base/MFInt32.h"
#include "base/MFMatrix3d.h"
#include "base/MFMatrix3f.h"
#include "base/MFMatrix4d.h"
#include "base/MFMatrix4f.h"
#include "base/MFPlane.h"
#include "base/MFRotation.h"
#include "base/MFTime.h"
#include "base/MFVec2d.h"
#include "base/MFVec2f.h"
#include "base/MFVec3d.h"
#include "base/MFVec3f.h"
#include "base/MFVec4d.h"
#include "base/MFVec4f.h"
#include "base/SFColor.h"
#include "base/SFColorRGBA.h"
#include "base/SFDouble.h"
#include "base/SFFloat.h"
#include "base/SFMatrix3d.h"
#include "base/SFMatrix3f.h"
#include "base/SFMatrix4d.h"
#include "base/SFMatrix4f.h"
#include "base/SFPlane.h"
#include "base/SFRotation.h"
#include "base/SFTime.h"
#include "base/SFVec2d.h"
#include "base/SFVec2f.h"
#include "base/SFVec3d.h"
#include "base/SFVec3f.h"
#include "base/SFVec4d.h"
#include "base/SFVec4f.h"

#include <algorithm>
#include <fstream>
#include <type_traits>
#include <unordered_map>

namespace Orvane {

namespace {

// Calls `visit` with the field as its concrete class, for the field types whose elements are
// numbers; false for every other type.
template <class Visit>
bool visitNumeric(const Field& field, Visit&& visit)
{
    switch (field.dataType()) {
    case SFFloatType:     visit(static_cast<const SFFloat&>(field)); return true;
    case MFFloatType:     visit(static_cast<const MFFloat&>(field)); return true;
    case SFDoubleType:    visit(static_cast<const SFDouble&>(field)); return true;
    case MFDoubleType:    visit(static_cast<const MFDouble&>(field)); return true;
    case SFTimeType:      visit(static_cast<const SFTime&>(field)); return true;
    case MFTimeType:      visit(static_cast<const MFTime&>(field)); return true;
    case MFInt32Type:     visit(static_cast<const MFInt32&>(field)); return true;
    case SFColorType:     visit(static_cast<const SFColor&>(field)); return true;
    case MFColorType:     visit(static_cast<const MFColor&>(field)); return true;
    case SFColorRGBAType: visit(static_cast<const SFColorRGBA&>(field)); return true;
    case MFColorRGBAType: visit(static_cast<const MFColorRGBA&>(field)); return true;
    case SFRotationType:  visit(static_cast<const SFRotation&>(field)); return true;
    case MFRotationType:  visit(static_cast<const MFRotation&>(field)); return true;
    case SFPlaneType:     visit(static_cast<const SFPlane&>(field)); return true;
    case MFPlaneType:     visit(static_cast<const MFPlane&>(field)); return true;
    case SFVec2fType:     visit(static_cast<const SFVec2f&>(field)); return true;
    case MFVec2fType:     visit(static_cast<const MFVec2f&>(field)); return true;
    case SFVec2dType:     visit(static_cast<const SFVec2d&>(field)); return true;
    case MFVec2dType:     visit(static_cast<const MFVec2d&>(field)); return true;
    case SFVec3fType:     visit(static_cast<const SFVec3f&>(field)); return true;
    case MFVec3fType:     visit(static_cast<const MFVec3f&>(field)); return true;
    case SFVec3dType:     visit(static_cast<const SFVec3d&>(field)); return true;
    case MFVec3dType:     visit(static_cast<const MFVec3d&>(field)); return true;
    case SFVec4fType:     visit(static_cast<const SFVec4f&>(field)); return true;
    case MFVec4fType:     visit(static_cast<const MFVec4f&>(field)); return true;
    case SFVec4dType:     visit(static_cast<const SFVec4d&>(field)); return true;
    case MFVec4dType:     visit(static_cast<const MFVec4d&>(field)); return true;
    case SFMatrix3fType:  visit(static_cast<const SFMatrix3f&>(field)); return true;
    case MFMatrix3fType:  visit(static_cast<const MFMatrix3f&>(field)); return true;
    case SFMatrix3dType:  visit(static_cast<const SFMatrix3d&>(field)); return true;
    case MFMatrix3dType:  visit(static_cast<const MFMatrix3d&>(field)); return true;
    case SFMatrix4fType:  visit(static_cast<const SFMatrix4f&>(field)); return true;
    case MFMatrix4fType:  visit(static_cast<const MFMatrix4f&>(field)); return true;
    case SFMatrix4dType:  visit(static_cast<const SFMatrix4d&>(field)); return true;
    case MFMatrix4dType:  visit(static_cast<const MFMatrix4d&>(field)); return true;
    default:              return false;
    }
}

// One element as the field's own text form writes it, or with every floating-point component
// in its shortest exact text.
template <class T>
void appendElement(std::string& out, const T& value, bool exact)
{
    using C = Components<T>;
    if constexpr (std::is_floating_point_v<typename C::Scalar>) {
        if (exact) {
            char buffer[64];
            for (unsigned i = 0; i < C::count; ++i) {
                if (i)
                    out += ' ';
                out.append(buffer, NumberText::writeShortest(buffer, C::get(value, i)));
            }
            return;
        }
    }
    ValueText<T>::writeMFElement(out, value);
}

bool isValuePart(const NodePartDesc& desc)
{
    return desc.partType() == FieldPartType || desc.partType() == ExposedFieldPartType;
}

} // namespace

WriteAction::WriteAction(const double& timeStamp) : TraversAction(timeStamp)
{
    WriteAction::reset();
}

WriteAction::WriteAction(const WriteAction& other)
    : TraversAction(other), _stream(other._stream), _indentLevel(other._indentLevel),
      _currentNameSpace(other._currentNameSpace), _isMapStack(other._isMapStack)
{
    // The owned-file marker stays behind: a copy never deletes the stream.
}

WriteAction::~WriteAction()
{
    releaseStream();
}

const std::string& WriteAction::systemStandard()
{
    static const std::string tag("Orvane");
    return tag;
}

void WriteAction::reset()
{
    TraversAction::reset();
    releaseStream();
    addSkipCreator(0xA);
    _stream = nullptr;
    _indentLevel = 0;
    setWriteAbstract(true);
    _sceneHeader = SceneHeader();
    _routeBagStack.clear();
    _useTable.clear();
    _protoWritten.clear();
    _importRoutesWritten.clear();
}

void WriteAction::copyDocumentState(const WriteAction& other)
{
    _routeBagStack = other._routeBagStack;
    _useTable = other._useTable;
}

NodeNameSpace& WriteAction::ownNameSpace(const Node& node)
{
    NodeNameSpace* own = node.proc() && !node.proc()->ownsDocument() ? node.proc()->ownNameSpace() : nullptr;
    return own ? *own : node.nameSpace();
}

NodeNameSpace* WriteAction::importScope(const Node& node)
{
    return node.proc() ? node.proc()->ownNameSpace() : nullptr;
}

WriteAction::NodeMark WriteAction::markNode(Node& node, const std::string& typeName, const std::string*& name,
                                            unsigned& copy)
{
    copy = 0;
    name = nullptr;
    if (node.parentCount() < 2) {
        if (!node.hasName() || (_currentNameSpace && node.isAutoNamed()))
            return PlainNode;
        name = &node.name();
        return DefinedNode;
    }
    auto it = _useTable.find(&node);
    if (it != _useTable.end()) {
        ++it->second.count;
        name = &it->second.name;
        if (!forbidNodeUSE())
            return UsedNode;
        copy = it->second.count;
        return DefinedNode;
    }
    std::string label;
    if (node.hasName()) {
        label = node.name();
    } else {
        // The ID text starts with the comment character of the file syntax; the name takes
        // its number.
        const std::string& id = node.getIDStr();
        label = "AOPT_" + typeName + "_" + (id[0] == '#' ? id.substr(1) : id);
    }
    name = &_useTable.emplace(&node, UseEntry{1, std::move(label)}).first->second.name;
    return DefinedNode;
}

void WriteAction::bagRoute(Route& route)
{
    if (_routeBagStack.empty())
        _routeBagStack.emplace_back();
    Node& from = route.outSlot().node();
    Node& to = route.inSlot().node();
    if (!from.hasName() || !to.hasName() || isSkipNodeType(from) || isSkipNodeType(to))
        return;
    if (route.type() != Route::DEFAULT && !writeInternalRoutes())
        return;
    RouteBag& bag = _routeBagStack.back();
    if (bag.members.insert(&route).second)
        bag.order.push_back(&route);
}

void WriteAction::flushRoutes(bool pop)
{
    if (_routeBagStack.empty())
        return;
    if (good()) {
        for (Route* route : _routeBagStack.back().order) {
            if (route->type() != Route::DEFAULT && !writeInternalRoutes())
                continue;
            Node& from = route->outSlot().node();
            Node& to = route->inSlot().node();
            if (!from.hasName() || !to.hasName()) {
                ORV_PLOG("XXX Ignore Route with connects unnamed nodes\n");
                continue;
            }
            const char* fromSlot = route->outSlot().findName();
            const char* toSlot = route->inSlot().findName();
            writeSingleRoute(from.name().c_str(), fromSlot ? fromSlot : "", to.name().c_str(), toSlot ? toSlot : "");
        }
    }
    if (pop)
        _routeBagStack.pop_back();
}

std::vector<NodeType*> WriteAction::prototypesToDeclare(NodeNameSpace& nameSpace)
{
    std::vector<NodeType*> protos;
    if (resolveProto() || !_protoWritten.insert(&nameSpace).second)
        return protos;
    nameSpace.nodeTypeNameSpace().getTypeVec(protos, 3);
    // Alias names of a prototype are not declarations of their own; the rest in the order they
    // were declared, so that a prototype comes before the prototypes whose bodies use it.
    std::erase_if(protos, [](const NodeType* type) { return type->isAliasOf() != nullptr; });
    std::sort(protos.begin(), protos.end(), [](const NodeType* a, const NodeType* b) { return a->ID() < b->ID(); });
    return protos;
}

void WriteAction::pushIsLinks(ProtoDeclaration& declaration)
{
    IsMap& links = _isMapStack.emplace_back();
    for (const ProtoDeclaration::IsLink& link : declaration.isLinks()) {
        Node*               bodyNode = declaration.body().findNode(link.node);
        Field*              bodyField = bodyNode ? bodyNode->findField(link.partID) : nullptr;
        const NodePartDesc* interfaceDesc = declaration.fieldDesc(link.field);
        if (!bodyField || !interfaceDesc) {
            ORV_WARNING("Invalid IS link in proto desc\n");
            continue;
        }
        links[bodyField] = interfaceDesc;
    }
}

std::string WriteAction::externUrl(const NodeType& type, const ProtoDeclaration& declaration)
{
    const std::string url = declaration.urls().empty() ? std::string() : declaration.urls().front();
    const std::string& name = declaration.externName().empty() ? type.name() : declaration.externName();
    return url.substr(0, url.find('#')) + '#' + name;
}

void WriteAction::flushBuffer()
{
    if (_stream && !_buffer.empty())
        _stream->write(_buffer.data(), static_cast<std::streamsize>(_buffer.size()));
    _buffer.clear();
}

void WriteAction::releaseStream()
{
    if (_stream) {
        flushBuffer();
        _stream->flush();
        _lastStreamGood = _stream->good();
    }
    _buffer.clear();
    _defaults.clear();
    if (!_ownedFile.empty()) {
        delete _stream;
        _stream = nullptr;
        _ownedFile.clear();
    }
}

void WriteAction::setStream(std::ostream& stream)
{
    // beginFile hands its own stream to begin(), which sets it again: that one stays owned.
    if (&stream == _stream)
        return;
    releaseStream();
    _stream = &stream;
}

void WriteAction::resetStream()
{
    releaseStream();
    _stream = nullptr;
}

void WriteAction::putInt(long long value)
{
    char buffer[24];
    auto [end, ec] = std::to_chars(buffer, buffer + sizeof buffer, value);
    put(std::string_view(buffer, static_cast<std::size_t>(end - buffer)));
}

void WriteAction::indent()
{
    if (!_stream || _indentLevel <= 0)
        return;
    if (useTAB())
        _buffer.append(static_cast<std::size_t>(_indentLevel), '\t');
    else
        _buffer.append(static_cast<std::size_t>(_indentLevel) * 2, ' ');
}

void WriteAction::beginFile(const std::string& fileName)
{
    if (fileName.empty()) {
        ORV_FATAL("Invalid empty >fileName< in WriteAction::begin()\n");
        return;
    }
    releaseStream();
    auto* file = new std::ofstream(fileName, std::ios::out | std::ios::binary | std::ios::trunc);
    _stream = file;
    _ownedFile = fileName;
    if (file->good())
        begin(*file, "");
    else
        ORV_FATAL("Cannot create ofstream for >%s<\n", fileName.c_str());
}

NodePartDesc* WriteAction::getInterfaceDesc(Field& field) const
{
    if (_isMapStack.empty())
        return nullptr;
    const IsMap& map = _isMapStack.back();
    auto it = map.find(&field);
    return it == map.end() ? nullptr : const_cast<NodePartDesc*>(it->second);
}

std::string WriteAction::normalizeMimetype(const std::string& mimetype)
{
    static constexpr const char* blanks = " \t\r\n";
    std::string text = mimetype.substr(0, mimetype.find(';'));
    auto first = text.find_first_not_of(blanks);
    if (first == std::string::npos)
        return std::string();
    auto last = text.find_last_not_of(blanks);
    text = text.substr(first, last - first + 1);
    for (char& c : text)
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c - 'A' + 'a');
    return text;
}

WriteAction::FieldStyle WriteAction::resolveStyle(const Field& field, FieldStyle style) const
{
    if (style != DefaultStyle)
        return style;
    // A field of the node's own type is written by name, and so is a field added to a node whose
    // type takes no declarations; a field added to a script-like node (or one without
    // descriptor) needs its declaration.
    if (!field.desc())
        return InterfaceStyle;
    return field.isNodeTypePart() || !field.owner().type().isExtensible() ? NormalStyle : InterfaceStyle;
}

Node* WriteAction::linkedNode(const NodeLink& link) const
{
    return resolveProto() ? link.node() : link.directNode();
}

const NodeType& WriteAction::writtenType(const Node& node) const
{
    const NodeType* type = &node.type();
    if (writeAbstract()) {
        // Bounded by the depth of the type tree: each step goes to a distinct abstract type.
        for (unsigned guard = 0; guard < 64 && !type->defaultDescendantOfName().empty()
                                 && type->standard() == systemStandard();
             ++guard) {
            NodeType* abstract = type->isDefaultDescendantOf();
            if (!abstract)
                break;
            type = abstract;
        }
    }
    return *type;
}

const std::string* WriteAction::nodeName(const Node& node)
{
    return node.hasName() ? &node.name() : nullptr;
}

void WriteAction::putValue(const Field& field)
{
    bool exact = writeExactNumbers();
    bool done = visitNumeric(field, [&](const auto& typed) {
        const auto& value = typed.value();
        if constexpr (requires { value.begin(); }) {
            // Lists go straight into the output buffer, element by element, so that a large
            // value is never built as one text of its own.
            bool first = true;
            for (const auto& element : value) {
                if (!first)
                    _buffer += ", ";
                first = false;
                appendElement(_buffer, element, exact);
                if (_buffer.size() >= flushSize)
                    flushBuffer();
            }
        } else if (exact) {
            appendElement(_buffer, value, true);
        } else {
            typed.getStrValue(_text);
            _buffer += _text;
        }
    });
    if (!done) {
        field.getStrValue(_text);
        _buffer += _text;
    }
    if (_buffer.size() >= flushSize)
        flushBuffer();
}

bool WriteAction::isNumeric(const Field& field)
{
    return visitNumeric(field, [](const auto&) {});
}

void WriteAction::writeInterfaceField(Field& field, FieldStyle style)
{
    if (field.desc() && field.desc()->isNodeField())
        writeContainerField(field, style, true);
    else
        writeField(field, style);
}

const std::string& WriteAction::valueText(const Field& field)
{
    return field.getStrValue(_text);
}

bool WriteAction::holdsDefault(const Field& field)
{
    const NodePartDesc* desc = field.desc();
    // The empty text is the text form of the empty string: such a string is at its default.
    if (desc && desc->defaultValue().empty() && field.dataType() == SFStringType)
        return static_cast<const SFString&>(field).value().empty();
    // Node fields and lists keep the field's own test; a single value with a default text is
    // compared with that default parsed once per descriptor and document, not once per node.
    if (!desc || desc->defaultValue().empty() || field.cardinality() != Field::Single || desc->isNodeField())
        return field.valueIsDefault();
    std::unique_ptr<Field>& reference = _defaults[desc];
    if (!reference) {
        reference.reset(FieldType::create(field.dataType(), field.owner()));
        if (!reference)
            return field.valueIsDefault();
        // For a single value this is the plain text setter: no change processing, no events.
        reference->addValueByStr(desc->defaultValue().c_str(), Field::Single);
    }
    return reference->equalValue(field);
}

void WriteAction::writeContainerField(Field& field, FieldStyle style, bool withBrackets)
{
    const NodePartDesc* desc = field.desc();
    if (!desc)
        return;
    style = resolveStyle(field, style);
    if (skipPrivateField() && desc->privateAccess())
        return;
    bool valuePart = isValuePart(*desc);

    if (field.dataType() == SFNodeType) {
        Node* node = linkedNode(static_cast<SFNode&>(field).link());
        bool  write = node ? !isSkipNode(*node) : style == InterfaceStyle;
        if (!write)
            return;
        if (withBrackets)
            beginSFNode(field, style);
        if (style != ExternInterfaceStyle && valuePart && node)
            writeNode(*node);
        if (withBrackets)
            endSFNode(style);
        return;
    }
    if (field.dataType() != MFNodeType)
        return;

    auto& list = static_cast<MFNode&>(field);
    if (style != InterfaceStyle && field.valueIsDefault())
        return;
    bool found = false;
    if (valuePart || style != InterfaceStyle) {
        for (const NodeLink& link : list) {
            Node* node = linkedNode(link);
            if (node && !isSkipNode(*node)) {
                found = true;
                break;
            }
        }
        if (!found && style != InterfaceStyle)
            return;
    }
    if (withBrackets)
        beginMFNode(field, style);
    if (style != ExternInterfaceStyle && found) {
        for (const NodeLink& link : list) {
            // isSkipNode again per entry: writing one child may not change the path, but it
            // keeps the rule in one place.
            Node* node = linkedNode(link);
            if (node && !isSkipNode(*node))
                writeNode(*node);
        }
    }
    if (withBrackets)
        endMFNode(style);
}

void WriteAction::writeNode(Node& node)
{
    if (node.proc() && node.proc()->write(*this))
        return;
    writeNodeFields(node);
}

void WriteAction::writeNodeFields(Node& node)
{
    if (!beginNode(node))
        return;
    enter(node);
    if (valuesFirst()) {
        beginAttrField();
        writeFieldPass(node, ValuePass);
        endAttrField();
        // Only fields beyond the type's own can be declarations.
        if (node.partCount() > node.type().partCount())
            writeFieldPass(node, DeclarationPass);
        writeFieldPass(node, ChildPass);
    } else {
        writeFieldPass(node, AllPass);
    }
    unsigned count = node.partCount();
    for (unsigned id = 0; id < count; ++id) {
        Field* field = node.builtField(id);
        EventOutSlot* out = field ? field->getOutSlot(false) : nullptr;
        if (!out)
            continue;
        for (Route* route : out->routeBag())
            if (&route->outSlot() == out)
                writeRoute(*route);
    }
    leave(node);
    endNode(node);
}

void WriteAction::writeFieldPass(Node& node, FieldPass pass)
{
    unsigned count = node.partCount();
    for (unsigned id = 0; id < count; ++id) {
        // A field the node has not made yet holds its default: written only when defaults are.
        Field* field = node.builtField(id);
        if (!field && writeDefaultValue())
            field = node.findField(id);
        if (!field || !field->desc())
            continue;
        const NodePartDesc& desc = *field->desc();
        if ((skipPrivateField() && desc.privateAccess()) || (skipExtField() && desc.objExtension()))
            continue;
        // The cheap test first: a value pass never takes a node field, a child pass nothing else.
        if ((pass == ValuePass && desc.isNodeField()) || (pass == ChildPass && !desc.isNodeField()))
            continue;
        FieldStyle style = resolveStyle(*field, DefaultStyle);
        if (pass != AllPass) {
            FieldPass own = style != NormalStyle ? DeclarationPass : desc.isNodeField() ? ChildPass : ValuePass;
            if (own != pass)
                continue;
        }
        // A field joined to the prototype interface is written as its IS link.
        if (style == NormalStyle && getInterfaceDesc(*field))
            continue;
        if (desc.isNodeField()) {
            writeContainerField(*field, style, true);
            continue;
        }
        if (style == NormalStyle && (!isValuePart(desc) || (!writeDefaultValue() && holdsDefault(*field))))
            continue;
        writeField(*field, style);
    }
}

namespace {

// The local name under which `nameSpace` imports `node`; null when it does not.
const std::string* importedName(const NodeNameSpace& nameSpace, const Node& node)
{
    for (const NodeNameSpace::Import& import : nameSpace.importVec())
        if (import.from && import.from->getExportedNode(import.exportName) == &node)
            return import.localName.empty() ? &import.exportName : &import.localName;
    return nullptr;
}

} // namespace

void WriteAction::writeImportRoutes(NodeNameSpace& nameSpace)
{
    // A route through an unnamed node between two imports: the first end, kept until the
    // second one is met.
    struct BridgeEnd {
        std::string localName;
        std::string slotName;
    };
    std::unordered_map<const Node*, BridgeEnd> bridges;
    if (!nameSpace.importVec().empty() && !_importRoutesWritten.insert(&nameSpace).second)
        return;

    for (const NodeNameSpace::Import& import : nameSpace.importVec()) {
        const std::string& localName = import.localName.empty() ? import.exportName : import.localName;
        Node* imported = nameSpace.getImportedNode(localName);
        if (!imported)
            continue;
        unsigned count = imported->partCount();
        for (bool leaving : {true, false}) {
            for (unsigned id = 0; id < count; ++id) {
                Field* field = imported->builtField(id);
                if (!field)
                    continue;
                EventSlot* slot = leaving ? static_cast<EventSlot*>(field->getOutSlot(false))
                                          : static_cast<EventSlot*>(field->getInSlot(false));
                if (!slot || !slot->findName())
                    continue;
                const char* slotName = slot->findName();
                for (Route* route : slot->routeBag()) {
                    EventSlot& other = leaving ? static_cast<EventSlot&>(route->inSlot())
                                               : static_cast<EventSlot&>(route->outSlot());
                    if (&other == slot)
                        continue;
                    const char* otherSlot = other.findName();
                    if (!otherSlot)
                        continue;
                    if (&other.node().nameSpace() != &nameSpace) {
                        // A route inside the exporting scene belongs to that scene's document;
                        // one between two imports is written once, from its source's side.
                        if (leaving && &other.node().nameSpace() != import.from)
                            if (const std::string* otherImport = importedName(nameSpace, other.node()))
                                writeSingleRoute(localName.c_str(), slotName, otherImport->c_str(), otherSlot);
                        continue;
                    }
                    if (const std::string* otherName = nodeName(other.node())) {
                        if (leaving)
                            writeSingleRoute(localName.c_str(), slotName, otherName->c_str(), otherSlot);
                        else
                            writeSingleRoute(otherName->c_str(), otherSlot, localName.c_str(), slotName);
                        continue;
                    }
                    auto [it, first] = bridges.try_emplace(&other.node(), BridgeEnd{localName, slotName});
                    if (first)
                        continue;
                    const BridgeEnd& kept = it->second;
                    if (kept.localName == localName && kept.slotName == slotName)
                        continue;
                    // The later route enters this import: from the kept end to here; it
                    // leaves this import: from here to the kept end.
                    if (!leaving)
                        writeSingleRoute(kept.localName.c_str(), kept.slotName.c_str(), localName.c_str(), slotName);
                    else
                        writeSingleRoute(localName.c_str(), slotName, kept.localName.c_str(), kept.slotName.c_str());
                }
            }
        }
    }
}

bool WriteAction::writeFile(const std::vector<Node*>& roots, const std::string& fileName)
{
    beginFile(fileName);
    if (fileName.empty() || _ownedFile != fileName || !good()) {
        resetStream();
        return false;
    }
    for (Node* root : roots)
        if (root)
            writeNode(*root);
    end();
    return _lastStreamGood;
}

bool WriteAction::writeFile(Node& root, const std::string& fileName)
{
    return writeFile(std::vector<Node*>{&root}, fileName);
}

bool WriteAction::writeStream(const std::vector<Node*>& roots, std::ostream& stream)
{
    begin(stream, "");
    for (Node* root : roots)
        if (root)
            writeNode(*root);
    end();
    return _lastStreamGood;
}

bool WriteAction::writeStream(Node& root, std::ostream& stream)
{
    return writeStream(std::vector<Node*>{&root}, stream);
}

} // namespace Orvane
