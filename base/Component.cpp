#include "base/Component.h"

#include "base/NodeType.h"

#include <algorithm>
#include <map>

namespace Orvane {

namespace {

// Never destroyed: static node types unregister at exit in no defined order.
std::map<std::string, Component*>& components()
{
    static auto& map = *new std::map<std::string, Component*>;
    return map;
}

} // namespace

Component::~Component()
{
    for (NodeType* type : _types)
        type->_compObj = nullptr;
}

Component* Component::regType(NodeType& type)
{
    if (type.component().empty())
        return nullptr;
    Component*& comp = components()[type.component()];
    if (!comp)
        comp = new Component(type.component());
    if (type._compObj && type._compObj != comp)
        type._compObj->unregType(type);
    if (std::find(comp->_types.begin(), comp->_types.end(), &type) == comp->_types.end())
        comp->_types.push_back(&type);
    type._compObj = comp;
    return comp;
}

Component* Component::findComponent(const std::string& name)
{
    auto found = components().find(name);
    return found == components().end() ? nullptr : found->second;
}

unsigned Component::compCount()
{
    return static_cast<unsigned>(components().size());
}

void Component::exit()
{
    auto& map = components();
    for (auto& [name, comp] : map)
        delete comp;
    map.clear();
}

void Component::unregType(NodeType& type)
{
    _types.erase(std::remove(_types.begin(), _types.end(), &type), _types.end());
    if (type._compObj == this)
        type._compObj = nullptr;
}

} // namespace Orvane
