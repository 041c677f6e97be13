#include "base/NodePath.h"

#include "base/Field.h"
#include "base/Log.h"
#include "base/MFNode.h"
#include "base/Node.h"
#include "base/NodeLink.h"
#include "base/NodePartDesc.h"
#include "base/SFNode.h"

#include <iostream>
#include <unordered_set>

namespace Orvane {

namespace {

const char* nameOf(const Node* node)
{
    return node ? node->getIDStr().c_str() : "NULL";
}

} // namespace

NodePath::~NodePath() = default;

NodePath::StepResult NodePath::follow(const Node& from, const Step& step, NodeLink*& link)
{
    link = nullptr;
    Field* field = from.builtField(step.fieldId);
    if (!field)  // a field not made yet holds no node
        return from.madeOnDemand(step.fieldId) ? StepResult::NoNode : StepResult::NoField;
    if (field->dataType() == MFNodeType) {
        auto& list = static_cast<MFNode&>(*field);
        if (list.size() <= step.childId)
            return StepResult::SizeMismatch;
        link = &*std::next(list.begin(), step.childId);
    } else if (field->dataType() == SFNodeType) {
        link = &static_cast<SFNode&>(*field).link();
    }
    return link && link->directNode() ? StepResult::Ok : StepResult::NoNode;
}

Node* NodePath::node() const
{
    if (!_root) {
        ORV_FATAL("NodePath - NO ROOT NODE\n");
        return nullptr;
    }
    Node* current = _root;
    for (auto step = _steps.rbegin(); step != _steps.rend(); ++step) {
        NodeLink* link;
        switch (follow(*current, *step, link)) {
        case StepResult::NoField:
            ORV_FATAL("NodePath - NO FIELD\n");
            return nullptr;
        case StepResult::SizeMismatch:
            ORV_FATAL("NodePath - MFNODE SIZEMISSMATCH\n");
            return nullptr;
        case StepResult::NoNode:
            ORV_FATAL("NodePath - UNABLE TO GET NODE\n");
            return nullptr;
        case StepResult::Ok:
            current = link->directNode();
            break;
        }
    }
    return current;
}

void NodePath::nodeLinks(std::list<NodeLink*>& links) const
{
    links.clear();
    Node* current = _root;
    for (auto step = _steps.rbegin(); current && step != _steps.rend(); ++step) {
        NodeLink* link;
        if (follow(*current, *step, link) != StepResult::Ok)
            return;
        links.push_front(link);
        current = link->directNode();
    }
}

NodeLink* NodePath::nodeLink() const
{
    if (_steps.empty())
        return nullptr;
    std::list<NodeLink*> links;
    nodeLinks(links);
    return links.size() == _steps.size() ? links.front() : nullptr;
}

bool NodePath::findStep(const Node& parent, const Node* child, Step& step)
{
    for (unsigned id = 0; id < parent.partCount(); ++id) {
        Field* field = parent.builtField(id);
        if (!field && parent.madeOnDemand(id))
            continue;  // not made, so empty
        if (!field)
            return false;
        if (field->dataType() == MFNodeType) {
            std::uint32_t position = 0;
            for (const NodeLink& link : static_cast<MFNode&>(*field)) {
                if (link.directNode() == child) {
                    step = Step{id, position};
                    return true;
                }
                ++position;
            }
        } else if (field->dataType() == SFNodeType && static_cast<SFNode&>(*field).node() == child) {
            step = Step{id, 0};
            return true;
        }
    }
    return false;
}

const NodePath& NodePath::addNode(Node* child)
{
    Node* end = node();
    Step step;
    if (end && child && findStep(*end, child, step))
        _steps.push_front(step);
    return *this;
}

void NodePath::climb(Node* node)
{
    // The first parent links may lead round in a circle: each node is passed once.
    std::unordered_set<const Node*> passed;
    while (node->hasParents()) {
        Node* parent = node->getFirstParent()->parent();
        Step step;
        if (!parent || !passed.insert(node).second || !findStep(*parent, node, step)) {
            ORV_WARNING("NodePath::setNode: cannot climb from %s to its first parent\n", nameOf(node));
            _steps.clear();
            return;
        }
        _steps.push_back(step);
        node = parent;
    }
    _root = node;
}

void NodePath::setNode(Node* node)
{
    _steps.clear();
    _root = nullptr;
    if (node)
        climb(node);
}

void NodePath::setNode(NodeLink* link)
{
    _steps.clear();
    _root = nullptr;
    if (!link || !link->directNode())
        return;
    setNode(std::list<NodeLink*>{link});
    Node* parent = link->parent();
    _root = nullptr;
    if (!parent || _steps.empty()) {
        _steps.clear();
        return;
    }
    climb(parent);
}

void NodePath::setNode(const std::list<NodeLink*>& links)
{
    _steps.clear();
    _root = nullptr;
    if (links.empty()) {
        ORV_WARNING("NodePath - LINKLIST EMPTY\n");
        return;
    }
    for (NodeLink* link : links) {
        if (!link || !link->directNode() || !link->directNode()->hasParents())
            break;
        Field* field = link->getField();
        if (!field) {
            ORV_WARNING("NodePath::setNode: field is 0. Maybe dynamic change?\n");
            break;
        }
        std::uint32_t childId = 0;
        if (field->dataType() == MFNodeType) {
            bool held = false;
            for (NodeLink& entry : static_cast<MFNode&>(*field)) {
                if (&entry == link) {
                    held = true;
                    break;
                }
                ++childId;
            }
            if (!held) {
                std::cerr << "Wrong link list" << std::endl;
                break;
            }
        }
        _steps.push_back(Step{field->desc() ? field->desc()->ID() : 0u, childId});
    }
    Node* last = links.back() ? links.back()->directNode() : nullptr;
    if (last && last->hasParents())
        _root = last->getFirstParent()->parent();
}

NodePath NodePath::parent() const
{
    NodePath up;
    if (_steps.empty())
        return up;
    if (_steps.size() == 1) {
        up._root = _root;
        return up;
    }
    std::list<NodeLink*> links;
    nodeLinks(links);
    if (links.size() != _steps.size())
        return up;
    links.pop_front();
    up.setNode(links);
    return up;
}

void NodePath::dump() const
{
    ORV_PLOG("----------------------------\n");
    ORV_PLOG("NodePath dump (root=%s):\n", nameOf(_root));
    for (const Step& step : _steps)
        ORV_PLOG(" fieldId=%d, childId=%d\n", static_cast<int>(step.fieldId), static_cast<int>(step.childId));
    ORV_PLOG("node=%s\n", nameOf(_root ? node() : nullptr));
    ORV_PLOG("----------------------------\n");
}

} // namespace Orvane
