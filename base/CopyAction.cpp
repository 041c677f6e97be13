#include "base/CopyAction.h"

#include "base/EventInSlot.h"
#include "base/EventOutSlot.h"
#include "base/Field.h"
#include "base/Log.h"
#include "base/MFNode.h"
#include "base/NodeNameSpace.h"
#include "base/NodePartDesc.h"
#include "base/NodeProc.h"
#include "base/NodeType.h"
#include "base/Route.h"
#include "base/SFNode.h"
#include "base/SmartPtr.h"

#include <algorithm>
#include <bit>

namespace Orvane {

namespace {

constexpr std::uint32_t defaultCopyOptions = CopyAction::UseNodes | CopyAction::CopyProcState;

bool isNodeField(const Field& field)
{
    return field.dataType() == SFNodeType || field.dataType() == MFNodeType;
}

// The field of `copy` that stands for field `id` of `source`: the same slot for the type's own
// fields; a dynamic field is found by its name, since removed dynamic fields leave holes in the
// original that the copy does not have.
Field* counterpart(Node& source, unsigned id, Node& copy)
{
    if (id < source.type().partCount())
        return copy.findField(id);
    Field* from = source.builtField(id);
    return from ? copy.findField(from->findName() ? from->findName() : "", SearchFieldName) : nullptr;
}

} // namespace

CopyAction::CopyAction(const double& timeStamp, NodeNameSpace& srcNameSpace, NodeNameSpace& dstNameSpace)
    : TraversAction(timeStamp), _srcNameSpace(&srcNameSpace), _dstNameSpace(&dstNameSpace)
{
    TraversAction::reset();
    setOption(defaultCopyOptions, true);
}

CopyAction::CopyAction(const CopyAction& other) = default;

CopyAction::~CopyAction() = default;

void CopyAction::reset()
{
    TraversAction::reset();
    _routes.clear();
    _result = nullptr;
    _copies.clear();
    _copyCount = 0;
    _rootsWithParents = false;
    setOption(defaultCopyOptions, true);
}

void CopyAction::addRoute(Route& route)
{
    _routes.insert(&route);
}

// --- the copy of one node ---

Node* CopyAction::createCopy(Node& source)
{
    NodeType& type = source.type();
    // With UseNodes off a node met again gets a copy of its own; the name stays with the first.
    const bool named = source.hasName() && (useNodes() || !knownCopy(source));
    if (named && source.isAutoNamed()) {
        Node* copy = type.createNode(_dstNameSpace, nullptr, source.creator());
        if (copy)
            _dstNameSpace->regNode(*copy, type, source.name(), true);
        return copy;
    }
    return type.createNode(_dstNameSpace, named ? source.name().c_str() : nullptr, source.creator());
}

void CopyAction::copyValues(Node& source, Node& copy)
{
    const unsigned typeParts = source.type().partCount();
    for (unsigned id = 0; id < source.partCount(); ++id) {
        // A field the source has not made, or made at its default, is at its default in the copy.
        Field* from = source.fieldWithValue(id);
        if (!from)
            continue;
        Field* to;
        if (id < typeParts) {
            if (isNodeField(*from))
                continue;
            to = copy.findField(id);
        } else {
            if (skipExtField() || !from->desc())
                continue;
            // A dynamic node field is made here and filled by the walk.
            to = copy.addDynamicField(*from->desc());
            if (isNodeField(*from))
                continue;
        }
        // A fresh node holds its defaults: only values that differ need the change processing.
        if (to && to->dataType() == from->dataType() && !to->equalValue(*from))
            to->setValueByField(timeStamp(), *from);
    }
}

void CopyAction::addRoutes(Node& source)
{
    const unsigned end = skipExtField() ? source.type().partCount() : source.partCount();
    for (unsigned id = 0; id < end; ++id) {
        Field* field = source.builtField(id);
        if (!field)
            continue;
        auto collect = [this](const EventSlot* slot) {
            if (!slot)
                return;
            for (Route* route : slot->routeBag())
                if (route && !(route->type() & (Route::IS | Route::IMPORT)))
                    _routes.insert(route);
        };
        collect(field->getInSlot());
        collect(field->getOutSlot());
    }
}

Node* CopyAction::copyNode(Node& source)
{
    Node* copy = createCopy(source);
    if (!copy)
        return nullptr;
    copyValues(source, *copy);
    if (copyProcState() && source.proc() && copy->proc())
        copy->proc()->copy(*source.proc());
    addRoutes(source);
    return copy;
}

// --- the walk ---

namespace {

// Fibonacci hashing of the node's address into a power-of-two table: the top bits of the
// product, which every bit of the address stirs.
std::size_t slotOf(const Node* node, std::size_t capacity)
{
    const int bits = std::countr_zero(capacity);
    return static_cast<std::size_t>((reinterpret_cast<std::uint64_t>(node) * 0x9E3779B97F4A7C15ull) >> (64 - bits));
}

} // namespace

Node* CopyAction::knownCopy(Node& source) const
{
    const std::size_t capacity = _copies.size();
    if (!capacity)
        return nullptr;
    for (std::size_t i = slotOf(&source, capacity);; i = (i + 1) & (capacity - 1)) {
        if (_copies[i].first == &source)
            return _copies[i].second;
        if (!_copies[i].first)
            return nullptr;
    }
}

void CopyAction::remember(Node& source, Node& copy)
{
    // At most half full, so that every search ends soon at a free place.
    if (2 * (_copyCount + 1) > _copies.size()) {
        std::vector<std::pair<Node*, Node*>> old(std::max<std::size_t>(64, 2 * _copies.size()));
        old.swap(_copies);
        _copyCount = 0;
        for (const auto& entry : old)
            if (entry.first)
                remember(*entry.first, *entry.second);
    }
    const std::size_t capacity = _copies.size();
    for (std::size_t i = slotOf(&source, capacity);; i = (i + 1) & (capacity - 1)) {
        if (_copies[i].first == &source) {
            _copies[i].second = &copy;
            return;
        }
        if (!_copies[i].first) {
            _copies[i] = {&source, &copy};
            ++_copyCount;
            return;
        }
    }
}

bool CopyAction::link(Field& target, Node* child)
{
    if (target.dataType() == SFNodeType)
        return static_cast<SFNode&>(target).setNode(child);
    auto& list = static_cast<MFNode&>(target);
    // An empty entry stays an empty entry, so positions in the list do not move.
    return child ? list.addChild(child) != nullptr : list.addValue(NodeLink()) != nullptr;
}

void CopyAction::pushChildren(Node& source, Node& copy)
{
    _pending.push_back(Visit{&source, nullptr});
    const std::size_t first = _pending.size();
    const unsigned typeParts = source.type().partCount();
    for (unsigned id = 0; id < source.partCount(); ++id) {
        NodePartDesc* desc = id < typeParts ? source.type().part(id) : nullptr;
        if (desc && !desc->isNodeField())
            continue;
        Field* from = source.fieldWithValue(id);
        if (!from || !isNodeField(*from))
            continue;
        Field* to = counterpart(source, id, copy);
        if (!to || to->dataType() != from->dataType())
            continue;
        if (from->dataType() == SFNodeType) {
            if (Node* child = static_cast<SFNode*>(from)->link().directNode())
                _pending.push_back(Visit{child, to});
        } else {
            for (NodeLink& entry : *static_cast<MFNode*>(from))
                _pending.push_back(Visit{entry.directNode(), to});
        }
    }
    // The walk takes from the back: the first child goes on top.
    std::reverse(_pending.begin() + static_cast<std::ptrdiff_t>(first), _pending.end());
}

Node* CopyAction::copyTree(Node& root)
{
    if (isSkipNodeType(root))
        return nullptr;
    if (useNodes())
        if (Node* known = knownCopy(root))
            return known;
    NodeProc* proc = root.proc();
    Node* rootCopy = proc ? proc->copy(*this) : copyNode(root);
    if (!rootCopy)
        return nullptr;
    remember(root, *rootCopy);
    // A root that hangs below other nodes may be met again through them.
    _rootsWithParents = _rootsWithParents || root.hasParents();

    const std::size_t base = _pending.size();
    enter(root);
    pushChildren(root, *rootCopy);
    while (_pending.size() > base) {
        Visit visit = _pending.back();
        _pending.pop_back();
        if (!visit.target) {
            leave(*visit.node);
            continue;
        }
        Node* child = visit.node;
        if (!child) {
            link(*visit.target, nullptr);
            continue;
        }
        if (isSkipNodeType(*child))
            continue;
        if (mayMeetAgain(*child)) {
            // Met before: shared again, or, without UseNodes, only when it closes a cycle.
            Node* known = knownCopy(*child);
            if (known && (useNodes() || isSkipNodeTree(*child))) {
                link(*visit.target, known);
                continue;
            }
        }
        proc = child->proc();
        SmartPtr<Node> copy(proc ? proc->copy(*this) : copyNode(*child));
        if (!copy)
            continue;
        if (!link(*visit.target, copy.get()))
            continue;  // refused by the field: the copy goes with `copy`
        remember(*child, *copy);
        enter(*child);
        pushChildren(*child, *copy);
    }
    return rootCopy;
}

Node* CopyAction::copy(Node& root)
{
    Node* rootCopy = copyTree(root);
    setResult(rootCopy);
    finalize();
    return rootCopy;
}

// --- routes ---

// The field in the destination namespace that stands for `field`: the node of the same name,
// the field at the same index. A node without name is known only by its ID text, which names
// the original itself: it counts only when it lives in the destination namespace and is not one
// of the nodes this action copied (whose copies have no name to be found by).
Field* CopyAction::destinationField(Field& field) const
{
    Node& owner = field.owner();
    Node* node = _dstNameSpace->findNode(owner.getIDStr());
    if (!node)
        return nullptr;
    if (!owner.hasName() && (&node->nameSpace() != _dstNameSpace || knownCopy(*node)))
        return nullptr;
    return node->findField(field.desc()->ID());
}

void CopyAction::finalize()
{
    auto counterpartOf = [this](Field& field) -> Field* {
        if (field.desc())
            return destinationField(field);
        ORV_WARNING("No valid NodePart desc in CopyAction::finalize()\n");
        return nullptr;
    };
    for (Route* route : _routes) {
        Field*        from = counterpartOf(route->outSlot().field());
        EventOutSlot* out = from ? from->createOutSlot(true) : nullptr;
        Field*        to = counterpartOf(route->inSlot().field());
        EventInSlot*  in = to ? to->createInSlot(true) : nullptr;
        if (out && in)
            Route::create(*out, *in, Route::DEFAULT);
    }
}

} // namespace Orvane
