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
    Field* from = source.findField(id);
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
    const bool named = source.hasName() && (useNodes() || !_copies.count(&source));
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
        Field* from = source.findField(id);
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
        Field* field = source.findField(id);
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

Node* CopyAction::knownCopy(Node& source) const
{
    auto found = _copies.find(&source);
    return found == _copies.end() ? nullptr : found->second;
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
        Field* from = source.findField(id);
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
    _copies[&root] = rootCopy;
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
        _copies[child] = copy.get();
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
    if (!owner.hasName() && (&node->nameSpace() != _dstNameSpace || _copies.count(node)))
        return nullptr;
    return node->findField(field.desc()->ID());
}

void CopyAction::finalize()
{
    for (Route* route : _routes) {
        EventOutSlot* out = nullptr;
        Field& from = route->outSlot().field();
        if (!from.desc())
            ORV_WARNING("No valid NodePart desc in CopyAction::finalize()\n");
        else if (Field* field = destinationField(from))
            out = field->createOutSlot(true);

        EventInSlot* in = nullptr;
        Field& to = route->inSlot().field();
        if (!to.desc())
            ORV_WARNING("No valid NodePart desc in CopyAction::finalize()\n");
        else if (Field* field = destinationField(to))
            in = field->createInSlot(true);

        if (out && in)
            Route::create(*out, *in, Route::DEFAULT);
    }
}

} // namespace Orvane
