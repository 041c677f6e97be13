#ifndef ORVANE_TESTS_TYPESCOPE_H
#define ORVANE_TESTS_TYPESCOPE_H

#include "base/Field.h"
#include "base/Log.h"
#include "base/Node.h"
#include "base/NodeLink.h"
#include "base/NodeNameSpace.h"
#include "base/NodePartDesc.h"
#include "base/NodeProc.h"
#include "base/NodeType.h"
#include "base/NodeTypeNameSpace.h"
#include "base/Observer.h"
#include "base/SmartPtr.h"
#include "tests/support/LogCapture.h"

#include <list>
#include <memory>
#include <string>
#include <vector>

namespace Orvane::Test {

struct PartSpec {
    const char*      name;
    NodePartType     partType;
    NodePartDataType dataType;
    unsigned         flags = 0;
    const char*      defaultValue = nullptr;
    const char*      valueType = nullptr;
};

// An observer callback that counts its calls in the int its user data points to.
inline void countCall(const double&, Observer*, BaseObject*, BaseObject*, BaseObject*, const void* user)
{
    ++*static_cast<int*>(const_cast<void*>(user));
}

// Remembers every hook call with the node's state at the time, e.g. "detach@Realize".
class TraceProc : public NodeProc {
public:
    explicit TraceProc(Node& node, std::vector<std::string>* trace) : NodeProc(node), _trace(trace) {}

    void setup(const double&) override { note("setup"); }
    void initialize(const double&) override { note("initialize"); }
    void attach(const double&) override { note("attach"); }
    void detach(const double&) override { note("detach"); }
    void shutdown(const double&) override { note("shutdown"); }
    void dispose(const double&) override { note("dispose"); }
    void childAdded(NodeLink& link) override { noteLink("childAdded", link); }
    void childRemoved(NodeLink& link) override { noteLink("childRemoved", link); }
    void parentAdded(NodeLink& link) override { noteLink("parentAdded", link); }
    void parentRemoved(NodeLink& link) override { noteLink("parentRemoved", link); }

    std::vector<NodeLink*> links;  // the links of the link hooks, in call order

private:
    void note(const char* hook)
    {
        if (_trace)
            _trace->push_back(std::string(hook) + "@" + node()->stateName());
    }
    void noteLink(const char* hook, NodeLink& link)
    {
        links.push_back(&link);
        if (_trace)
            _trace->push_back(std::string(hook) + ":" + node()->getIDStr());
    }

    std::vector<std::string>* _trace;
};

// How TypeScope::declare makes a type.
struct TypeOptions {
    bool        abstract = false;
    const char* status = "stable";
    const char* defaultDescendantOf = nullptr;
    bool        contextRoot = false;
    const char* component = "Test";
    const char* comment = nullptr;
    // The type's own node class and processor, instead of plain nodes with a TraceProc.
    NodeType::TypeCheckFunc isType = &Node::isNodeType;
    NodeType::CreateFunc    create = nullptr;
    NodeType::ProcFactory   proc = nullptr;
};

// Node types declared for one test in a type namespace of their own, below the base one, with a
// node namespace for their nodes. Types are destroyed with the scope; release nodes first.
class TypeScope {
public:
    using Options = TypeOptions;

    explicit TypeScope(const char* name = "test")
        : _types(NodeTypeNameSpace::create(name, &theBaseNodeTypeFactory())),
          _nodes(new NodeNameSpace(name, nullptr, _types.get()))
    {
    }

    ~TypeScope()
    {
        _nodes = nullptr;
        while (!_declared.empty())
            _declared.pop_back();
    }

    // Descriptor i of `parts` gets the ID firstID + i: the parent's part count.
    NodeType& declare(const char* name, const char* parent, std::vector<PartSpec> parts, unsigned firstID = 2,
                      Options options = {})
    {
        std::vector<NodePartDesc>& descs = _descs.emplace_back();
        descs.reserve(parts.size());
        for (const PartSpec& p : parts) {
            unsigned id = firstID + static_cast<unsigned>(descs.size());
            descs.emplace_back(id, PartMask::bit(id), p.partType, p.dataType, p.flags, p.name, nullptr,
                               p.defaultValue, p.valueType);
        }
        _declared.push_back(std::make_unique<NodeType>(
            *_types, name, "Test", parent, options.defaultDescendantOf, "1.0", options.component, options.comment,
            options.status, nullptr, "Orvane", false, options.contextRoot, options.isType,
            options.create ? options.create : options.abstract ? nullptr : &Node::createNode,
            options.proc ? options.proc : options.abstract ? nullptr : &TypeScope::createProc, descs.data(),
            static_cast<unsigned>(descs.size())));
        return *_declared.back();
    }

    // Initialises every declared type, quietly; answers the number of failures.
    int initAll()
    {
        LogCapture quiet;
        int        failures = 0;
        for (auto& type : _declared)
            failures += type->initType();
        return failures;
    }

    NodeTypeNameSpace& types() { return *_types; }
    NodeNameSpace&     nodes() { return *_nodes; }

    SmartPtr<Node> make(const char* type, const char* name = nullptr)
    {
        return SmartPtr<Node>(NodeType::createNode(_nodes.get(), type, name, RuntimeCreator));
    }

    // Where new nodes' processors write their traces; null for none.
    static std::vector<std::string>*& trace()
    {
        static std::vector<std::string>* t = nullptr;
        return t;
    }

private:
    static NodeProc* createProc(NodeType&, Node& node) { return new TraceProc(node, trace()); }

    std::unique_ptr<NodeTypeNameSpace>     _types;
    SmartPtr<NodeNameSpace>                _nodes;
    std::list<std::vector<NodePartDesc>>   _descs;
    std::vector<std::unique_ptr<NodeType>> _declared;
};

// A node type declared by a test: descriptor i has ID i and mask bit i. The type is a root type
// of its own (it does not inherit the base type's two fields), in a scope of its own so that
// tests may reuse names; its nodes get the plain processor.
class TestNodeType {
public:
    TestNodeType(const char* name, std::vector<PartSpec> parts)
        : _scope(name), _type(_scope.declare(name, nullptr, std::move(parts), 0, {.proc = &Node::createProc}))
    {
        // A root type of its own is not the root of the node type tree, which initType reports.
        _scope.initAll();
    }

    NodeType&      type() { return _type; }
    NodeNameSpace& nameSpace() { return _scope.nodes(); }

    // A new node of the type, in Setup, with its fields made and held by the returned pointer.
    SmartPtr<Node> make(const char* name = nullptr) { return SmartPtr<Node>(_type.createNode(&_scope.nodes(), name)); }

private:
    TypeScope _scope;
    NodeType& _type;
};

} // namespace Orvane::Test

#endif
