#include "base/Context.h"

#include "base/ContextSetup.h"
#include "base/Field.h"
#include "base/Log.h"
#include "base/Node.h"
#include "base/NodeNameSpace.h"
#include "base/NodePartDesc.h"
#include "base/NodeType.h"
#include "base/SFBool.h"
#include "base/SFFloat.h"
#include "base/SFInt32.h"
#include "base/SFString.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <climits>
#include <cstdlib>

namespace Orvane {

namespace {

// The parameter descriptors by ID. Never destroyed: contexts may read it during static
// destruction. Entries are never removed, so their addresses stay valid.
std::vector<NodePartDesc*>& paramRegistry()
{
    static std::vector<NodePartDesc*>& descs = [] () -> std::vector<NodePartDesc*>& {
        auto* v = new std::vector<NodePartDesc*>;
        v->reserve(32);
        return *v;
    }();
    return descs;
}

// Toward zero, and within the range of int: the value of a float parameter as a number.
int truncateToInt(double value)
{
    if (std::isnan(value))
        return 0;
    if (value >= static_cast<double>(INT_MAX))
        return INT_MAX;
    if (value <= static_cast<double>(INT_MIN))
        return INT_MIN;
    return static_cast<int>(value);
}

// The number the text begins with (blanks and a sign allowed, as atoi reads it); 0 without one.
int leadingInt(const std::string& text)
{
    long value = std::strtol(text.c_str(), nullptr, 10);
    return static_cast<int>(std::clamp<long>(value, INT_MIN, INT_MAX));
}

} // namespace

// --- the registry ---

unsigned int Context::createTypedParamID(NodePartDataType type, const std::string& name,
                                         const std::string& description, const std::string& defaultValue,
                                         const std::string& group, const char* extra)
{
    std::vector<NodePartDesc*>& descs = paramRegistry();
    const auto id = static_cast<unsigned int>(descs.size());
    std::string value = defaultValue;
    const std::string variable = "ACP_" + name;
    if (const char* text = std::getenv(variable.c_str())) {
        value = text;
        ORV_NOTICE("Overwrite context default value: %s/%s\n", variable.c_str(), text);
    }
    descs.push_back(new NodePartDesc(id, PartMask::bit(id % 64), ExposedFieldPartType, type,
                                     NodePartDesc::CtorAutoProcess, name.c_str(), group.c_str(), value.c_str(),
                                     extra, description.c_str()));
    return id;
}

unsigned int Context::createParamID(const std::string& name, const std::string& description,
                                    const std::string& group, bool defaultValue)
{
    return createTypedParamID(SFBoolType, name, description, defaultValue ? "TRUE" : "FALSE", group);
}

unsigned int Context::createParamID(const std::string& name, const std::string& description,
                                    const std::string& group, int defaultValue)
{
    return createTypedParamID(SFInt32Type, name, description, std::to_string(defaultValue), group);
}

unsigned int Context::createParamID(const std::string& name, const std::string& description,
                                    const std::string& group, float defaultValue)
{
    char buffer[32];
    auto [end, ec] = std::to_chars(buffer, buffer + sizeof buffer, defaultValue);
    return createTypedParamID(SFFloatType, name, description, std::string(buffer, end), group);
}

unsigned int Context::createParamID(const std::string& name, const std::string& description,
                                    const std::string& group, const char* defaultValue)
{
    return createTypedParamID(SFStringType, name, description, defaultValue ? defaultValue : "", group);
}

unsigned int Context::createParamID(const std::string& name, const std::string& description,
                                    const std::string& group, const char* defaultValue, const char* extra)
{
    return createTypedParamID(SFStringType, name, description, defaultValue ? defaultValue : "", group, extra);
}

NodePartDesc* Context::paramDesc(unsigned int id)
{
    const std::vector<NodePartDesc*>& descs = paramRegistry();
    return id < descs.size() ? descs[id] : nullptr;
}

unsigned int Context::paramCount()
{
    return static_cast<unsigned int>(paramRegistry().size());
}

// --- life ---

Context* Context::create()
{
    return new Context;
}

Context::Context() = default;

Context::~Context()
{
    if (!_rootBag.empty())
        ORV_WARNING("RootBag is not empty in Context destructor\n");
    // The namespaces outlive this context when someone else holds their roots.
    for (NodeNameSpace* nameSpace : _nameSpaces)
        nameSpace->_context = nullptr;
    _nameSpaces.clear();
}

void Context::bind(NodeNameSpace& nameSpace)
{
    if (std::find(_nameSpaces.begin(), _nameSpaces.end(), &nameSpace) == _nameSpaces.end())
        _nameSpaces.push_back(&nameSpace);
}

void Context::unbind(NodeNameSpace& nameSpace)
{
    _nameSpaces.erase(std::remove(_nameSpaces.begin(), _nameSpaces.end(), &nameSpace), _nameSpaces.end());
}

// --- roots ---

bool Context::addRoot(Node& root)
{
    SmartPtr<Node> hold(&root);
    for (SmartPtr<Node>& held : _rootBag) {
        if (&held->type() == &root.type()) {
            if (held.get() != &root && held->nameSpace().context() == this)
                held->nameSpace().setContext(nullptr);
            held = hold;
            root.nameSpace().setContext(this);
            return true;
        }
    }
    _rootBag.push_back(hold);
    root.nameSpace().setContext(this);
    return true;
}

Node* Context::findRoot(const NodeType& type) const
{
    for (const SmartPtr<Node>& root : _rootBag)
        if (&root->type() == &type)
            return root.get();
    return nullptr;
}

bool Context::removeRoot(NodeType& type)
{
    for (auto it = _rootBag.begin(); it != _rootBag.end(); ++it) {
        if (&(*it)->type() != &type)
            continue;
        SmartPtr<Node> root = *it;
        _rootBag.erase(it);
        if (root->nameSpace().context() == this)
            root->nameSpace().setContext(nullptr);
        return true;
    }
    return false;
}

void Context::getRootVec(std::vector<Node*>& out) const
{
    for (const SmartPtr<Node>& root : _rootBag)
        out.push_back(root.get());
}

// --- parameter values ---

ContextSetup* Context::contextSetup()
{
    if (!_setup) {
        ORV_INFO("Autocreate ContextSetup on access\n");
        _setup = ContextSetup::create();
        if (!_setup) {
            ORV_FATAL("Could not autocreate ContextSetup on access\n");
            return nullptr;
        }
        _setup->nameSpace().setContext(this);
    }
    return _setup.get();
}

Field* Context::paramField(unsigned int id)
{
    ContextSetup* setup = contextSetup();
    return setup ? setup->paramField(id) : nullptr;
}

Field* Context::paramField(const std::string& name)
{
    ContextSetup* setup = contextSetup();
    return setup ? setup->paramField(name) : nullptr;
}

void Context::reportInvalidParam(unsigned int id) const
{
    ORV_FATAL("No valid context ID ( %p.%d )\n", static_cast<const void*>(this), static_cast<int>(id));
}

bool Context::paramBValue(unsigned int id)
{
    Field* field = paramField(id);
    if (!field) {
        reportInvalidParam(id);
        return false;
    }
    switch (field->dataType()) {
    case SFBoolType:
        return static_cast<SFBool*>(field)->value();
    case SFFloatType:
        // Truncated first: 0.5 reads as false.
        return truncateToInt(static_cast<SFFloat*>(field)->value()) != 0;
    case SFInt32Type:
        return static_cast<SFInt32*>(field)->value() != 0;
    case SFStringType:
        return leadingInt(static_cast<SFString*>(field)->value()) != 0;
    default:
        return leadingInt(field->strValue()) != 0;
    }
}

int Context::paramIValue(unsigned int id)
{
    Field* field = paramField(id);
    if (!field) {
        reportInvalidParam(id);
        return 0;
    }
    switch (field->dataType()) {
    case SFBoolType:
        return static_cast<SFBool*>(field)->value() ? 1 : 0;
    case SFFloatType:
        return truncateToInt(static_cast<SFFloat*>(field)->value());
    case SFInt32Type:
        return static_cast<SFInt32*>(field)->value();
    case SFStringType:
        return leadingInt(static_cast<SFString*>(field)->value());
    default:
        return leadingInt(field->strValue());
    }
}

float Context::paramFValue(unsigned int id)
{
    Field* field = paramField(id);
    if (!field) {
        reportInvalidParam(id);
        return 0.0f;
    }
    switch (field->dataType()) {
    case SFBoolType:
        return static_cast<SFBool*>(field)->value() ? 1.0f : 0.0f;
    case SFFloatType:
        return static_cast<SFFloat*>(field)->value();
    case SFInt32Type:
        return static_cast<float>(static_cast<SFInt32*>(field)->value());
    case SFStringType:
        return std::strtof(static_cast<SFString*>(field)->value().c_str(), nullptr);
    default:
        return std::strtof(field->strValue().c_str(), nullptr);
    }
}

std::string Context::paramSValue(unsigned int id)
{
    Field* field = paramField(id);
    if (!field) {
        reportInvalidParam(id);
        return std::string();
    }
    switch (field->dataType()) {
    case SFBoolType:
        return static_cast<SFBool*>(field)->value() ? "TRUE" : "FALSE";
    case SFStringType:
        return static_cast<SFString*>(field)->value();
    default:
        return field->strValue();
    }
}

} // namespace Orvane
