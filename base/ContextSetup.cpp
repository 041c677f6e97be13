#include "base/ContextSetup.h"

#include "base/Context.h"
#include "base/Field.h"
#include "base/Log.h"
#include "base/NodePartDesc.h"
#include "base/NodeType.h"
#include "base/NodeTypeNameSpace.h"

namespace Orvane {

NodeType& ContextSetup::classType()
{
    // No descriptors of its own: the parameters are registered at run time and become fields of
    // each node.
    static NodeType type(theBaseNodeTypeFactory(), "ContextSetup", "Base", "Node", nullptr, "1.0", "Core", nullptr,
                         "stable", "The parameters of one context, one field per registered parameter.", "Orvane",
                         false, true, &ContextSetup::isType, &ContextSetup::make, &Node::createProc, nullptr, 0);
    return type;
}

bool ContextSetup::isType(const Node* node)
{
    return dynamic_cast<const ContextSetup*>(node) != nullptr;
}

Node* ContextSetup::make(NodeType& type, NodeNameSpace& nameSpace, const char* name)
{
    return new ContextSetup(type, nameSpace, name);
}

ContextSetup* ContextSetup::create(const char* name)
{
    return static_cast<ContextSetup*>(classType().createNode(nullptr, name, SystemCreator));
}

ContextSetup::ContextSetup(NodeType& type, NodeNameSpace& nameSpace, const char* name) : Node(type, nameSpace, name)
{
    setFlag(SystemFlag);
}

void ContextSetup::addParamFields()
{
    const unsigned base = type().partCount();
    while (partCount() >= base && partCount() - base < Context::paramCount()) {
        const unsigned id = partCount() - base;
        if (!addDynamicField(*Context::paramDesc(id))) {
            // A parameter of a type without fields: every later ID would be off by one.
            ORV_FATAL("Cannot make field for context parameter %u\n", id);
            return;
        }
    }
}

Field* ContextSetup::paramField(unsigned int id)
{
    if (id >= Context::paramCount())
        return nullptr;
    addParamFields();
    return findField(type().partCount() + id);
}

Field* ContextSetup::paramField(const std::string& name)
{
    for (unsigned id = 0; id < Context::paramCount(); ++id)
        if (Context::paramDesc(id)->name() == name)
            return paramField(id);
    return nullptr;
}

} // namespace Orvane
