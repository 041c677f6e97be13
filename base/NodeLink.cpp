#include "base/NodeLink.h"

#include "base/Field.h"
#include "base/Log.h"
#include "base/Node.h"
#include "base/NodePartDesc.h"
#include "base/NodeProc.h"
#include "base/NodeType.h"
#include "base/ProtoDeclaration.h"
#include "base/ProtoInstance.h"
#include "base/Subject.h"

namespace Orvane {

const PartMask NodeLink::_nullMask;

Subject& NodeLink::newLinkSubject()
{
    static Subject& subject = *new Subject("newLink");
    return subject;
}

Subject& NodeLink::deleteLinkSubject()
{
    static Subject& subject = *new Subject("deleteLink");
    return subject;
}

NodeLink::NodeLink() = default;

NodeLink::NodeLink(const NodeLink&) : BaseObject() {}

NodeLink& NodeLink::operator=(const NodeLink& other)
{
    if (this != &other)
        setNode(other.directNode());
    return *this;
}

NodeLink::~NodeLink()
{
    if (_node) {
        _node->removeParentLink(this);
        _node = nullptr;
    }
}

Node* NodeLink::parent() const
{
    return _field ? &_field->owner() : nullptr;
}

NodeType* NodeLink::nodeType() const
{
    return _node ? &_node->type() : nullptr;
}

Node* NodeLink::node() const
{
    // A prototype instance stands for the first node of its body, which may be an instance in
    // turn. Nesting is bounded when instances are made, and so is this walk.
    Node* node = _node.get();
    for (unsigned depth = 0; depth <= ProtoDeclaration::MaxNestingDepth; ++depth) {
        ProtoInstance* instance = ProtoInstance::cast(node);
        if (!instance)
            return node;
        Node* first = instance->firstNode();
        if (!first) {
            ORV_NOTICE("ProtoChildren field is empty, return Proto\n");
            return node;
        }
        node = first;
    }
    return node;
}

unsigned NodeLink::getFieldID() const
{
    return _field && _field->desc() ? _field->desc()->ID() : ~0u;
}

PartMask NodeLink::getFieldMask() const
{
    return _field ? _field->mask() : _nullMask;
}

void NodeLink::markParent() const
{
    if (Node* owner = parent()) {
        owner->setFlag(Node::ChildChangedFlag);
        owner->markParent(1);
    }
}

bool NodeLink::setNode(const Node* node)
{
    Node* child = const_cast<Node*>(node);
    // Clearing an empty link still marks the parent below.
    if (child && child == _node.get())
        return true;

    const NodePartDesc* restricted = nullptr;
    if (_field && _field->desc() && _field->desc()->valueRestriction() == NodeTypeRestriction)
        restricted = _field->desc();
    Node* owner = parent();

    if (_node) {
        Node* old = _node.get();
        if (deleteLinkSubject().observerCount())
            deleteLinkSubject().notify(0.0, this);
        if (owner) {
            if (owner->proc())
                owner->proc()->childRemoved(*this);
            else
                ORV_FATAL("Parent without proc %s/%s\n", owner->type().name().c_str(), owner->getIDStr().c_str());
        }
        if (old->proc())
            old->proc()->parentRemoved(*this);
        if (!old->removeParentLink(this))
            ORV_FATAL("Invalid parent link removal: %d\n", static_cast<int>(old->parentCount()));
        if ((owner && owner->checkLogFeature(LogChild)) || old->checkLogFeature(LogParent))
            ORV_PLOG("%s/%s child %s/%s removed (%s)\n", owner ? owner->type().name().c_str() : "NoParent",
                     owner ? owner->getIDStr().c_str() : "NoName", old->type().name().c_str(),
                     old->getIDStr().c_str(), _field && _field->desc() ? _field->nameOrNoName() : "NoNameField");
        // May be the last reference: the child shuts down here.
        _node = nullptr;
    }

    if (!child) {
        markParent();
        return true;
    }

    // The old child is gone already, so a refused child leaves the link empty.
    if (restricted && !restricted->acceptsNodeType(child->type())) {
        ORV_WARNING("Can't NodeLink::setNode() for node %s of type %s, because NodeLink needs %s Node\n",
                    child->getIDStr().c_str(), child->type().name().c_str(), restricted->valueType().c_str());
        return false;
    }

    _node = child;
    child->addParentLink(this);
    if ((owner && owner->checkLogFeature(LogChild)) || child->checkLogFeature(LogParent))
        ORV_PLOG("%s/%s child %s/%s added (%s)\n", owner ? owner->type().name().c_str() : "NoParent",
                 owner ? owner->getIDStr().c_str() : "NoName", child->type().name().c_str(),
                 child->getIDStr().c_str(), _field && _field->desc() ? _field->nameOrNoName() : "NoNameField");

    if (newLinkSubject().observerCount())
        newLinkSubject().notify(0.0, this);
    if (owner && owner->proc())
        owner->proc()->childAdded(*this);
    if (child->proc())
        child->proc()->parentAdded(*this);
    markParent();
    return true;
}

void NodeLink::swap(NodeLink& other)
{
    SmartPtr<Node> mine(_node.get()), theirs(other._node.get());
    if (mine == theirs)
        return;
    setNode(theirs.get());
    other.setNode(mine.get());
}

} // namespace Orvane
