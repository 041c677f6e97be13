#include "base/Node.h"

#include "base/Field.h"
#include "base/Log.h"
#include "base/NodeLink.h"
#include "base/NodePartDesc.h"
#include "base/NodeProc.h"
#include "base/NodeType.h"

#include <algorithm>
#include <atomic>

namespace Orvane {

namespace {

std::atomic<std::uint64_t> nextNodeID{1};

} // namespace

Node::Node(NodeType& type) : _type(&type), _ID(nextNodeID.fetch_add(1, std::memory_order_relaxed))
{
    _parts.reserve(type.partCount());
    for (unsigned i = 0; i < type.partCount(); ++i) {
        NodePartDesc* desc = type.part(i);
        Field* field = FieldType::create(desc->dataType(), *this);
        if (field)
            field->setDesc(desc);
        _parts.push_back(field);
    }
}

Node::~Node()
{
    for (NodePart* part : _parts)
        delete part;
    delete _proc;
}

void Node::setProc(NodeProc* proc)
{
    if (proc != _proc)
        delete _proc;
    _proc = proc;
}

const std::string& Node::getIDStr() const
{
    // '#' starts a comment in the file syntax, so this text can never be a DEF name.
    if (_idStr.empty())
        _idStr = "#" + std::to_string(_ID);
    return _idStr;
}

Field* Node::findField(unsigned id) const
{
    return dynamic_cast<Field*>(part(id));
}

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
    return _proc ? _proc->fieldChanged(*this, field, time, source) : true;
}

bool Node::removeParentLink(NodeLink* link)
{
    auto found = std::find(_parentLinks.begin(), _parentLinks.end(), link);
    if (found == _parentLinks.end())
        return false;
    _parentLinks.erase(found);
    return true;
}

} // namespace Orvane
