#include "base/NodeNameSpace.h"

#include "base/Context.h"
#include "base/EventOutSlot.h"
#include "base/Field.h"
#include "base/Log.h"
#include "base/Node.h"
#include "base/NodeType.h"
#include "base/NodeTypeNameSpace.h"
#include "base/Subject.h"

#include <algorithm>

namespace Orvane {

namespace {

std::string trim(const std::string& text)
{
    static const char* const blanks = " \t\r\n";
    auto first = text.find_first_not_of(blanks);
    if (first == std::string::npos)
        return std::string();
    auto last = text.find_last_not_of(blanks);
    return text.substr(first, last - first + 1);
}

} // namespace

Subject& NodeNameSpace::newObjectSubject()
{
    static Subject& subject = *new Subject("newNamedNode");
    return subject;
}

Subject& NodeNameSpace::deleteObjectSubject()
{
    static Subject& subject = *new Subject("deleteNodeNameSpace");
    return subject;
}

NodeNameSpace::NodeNameSpace(const char* name, NodeNameSpace* parent, NodeTypeNameSpace* typeNameSpace)
    : _name(name ? name : ""), _typeNameSpace(typeNameSpace)
{
    if (parent)
        setParent(parent);
    if (!_typeNameSpace)
        _typeNameSpace = _parent ? _parent->_typeNameSpace : &theBaseNodeTypeFactory();
}

NodeNameSpace::~NodeNameSpace()
{
    ORV_INFO("Run NodeNameSpace \"%s\" destructor and _nodeCount == %d\n", _name.c_str(), _nodeCount);
    if (deleteObjectSubject().observerCount())
        deleteObjectSubject().notify(0.0, this);
    // Nodes that outlive their scope keep their names but are no longer found by them.
    for (auto& [name, entry] : _defMap)
        if (entry.node->_nameSpace == this)
            entry.node->_name.reset();
    if (!_children.empty())
        ORV_INFO("Remove Child nameSpace in destructor\n");
    for (NodeNameSpace* child : _children)
        child->_parent = nullptr;
    for (NodeNameSpace* importer : std::vector<NodeNameSpace*>(_importers))
        removeImporter(*importer);
    for (NodeNameSpace* exporter : std::vector<NodeNameSpace*>(_importsFrom))
        exporter->removeImporter(*this);
    if (_importEventSubject) {
        _importEventSubject->detachAll();
        delete _importEventSubject;
    }
    if (_context)
        _context->unbind(*this);
    if (_parent) {
        auto& siblings = _parent->_children;
        siblings.erase(std::remove(siblings.begin(), siblings.end(), this), siblings.end());
    }
}

bool NodeNameSpace::setParent(NodeNameSpace* parent)
{
    for (const NodeNameSpace* up = parent; up; up = up->_parent) {
        if (up == this) {
            ORV_WARNING("Cannot loop Namespaces\n");
            return false;
        }
    }
    if (_parent) {
        auto& siblings = _parent->_children;
        siblings.erase(std::remove(siblings.begin(), siblings.end(), this), siblings.end());
    }
    _parent = parent;
    if (_parent)
        _parent->_children.push_back(this);
    return true;
}

bool NodeNameSpace::setRoot(Node& root)
{
    if (_root) {
        ORV_WARNING("NodeNameSpace::setRoot call and _root != 0\n");
        return false;
    }
    _root = &root;
    return true;
}

bool NodeNameSpace::regNode(Node& node, NodeType& type, const std::string& name, bool autoNamed)
{
    if (name.empty())
        return true;
    if (type.isProto() && !_root)
        ORV_WARNING("Proto-regNode() on root-less nodeNameSpace\n");
    if (!_typeNameSpace->refType(type)) {
        ORV_FATAL("Cannot regNode; invalid Type\n");
        return false;
    }
    auto found = _defMap.find(name);
    if (found != _defMap.end()) {
        ORV_WARNING("There is already a >%s< node DEFined in nameSpace %s\n", name.c_str(), _name.c_str());
        found->second = Entry{&node, autoNamed};
        node._name = std::make_shared<const std::string>(found->first);
    } else {
        auto placed = _defMap.emplace(name, Entry{&node, autoNamed}).first;
        node._name = std::make_shared<const std::string>(placed->first);
    }
    if (newObjectSubject().observerCount())
        newObjectSubject().notify(0.0, &node);
    return true;
}

void NodeNameSpace::unregNode(Node& node)
{
    if (!node._name)
        return;
    auto found = _defMap.find(*node._name);
    // A node whose name was taken over keeps it, but the entry is the other node's.
    if (found != _defMap.end() && found->second.node == &node)
        _defMap.erase(found);
    node._name.reset();
}

Node* NodeNameSpace::findNode(const std::string& name) const
{
    std::string key = trim(name);
    if (key.empty()) {
        ORV_WARNING("Invalid param (empty name) for findNode()\n");
        return nullptr;
    }
    if (std::uint64_t id = Node::parseIDStr(key)) {
        if (Node::idMapSize() == 0 && !Node::findNode(id)) {
            ORV_WARNING("Can not search node by ID; _idMap == 0\n");
            return nullptr;
        }
        Node* node = Node::findNode(id);
        if (!node)
            ORV_WARNING("Unknown node id: >%s<, >%lld<\n", key.c_str(), static_cast<long long>(id));
        return node;
    }
    auto found = _defMap.find(key);
    return found == _defMap.end() ? nullptr : found->second.node;
}

bool NodeNameSpace::isAutoNamed(const Node& node) const
{
    if (!node.hasName())
        return false;
    auto found = _defMap.find(node.name());
    return found != _defMap.end() && found->second.node == &node && found->second.autoNamed;
}

bool NodeNameSpace::fillAbsolutAddress(std::string& out) const
{
    out.clear();
    bool complete = true;
    for (const NodeNameSpace* ns = this; ns; ns = ns->_parent) {
        if (ns->_name.empty())
            complete = false;
        out = out.empty() ? ns->_name : ns->_name + "::" + out;
    }
    return complete;
}

// --- context and live content ---

Context* NodeNameSpace::context() const
{
    for (const NodeNameSpace* ns = this; ns; ns = ns->_parent)
        if (ns->_context)
            return ns->_context;
    return nullptr;
}

void NodeNameSpace::setContext(Context* context)
{
    if (context == _context)
        return;
    if (_context)
        _context->unbind(*this);
    _context = context;
    if (_context)
        _context->bind(*this);
}

// --- imports ---

void NodeNameSpace::addImporter(NodeNameSpace& importer)
{
    if (std::find(_importers.begin(), _importers.end(), &importer) != _importers.end())
        return;
    _importers.push_back(&importer);
    importer._importsFrom.push_back(this);
}

void NodeNameSpace::removeImporter(NodeNameSpace& importer)
{
    _importers.erase(std::remove(_importers.begin(), _importers.end(), &importer), _importers.end());
    auto& from = importer._importsFrom;
    from.erase(std::remove(from.begin(), from.end(), this), from.end());
}

unsigned NodeNameSpace::transferEventFromExport(const double& time, Field& value, EventOutSlot& slot)
{
    unsigned reached = 0;
    // By index: an observer may change the imports.
    for (std::size_t i = 0; i < _importers.size(); ++i) {
        Subject* subject = _importers[i]->_importEventSubject;
        if (subject && subject->observerCount())
            subject->notify(time, &value, &slot);
        ++reached;
    }
    return reached;
}

Subject& NodeNameSpace::importEventSubject()
{
    if (!_importEventSubject)
        _importEventSubject = new Subject("importEvent");
    return *_importEventSubject;
}

} // namespace Orvane
