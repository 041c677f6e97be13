#include "base/X3DWriteAction.h"

#include "base/Field.h"
#include "base/MFBool.h"
#include "base/MFString.h"
#include "base/Node.h"
#include "base/NodeLink.h"
#include "base/NodeNameSpace.h"
#include "base/NodePartDesc.h"
#include "base/NodeProc.h"
#include "base/NodeType.h"
#include "base/ProtoDeclaration.h"
#include "base/Route.h"
#include "base/EventOutSlot.h"
#include "base/EventInSlot.h"
#include "base/SFBool.h"
#include "base/SFNode.h"
#include "base/SFString.h"

namespace Orvane {

namespace {

bool isValuePart(const Field& field)
{
    NodePartType type = field.desc() ? field.desc()->partType() : field.type();
    return type == FieldPartType || type == ExposedFieldPartType;
}

// The node types whose url may hold their program text itself.
bool takesCode(const std::string& typeName)
{
    return typeName == "Script" || typeName == "ShaderPart" || typeName == "ShaderProgram";
}

bool isInlineCode(std::string_view text)
{
    auto first = text.find_first_not_of(" \t\r\n");
    if (first == std::string_view::npos)
        return false;
    text.remove_prefix(first);
    for (std::string_view scheme : {"ecmascript:", "javascript:", "vrmlscript:", "data:"})
        if (text.substr(0, scheme.size()) == scheme)
            return true;
    return false;
}

} // namespace

X3DWriteAction::X3DWriteAction(const double& timeStamp) : WriteAction(timeStamp)
{
    X3DWriteAction::reset();
}

X3DWriteAction::X3DWriteAction(const X3DWriteAction& other) : WriteAction(other)
{
    X3DWriteAction::reset();
}

X3DWriteAction::~X3DWriteAction() = default;

void X3DWriteAction::reset()
{
    WriteAction::reset();
    _elements.clear();
    _openFields.clear();
}

// --- output pieces ---

void X3DWriteAction::putEscaped(std::string_view text, bool quoted)
{
    std::size_t from = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char* entity;
        switch (text[i]) {
        case '&':  entity = "&amp;"; break;
        case '<':  entity = "&lt;"; break;
        case '>':  entity = "&gt;"; break;
        case '\'': entity = "&apos;"; break;
        case '"':  entity = quoted ? "\\&quot;" : "&quot;"; break;
        case '\\':
            if (!quoted)
                continue;
            entity = "\\\\";
            break;
        // Line ends and tabs as references: a parser turns them into blanks in an attribute.
        case '\t': entity = "&#9;"; break;
        case '\n': entity = "&#10;"; break;
        case '\r': entity = "&#13;"; break;
        default:
            if (static_cast<unsigned char>(text[i]) >= 0x20)
                continue;
            entity = "";  // no XML 1.0 document can hold the other control characters
        }
        put(text.substr(from, i - from));
        put(entity);
        from = i + 1;
    }
    put(text.substr(from));
}

void X3DWriteAction::putAttribute(std::string_view name, std::string_view value)
{
    put(' ');
    put(name);
    put("='");
    putEscaped(value);
    put('\'');
}

void X3DWriteAction::putXmlValue(const Field& field, unsigned skip)
{
    switch (field.dataType()) {
    case SFBoolType:
        put(static_cast<const SFBool&>(field).value() ? "true" : "false");
        return;
    case MFBoolType: {
        bool first = true;
        for (bool value : static_cast<const MFBool&>(field).value()) {
            if (!first)
                put(' ');
            first = false;
            put(value ? "true" : "false");
        }
        return;
    }
    case SFStringType:
        putEscaped(static_cast<const SFString&>(field).value());
        return;
    case MFStringType: {
        bool first = true;
        for (const std::string& item : static_cast<const MFString&>(field).value()) {
            if (skip) {
                --skip;
                continue;
            }
            if (!first)
                put(' ');
            first = false;
            put('"');
            putEscaped(item, true);
            put('"');
        }
        return;
    }
    default:
        break;
    }
    if (isNumeric(field))
        putValue(field);
    else
        putEscaped(valueText(field));
}

void X3DWriteAction::putCData(std::string_view text)
{
    indent();
    put("<![CDATA[");
    // "]]>" would end the section: it is split across two.
    for (auto end = text.find("]]>"); end != std::string_view::npos; end = text.find("]]>")) {
        put(text.substr(0, end + 2));
        put("]]><![CDATA[");
        text.remove_prefix(end + 2);
    }
    put(text);
    put("]]>\n");
}

// --- elements ---

void X3DWriteAction::openElement(std::string_view tag, Node* node)
{
    indent();
    put('<');
    put(tag);
    Element& element = _elements.emplace_back();
    element.tag = tag;
    element.node = node;
    setIndentLevel(indentLevel() + 1);
}

void X3DWriteAction::closeStartTag()
{
    if (!_elements.empty() && _elements.back().open) {
        put(">\n");
        _elements.back().open = false;
    }
}

void X3DWriteAction::enterContent(bool child)
{
    if (_elements.empty())
        return;
    closeStartTag();
    if (child)
        writeLinks(_elements.back());
}

void X3DWriteAction::closeElement()
{
    Element& element = _elements.back();
    setIndentLevel(indentLevel() - 1);
    if (element.open) {
        put("/>\n");
    } else {
        indent();
        put("</");
        put(element.tag);
        put(">\n");
    }
    _elements.pop_back();
}

void X3DWriteAction::writeLinks(Element& element)
{
    if (element.linked || !element.node)
        return;
    element.linked = true;
    if (isMapStack().empty() || isMapStack().back().empty())
        return;
    const IsMap& map = isMapStack().back();
    bool         any = false;
    for (unsigned id = 0, count = element.node->partCount(); id < count; ++id) {
        Field* field = element.node->builtField(id);
        auto   it = field ? map.find(field) : map.end();
        if (it == map.end())
            continue;
        if (!any) {
            closeStartTag();
            indent();
            put("<IS>\n");
            setIndentLevel(indentLevel() + 1);
            any = true;
        }
        indent();
        put("<connect nodeField='");
        putEscaped(field->nameOrNoName());
        put("' protoField='");
        putEscaped(it->second->name());
        put("'/>\n");
    }
    if (any) {
        setIndentLevel(indentLevel() - 1);
        indent();
        put("</IS>\n");
    }
}

void X3DWriteAction::openDeclaration(const Field& field)
{
    enterContent(false);
    openElement("field");
    putAttribute("accessType", NodePartDesc::accessTypeName(field.desc() ? field.desc()->partType() : field.type()));
    putAttribute("type", field.dataTypeName());
    putAttribute("name", field.nameOrNoName());
}

// --- document ---

void X3DWriteAction::begin(std::ostream& stream, const std::string&)
{
    setStream(stream);
    startDocument();
    _elements.clear();
    _openFields.clear();
    setCurrentNameSpace(nullptr);
    if (!good())
        return;
    const SceneHeader& header = sceneHeader();
    std::string_view   version = header.x3dVersion(true);
    put("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!DOCTYPE X3D PUBLIC \"ISO//Web3D//DTD X3D ");
    put(version);
    put("//EN\" \"https://www.web3d.org/specifications/x3d-");
    put(version);
    put(".dtd\">\n<X3D");
    putAttribute("profile", header.x3dProfile());
    putAttribute("version", version);
    put(" xmlns:xsd='http://www.w3.org/2001/XMLSchema-instance' "
        "xsd:noNamespaceSchemaLocation='https://www.web3d.org/specifications/x3d-");
    put(version);
    put(".xsd'>\n");
    setIndentLevel(1);
    if (!header.components.empty() || !header.units.empty() || !header.meta.empty()) {
        indent();
        put("<head>\n");
        setIndentLevel(2);
        for (const auto& [name, level] : header.components) {
            indent();
            put("<component");
            putAttribute("name", name);
            put(" level='");
            putInt(level);
            put("'/>\n");
        }
        for (const std::vector<std::string>& unit : header.units) {
            indent();
            put("<unit");
            static constexpr const char* names[] = {"category", "name", "conversionFactor"};
            for (std::size_t i = 0; i < unit.size() && i < 3; ++i)
                putAttribute(names[i], unit[i]);
            put("/>\n");
        }
        for (const auto& [name, content] : header.meta) {
            indent();
            put("<meta");
            putAttribute("name", name);
            putAttribute("content", content);
            put("/>\n");
        }
        setIndentLevel(1);
        indent();
        put("</head>\n");
    }
    indent();
    put("<Scene>\n");
    setIndentLevel(2);
}

void X3DWriteAction::end()
{
    flushRouteBag(true);
    if (NodeNameSpace* current = currentNameSpace())
        writeImportRoutes(*current);
    while (!_elements.empty())
        closeElement();
    _openFields.clear();
    if (good()) {
        setIndentLevel(1);
        indent();
        put("</Scene>\n</X3D>\n");
    }
    resetStream();
}

// --- nodes ---

void X3DWriteAction::writePrototypes(NodeNameSpace& nameSpace)
{
    if (&nameSpace == currentNameSpace())
        return;
    setCurrentNameSpace(&nameSpace);
    writeProto(nameSpace);
    setCurrentNameSpace(&nameSpace);
}

bool X3DWriteAction::beginNode(Node& node)
{
    writePrototypes(node.nameSpace());
    const NodeType& type = writtenType(node);
    if (!good())
        return true;
    enterContent(true);

    if (writeProcInfo() && node.proc()) {
        std::string info = node.proc()->info();
        if (!info.empty()) {
            // "--" may not appear in a comment.
            std::string text = std::string(node.stateName()) + "; " + info;
            for (std::size_t at = text.find("--"); at != std::string::npos; at = text.find("--", at))
                text.insert(at + 1, 1, ' ');
            indent();
            put("<!-- ");
            put(text);
            put(" -->\n");
        }
    }

    const std::string* name;
    unsigned           copy;
    NodeMark           mark = markNode(node, type.name(), name, copy);
    const bool         instance = type.isProto() || type.isAliasOf();
    openElement(instance ? std::string_view("ProtoInstance") : std::string_view(type.name()), &node);
    if (instance)
        putAttribute("name", type.name());
    if (mark != PlainNode) {
        put(mark == UsedNode ? " USE='" : " DEF='");
        putEscaped(*name);
        if (copy) {
            put('_');
            putInt(copy);
        }
        put('\'');
    }
    if (!_openFields.empty() && !_openFields.back().wrapper) {
        const char* container = _openFields.back().field->nameOrNoName();
        if (type.containerField() != container)
            putAttribute("containerField", container);
    }
    if (mark == UsedNode) {
        closeElement();
        return false;
    }
    Element& element = _elements.back();
    element.instance = instance;
    element.code = !instance && takesCode(type.name());
    if (&ownNameSpace(node) != &node.nameSpace())
        routeBagStack().emplace_back();
    return true;
}

int X3DWriteAction::endNode(Node& node)
{
    if (!good() || _elements.empty() || _elements.back().node != &node)
        return indentLevel();
    Element& element = _elements.back();
    writeLinks(element);
    if (element.cdata) {
        closeStartTag();
        putCData(static_cast<const MFString*>(element.cdata)->value().front());
    }
    closeElement();

    // What is imported from a node's own scope follows it; what that scope exports belongs to
    // its own document. The statements of a scope follow its last root node, where every name
    // they use is defined.
    if (node.hasName() && !node.nameSpace().importVec().empty())
        writeImports(node);
    if (&ownNameSpace(node) != &node.nameSpace())
        flushRouteBag(true);
    if (!node.hasParents()) {
        writeExports(node.nameSpace());
        flushRouteBag(true);
        writeImportRoutes(node.nameSpace());
    }
    setCurrentNameSpace(node.hasParents() ? &node.nameSpace() : nullptr);
    return indentLevel();
}

// --- fields ---

void X3DWriteAction::writeField(Field& field, FieldStyle style)
{
    style = resolveStyle(field, style);
    if (!good())
        return;
    if (style != NormalStyle) {
        openDeclaration(field);
        if (style == InterfaceStyle && isValuePart(field) && !getInterfaceDesc(field)) {
            put(" value='");
            putXmlValue(field);
            put('\'');
        }
        closeElement();
        return;
    }
    // The run-time log switch of every node is the system's own, no X3D field.
    const Node& owner = field.owner();
    if (_elements.empty() || (&field == owner.builtField(0u) && owner.type().logFeatureMask().any()))
        return;
    Element& element = _elements.back();
    if (element.instance) {
        enterContent(false);
        openElement("fieldValue");
        putAttribute("name", field.nameOrNoName());
        put(" value='");
        putXmlValue(field);
        put('\'');
        closeElement();
        return;
    }
    // Values belong to the start tag; the walk writes them before anything else.
    if (!element.open)
        return;
    // A string whose default text is empty holds its default while it is empty (the field's
    // own test only knows defaults that have a text).
    if (field.dataType() == SFStringType && !writeDefaultValue() && field.desc() && field.desc()->defaultValue().empty()
        && static_cast<const SFString&>(field).value().empty())
        return;
    unsigned skip = 0;
    if (element.code && field.dataType() == MFStringType && std::string_view(field.nameOrNoName()) == "url") {
        const auto& urls = static_cast<const MFString&>(field).value();
        if (!urls.empty() && isInlineCode(urls.front())) {
            element.cdata = &field;
            if (urls.size() == 1)
                return;
            skip = 1;
        }
    }
    put(' ');
    put(field.nameOrNoName());
    put("='");
    putXmlValue(field, skip);
    put('\'');
}

bool X3DWriteAction::beginSFNode(Field& field, FieldStyle style)
{
    style = resolveStyle(field, style);
    const bool instance = !_elements.empty() && _elements.back().instance;
    const bool wrapper = style != NormalStyle || instance;
    const bool opened = wrapper && good();
    _openFields.push_back({&field, wrapper, opened});
    if (!opened)
        return true;
    if (style == NormalStyle) {
        enterContent(false);
        openElement("fieldValue");
        putAttribute("name", field.nameOrNoName());
    } else {
        openDeclaration(field);
    }
    return true;
}

void X3DWriteAction::endSFNode(FieldStyle)
{
    if (_openFields.empty())
        return;
    const bool opened = _openFields.back().opened;
    _openFields.pop_back();
    if (opened && !_elements.empty())
        closeElement();
}

bool X3DWriteAction::beginMFNode(Field& field, FieldStyle style)
{
    return beginSFNode(field, style);
}

void X3DWriteAction::endMFNode(FieldStyle style)
{
    endSFNode(style);
}

// --- statements ---

void X3DWriteAction::writeRoute(Route& route)
{
    // A route into or out of another scope runs through an import: writeImportRoutes writes it
    // under the imported name.
    if (&route.outSlot().node().nameSpace() == &route.inSlot().node().nameSpace())
        bagRoute(route);
}

void X3DWriteAction::flushRouteBag(bool pop)
{
    flushRoutes(pop);
}

void X3DWriteAction::writeSingleRoute(const char* fromNode, const char* fromField, const char* toNode,
                                      const char* toField)
{
    if (!good())
        return;
    enterContent(true);
    indent();
    put("<ROUTE");
    putAttribute("fromNode", fromNode);
    putAttribute("fromField", fromField);
    putAttribute("toNode", toNode);
    putAttribute("toField", toField);
    put("/>\n");
}

void X3DWriteAction::writeExports(NodeNameSpace& nameSpace)
{
    if (!good())
        return;
    for (const NodeNameSpace::Export& entry : nameSpace.exportVec()) {
        const std::string& local = entry.node->name();
        enterContent(true);
        indent();
        put("<EXPORT");
        putAttribute("localDEF", local);
        if (!entry.name.empty() && entry.name != local)
            putAttribute("AS", entry.name);
        put("/>\n");
    }
}

void X3DWriteAction::writeImports(Node& node)
{
    if (!good())
        return;
    NodeNameSpace* inner = importScope(node);
    for (const NodeNameSpace::Import& entry : node.nameSpace().importVec()) {
        if (!inner || entry.from != inner)
            continue;
        enterContent(true);
        indent();
        put("<IMPORT");
        putAttribute("inlineDEF", node.name());
        putAttribute("importedDEF", entry.exportName);
        if (!entry.localName.empty() && entry.localName != entry.exportName)
            putAttribute("AS", entry.localName);
        put("/>\n");
    }
}

void X3DWriteAction::writeProto(NodeNameSpace& nameSpace)
{
    std::vector<NodeType*> protos = prototypesToDeclare(nameSpace);
    if (protos.empty() || !good())
        return;
    // Declarations stand in their scope, not in the field of the node that led to them.
    std::vector<OpenField> outer;
    outer.swap(_openFields);
    enterContent(true);
    for (NodeType* type : protos) {
        ProtoDeclaration* declaration = type->protoDeclaration();
        if (!declaration)
            continue;
        if (declaration->isExternal()) {
            openElement("ExternProtoDeclare");
            putAttribute("name", type->name());
            put(" url='\"");
            putEscaped(externUrl(*type, *declaration), true);
            put("\"'");
            isMapStack().emplace_back();
            for (unsigned i = 0; i < declaration->fieldCount(); ++i)
                writeInterfaceField(*declaration->field(i), ExternInterfaceStyle);
            isMapStack().pop_back();
            closeElement();
            continue;
        }
        openElement("ProtoDeclare");
        putAttribute("name", type->name());
        pushIsLinks(*declaration);
        if (declaration->fieldCount()) {
            enterContent(false);
            openElement("ProtoInterface");
            for (unsigned i = 0; i < declaration->fieldCount(); ++i)
                writeInterfaceField(*declaration->field(i), InterfaceStyle);
            closeElement();
        }
        enterContent(false);
        openElement("ProtoBody");
        closeStartTag();
        setCurrentNameSpace(&declaration->body());
        writeProto(declaration->body());
        // The body's routes in a bag of their own, written at its end.
        routeBagStack().emplace_back();
        for (const SmartPtr<Node>& root : declaration->rootNodes())
            if (root)
                writeNode(*root);
        isMapStack().pop_back();
        flushRouteBag(true);
        setCurrentNameSpace(nullptr);
        closeElement();
        closeElement();
    }
    _openFields.swap(outer);
}

} // namespace Orvane
