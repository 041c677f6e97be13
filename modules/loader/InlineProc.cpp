#include "modules/loader/InlineProc.h"

#include "base/Node.h"

namespace Orvane {

InlineProc::InlineProc(Node& node, SmartPtr<Node> scene) : NodeProc(node), _scene(std::move(scene)) {}

InlineProc* InlineProc::of(const Node& node)
{
    return dynamic_cast<InlineProc*>(node.proc());
}

NodeNameSpace* InlineProc::ownNameSpace() const
{
    return _scene ? &_scene->nameSpace() : nullptr;
}

std::string InlineProc::info() const
{
    return _file.empty() ? std::string("inlines nothing") : "inlines " + _file;
}

void InlineProc::follow(const double& time)
{
    if (_scene && node())
        _scene->setTreeState(time, node()->state());
}

} // namespace Orvane
