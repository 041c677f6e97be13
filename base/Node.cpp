#include "base/Node.h"

#include "base/Field.h"
#include "base/Log.h"
#include "base/MFNode.h"
#include "base/MFString.h"
#include "base/NodeBlockPool.h"
#include "base/NodeLink.h"
#include "base/NodeNameSpace.h"
#include "base/NodePartDesc.h"
#include "base/NodeProc.h"
#include "base/NodeType.h"
#include "base/NodeTypeNameSpace.h"
#include "base/SFNode.h"
#include "base/Subject.h"

#include <algorithm>
#include <unordered_map>
#include <cstdlib>
#include <mutex>
#include <unordered_set>
#include <utility>

namespace Orvane {

namespace {

// The node ID map: every live node by its number. IDs only grow, so the entries are in ID
// order as they are appended; a node knows its entry's index, so leaving is constant time too.
// A departed node leaves a hole, and the holes are squeezed out once they outnumber the live
// entries, which keeps the cost per node constant however large the scene. Made with the
// first node, never destroyed.
struct IDRegistry {
    struct Entry {
        std::uint64_t id;
        Node*         node;
    };
    std::mutex         lock;
    std::vector<Entry> entries;
    // The ID texts made so far, by node (see getIDStr).
    std::unordered_map<const Node*, std::string> idTexts;
    std::size_t        live = 0;
    std::uint64_t      nextID = 1;

    const Entry* find(std::uint64_t id) const
    {
        auto found = std::lower_bound(entries.begin(), entries.end(), id,
                                      [](const Entry& e, std::uint64_t value) { return e.id < value; });
        return found != entries.end() && found->id == id && found->node ? &*found : nullptr;
    }
};

IDRegistry& idRegistry()
{
    static IDRegistry& r = *new IDRegistry;
    return r;
}

// The block request of the next Node::operator new on this thread, and what that operator new
// laid out for the node's constructor to take up.
struct BlockHandOver {
    const NodeType* requested = nullptr;
    const NodeLayout* layout = nullptr;
    char*             block = nullptr;
    std::uint32_t     objectSize = 0;
};

thread_local BlockHandOver blockHandOver;

constexpr std::size_t blockAlign = NodeBlockPool::Alignment;
static_assert(blockAlign >= __STDCPP_DEFAULT_NEW_ALIGNMENT__);

Subject& makeSubject(const char* name)
{
    return *new Subject(name);
}

// The node fields of a node, in part order. The type's descriptors tell which they are, so the
// other fields are not touched.
template <class Fn>
void forEachNodeField(const Node& node, Fn fn)
{
    const NodeType& type = node.type();
    for (unsigned i = 0; i < node.partCount(); ++i) {
        NodePartDesc* desc = i < type.partCount() ? type.part(i) : nullptr;
        if (desc && !desc->isNodeField())
            continue;
        Field* field = node.builtField(i);
        if (!field)
            continue;
        if (field->dataType() == SFNodeType)
            fn(static_cast<SFNode&>(*field));
        else if (field->dataType() == MFNodeType)
            fn(static_cast<MFNode&>(*field));
    }
}

template <class Fn>
void forEachChildLink(const Node& node, Fn fn)
{
    forEachNodeField(node, [&](auto& field) {
        if constexpr (std::is_same_v<std::decay_t<decltype(field)>, SFNode&> ||
                      std::is_same_v<std::decay_t<decltype(field)>, SFNode>) {
            if (field.link().directNode())
                fn(field.link());
        } else {
            for (NodeLink& link : field)
                if (link.directNode())
                    fn(link);
        }
    });
}

// A reference for the length of an operation that may drop the node's last one; none for a node
// that nobody holds yet, which the reference would destroy on its way out.
SmartPtr<Node> keepAlive(Node* node)
{
    return SmartPtr<Node>(node && node->refCount() > 0 ? node : nullptr);
}

bool matchesLogFeature(const std::string& value, const char* name)
{
    return value == name;
}

} // namespace

// --- the base type ---

NodeType& Node::classType()
{
    static NodePartDesc descs[] = {
        NodePartDesc(0, PartMask::bit(0), ExposedFieldPartType, MFStringType, NodePartDesc::CtorAutoProcess,
                     "logFeature", nullptr, nullptr, "state,child,parent,route,eventIn,eventOut",
                     "controls the logging of changes, state: log state changes (e.g. live), child: log child "
                     "add/remove, parent: log parent add/remove,"),
        NodePartDesc(1, PartMask::bit(1), ExposedFieldPartType, SFNodeType, NodePartDesc::CtorAutoProcess,
                     "metadata", nullptr, nullptr, "MetadataObject",
                     "container for payload metadata inside MetadataSet element"),
    };
    static NodeType type(theBaseNodeTypeFactory(), "Node", "Base", nullptr, nullptr, "1.0", "Core",
                         "Base Node Class", "stable", "Orvane Base node", "Orvane", false, false, &Node::isNodeType,
                         &Node::createNode, &Node::createProc, descs, 2);
    return type;
}

namespace {
// Registered while the library loads, like every native type.
[[maybe_unused]] const bool nodeTypeRegistered = (Node::classType(), true);
} // namespace

// --- storage ---

const NodeType* Node::requestBlock(const NodeType* type)
{
    return std::exchange(blockHandOver.requested, type);
}

void* Node::operator new(std::size_t size)
{
    BlockHandOver& h = blockHandOver;
    const NodeType* type = std::exchange(h.requested, nullptr);
    if (!type || !type->_layout || !type->_layout->areaSize)
        return NodeBlockPool::allocate(size);
    // Blocks are aligned to blockAlign, which is at least the area's alignment.
    const std::size_t areaAlign = type->_layout->areaAlign;
    const std::size_t objectSize = (size + areaAlign - 1) & ~(areaAlign - 1);
    const std::size_t blockSize = objectSize + type->_layout->areaSize;
    void* block = NodeBlockPool::allocate(blockSize);
    // The constructors write the whole block: ask for its lines at once rather than one miss
    // after the other.
    for (std::size_t line = 0; line < blockSize; line += 64)
        __builtin_prefetch(static_cast<char*>(block) + line, 1);
    h.layout = type->_layout;
    h.block = static_cast<char*>(block);
    h.objectSize = static_cast<std::uint32_t>(objectSize);
    return block;
}

void Node::operator delete(void* block) noexcept
{
    NodeBlockPool::release(block);
}

bool Node::inBlock(const void* p) const
{
    const auto at = reinterpret_cast<std::uintptr_t>(p);
    const auto area = reinterpret_cast<std::uintptr_t>(_parts.area());
    return _parts.area() && at >= area && at < area + _parts.layout()->areaSize;
}

void Node::destroyPart(NodePart* part)
{
    if (!part)
        return;
    if (inBlock(part))
        part->~NodePart();
    else
        delete part;
}

void Node::destroyProc(NodeProc* proc)
{
    if (!proc)
        return;
    if (inBlock(proc))
        proc->~NodeProc();
    else
        delete proc;
}

void Node::PartTable::init(std::uint32_t count, char* area, const NodeLayout* layout)
{
    if (_inTable)
        delete[] _data;
    _inTable = 0;
    _areaOffset = area ? static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(area) - reinterpret_cast<std::uintptr_t>(this)) : 0;
    _layout = layout;
    _built = 0;
    _size = count;
    if (count && (!area || !layout->placesAll || layout->fieldOffsets.size() != count))
        toTable(count);
}

void Node::PartTable::set(std::size_t i, NodePart* part)
{
    if (!_inTable) {
        const std::uint64_t bit = std::uint64_t(1) << i;
        if (!part) {
            _built &= ~bit;
            return;
        }
        if (_layout->fieldOffsets[i] != NodeLayout::NoPlace &&
            static_cast<void*>(part) == area() + _layout->fieldOffsets[i]) {
            _built |= bit;
            return;
        }
        toTable(_size);
    }
    _data[i] = part;
}

void Node::PartTable::push_back(NodePart* part)
{
    // Dynamic fields are few; the room doubles anyway so that a long run of them stays linear.
    if (!_inTable || _size == roomFor(_size))
        toTable(_size + 1);
    _data[_size++] = part;
}

void Node::PartTable::toTable(std::uint32_t size)
{
    auto* data = new NodePart*[roomFor(size > _size ? size : _size)];
    for (std::uint32_t i = 0; i < _size; ++i)
        data[i] = (*this)[i];
    if (_inTable)
        delete[] _data;
    _data = data;
    _inTable = 1;
}

void Node::ParentList::push_back(NodeLink* link)
{
    if (!_capacity && !_size) {
        _one = link;
        _size = 1;
        return;
    }
    if (_size == _capacity || !_capacity) {
        const std::uint32_t capacity = _capacity ? 2 * _capacity : 4;
        auto* many = new NodeLink*[capacity];
        std::copy(begin(), end(), many);
        if (_capacity)
            delete[] _many;
        _many = many;
        _capacity = capacity;
    }
    _many[_size++] = link;
}

bool Node::ParentList::remove(NodeLink* link)
{
    NodeLink** first = _capacity ? _many : &_one;
    NodeLink** found = std::find(first, first + _size, link);
    if (found == first + _size)
        return false;
    std::copy(found + 1, first + _size, found);
    --_size;
    return true;
}

Node* Node::createNode(NodeType& type, NodeNameSpace& nameSpace, const char* name)
{
    return new Node(type, nameSpace, name);
}

NodeProc* Node::createProc(NodeType&, Node& node)
{
    return new NodeProc(node);
}

bool Node::isNodeType(const Node* node)
{
    return node != nullptr;
}

// --- subjects ---

Subject& Node::newObjectSubject()
{
    static Subject& s = makeSubject("newNode");
    return s;
}

Subject& Node::stateChangedSubject()
{
    static Subject& s = makeSubject("stateChanged");
    return s;
}

Subject& Node::logFeatureChangedSubject()
{
    static Subject& s = makeSubject("logFeatureChanged");
    return s;
}

Subject& Node::childAddedSubject()
{
    static Subject& s = makeSubject("childAdded");
    return s;
}

Subject& Node::childRemovedSubject()
{
    static Subject& s = makeSubject("childRemoved");
    return s;
}

Subject& Node::nameSpaceChangedSubject()
{
    static Subject& s = makeSubject("nameSpaceChanged");
    return s;
}

Subject& Node::codeErrorSubject()
{
    static Subject& s = makeSubject("codeError");
    return s;
}

Subject& Node::deleteObjectSubject()
{
    static Subject& s = makeSubject("deleteNode");
    return s;
}

// --- construction ---

Node::Node(NodeType& type, NodeNameSpace& nameSpace, const char* name)
    : _type(&type), _nameSpace(&nameSpace), _hasLogFeature(type.logFeatureMask().any())
{
    // Take up the block that operator new laid out, when it is this node's and laid out for
    // this node's type with its current layout.
    BlockHandOver& h = blockHandOver;
    const auto self = reinterpret_cast<std::uintptr_t>(this);
    const auto block = reinterpret_cast<std::uintptr_t>(h.block);
    if (h.block && h.layout == type._layout && self >= block && self < block + h.objectSize &&
        h.layout->fieldOffsets.size() == type.partCount())
        _parts.init(type.partCount(), h.block + h.objectSize, h.layout);
    else
        _parts.init(type.partCount(), nullptr, nullptr);
    h.block = nullptr;
    h.layout = nullptr;
    {
        IDRegistry& r = idRegistry();
        std::lock_guard<std::mutex> lock(r.lock);
        _ID = r.nextID++;
        _idSlot = static_cast<std::uint32_t>(r.entries.size());
        r.entries.push_back({_ID, this});
        ++r.live;
    }
    nameSpace.linkNode(*this);
    type.changeObjCounter(1);
    if (name && *name)
        nameSpace.regNode(*this, type, name);
}

Node::~Node()
{
    if (deleteObjectSubject().observerCount())
        deleteObjectSubject().notify(0.0, this);
    if (!_parentLinks.empty()) {
        ORV_FATAL("Have still valid parent links in Node Destructor\n");
        for (NodeLink* link : _parentLinks)
            if (!link)
                ORV_FATAL("Invalid Null entry in _nodeLinkBag\n");
    }
    const unsigned typeParts = _type->partCount();
    // Routes go first, while every field is whole: their removal tells both processors.
    if (_fieldsWithEvents)
        for (unsigned i = 0; i < _parts.size(); ++i)
            if (Field* field = builtField(i))
                field->disconnectAll();
    for (std::size_t i = 0; i < _parts.size(); ++i) {
        NodePart* part = _parts[i];
        if (!part)
            continue;
        NodePartDesc* desc = i >= typeParts ? part->desc() : nullptr;
        destroyPart(part);
        // Dynamic fields own their descriptors.
        if (desc && desc->objExtension())
            delete desc;
    }
    destroyProc(std::exchange(_proc, nullptr));
    _nameSpace->unlinkNode(*this);
    _type->changeObjCounter(-1);
    IDRegistry& r = idRegistry();
    std::lock_guard<std::mutex> lock(r.lock);
    auto& entries = r.entries;
    entries[_idSlot].node = nullptr;
    --r.live;
    if (_idTextKept)
        r.idTexts.erase(this);
    // Holes at the end go at once; the others when they are the majority. A squeeze moves
    // every live entry once, paid for by the departures since the last one.
    while (!entries.empty() && !entries.back().node)
        entries.pop_back();
    if (entries.size() > 64 && entries.size() - r.live > r.live) {
        std::size_t kept = 0;
        for (const IDRegistry::Entry& e : entries) {
            if (!e.node)
                continue;
            e.node->_idSlot = static_cast<std::uint32_t>(kept);
            entries[kept++] = e;
        }
        entries.resize(kept);
    }
}

void Node::shutdown() const
{
    Node* self = const_cast<Node*>(this);
    if (_state != Dispose && !self->setState(0.0, Dispose))
        ORV_WARNING("%s/%s: Could not switch state to DISPOSED in shutdown()\n", _type->name().c_str(),
                    getIDStr().c_str());
    // The children hear of it while this node is still whole.
    self->removeAllChildren(0.0);
}

void Node::setProc(NodeProc* proc)
{
    if (proc != _proc)
        destroyProc(_proc);
    _proc = proc;
    if (_proc)
        _proc->_node = this;
}

const char* Node::creatorName(NodeCreator creator)
{
    static const char* const names[] = {"Unknown", "System", "Runtime", "Invalid", "Loader", "Dynamic"};
    return creator >= UnknownCreator && creator <= DynamicCreator ? names[creator] : "Invalid";
}

// --- naming and identity ---

const std::string& Node::name() const
{
    static const std::string none;
    return _name ? *_name : none;
}

bool Node::isAutoNamed() const
{
    return _name && _nameSpace->isAutoNamed(*this);
}

const std::string& Node::getIDStr() const
{
    if (_name)
        return *_name;
    IDRegistry& r = idRegistry();
    std::lock_guard<std::mutex> lock(r.lock);
    std::string& text = r.idTexts[this];
    if (!_idTextKept) {
        text = "#" + std::to_string(_ID);
        _idTextKept = true;
    }
    return text;
}

std::uint64_t Node::parseIDStr(const std::string& text)
{
    if (text.size() < 2 || text[0] != '#' || text.size() > 21)
        return 0;
    for (std::size_t i = 1; i < text.size(); ++i)
        if (text[i] < '0' || text[i] > '9')
            return 0;
    return std::strtoull(text.c_str() + 1, nullptr, 10);
}

bool Node::rename(const std::string& newName)
{
    if (_nameSpace->findNode(newName)) {
        ORV_WARNING("Can not rename() node to %s, name already give\n", newName.c_str());
        return false;
    }
    _nameSpace->unregNode(*this);
    return _nameSpace->regNode(*this, *_type, newName);
}

bool Node::fillAbsolutAddress(std::string& out) const
{
    bool complete = _nameSpace->fillAbsolutAddress(out) && _name;
    out = out.empty() ? getIDStr() : out + "::" + getIDStr();
    return complete;
}

bool Node::hasAbsolutAddress() const
{
    std::string address;
    return fillAbsolutAddress(address);
}

Node* Node::findNode(std::uint64_t id)
{
    IDRegistry& r = idRegistry();
    std::lock_guard<std::mutex> lock(r.lock);
    const IDRegistry::Entry* entry = r.find(id);
    return entry ? entry->node : nullptr;
}

bool Node::findNode(const Node* node)
{
    if (!node)
        return false;
    IDRegistry& r = idRegistry();
    std::lock_guard<std::mutex> lock(r.lock);
    for (const IDRegistry::Entry& e : r.entries)
        if (e.node == node)
            return true;
    return false;
}

std::size_t Node::idMapSize()
{
    IDRegistry& r = idRegistry();
    std::lock_guard<std::mutex> lock(r.lock);
    return r.live;
}

int Node::fillNodeVec(std::vector<Node*>& out, NodeType* type, bool derived)
{
    out.clear();
    IDRegistry& r = idRegistry();
    std::lock_guard<std::mutex> lock(r.lock);
    for (const IDRegistry::Entry& e : r.entries) {
        Node* node = e.node;
        if (node && (!type || &node->type() == type || (derived && node->type().isA(*type))))
            out.push_back(node);
    }
    return static_cast<int>(out.size());
}

// --- lifecycle ---

const char* Node::stateName(NodeState state)
{
    static const char* const names[] = {"Creation", "Setup", "Realize", "Live", "Dispose"};
    return state >= Creation && state <= Dispose ? names[state] : "Invalid";
}

bool Node::setState(const double& time, NodeState state)
{
    const NodeState old = _state;
    if (state == old)
        return true;
    // Creation only leads to Setup; Dispose is final; Setup, Realize and Live move freely
    // between each other and to Dispose.
    const bool allowed = (old == Creation && state == Setup) ||
                         (old >= Setup && old <= Live && state >= Setup && state <= Dispose);
    if (!allowed) {
        ORV_WARNING("Invalid node %s/%s/%s state transition: %s to %s\n", _nameSpace->name().c_str(),
                    _type->name().c_str(), getIDStr().c_str(), stateName(old), stateName(state));
        return false;
    }

    auto hook = [&](NodeState entered, void (NodeProc::*fn)(const double&)) {
        _state = entered;
        if (_proc)
            (_proc->*fn)(time);
    };
    if (old == Creation) {
        hook(Setup, &NodeProc::setup);
    } else {
        // Walk one state at a time to the target, Setup standing in for Dispose.
        const NodeState target = state == Dispose ? Setup : state;
        NodeState at = old;
        while (at < target) {
            at = static_cast<NodeState>(at + 1);
            hook(at, at == Realize ? &NodeProc::initialize : &NodeProc::attach);
        }
        while (at > target) {
            at = static_cast<NodeState>(at - 1);
            hook(at, at == Realize ? &NodeProc::detach : &NodeProc::shutdown);
        }
        if (state == Dispose)
            hook(Dispose, &NodeProc::dispose);
    }

    if (_isChangingMask.any())
        ORV_FATAL("Invalid node %s/%s/%s state transition: %s to %s (ChangingMask is %u)\n",
                  _nameSpace->name().c_str(), _type->name().c_str(), getIDStr().c_str(), stateName(old),
                  stateName(state), static_cast<unsigned>(_isChangingMask.value()));
    if (stateChangedSubject().observerCount())
        stateChangedSubject().notify(time, this);
    if (checkLogFeature(LogState))
        ORV_PLOG("Valid node %s/%s/%s state transition: %s to %s\n", _nameSpace->name().c_str(),
                 _type->name().c_str(), getIDStr().c_str(), stateName(old), stateName(state));
    return true;
}

bool Node::setTreeState(const double& time, NodeState state)
{
    return updateTreeState(time, state);
}

bool Node::updateTreeState(const double& time, NodeState state)
{
    // Every node once, parents before their children; a shared node is visited at its first use.
    std::vector<Node*> nodes;
    collectAllChildren(nodes, true);
    bool ok = setState(time, state);
    for (Node* node : nodes)
        ok = node->setState(time, state) && ok;
    return ok;
}

// --- parts ---

Field* Node::builtField(unsigned id) const
{
    return id < _parts.size() ? static_cast<Field*>(_parts[id]) : nullptr;
}

Field* Node::fieldWithValue(unsigned id) const
{
    Field* field = builtField(id);
    return field && madeOnDemand(id) && field->valueIsDefault() ? nullptr : field;
}

Field* Node::findField(unsigned id) const
{
    if (id >= _parts.size())
        return nullptr;
    if (NodePart* part = _parts[id])
        return static_cast<Field*>(part);
    // Made on first use: to the caller the node has had the field all along, at its default.
    return madeOnDemand(id) ? const_cast<Node*>(this)->makeField(id, true) : nullptr;
}

Field* Node::findField(const std::string& name, FieldSearchOrder order) const
{
    enum Kind { ByField, ByInSlot, ByOutSlot };
    auto lookup = [&](Kind kind) -> Field* {
        NodePartDesc* desc = kind == ByField    ? _type->findFieldPart(name)
                             : kind == ByInSlot ? _type->findInSlotPart(name)
                                                : _type->findOutSlotPart(name);
        if (Field* field = desc ? findField(desc->ID()) : nullptr)
            return field;
        for (std::size_t i = _type->partCount(); i < _parts.size(); ++i) {
            NodePart* part = _parts[i];
            if (!part || !part->desc())
                continue;
            const NodePartDesc& d = *part->desc();
            const std::string& n = kind == ByField ? d.fieldName() : kind == ByInSlot ? d.inSlotName() : d.outSlotName();
            if (n == name)
                return static_cast<Field*>(part);
        }
        return nullptr;
    };
    static const Kind orders[][3] = {
        {ByField, ByField, ByField},       {ByField, ByInSlot, ByOutSlot}, {ByInSlot, ByOutSlot, ByField},
        {ByInSlot, ByField, ByField},      {ByOutSlot, ByField, ByField},
    };
    const Kind* kinds = orders[order >= SearchFieldName && order <= SearchOutSlot ? order : SearchFieldThenSlots];
    for (int i = 0; i < 3; ++i)
        if (Field* field = lookup(kinds[i]))
            return field;
    return nullptr;
}

Field* Node::findField(NodePartValueRestriction restriction) const
{
    for (unsigned i = 0; i < _parts.size(); ++i)
        if (NodePartDesc* desc = findPartDesc(i); desc && desc->valueRestriction() == restriction)
            if (Field* field = findField(i))
                return field;
    return nullptr;
}

EventInSlot* Node::findEventInSlot(const std::string& name) const
{
    Field* field = findField(name, SearchInSlot);
    EventInSlot* slot = field ? field->createInSlot(false) : nullptr;
    if (!slot)
        ORV_WARNING("There is no inSlot %s in the node %s (type: %s\n", name.c_str(), getIDStr().c_str(),
                    _type->name().c_str());
    return slot;
}

EventInSlot* Node::findEventInSlot(unsigned id) const
{
    Field* field = findField(id);
    return field ? field->createInSlot(false) : nullptr;
}

EventOutSlot* Node::findEventOutSlot(const std::string& name) const
{
    Field* field = findField(name, SearchOutSlot);
    EventOutSlot* slot = field ? field->createOutSlot(false) : nullptr;
    if (!slot)
        ORV_WARNING("There is no outSlot %s in the node %s (type: %s\n", name.c_str(), getIDStr().c_str(),
                    _type->name().c_str());
    return slot;
}

EventOutSlot* Node::findEventOutSlot(unsigned id) const
{
    Field* field = findField(id);
    return field ? field->createOutSlot(false) : nullptr;
}

int Node::findEventInSlotID(const std::string& name) const
{
    Field* field = findField(name, SearchInSlot);
    return field && field->desc() && (field->type() & EventInPartType) ? static_cast<int>(field->desc()->ID()) : -1;
}

int Node::findEventOutSlotID(const std::string& name) const
{
    Field* field = findField(name, SearchOutSlot);
    return field && field->desc() && (field->type() & EventOutPartType) ? static_cast<int>(field->desc()->ID()) : -1;
}

NodePartDesc* Node::findPartDesc(unsigned id) const
{
    if (id < _parts.size() && _parts[id] && _parts[id]->desc())
        return _parts[id]->desc();
    return _type->part(id);
}

bool Node::regField(Field& field, NodeType& type, unsigned id, bool setDefault)
{
    if (id >= type.partCount() || id >= _parts.size()) {
        ORV_WARNING("Cannot reg part %d; invalid Part ID\n", static_cast<int>(id));
        return false;
    }
    if (_parts[id] && _parts[id] != &field)
        destroyPart(_parts[id]);
    field.setDesc(type.part(id));
    _parts.set(id, &field);
    if (setDefault)
        field.setDefaultValue(0.0);
    return true;
}

void Node::unregField(unsigned id)
{
    if (id >= _parts.size())
        return;
    // A field in the block cannot change hands: it ends here, and makeField may build a new
    // one in its place.
    if (inBlock(_parts[id]))
        destroyPart(_parts[id]);
    _parts.set(id, nullptr);
}

const FieldType* Node::placedType(unsigned id, const NodePartDesc& desc) const
{
    const NodeLayout* layout = _parts.layout();
    if (!_parts.area() || id >= layout->fieldOffsets.size() || layout->fieldOffsets[id] == NodeLayout::NoPlace)
        return nullptr;
    const FieldType* type = layout->fieldTypes[id];
    return type && type->dataType() == desc.dataType() ? type : nullptr;
}

Field* Node::makeField(unsigned id, bool setDefault)
{
    if (Field* existing = builtField(id))
        return existing;
    NodePartDesc* desc = _type->part(id);
    if (!desc)
        return nullptr;
    // In the block where the type placed it; on the heap for a node without block or a field
    // type without placement.
    const FieldType* placed = placedType(id, *desc);
    Field* field = placed ? placed->placeMethod()(_parts.area() + _parts.layout()->fieldOffsets[id], *this)
                          : FieldType::create(desc->dataType(), *this);
    if (field && !regField(*field, *_type, id, setDefault)) {
        destroyPart(field);
        return nullptr;
    }
    return field;
}

void Node::makeDeclaredFields()
{
    const unsigned count = _type->partCount();
    // A node fresh in a block of its type's current layout: each field straight into its place,
    // where the layout names its descriptor already, with the defaults read once for all the
    // type's nodes.
    if (_parts.area() && _parts.layout() == _type->_layout && _parts.fresh()) {
        const NodeLayout&  layout = *_parts.layout();
        const void* const* defaults = layout.defaultValues(*this);
        char*              area = _parts.area();
        std::uint64_t      built = 0;
        for (unsigned id = 0; id < count; ++id) {
            const FieldType* type = layout.fieldTypes[id];
            if (!type || layout.madeOnDemand(id))
                continue;
            Field* field = type->placeMethod()(area + layout.fieldOffsets[id], *this);
            built |= std::uint64_t(1) << id;
            if (defaults[id])
                type->defaultValueMethods().apply(*field, defaults[id]);
            else if (!layout.defaultTexts[id].empty())
                field->setDefaultValue(0.0);
        }
        _parts.setAllBuilt(built);
        return;
    }
    // Any other node: the fields it lacks, one by one.
    for (unsigned id = 0; id < count; ++id) {
        const NodePartDesc* desc = _type->part(id);
        if (desc && desc->holdsField() && !_parts[id] && !madeOnDemand(id))
            makeField(id, true);
    }
}

Field* Node::placeDynamicField(NodePartDesc* desc)
{
    const unsigned id = static_cast<unsigned>(_parts.size());
    desc->setID(id);
    desc->setMask(id < 64 ? PartMask::bit(id) : PartMask());
    desc->setFlag(NodePartDesc::ObjExtension);
    Field* field = desc->holdsField() ? FieldType::create(desc->dataType(), *this) : nullptr;
    if (!field) {
        delete desc;
        return nullptr;
    }
    field->setDesc(desc);
    _parts.push_back(field);
    field->setDefaultValue(0.0);
    return field;
}

Field* Node::addDynamicField(const NodePartDesc& desc)
{
    return placeDynamicField(new NodePartDesc(desc));
}

Field* Node::addDynamicField(NodePartType partType, NodePartDataType dataType, const char* name, unsigned flags,
                             const char* defaultValue)
{
    auto* desc = new NodePartDesc(0, PartMask(), partType, dataType, flags, name, nullptr, defaultValue);
    desc->init(*_type);
    return placeDynamicField(desc);
}

bool Node::removeDynamicField(unsigned id)
{
    if (id < _type->partCount() || id >= _parts.size() || !_parts[id])
        return false;
    NodePart* part = _parts[id];
    NodePartDesc* desc = part->desc();
    static_cast<Field*>(part)->disconnectAll();
    destroyPart(part);
    delete desc;
    // The IDs of later fields stay as they are; only a trailing slot goes away.
    _parts.set(id, nullptr);
    while (_parts.size() > _type->partCount() && !_parts.back())
        _parts.pop_back();
    return true;
}

bool Node::hasDynamicField() const
{
    for (std::size_t i = _type->partCount(); i < _parts.size(); ++i)
        if (_parts[i])
            return true;
    return false;
}

PartMask Node::dynamicFieldMask() const
{
    PartMask mask;
    for (std::size_t i = _type->partCount(); i < _parts.size(); ++i)
        if (_parts[i])
            mask |= _parts[i]->mask();
    return mask;
}

bool Node::equalFieldValues(const Node& other) const
{
    if (&other.type() != _type || other._parts.size() != _parts.size())
        return false;
    for (std::size_t i = 0; i < _parts.size(); ++i) {
        auto* mine = static_cast<Field*>(_parts[i]);
        auto* theirs = static_cast<Field*>(other._parts[i]);
        if (!mine || !theirs) {
            // A field not made yet holds its default.
            const auto id = static_cast<unsigned>(i);
            const bool onDemand = madeOnDemand(id) || other.madeOnDemand(id);
            if (mine != theirs && !(onDemand && (mine ? mine : theirs)->valueIsDefault()))
                return false;
            continue;
        }
        if (mine->dataType() != theirs->dataType() || !mine->equalValue(*theirs))
            return false;
    }
    return true;
}

// --- change state ---

void Node::clearChangedMask()
{
    _changedMask.reset();
    clearFlag(MarkedFlag);
    clearFlag(ChildChangedFlag);
}

void Node::markParent(int level)
{
    for (NodeLink* link : _parentLinks) {
        Node* parent = link->parent();
        if (!parent || parent->hasFlag(ChildChangedFlag))
            continue;
        parent->setFlag(ChildChangedFlag);
        parent->markParent(level + 1);
    }
}

bool Node::fieldChanged(Field& field, const double& time, Field* source)
{
    if (!_proc)
        return true;
    // Every hop of an event cascade comes here: the descriptor's mask without a call.
    const PartMask mask = field.desc() ? field.desc()->mask() : NodePart::_nullMask;
    if (mask.empty())
        return _proc->fieldChanged(*this, field, time, source);
    if (checkIsChangingMask(mask)) {
        ORV_INFO("Field %s/%s.%s is already changing; break loop\n", _type->name().c_str(), getIDStr().c_str(),
                 field.nameOrNoName());
        return false;
    }
    setIsChanging(mask);
    bool result = _proc->fieldChanged(*this, field, time, source);
    clearIsChanging(mask);
    return result;
}

MFString* Node::logFeature() const
{
    return _hasLogFeature ? static_cast<MFString*>(findField(0u)) : nullptr;
}

SFNode* Node::metadata() const
{
    return _hasLogFeature ? static_cast<SFNode*>(findField(1u)) : nullptr;
}

void Node::updateLogFeature()
{
    static const char* const names[] = {"none", "state", "child", "parent", "route", "fieldValueChanged",
                                        "eventIn", "eventOut", "guiView", "guiEdit", "everything"};
    MFString* field = logFeature();
    if (!field)
        return;
    std::uint32_t flags = 0;
    for (const std::string& value : field->value()) {
        for (int f = LogState; f <= LogEverything; ++f) {
            if (!matchesLogFeature(value, names[f]))
                continue;
            flags |= f == LogEverything ? 0x3feu : 1u << f;
        }
    }
    if (flags == _debugFlags)
        return;
    _debugFlags = flags;
    if (logFeatureChangedSubject().observerCount())
        logFeatureChangedSubject().notify(0.0, this);
}

bool Node::removeParentLink(NodeLink* link)
{
    return _parentLinks.remove(link);
}

// --- children ---

NodeLink* Node::addChild(Node* child, const char* fieldName, NameSpaceTransfer transfer, NodeTypeMatchMode match)
{
    if (!child)
        return nullptr;
    Field* target = nullptr;
    if (fieldName && *fieldName) {
        target = findField(fieldName, SearchFieldThenSlots);
        if (target && target->dataType() != SFNodeType && target->dataType() != MFNodeType)
            target = nullptr;
    } else {
        // The first field that accepts the child, and the one whose allowed type is the child's
        // closest ancestor: a field for any node counts as allowing the base type. A field not
        // made yet counts by its descriptor, and is made when it is the one chosen.
        constexpr unsigned none = ~0u;
        unsigned           first = none, best = none;
        std::int32_t       bestDistance = -1;
        const NodeType&    base = Node::classType();
        for (unsigned id = 0; id < partCount(); ++id) {
            const Field*        built = builtField(id);
            const NodePartDesc* desc = built ? built->desc() : madeOnDemand(id) ? _type->part(id) : nullptr;
            if (!built && !desc)
                continue;
            const NodePartDataType dataType = built ? built->dataType() : desc->dataType();
            if (dataType != SFNodeType && dataType != MFNodeType)
                continue;
            // Pure input or output events (addChildren, removeChildren) hold no children.
            if (desc && (desc->partType() == EventInPartType || desc->partType() == EventOutPartType))
                continue;
            NodeType* allowed = desc ? desc->nodeType() : nullptr;
            std::int32_t distance = allowed ? desc->allowedTypeDistance(child->type()) : child->type().isADistance(base);
            if (distance < 0 && !allowed)
                distance = 0x7fffffff;  // a tree of its own: any field takes it, last in line
            if (distance < 0)
                continue;
            if (first == none)
                first = id;
            if (best == none || distance < bestDistance) {
                best = id;
                bestDistance = distance;
            }
        }
        if (first == none) {
            ORV_WARNING("node type %s doesn't have _any_ field with the type %s\n", _type->name().c_str(),
                        child->type().name().c_str());
            return nullptr;
        }
        unsigned chosen = first;
        if (match == BestMatch && best != first) {
            ORV_INFO("Remap bestMatch Field in addChild(): %d/%d\n", static_cast<int>(first), static_cast<int>(best));
            chosen = best;
        }
        target = findField(chosen);
    }
    if (!target) {
        ORV_WARNING("node type %s doesn't have _any_ field with the type %s\n", _type->name().c_str(),
                    child->type().name().c_str());
        return nullptr;
    }

    NodeLink* link = nullptr;
    if (target->dataType() == SFNodeType) {
        auto& field = static_cast<SFNode&>(*target);
        link = field.setNode(child) ? &field.link() : nullptr;
    } else {
        link = static_cast<MFNode&>(*target).addChild(child);
    }
    if (!link)
        return nullptr;
    if (transfer == TransferNameSpace && &child->nameSpace() != _nameSpace)
        child->transfer(0.0, *_nameSpace);
    if (childAddedSubject().observerCount())
        childAddedSubject().notify(0.0, this, child);
    return link;
}

bool Node::removeChild(Node* child)
{
    if (!child)
        return false;
    SmartPtr<Node> keep = keepAlive(child);
    bool removed = false;
    forEachNodeField(*this, [&](auto& field) {
        if constexpr (std::is_same_v<std::decay_t<decltype(field)>, SFNode>) {
            if (field.link().directNode() == child) {
                field.setNode(nullptr);
                removed = true;
            }
        } else {
            for (auto it = field.begin(); it != field.end();) {
                auto next = std::next(it);
                if (it->directNode() == child) {
                    field.removeLink(&*it);
                    removed = true;
                }
                it = next;
            }
        }
    });
    if (removed && childRemovedSubject().observerCount())
        childRemovedSubject().notify(0.0, this, child);
    return removed;
}

void Node::removeAllChildren(const double&)
{
    // Fields that hold no child have nobody to tell.
    forEachNodeField(*this, [&](auto& field) {
        if constexpr (std::is_same_v<std::decay_t<decltype(field)>, SFNode>) {
            if (field.link().directNode())
                field.setNode(nullptr);
        } else if (field.size()) {
            field.clear();
        }
    });
}

void Node::removeAllParentLinks(const double&)
{
    SmartPtr<Node> keep = keepAlive(this);
    std::vector<NodeLink*> links(_parentLinks.begin(), _parentLinks.end());
    for (NodeLink* link : links) {
        Field* field = link->getField();
        if (field && field->dataType() == MFNodeType)
            static_cast<MFNode*>(field)->removeLink(link);
        else
            link->setNode(nullptr);
    }
}

NodeLink* Node::findChildLink(Node* child) const
{
    NodeLink* found = nullptr;
    forEachChildLink(*this, [&](NodeLink& link) {
        if (!found && link.directNode() == child)
            found = &link;
    });
    return found;
}

unsigned Node::childCount() const
{
    unsigned count = 0;
    forEachChildLink(*this, [&](NodeLink&) { ++count; });
    return count;
}

void Node::collectAllChildren(std::vector<Node*>& out, bool recursive) const
{
    std::unordered_set<const Node*> seen{this};
    std::vector<const Node*> stack{this};
    while (!stack.empty()) {
        const Node* node = stack.back();
        stack.pop_back();
        std::vector<Node*> children;
        forEachChildLink(*node, [&](NodeLink& link) {
            if (seen.insert(link.directNode()).second)
                children.push_back(link.directNode());
        });
        for (Node* child : children)
            out.push_back(child);
        if (!recursive)
            break;
        // Depth first in field order: the first child is taken next.
        for (auto it = children.rbegin(); it != children.rend(); ++it)
            stack.push_back(*it);
    }
}

bool Node::replace(Node& other)
{
    if (&other == this)
        return true;
    SmartPtr<Node> keep = keepAlive(this);
    std::vector<NodeLink*> links(_parentLinks.begin(), _parentLinks.end());
    bool ok = true;
    for (NodeLink* link : links) {
        if (!link) {
            ORV_FATAL("Invalid NULL parentLink in Node::replace()\n");
            ok = false;
            continue;
        }
        ok = link->setNode(&other) && ok;
    }
    return ok;
}

bool Node::merge(Node& other)
{
    if (!_type->isContextRoot()) {
        ORV_WARNING("%s/%s: Skip merge; only allowed for contextRoot nodes\n", _type->name().c_str(),
                    getIDStr().c_str());
        return false;
    }
    SmartPtr<Node> keep = keepAlive(&other);
    bool ok = true;
    forEachNodeField(other, [&](Field& from) {
        Field* to = findField(from.nameOrNoName(), SearchFieldName);
        if (!to || to->dataType() != from.dataType()) {
            ok = false;
            return;
        }
        std::vector<Node*> children;
        if (from.dataType() == SFNodeType) {
            if (Node* child = static_cast<SFNode&>(from).node())
                children.push_back(child);
        } else {
            for (NodeLink& link : static_cast<MFNode&>(from))
                if (link.directNode())
                    children.push_back(link.directNode());
        }
        std::vector<SmartPtr<Node>> held(children.begin(), children.end());
        if (from.dataType() == SFNodeType) {
            static_cast<SFNode&>(from).setNode(nullptr);
            if (!children.empty())
                ok = static_cast<SFNode*>(to)->setNode(children[0]) && ok;
        } else {
            static_cast<MFNode&>(from).clear();
            for (Node* child : children)
                ok = static_cast<MFNode*>(to)->addChild(child) && ok;
        }
    });
    return ok;
}

Node* Node::clone(NodeNameSpace* nameSpace, const char* name) const
{
    Node* copy = _type->createNode(nameSpace ? nameSpace : _nameSpace, name, _creator);
    if (!copy) {
        ORV_WARNING("Node clone failed\n");
        return nullptr;
    }
    for (std::size_t i = 0; i < _parts.size() && i < copy->_parts.size(); ++i) {
        const auto id = static_cast<unsigned>(i);
        Field*     from = fieldWithValue(id);
        if (!from)
            continue;  // the copy's is at its default too, made or not
        if (Field* to = copy->findField(id))
            to->setValueByField(0.0, *from);
    }
    for (std::size_t i = copy->_parts.size(); i < _parts.size(); ++i) {
        auto* from = static_cast<Field*>(_parts[i]);
        if (!from || !from->desc())
            continue;
        if (Field* to = copy->addDynamicField(*from->desc()))
            to->setValueByField(0.0, *from);
    }
    if (_proc && copy->_proc)
        copy->_proc->copy(*_proc);
    return copy;
}

bool Node::transfer(const double& time, NodeNameSpace& nameSpace)
{
    if (&nameSpace == _nameSpace)
        return true;
    // The name comes along; root and exports stay behind with the old scope.
    std::string name = _name ? *_name : std::string();
    _nameSpace->unlinkNode(*this);
    _nameSpace = &nameSpace;
    _nameSpace->linkNode(*this);
    if (!name.empty())
        _nameSpace->regNode(*this, *_type, name);
    if (nameSpaceChangedSubject().observerCount())
        nameSpaceChangedSubject().notify(time, this);
    return true;
}

Context* Node::context() const
{
    return _nameSpace->context();
}

Node* Node::contextRoot() const
{
    const NodeNameSpace* ns = _nameSpace;
    while (ns->parent())
        ns = ns->parent();
    return ns->root();
}

// --- diagnostics ---

void Node::dump() const
{
    ORV_PLOG("NodeDump: %s, %s, %s, %s\n", _type->name().c_str(), getIDStr().c_str(), stateName(),
             _nameSpace->name().c_str());
    dumpField(PartMask(~0ull));
    ORV_PLOG("Check NodeLinkList (Parent links): %d\n", static_cast<int>(_parentLinks.size()));
    for (NodeLink* link : _parentLinks) {
        Node* parent = link ? link->parent() : nullptr;
        ORV_PLOG("  parent %s/%s\n", parent ? parent->type().name().c_str() : "UNSET_",
                 parent ? parent->getIDStr().c_str() : "UNSET_");
    }
}

void Node::dumpField(PartMask mask) const
{
    ORV_PLOG("%s/%s/%s: FieldDump: \n", _nameSpace->name().c_str(), _type->name().c_str(), getIDStr().c_str());
    for (std::size_t i = 0; i < _parts.size(); ++i) {
        Field* field = builtField(static_cast<unsigned>(i));
        if (const NodePartDesc* desc = _type->part(static_cast<unsigned>(i)); !field && desc && madeOnDemand(static_cast<unsigned>(i))) {
            if (mask.test(desc->mask()) || !desc->mask().any())
                ORV_PLOG("  %zu: %s %s = %s\n", i, desc->dataTypeName().c_str(), desc->name().c_str(),
                         desc->defaultValue().c_str());
            continue;
        }
        if (!field) {
            ORV_PLOG("  %zu: INVALID PART\n", i);
            continue;
        }
        if (!field->desc()) {
            ORV_PLOG("  %zu: INVALID DESC\n", i);
            continue;
        }
        if (!mask.test(field->mask()) && field->mask().any())
            continue;
        ORV_PLOG("  %zu: %s %s = %s\n", i, field->dataTypeName().c_str(), field->nameOrNoName(),
                 field->strValue().c_str());
    }
}

} // namespace Orvane
