#include "modules/loader/SceneBuilder.h"

#include "modules/loader/PlainList.h"

#include "base/EventInSlot.h"
#include "base/EventOutSlot.h"
#include "base/Field.h"
#include "base/FieldType.h"
#include "base/Log.h"
#include "base/MFNode.h"
#include "base/MFString.h"
#include "base/NodeNameSpace.h"
#include "base/NodePart.h"
#include "base/NodePartDesc.h"
#include "base/NodeProc.h"
#include "base/NodeType.h"
#include "base/NodeTypeNameSpace.h"
#include "base/ProtoDeclaration.h"
#include "base/ProtoInstance.h"
#include "base/Route.h"
#include "base/SFNode.h"
#include "base/SFBool.h"
#include "base/SFString.h"
#include "modules/loader/InlineProc.h"
#include "modules/loader/SceneLoader.h"
#include "modules/x3d/X3DCatalog.h"
#include "platform/pordane/URL.h"

#include <algorithm>
#include <cstring>
#include <filesystem>

namespace Orvane {

namespace {

// A node of a stand-in type holds its type for as long as the whole node lives (as the first
// base it goes last): the type belongs to the scene's type namespace, which may go before a
// node that a prototype body or a user still holds.
struct StandInTypeHold {
    explicit StandInTypeHold(NodeType& type) : _typeHold(&type) {}
    SmartPtr<NodeType> _typeHold;
};

class StandInNode : private StandInTypeHold, public Node {
public:
    StandInNode(NodeType& type, NodeNameSpace& nameSpace, const char* name)
        : StandInTypeHold(type), Node(type, nameSpace, name)
    {
    }
    static Node* create(NodeType& type, NodeNameSpace& nameSpace, const char* name)
    {
        return new StandInNode(type, nameSpace, name);
    }
};

// Parts of the scene root: the top-level nodes and the header statements.
enum SceneRootPart : unsigned { ChildrenPart = 2, EncodingPart, VersionPart, ProfilePart, ComponentsPart,
                                UnitsPart, MetaPart };

NodePartDesc sceneRootParts[] = {
    NodePartDesc(ChildrenPart, PartMask::bit(ChildrenPart), ExposedFieldPartType, MFNodeType, 0, "children"),
    NodePartDesc(EncodingPart, PartMask::bit(EncodingPart), FieldPartType, SFStringType, 0, "encoding"),
    NodePartDesc(VersionPart, PartMask::bit(VersionPart), FieldPartType, SFStringType, 0, "version"),
    NodePartDesc(ProfilePart, PartMask::bit(ProfilePart), FieldPartType, SFStringType, 0, "profile"),
    NodePartDesc(ComponentsPart, PartMask::bit(ComponentsPart), FieldPartType, MFStringType, 0, "components"),
    NodePartDesc(UnitsPart, PartMask::bit(UnitsPart), FieldPartType, MFStringType, 0, "units"),
    NodePartDesc(MetaPart, PartMask::bit(MetaPart), FieldPartType, MFStringType, 0, "meta"),
};

bool isDigitText(char c)
{
    return (c >= '0' && c <= '9');
}

// The length of the number at the start of [p, end) as the text setters read it: decimal with
// optional sign, fraction and exponent, or (for integers) hexadecimal; 0 when there is none.
std::size_t numberLength(const char* p, const char* end, bool integer)
{
    const char* i = p;
    if (i < end && (*i == '+' || *i == '-'))
        ++i;
    if (integer && end - i > 2 && i[0] == '0' && (i[1] == 'x' || i[1] == 'X')) {
        const char* digits = i += 2;
        while (i < end && std::isxdigit(static_cast<unsigned char>(*i)))
            ++i;
        return i == digits ? 0 : static_cast<std::size_t>(i - p);
    }
    bool digits = false;
    while (i < end && isDigitText(*i))
        ++i, digits = true;
    if (!integer && i < end && *i == '.')
        for (++i; i < end && isDigitText(*i); ++i)
            digits = true;
    if (!digits)
        return 0;
    if (!integer && i < end && (*i == 'e' || *i == 'E')) {
        ++i;
        if (i < end && (*i == '+' || *i == '-'))
            ++i;
        if (i >= end || !isDigitText(*i))
            return 0;
        while (i < end && isDigitText(*i))
            ++i;
    }
    return static_cast<std::size_t>(i - p);
}

enum class Kind { Number, Integer, Bool, Other };

// Numbers per element and the kind of number for the element types with a fixed shape.
struct Shape {
    const char* name;
    unsigned    count;
    Kind        kind;
};
const Shape shapes[] = {
    {"Bool", 1, Kind::Bool},       {"Int32", 1, Kind::Integer},    {"Float", 1, Kind::Number},
    {"Double", 1, Kind::Number},   {"Time", 1, Kind::Number},      {"Vec2f", 2, Kind::Number},
    {"Vec2d", 2, Kind::Number},    {"Vec3f", 3, Kind::Number},     {"Vec3d", 3, Kind::Number},
    {"Vec4f", 4, Kind::Number},    {"Vec4d", 4, Kind::Number},     {"Color", 3, Kind::Number},
    {"ColorRGBA", 4, Kind::Number}, {"Rotation", 4, Kind::Number}, {"Matrix3f", 9, Kind::Number},
    {"Matrix3d", 9, Kind::Number}, {"Matrix4f", 16, Kind::Number}, {"Matrix4d", 16, Kind::Number},
    {"Plane", 4, Kind::Number},    {"Image", 0, Kind::Integer},
};

// Whether value text fits a field of the given type name ("SFVec3f"): the right kind and number
// of words. Strings, nodes and types without a fixed shape are left to their setters.
bool fits(const std::string& typeName, std::string_view text)
{
    if (typeName.size() < 3)
        return true;
    const bool single = typeName[0] == 'S';
    const std::string_view element(typeName.c_str() + 2);
    if (element == "String") {
        if (single)
            return true;
        for (char c : text)  // a list of strings holds quoted strings only
            if (!SceneBuilder::isSeparator(c))
                return c == '"';
        return true;
    }
    const Shape* shape = nullptr;
    for (const Shape& s : shapes)
        if (element == s.name)
            shape = &s;
    if (!shape)
        return true;
    std::size_t words = 0, width = 0, height = 0;
    const char* p = text.data();
    const char* const end = p + text.size();
    for (;;) {
        while (p < end && SceneBuilder::isSeparator(*p))
            ++p;
        if (p >= end)
            break;
        const char* start = p;
        if (shape->kind == Kind::Bool) {
            while (p < end && !SceneBuilder::isSeparator(*p))
                ++p;
            const std::string_view word(start, static_cast<std::size_t>(p - start));
            if (word != "TRUE" && word != "FALSE" && word != "true" && word != "false")
                return false;
        } else {
            // One pass per number: its text, then a separator or the end.
            const std::size_t length = numberLength(p, end, shape->kind == Kind::Integer);
            p += length;
            if (!length || (p < end && !SceneBuilder::isSeparator(*p)))
                return false;
            if (shape->count == 0 && words < 2)
                (words == 0 ? width : height) = std::strtoul(std::string(start, p).c_str(), nullptr, 0);
        }
        ++words;
    }
    if (shape->count == 0)  // an image: width, height, components, then width * height pixels
        return !single || words == 0 || (words >= 3 && words == 3 + width * height);
    return single ? words == shape->count : words % shape->count == 0;
}

// The type of a field of an unknown node, guessed from its value text.
NodePartDataType guessType(std::string_view text, bool holdsNodes)
{
    if (holdsNodes)
        return MFNodeType;
    std::size_t i = 0;
    while (i < text.size() && SceneBuilder::isSeparator(text[i]))
        ++i;
    if (i < text.size() && text[i] == '"')
        return MFStringType;
    if (text.substr(i, 4) == "TRUE" || text.substr(i, 5) == "FALSE")
        return MFBoolType;
    return fits("MFDouble", text) ? MFDoubleType : SFStringType;
}

bool isDeclarationField(const Field& field)
{
    return &field.owner().type() == &ProtoDeclaration::classType();
}

} // namespace

NodeType& SceneBuilder::sceneRootType()
{
    static NodeType& type = [] () -> NodeType& {
        auto* t = new NodeType(theBaseNodeTypeFactory(), "SceneRoot", "Loader", "Node", nullptr, "1.0", "Loader",
                               "The top of a scene read from a file: its top-level nodes and header statements",
                               "stable", nullptr, "Orvane", false, true, &Node::isNodeType, &Node::createNode,
                               &Node::createProc, sceneRootParts, std::size(sceneRootParts));
        t->initType();
        t->addRef();  // lives as long as the process: scenes may outlive the loader's users
        return *t;
    }();
    return type;
}

NodeType& SceneBuilder::unknownNodeType()
{
    static NodeType& type = [] () -> NodeType& {
        // Abstract: each unknown type name gets a type of its own below it (standInType), so
        // that its nodes are written back under their own name.
        auto* t = new NodeType(theBaseNodeTypeFactory(), "UnknownNode", "Loader", "Node", nullptr, "1.0", "Loader",
                               "A node of a type the reader did not know; its fields are kept as read",
                               "stable", nullptr, "Orvane", false, false, &Node::isNodeType, nullptr, nullptr,
                               nullptr, 0);
        // A node of unknown type may stand wherever the file put it: it is a kind of every
        // abstract type of the catalog.
        for (const SmartPtr<NodeType>& abstract : X3DCatalog::init().types())
            if (abstract->isAbstract())
                t->addAdditionalParent(abstract->name().c_str());
        t->initType();
        t->addRef();
        return *t;
    }();
    return type;
}

SceneBuilder::SceneBuilder(std::string url) : _url(std::move(url))
{
    X3DCatalog::init();
    _root = sceneRootType().createNode(nullptr, nullptr, LoaderCreator);
    if (_root)
        _scopes.push_back({&_root->nameSpace(), nullptr});
}

SceneBuilder::~SceneBuilder() = default;

NodeNameSpace* SceneBuilder::sceneNameSpace() const
{
    return _scopes.empty() ? nullptr : _scopes.front().nameSpace;
}

NodeNameSpace& SceneBuilder::scope() const
{
    return *_scopes.back().nameSpace;
}

void SceneBuilder::error(Place place, std::string message)
{
    fault(_url, place, std::move(message));
}

void SceneBuilder::fault(const std::string& file, Place place, std::string message)
{
    ORV_WARNING("%s:%d:%d: %s\n", file.c_str(), place.line, place.column, message.c_str());
    _errors.push_back({file, place.line, place.column, std::move(message)});
}

std::string SceneBuilder::fieldLabel(const Field& field) const
{
    return field.owner().type().name() + "." + field.findName();
}

Node* SceneBuilder::createNode(std::string_view typeName, std::string_view defName, Place place)
{
    if (_scopes.empty())
        return nullptr;
    _text.assign(typeName);
    std::string def(defName);
    const char* name = def.empty() ? nullptr : def.c_str();
    if (!def.empty() && scope().findNode(def))
        ORV_INFO("%s:%d:%d: DEF %s names a second node\n", _url.c_str(), place.line, place.column, name);
    NodeType* type = NodeTypeNameSpace::findType(&scope().nodeTypeNameSpace(), _text, CaseSensitive);
    if (type && !type->isAbstract() && !type->isContextRoot() && !isUnknown(*type)) {
        Node* node = type->createNode(&scope(), name, LoaderCreator);
        if (node && isVrml97())
            X3DCatalog::applyVrml97Defaults(*node);
        _madeInstances = _madeInstances || type->isProto();
        if (node)
            return node;
        if (type->isProto()) {
            error(place, "instance of PROTO '" + _text + "' refused: it would hold itself or nest too deep");
            return nullptr;
        }
    }
    error(place, "unknown node type '" + _text + "'");
    NodeType* standIn = standInType(_root->nameSpace(), _text);
    return standIn ? standIn->createNode(&scope(), name, LoaderCreator) : nullptr;
}

NodeType* SceneBuilder::standInType(NodeNameSpace& scene, const std::string& typeName)
{
    // One type per unknown name, kept in the scene's own type namespace so that it goes with
    // the scene; its nodes carry whatever fields the file gives them as dynamic fields.
    NodeTypeNameSpace& types = scene.protoTypeNameSpace();
    unknownNodeType();  // the parent, registered on first use
    if (NodeType* known = types.findLocalType(typeName))
        return isUnknown(*known) ? known : nullptr;
    auto* type = new NodeType(types, typeName.c_str(), "Loader", "UnknownNode", nullptr, "1.0", "Loader", nullptr,
                              "stable", nullptr, "Orvane", false, false, &Node::isNodeType, &StandInNode::create,
                              &Node::createProc, nullptr, 0);
    types.adoptType(*type);
    type->initType();
    return type;
}

bool SceneBuilder::isUnknown(const NodeType& type)
{
    return &type != &unknownNodeType() && type.isA(unknownNodeType());
}

Node* SceneBuilder::use(std::string_view name, Place place)
{
    _text.assign(name);
    Node* node = _scopes.empty() ? nullptr : scope().findNode(_text);
    if (!node)
        error(place, "USE of unknown name '" + _text + "'");
    return node;
}

bool SceneBuilder::addRoot(Node& child, Place place)
{
    if (_scopes.empty())
        return false;
    if (ProtoDeclaration* proto = _scopes.back().proto) {
        if (proto->addRootNode(child))
            return true;
        error(place, "node cannot be a root of PROTO " + proto->protoName());
        return false;
    }
    return addChild(*_root, *_root->findField(ChildrenPart), child, place);
}

bool SceneBuilder::addChild(Node& parent, Field& field, Node& child, Place place)
{
    bool placed = false;
    if (isDeclarationField(field) || &parent == _root.get() || isUnknown(child.type())) {
        // Interface values and top-level nodes take any node, and a node of unknown type is
        // kept wherever the file put it.
        if (field.dataType() == SFNodeType)
            placed = static_cast<SFNode&>(field).setNode(&child);
        else if (field.dataType() == MFNodeType)
            placed = static_cast<MFNode&>(field).addChild(&child) != nullptr;
    } else {
        placed = parent.addChild(&child, field.findName()) != nullptr;
    }
    if (!placed)
        error(place, "a " + child.type().name() + " node does not fit field " + fieldLabel(field));
    else if (!isDeclarationField(field))
        noteInline(child, place, scope(), _url);
    return placed;
}

void SceneBuilder::clearNodes(Field& field)
{
    if (field.dataType() == SFNodeType)
        static_cast<SFNode&>(field).setNode(nullptr);
    else if (field.dataType() == MFNodeType)
        static_cast<MFNode&>(field).clear();
}

Field* SceneBuilder::findField(Node& node, std::string_view name, Place place)
{
    _text.assign(name);
    Field* field = node.findField(_text);
    if (!field)
        error(place, "unknown field '" + _text + "' in " + node.type().name());
    return field;
}

bool SceneBuilder::setValue(Field& field, std::string_view text, Place place, bool terminated)
{
    if (field.dataType() == SFNodeType || field.dataType() == MFNodeType) {
        error(place, "field " + fieldLabel(field) + " holds nodes, not a value");
        return false;
    }
    if (field.cardinality() == Field::Multi && PlainList::read(field, text.data(), text.data() + text.size(), '\0'))
        return true;
    if (!fits(field.dataTypeName(), text)) {
        error(place, "value does not fit " + field.dataTypeName() + " field " + fieldLabel(field));
        return false;
    }
    if (terminated) {
        field.setValueByStr(0.0, text.data());
        return true;
    }
    // The setters read NUL-terminated text; most values are short, long lists are copied once.
    _text.assign(text);
    field.setValueByStr(0.0, _text.c_str());
    return true;
}

Field* SceneBuilder::containerField(Node& parent, Node& child, std::string_view given, Place place)
{
    std::string_view name = given;
    if (name.empty()) {
        const char* byType = X3DCatalog::init().containerField(child.type());
        name = byType && *byType ? byType : "children";
    }
    if (isUnknown(parent.type()))
        return addUnknownField(parent, name, std::string_view(), true, place);
    _text.assign(name);
    Field* field = parent.findField(_text);
    if (!field)
        error(place, "no field '" + _text + "' in " + parent.type().name() + " for a " + child.type().name() +
                         " node (containerField)");
    return field;
}

bool SceneBuilder::addSource(Node& node, std::string_view code, Place place)
{
    const std::string& type = node.type().name();
    auto* url = dynamic_cast<MFString*>(node.findField(std::string("url")));
    if (!url || (type != "Script" && type != "ShaderPart" && type != "ShaderProgram")) {
        error(place, "text in a " + type + " node, which takes no source code");
        return false;
    }
    while (!code.empty() && SceneBuilder::isSeparator(code.front()) && code.front() != ',')
        code.remove_prefix(1);
    while (!code.empty() && SceneBuilder::isSeparator(code.back()) && code.back() != ',')
        code.remove_suffix(1);
    if (!code.empty())
        url->addValue(std::string(code));
    return true;
}

bool SceneBuilder::isX3DVersion(std::string_view version)
{
    static const char* versions[] = {"3.0", "3.1", "3.2", "3.3", "4.0", "4.1"};
    for (const char* v : versions)
        if (version == v)
            return true;
    return false;
}

Field* SceneBuilder::addUnknownField(Node& node, std::string_view name, std::string_view text, bool holdsNodes,
                                     Place)
{
    _text.assign(name);
    if (Field* existing = node.findField(_text)) {
        if (!holdsNodes) {
            _text.assign(text);
            existing->setValueByStr(0.0, _text.c_str());
        }
        return existing;
    }
    Field* field = node.addDynamicField(ExposedFieldPartType, guessType(text, holdsNodes), _text.c_str());
    if (field && !holdsNodes) {
        _text.assign(text);
        field->setValueByStr(0.0, _text.c_str());
    }
    return field;
}

Field* SceneBuilder::addDynamicField(Node& node, std::string_view access, std::string_view type,
                                     std::string_view name, Place place)
{
    static const struct {
        const char*  name;
        NodePartType type;
    } accesses[] = {{"initializeOnly", FieldPartType}, {"inputOnly", EventInPartType},
                    {"outputOnly", EventOutPartType}, {"inputOutput", ExposedFieldPartType},
                    {"field", FieldPartType},         {"eventIn", EventInPartType},
                    {"eventOut", EventOutPartType},   {"exposedField", ExposedFieldPartType}};
    NodePartType part = InvalidPartType;
    for (const auto& a : accesses)
        if (access == a.name)
            part = a.type;
    FieldType* fieldType = FieldType::findType(std::string(type));
    std::string fieldName(name);
    if (part == InvalidPartType || !fieldType) {
        error(place, "invalid interface declaration '" + std::string(access) + " " + std::string(type) + " " +
                         fieldName + "'");
        return nullptr;
    }
    if (node.findField(fieldName)) {
        error(place, "field '" + fieldName + "' declared twice in " + node.type().name());
        return nullptr;
    }
    Field* field = node.addDynamicField(part, fieldType->dataType(), fieldName.c_str());
    if (!field)
        error(place, "cannot add field '" + fieldName + "' to " + node.type().name());
    return field;
}

bool SceneBuilder::route(std::string_view fromNode, std::string_view fromField, std::string_view toNode,
                         std::string_view toField, Place place)
{
    if (_scopes.empty())
        return false;
    return routeIn(scope(), std::string(fromNode), std::string(fromField), std::string(toNode), std::string(toField),
                   place);
}

bool SceneBuilder::routeIn(NodeNameSpace& ns, const std::string& a, const std::string& af, const std::string& b,
                           const std::string& bf, Place place)
{
    if (awaitsInline(ns, a) || awaitsInline(ns, b)) {
        _pendingRoutes.push_back({&ns, a, af, b, bf, place});
        return true;
    }
    std::string text = "ROUTE " + a + "." + af + " TO " + b + "." + bf;
    // An end imported from an Inline whose file was not read gets its stand-in first, typed
    // after the other end.
    const NodeNameSpace::Import* unreadA = unreadImport(ns, a);
    const NodeNameSpace::Import* unreadB = unreadImport(ns, b);
    if (unreadA && !unreadB) {
        if (Node* other = ns.findNode(b))
            standInImport(*unreadA, af, *other, bf, true);
    } else if (unreadB && !unreadA) {
        if (Node* other = ns.findNode(a))
            standInImport(*unreadB, bf, *other, af, false);
    }
    Node* from = ns.findNode(a);
    Node* to = ns.findNode(b);
    if (!from && !ns.getImportedNode(a)) {
        error(place, text + ": unknown node '" + a + "'");
        return false;
    }
    if (!to && !ns.getImportedNode(b)) {
        error(place, text + ": unknown node '" + b + "'");
        return false;
    }
    if ((from && !from->findField(af)) || (to && !to->findField(bf))) {
        error(place, text + ": unknown field '" + (from && !from->findField(af) ? af : bf) + "'");
        return false;
    }
    if (!ns.createRoute(a.c_str(), af.c_str(), b.c_str(), bf.c_str())) {
        error(place, text + ": the fields do not match");
        return false;
    }
    return true;
}

Node* SceneBuilder::unreadScene(const NodeNameSpace* inner) const
{
    for (const SmartPtr<Node>& root : _unreadScenes)
        if (&root->nameSpace() == inner)
            return root.get();
    return nullptr;
}

const NodeNameSpace::Import* SceneBuilder::unreadImport(const NodeNameSpace& ns, const std::string& name) const
{
    if (_unreadScenes.empty())
        return nullptr;
    for (const NodeNameSpace::Import& import : ns.importVec())
        if (import.localName == name && unreadScene(import.from))
            return &import;
    return nullptr;
}

void SceneBuilder::standInImport(const NodeNameSpace::Import& import, const std::string& field, Node& other,
                                 const std::string& otherField, bool source)
{
    // The stand-in is a child of the empty scene, published under the imported name, with a
    // field for each route through it; the scene is never written, the route and IMPORT are.
    NodeNameSpace& inner = *import.from;
    Field*         otherEnd = other.findField(otherField);
    if (!otherEnd)
        return;
    Node* standIn = inner.getExportedNode(import.exportName);
    if (!standIn) {
        NodeType* type = standInType(inner, "ExportedNode");
        standIn = type ? type->createNode(&inner, import.exportName.c_str(), LoaderCreator) : nullptr;
        if (!standIn)
            return;
        static_cast<MFNode*>(unreadScene(&inner)->findField(ChildrenPart))->addChild(standIn);
        inner.exportNode(import.exportName, import.exportName);
    }
    if (!standIn->findField(field))
        standIn->addDynamicField(source ? EventOutPartType : EventInPartType, otherEnd->dataType(), field.c_str(), 0,
                                 nullptr);
}

bool SceneBuilder::exportNode(std::string_view local, std::string_view as, Place place)
{
    std::string name(local);
    if (_scopes.empty() || !scope().findNode(name) || !scope().exportNode(name, std::string(as))) {
        error(place, "EXPORT of unknown name '" + name + "'");
        return false;
    }
    return true;
}

bool SceneBuilder::importNode(std::string_view inlineName, std::string_view exported, std::string_view as,
                              Place place)
{
    std::string name(inlineName);
    Node* host = _scopes.empty() ? nullptr : scope().findNode(name);
    NodeNameSpace* inner = host && host->proc() ? host->proc()->ownNameSpace() : nullptr;
    if (!inner) {
        error(place, "IMPORT from '" + name + "', which is no loaded Inline");
        return false;
    }
    return scope().importNode(*inner, std::string(exported), std::string(as));
}

ProtoDeclaration* SceneBuilder::beginProto(std::string_view name, const std::vector<std::string>* externUrls,
                                           Place place)
{
    if (_scopes.empty())
        return nullptr;
    std::string protoName(name);
    ProtoDeclaration* proto = externUrls ? ProtoDeclaration::declareExtern(scope(), protoName.c_str(), *externUrls)
                                       : ProtoDeclaration::declare(scope(), protoName.c_str());
    if (!proto) {
        error(place, "cannot declare prototype '" + protoName + "'");
        return nullptr;
    }
    proto->setSource(_url, place.line);
    return proto;
}

bool SceneBuilder::addProtoField(ProtoDeclaration& proto, std::string_view access, std::string_view type,
                                 std::string_view name, const std::string* value, Place place)
{
    std::string a(access), t(type), n(name);
    if (value) {
        FieldType* fieldType = FieldType::findType(t);
        if (fieldType && !fits(t, *value)) {
            error(place, "value does not fit " + t + " field " + proto.protoName() + "." + n);
            value = nullptr;
        }
    }
    if (!proto.addField(a.c_str(), t.c_str(), n.c_str(), value ? value->c_str() : nullptr)) {
        error(place, "invalid interface declaration '" + a + " " + t + " " + n + "' in " + proto.protoName());
        return false;
    }
    return true;
}

void SceneBuilder::enterProtoBody(ProtoDeclaration& proto)
{
    _scopes.push_back({&proto.body(), &proto});
}

void SceneBuilder::endProto()
{
    if (_scopes.size() > 1)
        _scopes.pop_back();
}

bool SceneBuilder::isLink(Node& node, std::string_view field, std::string_view interfaceName, Place place)
{
    ProtoDeclaration* proto = nullptr;
    for (auto it = _scopes.rbegin(); it != _scopes.rend() && !proto; ++it)
        proto = it->proto;
    std::string f(field), i(interfaceName);
    if (!proto) {
        error(place, "IS outside a PROTO body");
        return false;
    }
    std::string name = node.hasName() ? node.name() : node.nameSpace().updateNamedNode(node);
    if (!proto->addIsLink(i.c_str(), name.c_str(), f.c_str())) {
        error(place, "'" + f + " IS " + i + "': no such interface field, or the types or access do not match");
        return false;
    }
    return true;
}

// --- Inline ---

void SceneBuilder::noteInline(Node& node, Place place, NodeNameSpace& parent, const std::string& file)
{
    const NodeType& type = node.type();
    if (type.name() != "Inline" || type.isProto() || isUnknown(type) || InlineProc::of(node))
        return;
    // The scene and its namespace are made now, so that IMPORT statements that follow find
    // them; the file is read when this one is done. The namespace hangs below `parent`, where
    // its exports are published; names are not looked up through it. An Inline whose file is
    // not read keeps its empty scene, so that its IMPORTs are kept. The Inline of a prototype
    // body is such a one: each instance's own copy loads the file.
    auto scene = std::make_unique<SceneBuilder>(std::string());
    if (!scene->_root)
        return;
    scene->_outer = this;
    scene->_inlineDepth = _inlineDepth + 1;
    scene->_inlineLoading = true;
    scene->_root->nameSpace().setParent(&parent);
    node.setProc(new InlineProc(node, scene->_root));
    auto* load = dynamic_cast<SFBool*>(node.findField(std::string("load")));
    if (_inlineLoading && !inProtoBody() && (!load || load->value()))
        _pendingInlines.push_back({SmartPtr<Node>(&node), std::move(scene), place, file});
    else
        _unreadScenes.push_back(scene->_root);
}

void SceneBuilder::noteInstanceInlines()
{
    // The Inlines in the bodies of the scene's prototype instances, nested ones included: each
    // loads like one of the scene, relative to the file that declared its prototype, and a
    // fault is reported at that declaration.
    std::vector<NodeNameSpace*> open{&_root->nameSpace()};
    std::vector<Node*>          nodes;
    while (!open.empty()) {
        NodeNameSpace* ns = open.back();
        open.pop_back();
        ns->fillNodeVec(nodes);
        for (Node* node : nodes) {
            ProtoInstance* instance = ProtoInstance::cast(node);
            auto*          proc = instance ? dynamic_cast<ProtoInstance::Proc*>(instance->proc()) : nullptr;
            NodeNameSpace* body = instance ? instance->bodyNameSpace() : nullptr;
            if (!proc || !body)
                continue;
            std::vector<Node*> bodyNodes;
            body->fillNodeVec(bodyNodes);
            for (Node* bodyNode : bodyNodes)
                noteInline(*bodyNode, {proc->sourceLine(), 1}, *body, proc->sourceURL());
            copyBodyImports(instance->declaration().effective().body(), *body, {proc->sourceLine(), 1});
            open.push_back(body);
        }
    }
}

void SceneBuilder::copyBodyImports(NodeNameSpace& declared, NodeNameSpace& body, Place place)
{
    if (declared.importVec().empty())
        return;
    // The declared body's Inlines have empty scenes; the instance's copies of them, found by
    // their names, have the scenes that the imports now come from.
    std::vector<Node*> nodes;
    declared.fillNodeVec(nodes);
    auto hostName = [&](const NodeNameSpace* scene) -> const std::string* {
        for (Node* node : nodes)
            if (InlineProc* proc = InlineProc::of(*node); proc && proc->ownNameSpace() == scene && node->hasName())
                return &node->name();
        return nullptr;
    };
    for (const NodeNameSpace::Import& import : declared.importVec()) {
        const std::string* host = hostName(import.from);
        Node*              copy = host ? body.findNode(*host) : nullptr;
        InlineProc*        proc = copy ? InlineProc::of(*copy) : nullptr;
        if (proc && proc->ownNameSpace())
            body.importNode(*proc->ownNameSpace(), import.exportName, import.localName);
    }
    // The routes through the imports, between the local names and the body's named nodes; they
    // wait for the instance's Inlines like those of a scene.
    struct Through {
        std::string from, fromField, to, toField;
    };
    std::vector<Through> routes;
    for (const NodeNameSpace::Import& import : declared.importVec()) {
        const std::string& local = import.localName.empty() ? import.exportName : import.localName;
        Node*              standIn = declared.getImportedNode(local);
        for (unsigned id = 0, count = standIn ? standIn->partCount() : 0; id < count; ++id) {
            Field* field = standIn->builtField(id);
            for (bool leaving : {true, false}) {
                EventSlot* slot = !field ? nullptr
                                  : leaving ? static_cast<EventSlot*>(field->getOutSlot(false))
                                            : static_cast<EventSlot*>(field->getInSlot(false));
                if (!slot || !slot->findName())
                    continue;
                for (Route* route : slot->routeBag()) {
                    EventSlot& other = leaving ? static_cast<EventSlot&>(route->inSlot())
                                               : static_cast<EventSlot&>(route->outSlot());
                    if (&other == slot || !other.findName() || &other.node().nameSpace() != &declared ||
                        !other.node().hasName())
                        continue;
                    if (leaving)
                        routes.push_back({local, slot->findName(), other.node().name(), other.findName()});
                    else
                        routes.push_back({other.node().name(), other.findName(), local, slot->findName()});
                }
            }
        }
    }
    for (const Through& r : routes)
        routeIn(body, r.from, r.fromField, r.to, r.toField, place);
}

bool SceneBuilder::awaitsInline(const NodeNameSpace& ns, const std::string& name) const
{
    if (_pendingInlines.empty())
        return false;
    for (const NodeNameSpace::Import& import : ns.importVec()) {
        if (import.localName != name)
            continue;
        for (const PendingInline& pending : _pendingInlines)
            if (import.from == &pending.scene->_root->nameSpace())
                return true;
    }
    return false;
}

void SceneBuilder::loadInlines()
{
    // One at a time, each with the files it inlines in turn, then the routes that waited.
    std::vector<PendingInline> pending;
    pending.swap(_pendingInlines);
    for (PendingInline& inlined : pending)
        loadInline(inlined);
    pending.clear();
    std::vector<PendingRoute> routes;
    routes.swap(_pendingRoutes);
    for (const PendingRoute& r : routes)
        routeIn(*r.nameSpace, r.from, r.fromField, r.to, r.toField, r.place);
}

namespace {

std::string canonicalPath(const std::string& path)
{
    std::error_code error;
    std::filesystem::path made = std::filesystem::weakly_canonical(path, error);
    return error ? path : made.string();
}

} // namespace

std::string SceneBuilder::inlineRefusal(const std::string& canonical)
{
    SceneBuilder* outermost = this;
    for (SceneBuilder* b = this; b; b = b->_outer) {
        if (b->_canonical.empty()) {
            Pordane::URL own(b->_url);
            if (own.isLocal())
                b->_canonical = canonicalPath(own.localPath());
        }
        if (b->_canonical == canonical)
            return "is being read around this Inline (a cycle)";
        outermost = b;
    }
    if (outermost->_inlineCount >= MaxInlineFiles)
        return "is one file too many (one load inlines at most " + std::to_string(MaxInlineFiles) + " files)";
    ++outermost->_inlineCount;
    return std::string();
}

void SceneBuilder::loadInline(PendingInline& pending)
{
    Node&       node = *pending.node;
    InlineProc* proc = InlineProc::of(node);
    SceneBuilder& inner = *pending.scene;
    auto*       urls = dynamic_cast<MFString*>(node.findField(std::string("url")));
    if (!proc || !urls)
        return;
    std::string reasons;
    auto refuse = [&](const std::string& url, const std::string& why) {
        reasons += (reasons.empty() ? "'" : "; '") + url + "' " + why;
    };
    bool loaded = false;
    for (const std::string& entry : urls->value()) {
        Pordane::URL location = Pordane::URL(pending.file).resolve(entry);
        if (!location.isLocal()) {
            ORV_NOTICE("%s:%d:%d: Inline url '%s' is not local; not fetched\n", pending.file.c_str(), pending.place.line,
                       pending.place.column, entry.c_str());
            continue;
        }
        if (_inlineDepth >= MaxInlineDepth) {
            refuse(entry, "is nested deeper than " + std::to_string(MaxInlineDepth) + " files");
            break;
        }
        const std::string path = location.localPath();
        std::string content, why;
        if (!SceneLoader::readFile(path, content, &why)) {
            refuse(entry, why);
            continue;
        }
        const std::string canonical = canonicalPath(path);
        if (std::string refusal = inlineRefusal(canonical); !refusal.empty()) {
            refuse(entry, refusal);
            continue;
        }
        inner._url = location.str();
        inner._canonical = canonical;
        if (!SceneLoader::readScene(inner, content)) {
            refuse(entry, "holds no scene");
            continue;
        }
        proc->setFile(inner._url);
        loaded = true;
        break;
    }
    if (loaded)
        inner.finish();  // reads the files that the inlined one inlines
    // Faults of the inlined files were logged with their own names; they count for this load.
    _errors.insert(_errors.end(), inner._errors.begin(), inner._errors.end());
    if (!loaded) {
        _unreadScenes.push_back(inner._root);
        if (!reasons.empty())
            fault(pending.file, pending.place, "Inline loads no file: " + reasons);
    }
}

SmartPtr<Node> SceneBuilder::finish()
{
    if (!_root)
        return _root;
    if (_madeInstances)
        noteInstanceInlines();
    loadInlines();
    auto setText = [&](unsigned id, const std::string& text) { _root->findField(id)->setValueByStr(0.0, text.c_str()); };
    setText(EncodingPart, _header.encoding);
    setText(VersionPart, _header.version);
    setText(ProfilePart, _header.profile);
    auto& components = static_cast<MFString&>(*_root->findField(ComponentsPart));
    for (const auto& c : _header.components)
        components.addValueByStr(("\"" + c.first + ":" + std::to_string(c.second) + "\"").c_str(), Field::Single);
    auto& units = static_cast<MFString&>(*_root->findField(UnitsPart));
    for (const auto& u : _header.units) {
        std::string joined;
        for (const auto& word : u)
            joined += (joined.empty() ? "" : " ") + word;
        units.addValueByStr(("\"" + joined + "\"").c_str(), Field::Single);
    }
    for (const auto& m : _header.meta)
        _root->nameSpace().setMetaData(m.first, m.second);
    _scopes.clear();
    return std::move(_root);
}

} // namespace Orvane
