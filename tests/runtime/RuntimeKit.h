#ifndef ORVANE_TESTS_RUNTIMEKIT_H
#define ORVANE_TESTS_RUNTIMEKIT_H

#include "base/Context.h"
#include "base/MFNode.h"
#include "base/NodeProc.h"
#include "base/Observer.h"
#include "base/Subject.h"
#include "tests/support/TypeScope.h"

#include <functional>
#include <memory>
#include <string>

namespace Orvane::Test {

// A context root type with a "children" field, declared once per name: each node of it heads a
// namespace of its own, as a loaded scene does.
class SceneType {
public:
    explicit SceneType(const char* name)
        : _scope(name), _type(_scope.declare(name, nullptr, {{"children", ExposedFieldPartType, MFNodeType}}, 0,
                                             {.contextRoot = true, .proc = &Node::createProc}))
    {
        _scope.initAll();
    }

    NodeType& type() { return _type; }
    // A root of the type, added to `context`.
    Node* makeRoot(Context& context) { return _type.createNode(&context); }
    static MFNode& children(Node& root) { return *static_cast<MFNode*>(root.findField(0u)); }

private:
    TypeScope _scope;
    NodeType& _type;
};

// The processor of a context root, handing the frame values over as a clock module would.
struct ClockProc : NodeProc {
    using NodeProc::NodeProc;
    bool tick(double time, double target) { return setContextState(time, 60.0, target, 1.0 / 60.0, 2.5f); }
};

// Answers the "loadContext" requests for as long as it lives, with whatever `make` returns
// (null: the URL cannot be loaded).
class SceneLoader {
public:
    using Make = std::function<Context*(const std::string& url, const std::string& data)>;

    explicit SceneLoader(Make make) : _make(std::move(make)), _observer(Context::loadContextSubject())
    {
        _observer.addCallback(&SceneLoader::answer, this);
    }

    int requests = 0;

private:
    static void answer(const double&, Observer*, BaseObject* a, BaseObject*, BaseObject*, const void* self)
    {
        auto* loader = static_cast<SceneLoader*>(const_cast<void*>(self));
        auto* request = static_cast<Context::LoadRequest*>(a);
        ++loader->requests;
        request->context = loader->_make(request->url, request->data);
    }

    Make     _make;
    Observer _observer;
};

} // namespace Orvane::Test

#endif
