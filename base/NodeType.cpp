#include "base/NodeType.h"

#include "base/Component.h"
#include "base/Context.h"
#include "base/Field.h"
#include "base/Log.h"
#include "base/NameText.h"
#include "base/MFNode.h"
#include "base/NodeNameSpace.h"
#include "base/NodePartDesc.h"
#include "base/NodeProc.h"
#include "base/NodeTypeNameSpace.h"
#include "base/ProtoDeclaration.h"
#include "base/ProtoInstance.h"
#include "base/SFNode.h"
#include "base/Subject.h"

#include <algorithm>
#include <sstream>
#include <cctype>

namespace Orvane {

namespace {

// The process-wide type state. Never destroyed, so that static types can unregister at exit.
struct TypeRegistry {
    std::map<std::uint32_t, NodeType*>* idMap = nullptr;  // made with the first type
    std::uint32_t                       nextID = 1;
    std::vector<NodeType*>              contextRoots;
};

TypeRegistry& registry()
{
    static TypeRegistry& r = *new TypeRegistry;
    return r;
}

std::string text(const char* t)
{
    return t ? std::string(t) : std::string();
}

// The copy of the map that the walks work on, taken under the mutex.
std::vector<NodeType*> typeSnapshot()
{
    std::vector<NodeType*> types;
    std::lock_guard<std::mutex> lock(NodeType::typeIDMapMutex());
    if (registry().idMap)
        for (const auto& [id, type] : *registry().idMap)
            types.push_back(type);
    return types;
}

// What the parent of a new node is, and the node namespace it gives.
enum ParentKind { NoParent, NameSpaceParent, NodeParent, SFNodeParent, MFNodeParent, ContextParent };

NodeNameSpace* parentNameSpace(BaseObject* parent, ParentKind& kind)
{
    kind = NoParent;
    if (!parent)
        return nullptr;
    if (auto* ns = dynamic_cast<NodeNameSpace*>(parent)) {
        kind = NameSpaceParent;
        return ns;
    }
    if (auto* node = dynamic_cast<Node*>(parent)) {
        kind = NodeParent;
        return &node->nameSpace();
    }
    if (auto* field = dynamic_cast<SFNode*>(parent)) {
        kind = SFNodeParent;
        return &field->owner().nameSpace();
    }
    if (auto* field = dynamic_cast<MFNode*>(parent)) {
        kind = MFNodeParent;
        return &field->owner().nameSpace();
    }
    // A context takes context roots only, and gives them no namespace: they make their own.
    if (dynamic_cast<Context*>(parent))
        kind = ContextParent;
    return nullptr;
}

// The attachment under which a context-root node keeps the namespace made for it.
int nameSpaceAttachmentID()
{
    static const int id = AttachmentBag::createUniqueID();
    return id;
}

} // namespace

std::mutex& NodeType::typeIDMapMutex()
{
    static std::mutex& mutex = *new std::mutex;
    return mutex;
}

NodeType::NodeType(NodeTypeNameSpace& nameSpace, const char* name, const char* library, const char* parentName,
                   const char* defaultDescendantOf, const char* version, const char* component,
                   const char* comment, const char* status, const char* description, const char* standard,
                   bool isExtensible, bool isContextRoot, TypeCheckFunc typeCheck, CreateFunc creator,
                   ProcFactory procFactory, NodePartDesc* descs, unsigned descCount)
    : _nameSpace(&nameSpace), _name(text(name)), _library(text(library)), _parentName(text(parentName)),
      _defaultDescendantOf(text(defaultDescendantOf)), _version(text(version)), _component(text(component)),
      _comment(text(comment)), _status(text(status)), _description(text(description)), _standard(text(standard)),
      _isExtensible(isExtensible), _typeCheck(typeCheck), _creator(creator), _procFactory(procFactory),
      _isContextRoot(isContextRoot)
{
    if (!name)
        ORV_FATAL("NATIVE NodeType without a name\n");
    TypeRegistry& r = registry();
    _ID = nextTypeID();
    _localDescVec.reserve(descCount);
    for (unsigned i = 0; i < descCount; ++i)
        _localDescVec.push_back(descs ? &descs[i] : nullptr);

    if (_isContextRoot) {
        if (findContextRootType(_name)) {
            ORV_FATAL("Second Context Root Type with equal name: >%s<", _name.c_str());
        } else {
            ORV_INFO("Register Context Root Type: %s\n", _name.c_str());
            r.contextRoots.push_back(this);
        }
    }
    if (!component)
        ORV_WARNING("NodeType %s is not assigned to any compnent\n", _name.c_str());
    registerID();
    ORV_INFO("Add Native Node type: %s\n", _name.c_str());
    if (_component.empty())
        ORV_WARNING("Concrete NodeType >%s< is not assigned to any component\n", _name.c_str());
    else
        Component::regType(*this);
    nameSpace.regType(*this);
}

std::uint32_t NodeType::nextTypeID()
{
    std::lock_guard<std::mutex> lock(typeIDMapMutex());
    return registry().nextID++;
}

void NodeType::registerID()
{
    TypeRegistry& r = registry();
    std::lock_guard<std::mutex> lock(typeIDMapMutex());
    if (!r.idMap) {
        ORV_INFO("Create node typeIDMap\n");
        r.idMap = new std::map<std::uint32_t, NodeType*>;
    }
    (*r.idMap)[_ID] = this;
}

NodeType::NodeType(NodeTypeNameSpace& nameSpace, const char* name, const char* version, const char* component,
                   const char* comment, const char* description, const char* standard, NodeNameSpace* scene)
    : _nameSpace(&nameSpace), _ID(nextTypeID()), _name(text(name)), _library("PROTO"), _version(text(version)),
      _component(text(component)), _comment(text(comment)), _status("stable"), _description(text(description)),
      _standard(text(standard)), _isExtensible(false), _typeCheck(&Node::isNodeType), _creator(nullptr),
      _procFactory(nullptr), _isContextRoot(false)
{
    registerID();
    // The namespace keeps its prototypes; instances keep their type beyond that.
    nameSpace.adoptType(*this);
    if (!name) {
        ORV_WARNING("PROTO NodeType without a name\n");
        return;
    }
    if (!scene) {
        _protoScene = new NodeNameSpace(name, nullptr, &nameSpace);
        scene = _protoScene.get();
    }
    Node* node = ProtoDeclaration::classType().createNode(scene, nullptr, SystemCreator);
    if (!node) {
        ORV_WARNING("Can not create PROTO NodeType: %s\n", _name.c_str());
        nameSpace.regType(*this);
        return;
    }
    _protoDeclaration = static_cast<ProtoDeclaration*>(node);
    _protoDeclaration->addRef();
    _protoDeclaration->attach(*this, *scene);
    ORV_INFO("Add PROTO Node type: %s\n", _name.c_str());
    nameSpace.regType(*this);
}

NodeType::NodeType(NodeTypeNameSpace& nameSpace, NodeType& proto, const char* name)
    : _nameSpace(&nameSpace), _ID(nextTypeID()), _name(text(name)), _library("ALIAS"), _version(proto._version),
      _component(proto._component), _comment(proto._comment), _status(proto._status),
      _description(proto._description), _standard(proto._standard), _isExtensible(false),
      _typeCheck(proto._typeCheck), _creator(nullptr), _procFactory(nullptr), _isAliasOf(&proto),
      _isContextRoot(false), _protoDeclaration(proto._protoDeclaration), _localDescVec(proto._localDescVec),
      _aliasHold(&proto)
{
    registerID();
    nameSpace.adoptType(*this);
    if (_protoDeclaration)
        _protoDeclaration->addRef();
    ORV_INFO("Valid Alias ProtoDeclaration %s/%s\n", nameSpace.name().c_str(), _name.c_str());
    bool fromLibrary = false;
    for (const NodeTypeNameSpace* ns = proto._nameSpace; ns && !fromLibrary; ns = ns->parent())
        fromLibrary = ns->protoLibrary() != nullptr;
    if (fromLibrary)
        ORV_INFO("Proto Alias %s: Link Libray Type\n", _name.c_str());
    else
        ORV_INFO("Proto Alias %s: Link Free Type\n", _name.c_str());
    nameSpace.regType(*this);
}

NodeType::~NodeType()
{
    if (_protoDeclaration) {
        // Only the type that made the declaration lets go of it as its owner.
        if (!_isAliasOf && _protoDeclaration->protoType() == this)
            _protoDeclaration->detachType();
        _protoDeclaration->subRef();
        _protoDeclaration = nullptr;
    }
    TypeRegistry& r = registry();
    std::vector<NodeType*> others;
    {
        std::lock_guard<std::mutex> lock(typeIDMapMutex());
        if (r.idMap) {
            r.idMap->erase(_ID);
            for (const auto& [id, type] : *r.idMap)
                others.push_back(type);
        }
    }
    r.contextRoots.erase(std::remove(r.contextRoots.begin(), r.contextRoots.end(), this), r.contextRoots.end());
    if (_compObj)
        _compObj->unregType(*this);
    if (_nameSpace)
        _nameSpace->unregType(*this);
    NodeTypeNameSpace::forgetTypeEverywhere(*this);
    if (_parentNodeType)
        _parentNodeType->_derivedNodeTypeList.remove(this);
    for (NodeType* child : _derivedNodeTypeList)
        child->_parentNodeType = nullptr;
    for (NodeType* other : others) {
        if (other->_defaultDescendant == this)
            other->_defaultDescendant = nullptr;
        auto& extra = other->_additionalParents;
        extra.erase(std::remove(extra.begin(), extra.end(), this), extra.end());
    }
}

// --- queries ---

NodePartDesc* NodeType::findPart(const std::string& name) const
{
    for (NodePartDesc* desc : _descVec)
        if (desc && desc->name() == name)
            return desc;
    return nullptr;
}

NodePartDesc* NodeType::findFieldPart(const std::string& name) const
{
    auto found = _fieldMap.find(name);
    return found == _fieldMap.end() ? nullptr : found->second;
}

NodePartDesc* NodeType::findInSlotPart(const std::string& name) const
{
    auto found = _inSlotMap.find(name);
    return found == _inSlotMap.end() ? nullptr : found->second;
}

NodePartDesc* NodeType::findOutSlotPart(const std::string& name) const
{
    auto found = _outSlotMap.find(name);
    return found == _outSlotMap.end() ? nullptr : found->second;
}

bool NodeType::fillAbsolutAddress(std::string& out) const
{
    bool complete = _nameSpace && _nameSpace->fillAbsolutAddress(out);
    out = out.empty() ? _name : out + "::" + _name;
    return complete && !_name.empty();
}

bool NodeType::hasAbsolutAddress() const
{
    std::string address;
    return fillAbsolutAddress(address);
}

// --- type tree ---

namespace {

// The walk of isA and isADistance: up the parent chain, and through a proto type to the type of
// the first node of its body; a proto type on the way matches `other` when both stand for one
// declaration (an alias or a resolved external declaration included). Bounded, so that a broken
// chain can not loop.
std::int32_t walkTypes(const NodeType* t, const NodeType& other, const char* check)
{
    const ProtoDeclaration* target = other.isProto() ? &other.protoDeclaration()->effective() : nullptr;
    constexpr std::int32_t limit = 1 << 16;
    for (std::int32_t distance = 0; t && distance <= limit; ++distance) {
        if (t == &other)
            return distance;
        if (t->isProto()) {
            if (target && &t->protoDeclaration()->effective() == target) {
                ORV_INFO("%s == %s; valid ProtoDeclaration %s check\n", t->name().c_str(), other.name().c_str(),
                         check);
                return distance;
            }
            t = t->protoDeclaration()->firstBodyType();
        } else {
            t = t->parentNodeType();
        }
    }
    return -1;
}

} // namespace

std::int32_t NodeType::isADistance(const NodeType& other) const
{
    return walkTypes(this, other, "isADistance");
}

bool NodeType::isA(const NodeType& other) const
{
    // Native types walk their parents without the prototype look-ups.
    if (!_protoDeclaration && !other._protoDeclaration) {
        for (const NodeType* t = this; t; t = t->_parentNodeType)
            if (t == &other)
                return true;
        return false;
    }
    return walkTypes(this, other, "isA") >= 0;
}

// initType refuses an additional parent that closes a cycle, but a parent chain completed later
// can still close one; the depth bound keeps the walk finite whatever the declarations say.
constexpr unsigned maxKindDepth = 64;

bool NodeType::isKindOf(const NodeType& other) const
{
    return kindOf(other, 0);
}

bool NodeType::kindOf(const NodeType& other, unsigned depth) const
{
    for (const NodeType* t = this; t && depth < maxKindDepth; t = t->_parentNodeType, ++depth) {
        if (t == &other)
            return true;
        for (const NodeType* extra : t->_additionalParents)
            if (extra->kindOf(other, depth + 1))
                return true;
    }
    return false;
}

std::int32_t NodeType::kindDistance(const NodeType& other) const
{
    return kindDistance(other, 0);
}

std::int32_t NodeType::kindDistance(const NodeType& other, unsigned depth) const
{
    std::int32_t best = -1;
    std::int32_t distance = 0;
    for (const NodeType* t = this; t && depth < maxKindDepth && (best < 0 || distance < best);
         t = t->_parentNodeType, ++distance, ++depth) {
        if (t == &other)
            return distance;
        for (const NodeType* extra : t->_additionalParents) {
            std::int32_t via = extra->kindDistance(other, depth + 1);
            if (via >= 0 && (best < 0 || distance + 1 + via < best))
                best = distance + 1 + via;
        }
    }
    return best;
}

void NodeType::addAdditionalParent(const char* name)
{
    if (name && *name)
        _additionalNames.emplace_back(name);
}

void NodeType::addPartAlias(const char* alias, const char* partName)
{
    if (alias && *alias && partName && *partName)
        _partAliases.emplace_back(alias, partName);
}

bool NodeType::isAGenericGroupNode() const
{
    for (NodePartDesc* desc : _descVec) {
        if (!desc || !desc->isNodeField())
            continue;
        if (desc->valueRestriction() != NodeTypeRestriction)
            return true;
        NodeType* allowed = desc->nodeType();
        if (!allowed || allowed == &Node::classType())
            return true;
    }
    return false;
}

bool NodeType::isALeafNode() const
{
    for (NodePartDesc* desc : _descVec)
        if (desc && desc->isNodeField())
            return false;
    return true;
}

NodeType* NodeType::isDefaultDescendantOf() const
{
    if (_defaultDescendantOf.empty() || !_nameSpace)
        return nullptr;
    NodeType* abstract = NodeTypeNameSpace::findType(_nameSpace, _defaultDescendantOf, CaseSensitive);
    return abstract && abstract->_defaultDescendant == this ? abstract : nullptr;
}

bool NodeType::setDefaultDescendant(NodeType* type)
{
    if (!isAbstract()) {
        ORV_WARNING("NodeType::setDefaultDescendant() call on non-abstract type\n");
        return false;
    }
    if (!type || !type->isA(*this)) {
        ORV_WARNING("Invalid setDefaultDescendant(): %s is not a %s\n", type ? type->name().c_str() : "NULL",
                    _name.c_str());
        return false;
    }
    _defaultDescendant = type;
    return true;
}

void NodeType::changeObjCounter(int delta) const
{
    for (const NodeType* t = this; t; t = t->_parentNodeType)
        t->_objectCount.fetch_add(static_cast<std::uint32_t>(delta), std::memory_order_relaxed);
}

void NodeType::setStatusID()
{
    static const struct {
        const char*    text;
        NodeTypeStatus id;
    } table[] = {{"experimental", ExperimentalStatus}, {"alpha", AlphaStatus}, {"beta", BetaStatus},
                 {"stable", StableStatus}, {"deprecated", DeprecatedStatus}};
    for (const auto& entry : table) {
        if (_status == entry.text) {
            _statusID = entry.id;
            return;
        }
    }
    _statusID = InvalidStatus;
    ORV_FATAL("%s: Invalid status: %s\n", _name.c_str(), _status.c_str());
}

// --- initialisation ---

int NodeType::initType(bool force)
{
    if (_isInitialized && !force)
        return 0;
    // Set first: a type reached again through its own parent chain stops there.
    _isInitialized = true;
    if (_protoDeclaration)
        return initProtoType();
    ORV_INFO("Init NATIVE Type %s\n", _name.c_str());
    clearParts();

    int failures = 0;
    if (!_parentName.empty()) {
        NodeType* parent = _nameSpace ? NodeTypeNameSpace::findType(_nameSpace, _parentName, CaseSensitive) : nullptr;
        if (!parent || parent == this) {
            ORV_FATAL("Can't find NodeType for %s, parent of %s\n", _parentName.c_str(), _name.c_str());
            setStatusID();
            return failures + 1;
        }
        failures += parent->initType(false);
        _parentNodeType = parent;
        for (std::size_t i = 0; i < parent->_descVec.size(); ++i) {
            // The slot is kept even when empty, so that the IDs stay the slot indices.
            if (!parent->_descVec[i]) {
                ORV_FATAL("%s: Invalid 0 entry in _descVec at index %d\n", _name.c_str(), static_cast<int>(i));
                ++failures;
            }
            _descVec.push_back(parent->_descVec[i]);
        }
        parent->_derivedNodeTypeList.push_back(this);
    } else if (this != &Node::classType()) {
        ORV_WARNING("%s Node Type without parent\n", _name.c_str());
        ++failures;
    }

    for (NodePartDesc* desc : _localDescVec) {
        if (!desc) {
            ORV_FATAL("Invalid local desc in NodeType::init()\n");
            ++failures;
            continue;
        }
        if (findPart(desc->name())) {
            ORV_WARNING("There is already a part %s in Type %s\n", desc->name().c_str(), _name.c_str());
            ++failures;
            continue;
        }
        desc->init(*this);
        _descVec.push_back(desc);
    }
    mapParts();
    for (const auto& [alias, partName] : _partAliases) {
        NodePartDesc* desc = findPart(partName);
        if (!desc || findPart(alias)) {
            ORV_WARNING("%s: Can not make %s an alias of %s\n", _name.c_str(), alias.c_str(), partName.c_str());
            ++failures;
            continue;
        }
        // The alias answers with the slot names its access type gives, the real names come first.
        if (desc->holdsField())
            _fieldMap.emplace(alias, desc);
        if (desc->partType() == ExposedFieldPartType) {
            _inSlotMap.emplace("set_" + alias, desc);
            _outSlotMap.emplace(alias + "_changed", desc);
        } else if (desc->hasInSlot()) {
            _inSlotMap.emplace(alias, desc);
        } else if (desc->hasOutSlot()) {
            _outSlotMap.emplace(alias, desc);
        }
    }
    if (!_descVec.empty() && _descVec[0] && _descVec[0]->ownerType() == &Node::classType())
        _logFeatureMask = _descVec[0]->mask();
    computeLayout();

    for (const std::string& extraName : _additionalNames) {
        NodeType* extra = NodeTypeNameSpace::findType(_nameSpace, extraName, CaseSensitive);
        if (!extra) {
            ORV_FATAL("Can't find NodeType for %s, additional parent of %s\n", extraName.c_str(), _name.c_str());
            ++failures;
            continue;
        }
        failures += extra->initType(false);
        if (extra->isKindOf(*this)) {
            ORV_FATAL("%s can not be an additional parent of %s: it is a kind of it\n", extraName.c_str(),
                      _name.c_str());
            ++failures;
            continue;
        }
        _additionalParents.push_back(extra);
    }

    if (!_defaultDescendantOf.empty()) {
        NodeType* abstract = NodeTypeNameSpace::findType(_nameSpace, _defaultDescendantOf, CaseSensitive);
        if (abstract)
            abstract->initType(false);
        if (!abstract || !abstract->setDefaultDescendant(this)) {
            ORV_WARNING("Can not set defaultDescendant for %s", _name.c_str());
            ++failures;
        }
    }
    setStatusID();
    return failures;
}

void NodeType::computeLayout()
{
    // The area after the node object starts at the most any of its parts asks for; the block
    // itself has the allocator's alignment, so nothing in it may ask for more.
    constexpr std::uint32_t maxAlign = __STDCPP_DEFAULT_NEW_ALIGNMENT__;
    auto alignUp = [](std::uint32_t at, std::uint32_t align) { return (at + align - 1) & ~(align - 1); };
    auto layout = std::make_unique<NodeLayout>();
    std::uint32_t at = 0;
    layout->fieldOffsets.assign(_descVec.size(), NodeLayout::NoPlace);
    layout->fieldTypes.assign(_descVec.size(), nullptr);
    layout->defaultTexts.assign(_descVec.size(), std::string());
    layout->placesAll = _descVec.size() <= 64;
    for (std::size_t i = 0; i < _descVec.size(); ++i) {
        const NodePartDesc* desc = _descVec[i];
        const FieldType* fieldType = desc && desc->holdsField() ? FieldType::findType(desc->dataType()) : nullptr;
        layout->fieldTypes[i] = fieldType;
        if (!fieldType)
            continue;
        layout->defaultTexts[i] = desc->defaultValue();
        if (i < 64 && desc->ownerType() == &Node::classType()) {
            layout->onDemand |= std::uint64_t(1) << i;
            continue;
        }
        if (!fieldType->placeSize() || !fieldType->placeMethod() || fieldType->placeAlign() > maxAlign) {
            layout->placesAll = false;
            continue;
        }
        at = alignUp(at, fieldType->placeAlign());
        layout->areaAlign = std::max<std::uint32_t>(layout->areaAlign, fieldType->placeAlign());
        layout->fieldOffsets[i] = at;
        at += fieldType->placeSize();
    }
    if (_procFactory == &Node::createProc) {
        at = alignUp(at, alignof(NodeProc));
        layout->areaAlign = std::max<std::uint32_t>(layout->areaAlign, alignof(NodeProc));
        layout->procOffset = at;
        at += sizeof(NodeProc);
    }
    layout->areaSize = alignUp(at, layout->areaAlign);
    layout->slotDescs.assign(layout->areaSize / 8, nullptr);
    for (std::size_t i = 0; i < _descVec.size(); ++i)
        if (layout->fieldOffsets[i] != NodeLayout::NoPlace)
            layout->slotDescs[layout->fieldOffsets[i] / 8] = _descVec[i];
    // Laid out as before: keep the layout the live nodes share.
    for (const auto& earlier : _layouts)
        if (earlier->sameAs(*layout)) {
            _layout = earlier.get();
            return;
        }
    _layout = _layouts.emplace_back(std::move(layout)).get();
}

void NodeType::clearParts()
{
    if (_parentNodeType)
        _parentNodeType->_derivedNodeTypeList.remove(this);
    _parentNodeType = nullptr;
    _descVec.clear();
    _fieldMap.clear();
    _inSlotMap.clear();
    _outSlotMap.clear();
    _logFeatureMask.reset();
    _additionalParents.clear();
    _layout = nullptr;
}

void NodeType::mapParts()
{
    for (NodePartDesc* desc : _descVec) {
        if (!desc)
            continue;
        if (desc->holdsField())
            _fieldMap.emplace(desc->fieldName(), desc);
        if (!desc->inSlotName().empty())
            _inSlotMap.emplace(desc->inSlotName(), desc);
        if (!desc->outSlotName().empty())
            _outSlotMap.emplace(desc->outSlotName(), desc);
    }
}

// A proto type is a kind of the type of its body's first node; its parts are the interface of
// its declaration only (an alias shares the parts of the type it stands for).
int NodeType::initProtoType()
{
    ORV_INFO("Init PROTO Type %s \n", _name.c_str());
    // An external declaration is resolved now: the body it names gives the parent.
    if (_protoDeclaration->isExternal())
        _protoDeclaration->resolve();
    _protoChanges = _protoDeclaration->changeCount();
    clearParts();
    if (_isAliasOf) {
        _isAliasOf->initType(false);
        _localDescVec = _isAliasOf->_localDescVec;
    } else {
        for (NodePartDesc* desc : _localDescVec)
            desc->init(*this);
    }
    _descVec = _localDescVec;
    _protoPartCount = static_cast<std::uint32_t>(_descVec.size());
    mapParts();
    setStatusID();
    NodeType* first = _protoDeclaration->firstBodyType();
    if (!first) {
        ORV_WARNING("%s Proto without body\n", _name.c_str());
        return 1;
    }
    for (const NodeType* t = first; t; t = t->_parentNodeType)
        if (t == this) {
            ORV_WARNING("%s Proto whose body starts with its own kind\n", _name.c_str());
            return 1;
        }
    int failures = first->initType(false);
    _parentNodeType = first;
    first->_derivedNodeTypeList.push_back(this);
    // Instances keep their interface fields in their block like any node.
    computeLayout();
    return failures;
}

NodeType* NodeType::aliasIn(NodeTypeNameSpace& target)
{
    NodeType& original = _isAliasOf ? *_isAliasOf : *this;
    // The prototype's name, unless another type of the namespace has it already.
    std::string name = original._name;
    NodeType* known = target.findLocalType(name);
    if (known && known->_isAliasOf != &original) {
        name.append(1, '_').append(std::to_string(original._ID));
        known = target.findLocalType(name);
    }
    if (known && known->_isAliasOf == &original)
        return known;
    auto* alias = new NodeType(target, original, name.c_str());
    alias->initType(false);
    return alias;
}

int NodeType::initTypeTree(bool force)
{
    std::vector<NodeType*> types;
    {
        std::lock_guard<std::mutex> lock(typeIDMapMutex());
        if (!registry().idMap) {
            ORV_WARNING("Invalid _typeMap in initTypeTree()\n");
            return 1;
        }
        for (const auto& [id, type] : *registry().idMap)
            types.push_back(type);
    }
    ORV_INFO("init node types: %d types\n", static_cast<int>(types.size()));
    int failures = 0;
    for (NodeType* type : types) {
        if (!type) {
            ORV_FATAL("Found NULL type in _typeMap in initBuildInNodeTree\n");
            ++failures;
            continue;
        }
        failures += type->initType(force);
    }
    return failures;
}

// --- process-wide look-ups ---

NodeType* NodeType::findType(unsigned int id)
{
    std::lock_guard<std::mutex> lock(typeIDMapMutex());
    if (!registry().idMap)
        return nullptr;
    auto found = registry().idMap->find(id);
    return found == registry().idMap->end() ? nullptr : found->second;
}

unsigned NodeType::typeCount()
{
    std::lock_guard<std::mutex> lock(typeIDMapMutex());
    return registry().idMap ? static_cast<unsigned>(registry().idMap->size()) : 0;
}

int NodeType::getTypeVec(std::vector<NodeType*>& out, int filter)
{
    out.clear();
    for (NodeType* type : typeSnapshot()) {
        bool take = filter == 0 || (filter == 1 && !type->isAbstract() && !type->isProto()) ||
                    (filter == 2 && type->isAbstract()) || (filter == 3 && type->isProto());
        if (take)
            out.push_back(type);
    }
    return static_cast<int>(out.size());
}

NodeType* NodeType::findContextRootType(const std::string& name)
{
    for (NodeType* type : registry().contextRoots)
        if (type->_name == name)
            return type;
    return nullptr;
}

void NodeType::dump() const
{
    ORV_PLOG("NodeType: %s (ID %u), library %s, parent %s, component %s, status %s, %s%s%u parts, %u nodes\n",
             _name.c_str(), _ID, _library.c_str(), _parentNodeType ? _parentNodeType->_name.c_str() : "none",
             _component.c_str(), _status.c_str(), isAbstract() ? "abstract, " : "", isProto() ? "proto, " : "",
             partCount(), objectCount());
}

void NodeType::dumpStatic()
{
    for (NodeType* type : typeSnapshot())
        type->dump();
}

int NodeType::reportDocStatus(std::ostream& out, bool verbose)
{
    int undocumented = 0;
    for (NodeType* type : typeSnapshot()) {
        int missing = type->_description.empty() ? 1 : 0;
        for (NodePartDesc* desc : type->_localDescVec)
            if (desc && desc->description().empty())
                ++missing;
        if (missing)
            ++undocumented;
        if (missing || verbose)
            out << type->_name << ": " << type->_status << ", " << missing << " texts missing\n";
    }
    return undocumented;
}

bool NodeType::reportDocStatus(const std::string& text, bool set)
{
    if (!set)
        return true;
    std::ostringstream report;
    const int undocumented = reportDocStatus(report, text == "all");
    std::string lines = report.str();
    if (!lines.empty())
        ORV_PLOG("DocStatus:\n%s", lines.c_str());
    return undocumented == 0;
}

// --- creation ---

Node* NodeType::createNode(BaseObject* parent, const char* typeName, const char* name, NodeCreator creator)
{
    ParentKind kind;
    NodeNameSpace* ns = parentNameSpace(parent, kind);
    if (!ns) {
        ORV_WARNING("Invalid nodespace while creating Node instance\n");
        return nullptr;
    }
    NodeType* type = NodeTypeNameSpace::findType(&ns->nodeTypeNameSpace(), text(typeName), CaseSensitive);
    if (!type) {
        ORV_WARNING("Could not find/load type %s to create node\n", typeName ? typeName : "");
        return nullptr;
    }
    return type->createNode(parent, name, creator);
}

NodeProc* NodeType::createProc(Node& node) const
{
    NodeProc* proc = _procFactory ? _procFactory(const_cast<NodeType&>(*this), node) : nullptr;
    if (!proc)
        ORV_WARNING("NodeType::createProc failed\n");
    return proc;
}

Node* NodeType::createNode(BaseObject* parent, const char* name, NodeCreator creator) const
{
    NodeType& self = const_cast<NodeType&>(*this);
    ParentKind kind;
    NodeNameSpace* ns = parentNameSpace(parent, kind);

    if (!_isContextRoot && !ns) {
        // The message lost its second conversion long ago; it is kept as it reads.
        ORV_FATAL("%s/%%: No valid NodeNameSpace in createNode\n", _name.c_str());
        return nullptr;
    }

    std::string nodeName = text(name);
    SmartPtr<NodeNameSpace> ownNameSpace;
    if (_isContextRoot) {
        if (ns)
            ORV_WARNING("NameSpace given while create ContextRoot node\n");
        std::vector<std::string> pieces;
        std::string::size_type pos = 0;
        while (pos <= nodeName.size()) {
            auto end = nodeName.find(':', pos);
            if (end == std::string::npos)
                end = nodeName.size();
            if (end > pos)
                pieces.push_back(nodeName.substr(pos, end - pos));
            pos = end + 1;
        }
        std::string nsName;
        if (pieces.size() > 1) {
            nsName = pieces[0];
            nodeName = pieces[1];
            ORV_INFO("ContextRoot NameSpace: %s, Name: %s\n", nsName.c_str(), nodeName.c_str());
        } else {
            nsName = NameText::toLower(_name);
        }
        ownNameSpace = new NodeNameSpace(nsName.c_str(), nullptr, _nameSpace);
        ns = ownNameSpace.get();
    }

    if (isAbstract()) {
        if (_defaultDescendant) {
            ORV_INFO("Create _defaultDescendant Node of type %s for %s\n", _defaultDescendant->_name.c_str(),
                     _name.c_str());
            return _defaultDescendant->createNode(parent, name, SystemCreator);
        }
        ORV_WARNING("Could not create %s node in NodeType::createNode()\n", _name.c_str());
        return nullptr;
    }
    // Types are completed at start-up; one made later is completed on its first node, and a
    // proto type again after its declaration changed.
    if (!_isInitialized || (_protoDeclaration && _protoDeclaration->changeCount() != _protoChanges))
        self.initType(true);

    Node* node = nullptr;
    if (isProto()) {
        // A prototype used outside the type namespace that declared it goes through an alias
        // made there, so that its instances' types are found where they live.
        NodeTypeNameSpace& target = ns->nodeTypeNameSpace();
        if (&target != _nameSpace)
            return self.aliasIn(target)->createNode(parent, name, creator);
        ORV_NOTICE("Create ProtoInstance %s\n", _name.c_str());
        node = ProtoInstance::build(self, *ns, nodeName.empty() ? nullptr : nodeName.c_str());
    } else {
        // The creator's `new` of the node takes the block laid out for this type; a creator that
        // makes another node first hands the request on to that one's own createNode, which
        // gives it back afterwards.
        const NodeType* outer = Node::requestBlock(this);
        node = _creator(self, *ns, nodeName.empty() ? nullptr : nodeName.c_str());
        Node::requestBlock(outer);
    }
    if (!node) {
        ORV_WARNING("Could not create %s node in NodeType::createNode()\n", _name.c_str());
        return nullptr;
    }

    // A new node starts with every field at its declared default, as a file that omits the
    // field means; the default is set without change processing.
    node->makeDeclaredFields();
    if (!node->proc()) {
        // The default processor has its room in the block, when the node got one.
        const NodeLayout* layout = node->_parts.layout();
        if (node->_parts.area() && layout->procOffset != NodeLayout::NoPlace)
            node->setProc(::new (node->_parts.area() + layout->procOffset) NodeProc(*node));
        else
            node->setProc(createProc(*node));
    }

    if (_statusID == DeprecatedStatus)
        ORV_FATAL("%s/%s Type is DEPRECATED: %s\n", _name.c_str(), node->getIDStr().c_str(), _comment.c_str());

    node->_creator = creator;
    node->setState(0.0, Setup);

    if (_isContextRoot) {
        node->setAttachment(nameSpaceAttachmentID(), ownNameSpace.get());
        ownNameSpace->setRoot(*node);
        if (kind == ContextParent)
            static_cast<Context*>(parent)->addRoot(*node);
    } else if (kind == NodeParent) {
        static_cast<Node*>(parent)->addChild(node);
    } else if (kind == SFNodeParent) {
        static_cast<SFNode*>(parent)->setNode(node);
    } else if (kind == MFNodeParent) {
        static_cast<MFNode*>(parent)->addChild(node);
    }

    if (Node::newObjectSubject().observerCount())
        Node::newObjectSubject().notify(0.0, node);
    return node;
}

} // namespace Orvane
