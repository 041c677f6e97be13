#include "base/ProtoInstance.h"

#include "base/CopyAction.h"
#include "base/Field.h"
#include "base/Log.h"
#include "base/MFNode.h"
#include "base/NodeNameSpace.h"
#include "base/NodePartDesc.h"
#include "base/NodeType.h"
#include "base/ProtoDeclaration.h"
#include "base/Route.h"
#include "base/SFNode.h"

#include <algorithm>

namespace Orvane {

namespace {

// The declarations whose instances are being made on this thread, outermost first: an instance
// that needs one of them again would need itself without end.
thread_local std::vector<const ProtoDeclaration*> instantiating;
// Set when an instance on the way down was refused: every instance around it is refused too,
// rather than left with a body that lacks a part.
thread_local bool refusedBelow = false;

struct InstantiationScope {
    explicit InstantiationScope(const ProtoDeclaration& declaration) { instantiating.push_back(&declaration); }
    ~InstantiationScope() { instantiating.pop_back(); }
    InstantiationScope(const InstantiationScope&) = delete;
    InstantiationScope& operator=(const InstantiationScope&) = delete;
};

std::string chainText(std::vector<const ProtoDeclaration*>::const_iterator from, const ProtoDeclaration& last)
{
    std::string chain;
    for (auto it = from; it != instantiating.end(); ++it)
        chain += (*it)->protoName() + " -> ";
    return chain + last.protoName();
}

// The nodes held by a node-valued field, in order.
template <class Fn>
void forEachLinkedNode(Field& field, Fn fn)
{
    if (field.dataType() == SFNodeType) {
        if (Node* node = static_cast<SFNode&>(field).link().directNode())
            fn(*node);
    } else if (field.dataType() == MFNodeType) {
        for (NodeLink& link : static_cast<MFNode&>(field))
            if (Node* node = link.directNode())
                fn(*node);
    }
}

void linkInto(Field& field, Node* node)
{
    if (!node)
        return;
    if (field.dataType() == SFNodeType)
        static_cast<SFNode&>(field).setNode(node);
    else
        static_cast<MFNode&>(field).addChild(node);
}

} // namespace

void ProtoInstance::Proc::bodyState(const double& time, NodeState state)
{
    auto* instance = static_cast<ProtoInstance*>(node());
    for (const SmartPtr<Node>& root : instance->_rootNodes)
        root->setTreeState(time, state);
}

std::string ProtoInstance::Proc::info() const
{
    return "PROTO " + node()->type().name() + " from " + _sourceURL + ":" + std::to_string(_sourceLine);
}

ProtoInstance::ProtoInstance(NodeType& type, NodeNameSpace& nameSpace, const char* name)
    : ProtoTypeHold(type), Node(type, nameSpace, name)
{
}

ProtoInstance::~ProtoInstance()
{
    // The body goes first, while the instance that its IS routes lead to is still whole.
    while (!_rootNodes.empty())
        _rootNodes.pop_back();
    _body = nullptr;
}

ProtoDeclaration& ProtoInstance::declaration() const
{
    return *type().protoDeclaration();
}

ProtoInstance* ProtoInstance::build(NodeType& type, NodeNameSpace& nameSpace, const char* name)
{
    ProtoDeclaration& declaration = *type.protoDeclaration();
    if (declaration.isExternal())
        declaration.resolve();
    const ProtoDeclaration& source = declaration.effective();

    auto again = std::find(instantiating.cbegin(), instantiating.cend(), &source);
    if (again != instantiating.cend()) {
        ORV_WARNING("Recursive PROTO refused: %s\n", chainText(again, source).c_str());
        refusedBelow = !instantiating.empty();
        return nullptr;
    }
    // An instance made in the prototype's own body, while that is being declared, would make
    // the prototype its own base type.
    if (!source.isExternal() && &nameSpace == &source.body()) {
        ORV_WARNING("Recursive PROTO refused: %s inside its own body\n", source.protoName().c_str());
        refusedBelow = !instantiating.empty();
        return nullptr;
    }
    if (instantiating.size() >= ProtoDeclaration::MaxNestingDepth) {
        ORV_WARNING("PROTO nesting deeper than %u refused: %s\n", ProtoDeclaration::MaxNestingDepth,
                    chainText(instantiating.cbegin(), source).c_str());
        refusedBelow = !instantiating.empty();
        return nullptr;
    }

    ProtoInstance* instance = nullptr;
    {
        InstantiationScope scope(source);
        const NodeType* outer = Node::requestBlock(&type);
        instance = new ProtoInstance(type, nameSpace, name);
        Node::requestBlock(outer);
        instance->setProc(new Proc(*instance, declaration.sourceURL(), declaration.sourceLine()));
        for (unsigned id = 0; id < type.partCount(); ++id)
            instance->makeField(id, true);
        instance->copyBody(source);
        instance->linkIs(source);
    }
    if (refusedBelow) {
        // The outermost refused instance ends the refusal; the partial instance goes.
        refusedBelow = !instantiating.empty();
        SmartPtr<Node> drop(instance);
        return nullptr;
    }
    return instance;
}

// The body and the node-valued initial values are copied by one action, so that a node that
// both use stays one node in the instance, and the body's routes are made between the copies.
void ProtoInstance::copyBody(const ProtoDeclaration& source)
{
    const ProtoDeclaration& own = declaration();
    _body = new NodeNameSpace(type().name().c_str(), &nameSpace(), &source.body().nodeTypeNameSpace());
    CopyAction action(0.0, source.body(), *_body);
    for (const SmartPtr<Node>& root : source.rootNodes())
        if (Node* copy = action.copyTree(*root))
            _rootNodes.emplace_back(copy);
    for (unsigned i = 0; i < own.fieldCount(); ++i) {
        Field* from = own.initialValue(i);
        Field* to = findField(i);
        if (!from || !to || from->dataType() != to->dataType())
            continue;
        if (from->dataType() == SFNodeType || from->dataType() == MFNodeType)
            forEachLinkedNode(*from, [&](Node& node) { linkInto(*to, action.copyTree(node)); });
        else
            to->setValueByField(0.0, *from);
    }
    action.finalize();
    if (!_rootNodes.empty())
        _body->setRoot(*_rootNodes.front());
}

// Each IS link becomes an IS route into the body for an entry that takes events, and one out of
// it for an entry that sends them; the body field starts with the entry's value.
void ProtoInstance::linkIs(const ProtoDeclaration& source)
{
    const ProtoDeclaration& own = declaration();
    for (const ProtoDeclaration::IsLink& link : source.isLinks()) {
        NodePartDesc* sourceDesc = source.fieldDesc(link.field);
        int index = &own == &source ? static_cast<int>(link.field) : own.findFieldIndex(sourceDesc->name());
        Field* field = index < 0 ? nullptr : findField(static_cast<unsigned>(index));
        if (!field) {
            ORV_WARNING("Cannot field proto-field: %s\n", sourceDesc->name().c_str());
            continue;
        }
        Node* node = _body->findNode(link.node);
        if (!node) {
            ORV_WARNING("Cannot find %s node in ns %s for IS link\n", link.node.c_str(), _body->name().c_str());
            continue;
        }
        Field* target = node->findField(link.partID);
        // An external declaration may promise less than the prototype it names offers.
        const unsigned access = field->desc()->partType() & sourceDesc->partType();
        bool made = target && target->dataType() == field->dataType();
        if (made && (access & EventInPartType))
            made = Route::create(*field, *target, Route::IS, true) != nullptr;
        if (made && (access & EventOutPartType))
            made = Route::create(*target, *field, Route::IS, true) != nullptr;
        if (!made) {
            ORV_WARNING("Can not create internal IS Route\n");
            continue;
        }
        if (access & FieldPartType)
            target->setValueByField(0.0, *field);
    }
}

} // namespace Orvane
