#include "base/ProtoDeclaration.h"

#include "base/Field.h"
#include "base/FieldType.h"
#include "base/Log.h"
#include "base/MFNode.h"
#include "base/NodeNameSpace.h"
#include "base/NodePartDesc.h"
#include "base/NodeType.h"
#include "base/NodeTypeNameSpace.h"
#include "base/ProtoLibrary.h"
#include "base/SFNode.h"

#include <cstring>

namespace Orvane {

namespace {

bool isDeclaration(const Node* node)
{
    return node && &node->type() == &ProtoDeclaration::classType();
}

// The access type of an interface entry by its X3D or VRML97 name; InvalidPartType for none.
NodePartType accessTypeByName(const char* text)
{
    static const struct {
        const char*  name;
        NodePartType type;
    } names[] = {{"initializeOnly", FieldPartType}, {"inputOnly", EventInPartType},
                 {"outputOnly", EventOutPartType}, {"inputOutput", ExposedFieldPartType},
                 {"field", FieldPartType}, {"eventIn", EventInPartType},
                 {"eventOut", EventOutPartType}, {"exposedField", ExposedFieldPartType}};
    for (const auto& entry : names)
        if (text && std::strcmp(text, entry.name) == 0)
            return entry.type;
    return InvalidPartType;
}

const char* orNull(const char* text)
{
    return text ? text : "NULL";
}

// The path from `from` to a declaration whose body makes `target`, as "A -> B -> target";
// false when there is none within the nesting limit.
bool findUse(const ProtoDeclaration& from, const ProtoDeclaration& target, unsigned depth, std::string& chain)
{
    if (depth >= ProtoDeclaration::MaxNestingDepth)
        return false;
    std::vector<Node*> nodes;
    from.effective().body().fillNodeVec(nodes);
    for (Node* node : nodes) {
        const ProtoDeclaration* used = node->type().protoDeclaration();
        if (!used)
            continue;
        const ProtoDeclaration& next = used->effective();
        if (&next == &target) {
            chain = from.protoName() + " -> " + target.protoName();
            return true;
        }
        if (findUse(next, target, depth + 1, chain)) {
            chain = from.protoName() + " -> " + chain;
            return true;
        }
    }
    return false;
}

} // namespace

NodeType& ProtoDeclaration::classType()
{
    static NodeType type(theBaseNodeTypeFactory(), "_ProtoDeclaration", "Base", "Node", nullptr, "1.0", "Core",
                         "Prototype declaration", "stable", "The declaration of a PROTO or EXTERNPROTO", "Orvane",
                         false, false, &isDeclaration, &ProtoDeclaration::create, &Node::createProc, nullptr, 0);
    return type;
}

namespace {
// Registered while the library loads, like every native type.
[[maybe_unused]] const bool declarationTypeRegistered = (ProtoDeclaration::classType(), true);
} // namespace

Node* ProtoDeclaration::create(NodeType& type, NodeNameSpace& nameSpace, const char* name)
{
    return new ProtoDeclaration(type, nameSpace, name);
}

ProtoDeclaration::ProtoDeclaration(NodeType& type, NodeNameSpace& nameSpace, const char* name)
    : Node(type, nameSpace, name)
{
}

ProtoDeclaration::~ProtoDeclaration()
{
    // The roots go before the body namespace that they live in.
    while (!_rootNodes.empty())
        _rootNodes.pop_back();
    _fields.clear();
}

ProtoDeclaration* ProtoDeclaration::declare(NodeNameSpace& scene, const char* name)
{
    if (!name || !*name) {
        ORV_WARNING("PROTO NodeType without a name\n");
        return nullptr;
    }
    auto* type = new NodeType(scene.protoTypeNameSpace(), name, nullptr, nullptr, nullptr, nullptr, nullptr, &scene);
    return type->protoDeclaration();
}

ProtoDeclaration* ProtoDeclaration::declareExtern(NodeNameSpace& scene, const char* name,
                                                  const std::vector<std::string>& urls)
{
    ProtoDeclaration* declaration = declare(scene, name);
    if (!declaration)
        return nullptr;
    declaration->_external = true;
    declaration->_urls = urls;
    for (const std::string& url : urls) {
        auto hash = url.find('#');
        if (hash != std::string::npos) {
            declaration->_externName = url.substr(hash + 1);
            break;
        }
    }
    return declaration;
}

void ProtoDeclaration::attach(NodeType& protoType, NodeNameSpace& scene)
{
    _protoType = &protoType;
    _body = new NodeNameSpace(protoType.name().c_str(), &scene);
}

const std::string& ProtoDeclaration::protoName() const
{
    static const std::string none;
    return _protoType ? _protoType->name() : none;
}

void ProtoDeclaration::touchType() const
{
    if (_protoType)
        _protoType->protoChanged();
}

void ProtoDeclaration::setSource(const std::string& url, int line)
{
    _sourceURL = url;
    _sourceLine = line;
}

// --- interface ---

Field* ProtoDeclaration::addField(const char* accessType, const char* fieldType, const char* name, const char* value)
{
    NodePartType access = accessTypeByName(accessType);
    if (access == InvalidPartType) {
        ORV_WARNING("PROTO %s: invalid access type %s for field %s\n", protoName().c_str(), orNull(accessType),
                    orNull(name));
        return nullptr;
    }
    NodePartDataType dataType = fieldType ? FieldType::dataType(fieldType) : NoDataType;
    if (dataType == NoDataType) {
        ORV_WARNING("PROTO %s: invalid field type %s for field %s\n", protoName().c_str(), orNull(fieldType),
                    orNull(name));
        return nullptr;
    }
    return addField(access, dataType, name, value);
}

Field* ProtoDeclaration::addField(NodePartType accessType, NodePartDataType fieldType, const char* name,
                                  const char* value)
{
    if (!name || !*name || findFieldIndex(name) >= 0) {
        ORV_WARNING("PROTO %s: field name %s is missing or taken\n", protoName().c_str(), orNull(name));
        return nullptr;
    }
    const bool holdsValue = (accessType & FieldPartType) != 0 && !_external;
    const unsigned id = fieldCount();
    // Interfaces longer than the mask share no loop-guard bit; their events still flow.
    NodePartDesc& desc = _descs.emplace_back(id, id < 64 ? PartMask::bit(id) : PartMask(), accessType, fieldType,
                                             NodePartDesc::CtorAutoProcess, name, nullptr,
                                             holdsValue ? value : nullptr);
    Field* field = FieldType::create(fieldType, *this);
    if (!field) {
        _descs.pop_back();
        ORV_WARNING("PROTO %s: can not make field %s\n", protoName().c_str(), name);
        return nullptr;
    }
    field->setDesc(&desc);
    field->setDefaultValue(0.0);
    _fields.emplace_back(field);
    if (_protoType)
        _protoType->_localDescVec.push_back(&desc);
    touchType();
    return field;
}

Field* ProtoDeclaration::field(unsigned index) const
{
    return index < _fields.size() ? _fields[index].get() : nullptr;
}

NodePartDesc* ProtoDeclaration::fieldDesc(unsigned index) const
{
    return index < _fields.size() ? _fields[index]->desc() : nullptr;
}

int ProtoDeclaration::findFieldIndex(const std::string& name) const
{
    for (std::size_t i = 0; i < _fields.size(); ++i)
        if (_fields[i]->desc()->name() == name)
            return static_cast<int>(i);
    return -1;
}

Field* ProtoDeclaration::initialValue(unsigned index) const
{
    const ProtoDeclaration& source = effective();
    if (&source == this)
        return field(index);
    NodePartDesc* desc = fieldDesc(index);
    int found = desc ? source.findFieldIndex(desc->name()) : -1;
    return found < 0 ? nullptr : source.field(static_cast<unsigned>(found));
}

// --- body ---

Node* ProtoDeclaration::createBodyNode(const char* typeName, const char* defName, BaseObject* parent)
{
    if (_external) {
        ORV_WARNING("EXTERNPROTO %s has no body\n", protoName().c_str());
        return nullptr;
    }
    NodeType* type = typeName ? NodeTypeNameSpace::findType(&_body->nodeTypeNameSpace(), typeName) : nullptr;
    if (type && type->isProto() && _protoType) {
        // A body that makes its own prototype, directly or through others, would make it again
        // in every instance.
        std::string chain;
        const ProtoDeclaration& used = type->protoDeclaration()->effective();
        if (&used == this || findUse(used, *this, 0, chain)) {
            chain = protoName() + " -> " + (&used == this ? protoName() : chain);
            ORV_WARNING("Recursive PROTO refused: %s\n", chain.c_str());
            return nullptr;
        }
    }
    Node* node = NodeType::createNode(_body.get(), typeName, defName, LoaderCreator);
    if (!node)
        return nullptr;
    if (!parent) {
        addRootNode(*node);
    } else if (auto* owner = dynamic_cast<Node*>(parent)) {
        owner->addChild(node);
    } else if (auto* sf = dynamic_cast<SFNode*>(parent)) {
        sf->setNode(node);
    } else if (auto* mf = dynamic_cast<MFNode*>(parent)) {
        mf->addChild(node);
    }
    if (!node->hasParents() && parent) {
        // Nothing took it: it is kept as a root so that it does not go unheld.
        addRootNode(*node);
    }
    return node;
}

bool ProtoDeclaration::addRootNode(Node& node)
{
    if (&node.nameSpace() != _body.get()) {
        ORV_WARNING("PROTO %s: root node %s is not in the body\n", protoName().c_str(), node.getIDStr().c_str());
        return false;
    }
    if (_rootNodes.empty() && !_body->root())
        _body->setRoot(node);
    _rootNodes.emplace_back(&node);
    touchType();
    return true;
}

Route* ProtoDeclaration::addRoute(const char* fromNode, const char* fromField, const char* toNode, const char* toField)
{
    return _body->createRoute(fromNode, fromField, toNode, toField);
}

Node* ProtoDeclaration::firstBodyNode() const
{
    const ProtoDeclaration& source = effective();
    return source._rootNodes.empty() ? nullptr : source._rootNodes.front().get();
}

NodeType* ProtoDeclaration::firstBodyType() const
{
    Node* first = firstBodyNode();
    return first ? &first->type() : nullptr;
}

// --- IS ---

bool ProtoDeclaration::addIsLink(const char* fieldName, const char* nodeName, const char* nodeField)
{
    if (_external) {
        ORV_WARNING("EXTERNPROTO %s has no body for IS links\n", protoName().c_str());
        return false;
    }
    int index = fieldName ? findFieldIndex(fieldName) : -1;
    if (index < 0) {
        ORV_WARNING("Cannot field proto-field: %s\n", orNull(fieldName));
        return false;
    }
    Node* node = nodeName && *nodeName ? _body->findNode(nodeName) : nullptr;
    if (!node || &node->nameSpace() != _body.get()) {
        ORV_WARNING("Cannot find %s node in ns %s for IS link\n", orNull(nodeName), _body->name().c_str());
        return false;
    }
    Field* target = nodeField ? node->findField(nodeField, SearchFieldThenSlots) : nullptr;
    NodePartDesc* targetDesc = target ? target->desc() : nullptr;
    if (!targetDesc) {
        ORV_WARNING("IS link %s: no field %s in node %s\n", fieldName, orNull(nodeField), nodeName);
        return false;
    }
    NodePartDesc& desc = *fieldDesc(static_cast<unsigned>(index));
    if (desc.dataType() != targetDesc->dataType()) {
        ORV_WARNING("IS link %s IS %s.%s refused: field types %s and %s differ\n", fieldName, nodeName,
                    targetDesc->name().c_str(), desc.dataTypeName().c_str(), targetDesc->dataTypeName().c_str());
        return false;
    }
    // The body field must offer every side of the interface entry.
    if ((desc.partType() & targetDesc->partType()) != desc.partType()) {
        ORV_WARNING("IS link %s IS %s.%s refused: a %s can not stand for a %s\n", fieldName, nodeName,
                    targetDesc->name().c_str(), desc.partTypeName(), targetDesc->partTypeName());
        return false;
    }
    _isLinks.push_back(IsLink{static_cast<unsigned>(index), node->name(), targetDesc->name(), targetDesc->ID()});
    desc.addIsLink(node->name(), targetDesc->ID());
    return true;
}

// --- external declarations ---

bool ProtoDeclaration::resolve()
{
    if (!_external || _resolvedType)
        return true;
    if (_resolveTried)
        return false;
    _resolveTried = true;
    bool done = ProtoLibrary::the().resolve(*this);
    touchType();
    return done;
}

void ProtoDeclaration::setResolved(NodeType* type, const std::string& name)
{
    _resolvedType = type;
    if (!name.empty())
        _externName = name;
    touchType();
}

ProtoDeclaration* ProtoDeclaration::resolved() const
{
    return _resolvedType ? _resolvedType->protoDeclaration() : nullptr;
}

const ProtoDeclaration& ProtoDeclaration::effective() const
{
    const ProtoDeclaration* source = resolved();
    return source ? source->effective() : *this;
}

} // namespace Orvane
