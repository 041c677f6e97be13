#ifndef ORVANE_BASE_METADATAOBJECT_H
#define ORVANE_BASE_METADATAOBJECT_H

#include "base/Node.h"
#include "base/NodeProc.h"

namespace Orvane {

class SFBool;
class SFString;

// The abstract type from which every metadata node descends; every node's metadata field takes
// only nodes of it. Concrete metadata types are declared outside this library and derive their
// node classes from this one, whose constructor makes the three fields with their defaults.
class ORVANE_API MetadataObject : public Node {
public:
    static NodeType& classType();
    static Node*     create(BaseObject* parent, const char* name, NodeCreator creator = UnknownCreator);
    // Whether the type is registered where it belongs; logs the answer.
    static bool      init();
    static bool      isType(const Node* node);

    SFString& name() const;
    SFString& reference() const;
    SFBool&   enabled() const;

    bool fieldChanged(Field& field, const double& time, Field* source) override;

protected:
    MetadataObject(NodeType& type, NodeNameSpace& nameSpace, const char* name);
};

// The processor base of metadata nodes: concrete ones override the reaction to name, reference
// and enabled.
class ORVANE_API MetadataObjectProc : public NodeProc {
public:
    using NodeProc::NodeProc;

    bool fieldChanged(Node& node, Field& field, const double& time, Field* source) override;

protected:
    virtual bool fieldChanged(MetadataObject& node, Field& field, const double& time, Field* source);
};

} // namespace Orvane

#endif
