#ifndef ORVANE_BASE_COMPONENT_H
#define ORVANE_BASE_COMPONENT_H

#include "base/BaseObject.h"

#include <string>
#include <vector>

namespace Orvane {

class NodeType;

// A named group of node types ("Core", "Grouping" …), made when its first type registers. The
// registry lives until exit() releases it.
class ORVANE_API Component : public BaseObject {
public:
    // Registers `type` with the component its component text names, creating the component on
    // first use. Null for a type without component text.
    static Component* regType(NodeType& type);
    static Component* findComponent(const std::string& name);
    static unsigned   compCount();
    // Releases every component; their types are left without one.
    static void       exit();

    const std::string&            name() const { return _name; }
    const std::vector<NodeType*>& types() const { return _types; }
    void                          unregType(NodeType& type);

    Component(const Component&) = delete;
    Component& operator=(const Component&) = delete;

private:
    explicit Component(const std::string& name) : _name(name) {}
    ~Component() override;

    std::string            _name;
    std::vector<NodeType*> _types;
};

} // namespace Orvane

#endif
