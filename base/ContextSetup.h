#ifndef ORVANE_BASE_CONTEXTSETUP_H
#define ORVANE_BASE_CONTEXTSETUP_H

#include "base/Node.h"

#include <string>

namespace Orvane {

// The node that holds one context's parameter values: one field per registered parameter, in
// ID order after the fields every node has, made from the parameter's descriptor and starting
// at its default. Parameters registered after the node was made get their fields on first
// access. It is a context root type, so that a scene may carry its own setup.
class ORVANE_API ContextSetup : public Node {
public:
    static NodeType&     classType();
    static bool          isType(const Node* node);
    // A new setup node in a namespace of its own, in Setup state.
    static ContextSetup* create(const char* name = nullptr);

    Field* paramField(unsigned int id);
    Field* paramField(const std::string& name);

protected:
    ContextSetup(NodeType& type, NodeNameSpace& nameSpace, const char* name);

private:
    static Node* make(NodeType& type, NodeNameSpace& nameSpace, const char* name);
    // Makes the fields of parameters registered since the last call.
    void addParamFields();
};

} // namespace Orvane

#endif
