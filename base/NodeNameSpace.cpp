#include "base/NodeNameSpace.h"

#include "base/Context.h"
#include "base/EventInSlot.h"
#include "base/EventOutSlot.h"
#include "base/Field.h"
#include "base/Log.h"
#include "base/NameText.h"
#include "base/Node.h"
#include "base/NodeType.h"
#include "base/NodeTypeNameSpace.h"
#include "base/Route.h"
#include "base/Subject.h"

#include <algorithm>
#include <atomic>
#include <utility>

namespace Orvane {

namespace {

const char* orNull(const char* text)
{
    return text ? text : "NULL";
}

template <class T>
void eraseValue(std::vector<T>& vec, const T& value)
{
    vec.erase(std::remove(vec.begin(), vec.end(), value), vec.end());
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

NodeNameSpace& NodeNameSpace::detached()
{
    // Held by itself: nothing may delete it while nodes of dead scopes live in it.
    static NodeNameSpace* const ns = [] {
        auto* made = new NodeNameSpace("detached");
        made->addRef();
        return made;
    }();
    return *ns;
}

NodeNameSpace::NodeNameSpace(const char* name, NodeNameSpace* parent, NodeTypeNameSpace* typeNameSpace)
    : _name(name ? name : ""), _typeNameSpace(typeNameSpace)
{
    if (_name.empty()) {
        static std::atomic<unsigned> counter{0};
        _name = "AN_NS_" + std::to_string(++counter);
        _autoNamed = true;
        ORV_INFO("Autoname Namespace %s\n", _name.c_str());
    }
    if (parent)
        setParent(parent);
}

NodeNameSpace::~NodeNameSpace()
{
    ORV_INFO("Run NodeNameSpace \"%s\" destructor and _nodeCount == %d\n", _name.c_str(), _nodeCount);
    if (deleteObjectSubject().observerCount())
        deleteObjectSubject().notify(0.0, this);

    // Context roots made for ROUTE ends go first; their routes into this scene go with them.
    _routeRoots.clear();

    // Publishing: importers keep their records, which now report the missing exporter.
    for (Export& entry : _exports)
        entry.node->_exported = false;
    _exports.clear();
    for (NodeNameSpace* importer : std::vector<NodeNameSpace*>(_importers)) {
        importer->forgetImportsFrom(*this);
        eraseValue(importer->_importsFrom, this);
    }
    _importers.clear();
    for (NodeNameSpace* exporter : std::vector<NodeNameSpace*>(_importsFrom))
        exporter->removeImporter(*this);
    _imports.clear();
    removeAllUsingNameSpace();
    for (NodeNameSpace* user : _usedBy)
        eraseValue(user->_using, this);
    _usedBy.clear();

    // The prototypes declared here go first, with their declaration nodes, unless instances
    // elsewhere still hold them.
    if (_ownsTypeNameSpace) {
        delete _typeNameSpace;
        _typeNameSpace = nullptr;
        _ownsTypeNameSpace = false;
    }

    // The scene goes with its scope: cut every node out of its parents and let go of it. A
    // node nobody else holds dies here, with its routes; a node that was never held (no
    // reference yet) is not touched, as a reference would destroy it under its maker's hands.
    ORV_INFO("~NodeNameSpace: Try to remove nodes from parents\n");
    {
        std::vector<SmartPtr<Node>> held;
        held.reserve(_nodeCount);
        for (Node* node = _firstNode; node; node = node->_nsNext)
            if (node->refCount() > 0)
                held.emplace_back(node);
        for (SmartPtr<Node>& node : held)
            node->removeAllParentLinks(0.0);
        while (!held.empty())
            held.pop_back();
    }
    // The survivors are held elsewhere: they move to the detached namespace without name.
    while (Node* node = _firstNode) {
        ORV_NOTICE("  %s/%s/%s: Cannot remove node: RC %d, PC %d\n", _name.c_str(), node->type().name().c_str(),
                   node->getIDStr().c_str(), node->refCount(), static_cast<int>(node->parentCount()));
        unlinkNode(*node);
        node->_nameSpace = &detached();
        detached().linkNode(*node);
    }
    _defMap.clear();

    if (!_children.empty())
        ORV_INFO("Remove Child nameSpace in destructor\n");
    for (NodeNameSpace* child : std::vector<NodeNameSpace*>(_children))
        child->setParent(nullptr);

    if (_importEventSubject) {
        _importEventSubject->detachAll();
        delete _importEventSubject;
    }
    if (_context)
        _context->unbind(*this);
    if (_parent)
        eraseValue(_parent->_children, this);
    if (_ownsTypeNameSpace)  // made again while the scene went
        delete _typeNameSpace;
}

// --- structure ---

bool NodeNameSpace::setParent(NodeNameSpace* parent)
{
    for (const NodeNameSpace* up = parent; up; up = up->_parent) {
        if (up == this) {
            ORV_WARNING("Cannot loop Namespaces\n");
            return false;
        }
    }
    if (_parent)
        eraseValue(_parent->_children, this);
    _parent = parent;
    if (_parent)
        _parent->_children.push_back(this);
    // A type namespace made for this one follows it to its new place.
    if (_ownsTypeNameSpace)
        _typeNameSpace->setParent(_parent ? &_parent->nodeTypeNameSpace() : &theBaseNodeTypeFactory());
    return true;
}

NodeTypeNameSpace& NodeNameSpace::nodeTypeNameSpace() const
{
    if (_typeNameSpace)
        return *_typeNameSpace;
    // At the top the base types serve; this is not kept, so that a later parent counts.
    if (!_parent)
        return theBaseNodeTypeFactory();
    NodeTypeNameSpace& up = _parent->nodeTypeNameSpace();
    _typeNameSpace = NodeTypeNameSpace::create(_name.c_str(), &up);
    _ownsTypeNameSpace = true;
    ORV_INFO("AUTOCREATE NodeTypeNameSpace %s as child of %s\n", _name.c_str(), up.name().c_str());
    return *_typeNameSpace;
}

NodeTypeNameSpace& NodeNameSpace::protoTypeNameSpace()
{
    NodeTypeNameSpace& current = nodeTypeNameSpace();
    if (&current != &theBaseNodeTypeFactory())
        return current;
    _typeNameSpace = NodeTypeNameSpace::create(_name.c_str(), &current);
    _ownsTypeNameSpace = true;
    ORV_INFO("AUTOCREATE NodeTypeNameSpace %s as child of %s\n", _name.c_str(), current.name().c_str());
    return *_typeNameSpace;
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

int NodeNameSpace::fillNodeVec(std::vector<Node*>& out, bool namedOnly) const
{
    out.clear();
    for (Node* node = _firstNode; node; node = node->_nsNext)
        if (!namedOnly || node->hasName())
            out.push_back(node);
    return static_cast<int>(out.size());
}

void NodeNameSpace::linkNode(Node& node)
{
    node._nsPrev = _lastNode;
    node._nsNext = nullptr;
    if (_lastNode)
        _lastNode->_nsNext = &node;
    else
        _firstNode = &node;
    _lastNode = &node;
    ++_nodeCount;
}

void NodeNameSpace::unlinkNode(Node& node)
{
    if (node._name)
        unregNode(node);
    dropExports(node);
    if (_root == &node)
        _root = nullptr;
    if (node._nsPrev)
        node._nsPrev->_nsNext = node._nsNext;
    else
        _firstNode = node._nsNext;
    if (node._nsNext)
        node._nsNext->_nsPrev = node._nsPrev;
    else
        _lastNode = node._nsPrev;
    node._nsPrev = node._nsNext = nullptr;
    --_nodeCount;
}

// --- DEF names ---

bool NodeNameSpace::regNode(Node& node, NodeType& type, const std::string& name, bool autoNamed)
{
    if (name.empty())
        return true;
    if (node._nameSpace != this) {
        ORV_WARNING("Cannot regNode %s in nameSpace %s; the node lives in %s\n", name.c_str(), _name.c_str(),
                    node._nameSpace->name().c_str());
        return false;
    }
    if (type.isProto() && !_root)
        ORV_WARNING("Proto-regNode() on root-less nodeNameSpace\n");
    if (!nodeTypeNameSpace().refType(type)) {
        ORV_FATAL("Cannot regNode; invalid Type\n");
        return false;
    }
    // One DEF entry per node: a new name replaces the old one.
    if (node._name)
        unregNode(node);
    auto found = _defMap.find(name);
    if (found != _defMap.end()) {
        ORV_WARNING("There is already a >%s< node DEFined in nameSpace %s\n", name.c_str(), _name.c_str());
        found->second = Entry{&node, autoNamed};
    } else {
        found = _defMap.emplace(name, Entry{&node, autoNamed}).first;
    }
    node._name = std::make_unique<const std::string>(found->first);
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

const std::string& NodeNameSpace::updateNamedNode(Node& node)
{
    static const std::string none;
    if (node._nameSpace != this)
        return none;
    if (node._name)
        return *node._name;
    // The node number makes the name unique in the process; a DEF name of the same spelling
    // gets a suffix.
    const std::string base = "AN_" + std::to_string(node.ID());
    std::string name = base;
    for (unsigned i = 1; _defMap.count(name); ++i)
        name = base + "_" + std::to_string(i);
    regNode(node, node.type(), name, true);
    return node.name();
}

Node* NodeNameSpace::localNode(const std::string& key) const
{
    auto found = _defMap.find(key);
    return found == _defMap.end() ? nullptr : found->second.node;
}

Node* NodeNameSpace::lookupName(const std::string& key, bool& imported) const
{
    imported = false;
    if (Node* node = localNode(key))
        return node;
    if (findImport(key)) {
        imported = true;
        return getImportedNode(key);
    }
    for (const NodeNameSpace* other : _using)
        if (Node* node = other->localNode(key))
            return node;
    return nullptr;
}

Node* NodeNameSpace::findNode(const std::string& name) const
{
    std::string key = NameText::trim(name);
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
    bool imported = false;
    if (Node* node = lookupName(key, imported))
        return node;
    if (imported)
        return nullptr;
    // The old way to reach into another scene; a DEF name may contain "::" itself, so it is
    // only tried when the whole name is unknown.
    auto split = key.rfind("::");
    if (split != std::string::npos && split > 0 && split + 2 < key.size()) {
        if (NodeNameSpace* ns = findNameSpace(key.substr(0, split))) {
            ORV_WARNING("Deprecated nameSpace select: %s; use IMPORT/EXPORT\n", key.c_str());
            return ns->localNode(key.substr(split + 2));
        }
    }
    return nullptr;
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

// --- nested namespaces ---

NodeNameSpace* NodeNameSpace::findNameSpace(const std::string& address) const
{
    std::vector<std::string> pieces;
    for (std::string::size_type pos = 0;;) {
        auto end = address.find("::", pos);
        pieces.push_back(address.substr(pos, end == std::string::npos ? std::string::npos : end - pos));
        if (end == std::string::npos)
            break;
        pos = end + 2;
    }
    for (const std::string& piece : pieces)
        if (piece.empty())
            return nullptr;

    auto child = [](const NodeNameSpace* ns, const std::string& name) -> NodeNameSpace* {
        for (NodeNameSpace* c : ns->_children)
            if (c->_name == name)
                return c;
        return nullptr;
    };
    NodeNameSpace* at = nullptr;
    const NodeNameSpace* top = this;
    for (const NodeNameSpace* ns = this; ns && !at; ns = ns->_parent) {
        at = child(ns, pieces[0]);
        top = ns;
    }
    if (!at && top->_name == pieces[0])
        at = const_cast<NodeNameSpace*>(top);
    for (std::size_t i = 1; at && i < pieces.size(); ++i)
        at = child(at, pieces[i]);
    return at;
}

int NodeNameSpace::getNameSpaceVec(std::vector<NodeNameSpace*>& out, bool recursive) const
{
    out.clear();
    std::vector<const NodeNameSpace*> stack{this};
    while (!stack.empty()) {
        const NodeNameSpace* ns = stack.back();
        stack.pop_back();
        for (auto it = ns->_children.rbegin(); it != ns->_children.rend(); ++it) {
            out.push_back(*it);
            if (recursive)
                stack.push_back(*it);
        }
    }
    // Children were taken last first so that the stack runs depth first in order; put the
    // plain list back into order.
    if (!recursive)
        std::reverse(out.begin(), out.end());
    return static_cast<int>(out.size());
}

void NodeNameSpace::addUsingNameSpace(NodeNameSpace& other)
{
    if (&other == this || std::find(_using.begin(), _using.end(), &other) != _using.end())
        return;
    _using.push_back(&other);
    other._usedBy.push_back(this);
}

void NodeNameSpace::removeAllUsingNameSpace()
{
    for (NodeNameSpace* other : _using)
        eraseValue(other->_usedBy, this);
    _using.clear();
}

void NodeNameSpace::addComponent(Component& component)
{
    if (std::find(_components.begin(), _components.end(), &component) == _components.end())
        _components.push_back(&component);
}

// --- metadata ---

void NodeNameSpace::setMetaData(const std::string& name, const std::string& content)
{
    for (MetaData& entry : _metaData) {
        if (entry.name == name) {
            entry.content = content;
            return;
        }
    }
    _metaData.push_back(MetaData{name, content});
}

const std::string* NodeNameSpace::getMetaData(const std::string& name) const
{
    for (const MetaData& entry : _metaData)
        if (entry.name == name)
            return &entry.content;
    return nullptr;
}

// --- routes by name ---

Node* NodeNameSpace::routeNode(const std::string& name, bool create, bool& isContextRoot, bool& imported)
{
    isContextRoot = false;
    imported = false;
    std::string key = NameText::trim(name);
    if (key.empty() || Node::parseIDStr(key))
        return findNode(key);
    if (Node* node = lookupName(key, imported))
        return node;
    if (imported)
        return nullptr;
    // The deprecated prefix form.
    if (Node* node = findNode(key))
        return node;

    // A context root's type name stands for that root: the context's, one made earlier for a
    // route, or a new one kept here.
    const NodeTypeNameSpace* types = _typeNameSpace;
    for (const NodeNameSpace* ns = _parent; !types && ns; ns = ns->_parent)
        types = ns->_typeNameSpace;
    NodeType* type = NodeTypeNameSpace::findType(types ? types : &theBaseNodeTypeFactory(), key, CaseSensitive);
    if (!type || type->name() != key || !type->isContextRoot())
        return nullptr;
    isContextRoot = true;
    if (Context* ctx = context())
        if (Node* root = ctx->findRoot(*type))
            return root;
    for (SmartPtr<Node>& held : _routeRoots)
        if (&held->type() == type)
            return held.get();
    if (!create)
        return nullptr;
    Node* made = type->createNode(nullptr, nullptr, SystemCreator);
    if (made)
        _routeRoots.emplace_back(made);
    return made;
}

Route* NodeNameSpace::createRoute(const char* fromNodeName, const char* fromFieldName, const char* toNodeName,
                                 const char* toFieldName)
{
    Route* route = nullptr;
    auto attempt = [&]() -> const char* {
        bool fromRoot = false, toRoot = false, fromImported = false, toImported = false;
        if (!fromNodeName || !*fromNodeName)
            return "Invalid fromNodeName";
        Node* from = routeNode(fromNodeName, true, fromRoot, fromImported);
        if (!from)
            return "Invalid fromNode";
        Field* outField = fromFieldName ? from->findField(fromFieldName, SearchOutSlot) : nullptr;
        EventOutSlot* out = outField ? outField->createOutSlot(fromRoot) : nullptr;
        if (!out)
            return "Invalid outSlot";
        if (!toNodeName || !*toNodeName)
            return "Invalid toNodeName";
        Node* to = routeNode(toNodeName, true, toRoot, toImported);
        if (!to)
            return "Invalid toNode";
        Field* inField = toFieldName ? to->findField(toFieldName, SearchInSlot) : nullptr;
        EventInSlot* in = inField ? inField->createInSlot(toRoot) : nullptr;
        if (!in)
            return "Invalid inSlot";
        route = Route::create(*out, *in, fromImported || toImported ? Route::IMPORT : Route::DEFAULT);
        return route ? nullptr : "Type mismatch";
    };
    if (const char* reason = attempt()) {
        ORV_WARNING("Can't create ROUTE >%s.%s< TO >%s.%s<: %s\n", orNull(fromNodeName), orNull(fromFieldName),
                    orNull(toNodeName), orNull(toFieldName), reason);
        return nullptr;
    }
    ORV_INFO("CreateRoute: >%s.%s< to >%s.%s<\n", fromNodeName, fromFieldName, toNodeName, toFieldName);
    return route;
}

bool NodeNameSpace::deleteRoute(const char* fromNodeName, const char* fromFieldName, const char* toNodeName,
                                const char* toFieldName)
{
    // The same look-ups as createRoute, but nothing is made: a missing slot has no route.
    auto attempt = [&]() -> const char* {
        bool root = false, imported = false;
        Node* from = routeNode(fromNodeName ? fromNodeName : "", false, root, imported);
        if (!from)
            return "Invalid fromNode";
        Field* outField = fromFieldName ? from->findField(fromFieldName, SearchOutSlot) : nullptr;
        EventOutSlot* out = outField ? outField->getOutSlot() : nullptr;
        if (!out)
            return "Invalid outSlot";
        Node* to = routeNode(toNodeName ? toNodeName : "", false, root, imported);
        if (!to)
            return "Invalid toNode";
        Field* inField = toFieldName ? to->findField(toFieldName, SearchInSlot) : nullptr;
        EventInSlot* in = inField ? inField->getInSlot() : nullptr;
        if (!in)
            return "Invalid inSlot";
        // No route between the two slots fails at the step where createRoute would have made
        // it, with that step's reason.
        return out->disconnect(in) ? nullptr : "Type mismatch";
    };
    if (const char* reason = attempt()) {
        ORV_WARNING("Can't delete ROUTE >%s.%s< TO >%s.%s<: %s\n", orNull(fromNodeName), orNull(fromFieldName),
                    orNull(toNodeName), orNull(toFieldName), reason);
        return false;
    }
    ORV_INFO("DeleteRoute: >%s.%s< to >%s.%s<\n", fromNodeName, fromFieldName, toNodeName, toFieldName);
    return true;
}

// --- EXPORT ---

bool NodeNameSpace::exportNode(const std::string& localName, const std::string& exportName)
{
    Node* node = localNode(NameText::trim(localName));
    if (!node) {
        ORV_WARNING("Import/Export error: cannot find node\n");
        return false;
    }
    return exportNode(*node, exportName);
}

bool NodeNameSpace::exportNode(Node& node, const std::string& exportName)
{
    if (node._nameSpace != this) {
        ORV_WARNING("Import/Export error: cannot find node\n");
        return false;
    }
    const std::string name = exportName.empty() ? (node.hasName() ? node.name() : std::string()) : exportName;
    if (name.empty()) {
        ORV_WARNING("Import/Export error: %s missing exportName\n", node.getIDStr().c_str());
        return false;
    }
    for (Export& entry : _exports) {
        if (entry.name != name)
            continue;
        if (entry.node != &node) {
            Node* former = std::exchange(entry.node, &node);
            node._exported = true;
            updateExported(*former);
        }
        return true;
    }
    _exports.push_back(Export{&node, name});
    node._exported = true;
    return true;
}

Node* NodeNameSpace::getExportedNode(const std::string& exportName) const
{
    for (const Export& entry : _exports)
        if (entry.name == exportName)
            return entry.node;
    return nullptr;
}

bool NodeNameSpace::removeExportedNode(const std::string& exportName)
{
    for (auto it = _exports.begin(); it != _exports.end(); ++it) {
        if (it->name == exportName) {
            Node* node = it->node;
            _exports.erase(it);
            updateExported(*node);
            return true;
        }
    }
    return false;
}

void NodeNameSpace::dropExports(Node& node)
{
    if (!node._exported)
        return;
    _exports.erase(std::remove_if(_exports.begin(), _exports.end(), [&](const Export& e) { return e.node == &node; }),
                   _exports.end());
    node._exported = false;
}

void NodeNameSpace::updateExported(Node& node) const
{
    node._exported = std::any_of(_exports.begin(), _exports.end(), [&](const Export& e) { return e.node == &node; });
}

// --- IMPORT ---

const NodeNameSpace::Import* NodeNameSpace::findImport(const std::string& localName) const
{
    for (const Import& entry : _imports)
        if (entry.localName == localName)
            return &entry;
    return nullptr;
}

bool NodeNameSpace::importNode(NodeNameSpace& from, const std::string& exportName, const std::string& localName)
{
    if (exportName.empty()) {
        ORV_WARNING("Import/Export error: %s missing exportName\n", from._name.c_str());
        return false;
    }
    // Exports are published to the scene around the exporting one.
    if (!from._parent) {
        ORV_WARNING("Import/Export error: %s.%s no parent namespace\n", from._name.c_str(), exportName.c_str());
        return false;
    }
    const std::string local = localName.empty() ? exportName : localName;
    removeImport(local);
    _imports.push_back(Import{&from, exportName, local});
    from.addImporter(*this);
    return true;
}

bool NodeNameSpace::importNode(const std::string& from, const std::string& exportName, const std::string& localName)
{
    NodeNameSpace* exporter = findNameSpace(NameText::trim(from));
    if (!exporter) {
        ORV_WARNING("Import/Export error: missing export description\n");
        return false;
    }
    return importNode(*exporter, exportName, localName);
}

Node* NodeNameSpace::getImportedNode(const std::string& localName) const
{
    const Import* entry = findImport(localName);
    if (!entry)
        return nullptr;
    if (!entry->from) {
        ORV_WARNING("Import/Export error: missing export description\n");
        return nullptr;
    }
    Node* node = entry->from->getExportedNode(entry->exportName);
    if (!node)
        ORV_WARNING("Import/Export error: %s.%s cannot find export\n", entry->from->_name.c_str(),
                    entry->exportName.c_str());
    return node;
}

bool NodeNameSpace::removeImport(const std::string& localName)
{
    auto found = std::find_if(_imports.begin(), _imports.end(),
                              [&](const Import& e) { return e.localName == localName; });
    if (found == _imports.end())
        return false;
    NodeNameSpace* from = found->from;
    _imports.erase(found);
    if (from && std::none_of(_imports.begin(), _imports.end(), [&](const Import& e) { return e.from == from; }))
        from->removeImporter(*this);
    return true;
}

void NodeNameSpace::addImporter(NodeNameSpace& importer)
{
    if (std::find(_importers.begin(), _importers.end(), &importer) != _importers.end())
        return;
    _importers.push_back(&importer);
    importer._importsFrom.push_back(this);
}

void NodeNameSpace::removeImporter(NodeNameSpace& importer)
{
    eraseValue(_importers, &importer);
    eraseValue(importer._importsFrom, this);
}

void NodeNameSpace::forgetImportsFrom(NodeNameSpace& exporter)
{
    for (Import& entry : _imports)
        if (entry.from == &exporter)
            entry.from = nullptr;
}

bool NodeNameSpace::transferEventToExport(const double& time, const std::string& localName,
                                          const std::string& fieldName, Field& value)
{
    Node* node = getImportedNode(localName);
    if (!node) {
        ORV_WARNING("Import/Export error: cannot find node\n");
        return false;
    }
    Field* field = node->findField(fieldName, SearchInSlot);
    if (!field) {
        ORV_WARNING("Import/Export error: cannot find field\n");
        return false;
    }
    EventInSlot* in = field->createInSlot(false);
    if (!in) {
        ORV_WARNING("Import/Export error: cannot provide inslot\n");
        return false;
    }
    in->receiveEvent(time, value, nullptr, nullptr);
    return true;
}

unsigned NodeNameSpace::transferEventFromExport(const double& time, Field& value, EventOutSlot& slot)
{
    Node* node = &slot.field().owner();
    unsigned reached = 0;
    // By index: an observer may change the imports.
    for (std::size_t i = 0; i < _importers.size(); ++i) {
        NodeNameSpace* importer = _importers[i];
        bool imports = std::any_of(importer->_imports.begin(), importer->_imports.end(), [&](const Import& e) {
            return e.from == this && getExportedNode(e.exportName) == node;
        });
        if (!imports)
            continue;
        ++reached;
        Subject* subject = importer->_importEventSubject;
        if (subject && subject->observerCount())
            subject->notify(time, &value, &slot);
    }
    return reached;
}

Subject& NodeNameSpace::importEventSubject()
{
    if (!_importEventSubject)
        _importEventSubject = new Subject("importEvent");
    return *_importEventSubject;
}

// --- context ---

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

} // namespace Orvane
