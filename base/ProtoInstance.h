#ifndef ORVANE_BASE_PROTOINSTANCE_H
#define ORVANE_BASE_PROTOINSTANCE_H

#include "base/Node.h"
#include "base/NodeProc.h"
#include "base/NodeType.h"
#include "base/SmartPtr.h"

#include <string>
#include <vector>

namespace Orvane {

class ProtoDeclaration;

namespace Detail {
// Holds the proto type of an instance for as long as the whole node lives: as the first base it
// is destroyed after the Node part, whose destructor still counts down the type's nodes.
struct ProtoTypeHold {
    explicit ProtoTypeHold(NodeType& type) : _typeHold(&type) {}
    SmartPtr<NodeType> _typeHold;
};
} // namespace Detail

// A node of a proto type. Its fields are the prototype's interface, starting with the
// declaration's initial values; its body is a deep copy of the declaration's body in a node
// namespace of its own; each IS link became internal IS routes, so that events sent into the
// instance reach the body and changes inside the body leave through the instance's outputs.
// Instances are made only by NodeType::createNode of a proto type.
class ORVANE_API ProtoInstance : private Detail::ProtoTypeHold, public Node {
public:
    // The processor of an instance: it keeps where the prototype was declared and takes the
    // body through the instance's lifecycle.
    class ORVANE_API Proc : public NodeProc {
    public:
        Proc(ProtoInstance& node, const std::string& sourceURL, int sourceLine)
            : NodeProc(node), _sourceURL(sourceURL), _sourceLine(sourceLine)
        {
        }
        const std::string& sourceURL() const { return _sourceURL; }
        int                sourceLine() const { return _sourceLine; }

        void initialize(const double& time) override { bodyState(time, Realize); }
        void attach(const double& time) override { bodyState(time, Live); }
        void detach(const double& time) override { bodyState(time, Realize); }
        void shutdown(const double& time) override { bodyState(time, Setup); }
        void dispose(const double& time) override { bodyState(time, Dispose); }
        std::string info() const override;

    private:
        void bodyState(const double& time, NodeState state);

        std::string _sourceURL;
        int         _sourceLine;
    };

    // The instance behind `node` when it is one, else null: only proto types make instances.
    static ProtoInstance* cast(Node* node)
    {
        return node && node->type().isProto() ? static_cast<ProtoInstance*>(node) : nullptr;
    }

    ProtoDeclaration& declaration() const;
    // The namespace of the body copy; null while the instance has no body.
    NodeNameSpace* bodyNameSpace() const { return _body.get(); }
    const std::vector<SmartPtr<Node>>& rootNodes() const { return _rootNodes; }
    // The first root node of the body, null when the body is empty.
    Node* firstNode() const { return _rootNodes.empty() ? nullptr : _rootNodes.front().get(); }

protected:
    ProtoInstance(NodeType& type, NodeNameSpace& nameSpace, const char* name);
    ~ProtoInstance() override;

private:
    friend class NodeType;

    // Step 5 of NodeType::createNode: the instance with its fields, body and IS routes; null,
    // logged, when the prototype would instantiate itself or nests too deep.
    static ProtoInstance* build(NodeType& type, NodeNameSpace& nameSpace, const char* name);
    void copyBody(const ProtoDeclaration& source);
    void linkIs(const ProtoDeclaration& source);

    SmartPtr<NodeNameSpace>     _body;
    std::vector<SmartPtr<Node>> _rootNodes;
};

} // namespace Orvane

#endif
