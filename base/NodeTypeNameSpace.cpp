#include "base/NodeTypeNameSpace.h"

#include "base/Log.h"
#include "base/NameText.h"
#include "base/NodeType.h"
#include "base/Subject.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>

namespace Orvane {

namespace {

// Process-wide state. Never destroyed: static node types unregister themselves at exit in no
// particular order, and must still find it.
struct Registry {
    std::mutex                                         mutex;
    std::map<std::string, NodeTypeNameSpace*>          roots;
    std::map<std::uint64_t, NodeTypeNameSpace*>        ids;
    std::uint64_t                                      nextID = 1;
};

Registry& registry()
{
    static Registry& r = *new Registry;
    return r;
}

std::vector<std::string> splitScopes(const std::string& address)
{
    std::vector<std::string> parts;
    std::string::size_type pos = 0;
    for (;;) {
        auto at = address.find("::", pos);
        parts.push_back(address.substr(pos, at == std::string::npos ? std::string::npos : at - pos));
        if (at == std::string::npos)
            break;
        pos = at + 2;
    }
    return parts;
}

} // namespace

NodeTypeNameSpace& theBaseNodeTypeFactory()
{
    static NodeTypeNameSpace& base = *NodeTypeNameSpace::create("base", nullptr);
    return base;
}

Subject& NodeTypeNameSpace::newObjectSubject()
{
    static Subject& subject = *new Subject("newNodeTypeNameSpace");
    return subject;
}

Subject& NodeTypeNameSpace::deleteObjectSubject()
{
    static Subject& subject = *new Subject("deleteNodeTypeNameSpace");
    return subject;
}

NodeTypeNameSpace* NodeTypeNameSpace::create(const char* name, NodeTypeNameSpace* parent)
{
    auto* ns = new NodeTypeNameSpace(name, parent);
    if (newObjectSubject().observerCount())
        newObjectSubject().notify(0.0, ns);
    return ns;
}

NodeTypeNameSpace::NodeTypeNameSpace(const char* name, NodeTypeNameSpace* parent) : _name(name ? name : "")
{
    Registry& r = registry();
    {
        std::lock_guard<std::mutex> lock(r.mutex);
        _ID = r.nextID++;
        r.ids[_ID] = this;
        if (!parent) {
            if (_name.empty())
                ORV_WARNING("Root NodeTypeNameSpace without name\n");
            else if (r.roots.count(_name))
                ORV_WARNING("There is already root >%s< NodeTypeNameSpace\n", _name.c_str());
            else
                r.roots[_name] = this;
        }
    }
    if (parent)
        setParent(parent);
}

NodeTypeNameSpace::~NodeTypeNameSpace()
{
    if (deleteObjectSubject().observerCount())
        deleteObjectSubject().notify(0.0, this);
    if (_protoLibrary)
        ORV_WARNING("ProtoLibrary != Null in NodeTypeNameSpace destructor\n");
    // Types that outlive their scope must not point back into it.
    for (auto& [name, type] : _typeMap)
        if (type->_nameSpace == this)
            type->_nameSpace = nullptr;
    for (SmartPtr<NodeType>& type : _ownedTypes)
        if (type->_nameSpace == this)
            type->_nameSpace = nullptr;
    // The prototypes declared here go, unless instances still hold them.
    while (!_ownedTypes.empty())
        _ownedTypes.pop_back();
    for (NodeTypeNameSpace* child : _children)
        child->_parent = nullptr;
    if (_parent) {
        auto& siblings = _parent->_children;
        siblings.erase(std::remove(siblings.begin(), siblings.end(), this), siblings.end());
    }
    Registry& r = registry();
    std::lock_guard<std::mutex> lock(r.mutex);
    r.ids.erase(_ID);
    auto root = r.roots.find(_name);
    if (root != r.roots.end() && root->second == this)
        r.roots.erase(root);
}

void NodeTypeNameSpace::setParent(NodeTypeNameSpace* parent)
{
    if (parent == _parent)
        return;
    for (const NodeTypeNameSpace* up = parent; up; up = up->_parent) {
        if (up == this) {
            ORV_WARNING("Cannot loop Namespaces\n");
            return;
        }
    }
    if (_parent) {
        auto& siblings = _parent->_children;
        siblings.erase(std::remove(siblings.begin(), siblings.end(), this), siblings.end());
    }
    _parent = parent;
    if (_parent)
        _parent->_children.push_back(this);
}

void NodeTypeNameSpace::regType(NodeType& type)
{
    if (_typeMap.count(type.name()))
        ORV_FATAL("There is already a %s NodeType registered in %s\n", type.name().c_str(), _name.c_str());
    if (type.isProto() && !type.isAliasOf() && !_firstProto)
        _firstProto = &type;
    _typeMap[type.name()] = &type;
    _lowerTypeMap[NameText::toLower(type.name())] = &type;
    type._nameSpace = this;
}

void NodeTypeNameSpace::adoptType(NodeType& type)
{
    _ownedTypes.emplace_back(&type);
}

void NodeTypeNameSpace::unregType(NodeType& type)
{
    forgetType(type);
    if (_firstProto == &type)
        _firstProto = nullptr;
}

void NodeTypeNameSpace::forgetType(const NodeType& type)
{
    for (TypeMap* map : {&_typeMap, &_lowerTypeMap}) {
        for (auto it = map->begin(); it != map->end();) {
            if (it->second == &type)
                it = map->erase(it);
            else
                ++it;
        }
    }
}

void NodeTypeNameSpace::forgetTypeEverywhere(const NodeType& type)
{
    std::vector<NodeTypeNameSpace*> all;
    getNameSpaceVec(all, false);
    for (NodeTypeNameSpace* ns : all)
        ns->forgetType(type);
}

NodeType* NodeTypeNameSpace::findLocalType(const std::string& name, SearchCaseType searchCase) const
{
    if (searchCase == CaseSensitive) {
        auto found = _typeMap.find(name);
        return found == _typeMap.end() ? nullptr : found->second;
    }
    auto found = _lowerTypeMap.find(NameText::toLower(name));
    return found == _lowerTypeMap.end() ? nullptr : found->second;
}

NodeType* NodeTypeNameSpace::findType(const NodeTypeNameSpace* start, const std::string& address,
                                      SearchCaseType searchCase)
{
    std::string trimmed = NameText::trim(address);
    if (trimmed.empty()) {
        ORV_WARNING("Invalid param (empty address) for findType()\n");
        return nullptr;
    }
    std::string name = trimmed;
    auto scope = trimmed.rfind("::");
    if (scope != std::string::npos) {
        std::string prefix = trimmed.substr(0, scope);
        name = trimmed.substr(scope + 2);
        start = prefix.empty() ? nullptr
                : start        ? start->findNameSpace(prefix)
                               : findAbsolutNameSpace(prefix);
        if (!start || name.empty())
            return nullptr;
    } else if (std::isdigit(static_cast<unsigned char>(trimmed[0]))) {
        return NodeType::findType(static_cast<unsigned>(std::strtoul(trimmed.c_str(), nullptr, 10)));
    }
    if (searchCase != CaseSensitive)
        name = NameText::toLower(name);
    for (const NodeTypeNameSpace* ns = start; ns; ns = ns->_parent) {
        const TypeMap& map = searchCase == CaseSensitive ? ns->_typeMap : ns->_lowerTypeMap;
        auto found = map.find(name);
        if (found != map.end())
            return found->second;
    }
    return nullptr;
}

NodeType* NodeTypeNameSpace::findAbsolutType(const std::string& address, SearchCaseType searchCase)
{
    std::string trimmed = NameText::trim(address);
    if (trimmed.find("::") == std::string::npos) {
        // A plain name from the roots: the native types.
        if (trimmed.empty() || std::isdigit(static_cast<unsigned char>(trimmed[0])))
            return findType(nullptr, trimmed, searchCase);
        return findType(&theBaseNodeTypeFactory(), trimmed, searchCase);
    }
    return findType(nullptr, trimmed, searchCase);
}

NodeTypeNameSpace* NodeTypeNameSpace::findChild(const std::string& name) const
{
    for (NodeTypeNameSpace* child : _children)
        if (child->_name == name)
            return child;
    return nullptr;
}

NodeTypeNameSpace* NodeTypeNameSpace::findNameSpace(const std::string& address) const
{
    std::vector<std::string> parts = splitScopes(NameText::trim(address));
    if (parts.empty() || parts[0].empty())
        return findAbsolutNameSpace(address);
    // The first scope is looked for as this one, its children, then the same climbing up.
    NodeTypeNameSpace* ns = nullptr;
    for (const NodeTypeNameSpace* up = this; up && !ns; up = up->_parent) {
        if (up->_name == parts[0])
            ns = const_cast<NodeTypeNameSpace*>(up);
        else
            ns = up->findChild(parts[0]);
    }
    if (!ns)
        return findAbsolutNameSpace(address);
    for (std::size_t i = 1; ns && i < parts.size(); ++i)
        ns = ns->findChild(parts[i]);
    return ns;
}

NodeTypeNameSpace* NodeTypeNameSpace::findAbsolutNameSpace(const std::string& address)
{
    std::vector<std::string> parts = splitScopes(NameText::trim(address));
    std::size_t first = 0;
    while (first < parts.size() && parts[first].empty())
        ++first;
    if (first == parts.size())
        return nullptr;
    NodeTypeNameSpace* ns = nullptr;
    {
        Registry& r = registry();
        std::lock_guard<std::mutex> lock(r.mutex);
        auto found = r.roots.find(parts[first]);
        if (found != r.roots.end())
            ns = found->second;
    }
    for (std::size_t i = first + 1; ns && i < parts.size(); ++i)
        ns = ns->findChild(parts[i]);
    return ns;
}

NodeTypeNameSpace* NodeTypeNameSpace::findNameSpace(std::uint64_t id)
{
    Registry& r = registry();
    std::lock_guard<std::mutex> lock(r.mutex);
    auto found = r.ids.find(id);
    return found == r.ids.end() ? nullptr : found->second;
}

NodeType* NodeTypeNameSpace::refType(const NodeType& type, const char* name)
{
    const std::string& key = name ? std::string(name) : type.name();
    if (key.empty())
        return nullptr;
    NodeType* known = findType(this, key, CaseSensitive);
    if (known)
        return known == &type ? known : nullptr;
    auto* t = const_cast<NodeType*>(&type);
    _typeMap[key] = t;
    _lowerTypeMap[NameText::toLower(key)] = t;
    return t;
}

Node* NodeTypeNameSpace::createLocalNode(BaseObject* parent, const std::string& typeName, const char* nodeName,
                                         NodeCreator creator)
{
    NodeType* type = findType(this, typeName, CaseSensitive);
    if (!type) {
        ORV_WARNING("Could not find/load type %s to create node\n", typeName.c_str());
        return nullptr;
    }
    return type->createNode(parent, nodeName, creator);
}

int NodeTypeNameSpace::getTypeVec(std::vector<NodeType*>& out, int filter) const
{
    out.clear();
    for (const auto& [name, type] : _typeMap) {
        if (&type->nameSpace() != this || type->name() != name)
            continue;  // referenced from elsewhere
        bool take = filter == 0 || (filter == 1 && !type->isAbstract() && !type->isProto()) ||
                    (filter == 2 && type->isAbstract()) || (filter == 3 && type->isProto());
        if (take)
            out.push_back(type);
    }
    return static_cast<int>(out.size());
}

int NodeTypeNameSpace::getNameSpaceVec(std::vector<NodeTypeNameSpace*>& out, bool rootsOnly)
{
    out.clear();
    Registry& r = registry();
    std::lock_guard<std::mutex> lock(r.mutex);
    if (rootsOnly) {
        for (const auto& [name, ns] : r.roots)
            out.push_back(ns);
    } else {
        for (const auto& [id, ns] : r.ids)
            out.push_back(ns);
    }
    return static_cast<int>(out.size());
}

unsigned NodeTypeNameSpace::nameSpaceCount()
{
    Registry& r = registry();
    std::lock_guard<std::mutex> lock(r.mutex);
    return static_cast<unsigned>(r.ids.size());
}

bool NodeTypeNameSpace::fillAbsolutAddress(std::string& out) const
{
    out.clear();
    bool complete = true;
    for (const NodeTypeNameSpace* ns = this; ns; ns = ns->_parent) {
        if (ns->_name.empty())
            complete = false;
        out = out.empty() ? ns->_name : ns->_name + "::" + out;
    }
    return complete;
}

bool NodeTypeNameSpace::hasAbsolutAddress() const
{
    std::string address;
    return fillAbsolutAddress(address);
}

void NodeTypeNameSpace::dump() const
{
    ORV_PLOG("NTNS: %s, parent: %s, types: %zu\n", _name.c_str(), _parent ? _parent->_name.c_str() : "NoParent",
             _typeMap.size());
    for (const auto& [name, type] : _typeMap) {
        if (!type) {
            ORV_WARNING("Invalid NameSpace in NodeTypeNameSpace::dump()");
            continue;
        }
        ORV_PLOG("  %s (ID %u%s)\n", name.c_str(), type->ID(), &type->nameSpace() == this ? "" : ", referenced");
    }
}

void NodeTypeNameSpace::dumpStatic()
{
    std::vector<NodeTypeNameSpace*> all;
    getNameSpaceVec(all, false);
    if (all.empty())
        ORV_WARNING("Invalid _nameSpaceMap in NodeTypeNameSpace::dump()");
    for (NodeTypeNameSpace* ns : all)
        ns->dump();
}

} // namespace Orvane
