#ifndef ORVANE_BASE_CONTEXT_H
#define ORVANE_BASE_CONTEXT_H

#include "base/FieldType.h"
#include "base/RefCountObject.h"
#include "base/SmartPtr.h"

#include <string>
#include <vector>

namespace Orvane {

class ContextSetup;
class Field;
class Node;
class NodeNameSpace;
class NodePartDesc;
class NodeType;
class WriteAction;

// One running scene. A context holds the root nodes of its scene and the values of the
// configuration parameters that every part of the system reads (paramBValue and friends).
//
// The parameters themselves are declared once per process: a registry of descriptors, filled
// while the modules load, whose index is the parameter ID. Each context holds its own values in
// the fields of its setup node, one field per registered parameter, starting from the defaults.
// The environment variable "ACP_" + name replaces a parameter's default for the whole process.
//
// A node finds its context through its namespace: adding a root binds the root's namespace, and
// namespaces below it inherit the binding.
class ORVANE_API Context : public RefCountObject {
public:
    static Context* create();

    // --- the process-wide parameter registry ---
    // Registration happens during start-up and is not locked; reading afterwards needs no lock.
    static unsigned int createTypedParamID(NodePartDataType type, const std::string& name,
                                           const std::string& description, const std::string& defaultValue,
                                           const std::string& group, const char* extra = nullptr);
    static unsigned int createParamID(const std::string& name, const std::string& description,
                                      const std::string& group, bool defaultValue);
    static unsigned int createParamID(const std::string& name, const std::string& description,
                                      const std::string& group, int defaultValue);
    static unsigned int createParamID(const std::string& name, const std::string& description,
                                      const std::string& group, float defaultValue);
    static unsigned int createParamID(const std::string& name, const std::string& description,
                                      const std::string& group, const char* defaultValue);
    // A string parameter with an extra text (for example the values it may take).
    static unsigned int createParamID(const std::string& name, const std::string& description,
                                      const std::string& group, const char* defaultValue, const char* extra);
    // The descriptor of a parameter; null for an ID at or beyond the registry's size.
    static NodePartDesc* paramDesc(unsigned int id);
    static unsigned int  paramCount();

    // --- this context's parameter values ---
    // The setup node that holds them, made on first access.
    ContextSetup* contextSetup();
    Field*        paramField(unsigned int id);
    Field*        paramField(const std::string& name);
    // Read by the parameter's type: an SFBool as it is, an SFFloat truncated toward zero, an
    // SFInt32 not 0, an SFString (and any other type's text) by its leading decimal digits, so
    // that "TRUE" reads as false. An unknown ID is reported and reads as false.
    bool        paramBValue(unsigned int id);
    int         paramIValue(unsigned int id);
    float       paramFValue(unsigned int id);
    // An SFBool reads "TRUE" or "FALSE".
    std::string paramSValue(unsigned int id);

    // --- roots: one per node type ---
    // Holds the root, replacing one of the same type, and binds the root's namespace to this
    // context.
    bool     addRoot(Node& root);
    Node*    findRoot(const NodeType& type) const;
    bool     removeRoot(NodeType& type);
    void     getRootVec(std::vector<Node*>& out) const;
    unsigned rootCount() const { return static_cast<unsigned>(_rootBag.size()); }
    // Hands every root (with `types`, only the roots of those types) to the writer's walk, in
    // the order they were added; the caller opens and closes the document. Returns the number
    // of roots written.
    unsigned int write(WriteAction& action, std::vector<NodeType*>* types);

    Context(const Context&) = delete;
    Context& operator=(const Context&) = delete;

protected:
    Context();
    ~Context() override;

private:
    friend class NodeNameSpace;

    // Kept by the namespaces themselves; the context forgets a namespace that goes away.
    void bind(NodeNameSpace& nameSpace);
    void unbind(NodeNameSpace& nameSpace);
    void reportInvalidParam(unsigned int id) const;

    SmartPtr<ContextSetup>       _setup;
    std::vector<SmartPtr<Node>>  _rootBag;
    std::vector<NodeNameSpace*>  _nameSpaces;
};

} // namespace Orvane

#endif
