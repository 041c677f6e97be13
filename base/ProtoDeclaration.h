#ifndef ORVANE_BASE_PROTODECLARATION_H
#define ORVANE_BASE_PROTODECLARATION_H

#include "base/Node.h"
#include "base/NodePart.h"
#include "base/SmartPtr.h"

#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <vector>

namespace Orvane {

class Field;
class NodePartDesc;
class Route;

// The declaration of a prototype (PROTO or EXTERNPROTO): the node, of type "_ProtoDeclaration",
// that a proto type owns. It holds the interface (one declared field per entry, with its initial
// value), the body in a node namespace of its own (a child of the declaring scene's), the body's
// root nodes in order, and the IS links from interface fields to fields of named body nodes.
// An external declaration keeps its URL list instead of a body; the prototype library resolves
// it to the declaration it names, which then serves its body, values and IS links.
//
// Everything a loader or an application needs to declare a prototype in code:
//   ProtoDeclaration* d = ProtoDeclaration::declare(scene, "Blinker");
//   d->addField("inputOutput", "SFFloat", "rate", "2");
//   d->createBodyNode("TimeSensor", "Clock");
//   d->addIsLink("rate", "Clock", "cycleInterval");
//   scene.createLocalNode(...) or NodeType::createNode(&scene, "Blinker", ...) then makes instances.
class ORVANE_API ProtoDeclaration : public Node {
public:
    // Prototypes nested deeper than this (an instance inside an instance inside ...) are refused,
    // as are prototypes that instantiate themselves; both before any stack is at risk.
    static constexpr unsigned MaxNestingDepth = 32;

    // One IS link: interface field `field` (its index) stands for field `nodeField` (part ID
    // `partID`) of the body node named `node`.
    struct IsLink {
        unsigned      field;
        std::string   node;
        std::string   nodeField;
        std::uint32_t partID;
    };

    // The native type "_ProtoDeclaration" of declaration nodes.
    static NodeType& classType();

    // PROTO `name` in `scene`: a proto type in the scene's type namespace (one of its own is made
    // when the scene would otherwise share the native types' one), with its declaration. Two
    // scenes may declare the same name. Null, logged, without a name.
    static ProtoDeclaration* declare(NodeNameSpace& scene, const char* name);
    // EXTERNPROTO `name` [urls]: an interface without values, resolved through the prototype
    // library when its first instance is made (or by resolve()).
    static ProtoDeclaration* declareExtern(NodeNameSpace& scene, const char* name, const std::vector<std::string>& urls);

    // The proto type that owns the declaration (null once the type is gone) and its name.
    NodeType*          protoType() const { return _protoType; }
    const std::string& protoName() const;

    // --- interface ---
    // Access type by its X3D name ("initializeOnly", "inputOnly", "outputOnly", "inputOutput") or
    // its VRML97 name ("field", "eventIn", "eventOut", "exposedField"); field type by name. The
    // value text is the initial value of initializeOnly and inputOutput entries (ignored on
    // external declarations). Null, logged, for an unknown access or field type or a name that
    // is taken.
    Field* addField(const char* accessType, const char* fieldType, const char* name, const char* value = nullptr);
    Field* addField(NodePartType accessType, NodePartDataType fieldType, const char* name, const char* value = nullptr);
    unsigned      fieldCount() const { return static_cast<unsigned>(_fields.size()); }
    // The declared field of entry `index`: it holds the initial value. Null past the end.
    Field*        field(unsigned index) const;
    NodePartDesc* fieldDesc(unsigned index) const;
    // The index of an entry by name, -1 when there is none.
    int           findFieldIndex(const std::string& name) const;
    // The field whose value an instance starts with: the own one, or for a resolved external
    // declaration the same-named field of the declaration it names. Null when there is none.
    Field*        initialValue(unsigned index) const;

    // --- body ---
    NodeNameSpace& body() const { return *_body; }
    // A node of `typeName` in the body, DEF'd as `defName` when given; a new root node without
    // `parent`, else a child of `parent` (a body node, or one of its SFNode/MFNode fields).
    Node* createBodyNode(const char* typeName, const char* defName = nullptr, BaseObject* parent = nullptr);
    // Appends a node of the body as a further root node.
    bool  addRootNode(Node& node);
    const std::vector<SmartPtr<Node>>& rootNodes() const { return _rootNodes; }
    // ROUTE inside the body, by DEF names and field names.
    Route* addRoute(const char* fromNode, const char* fromField, const char* toNode, const char* toField);
    // PROTO inside the body: its type lives in the body's type namespace.
    ProtoDeclaration* declareNested(const char* name) { return declare(*_body, name); }
    // The first root node and its type, through the declaration an external one resolved to;
    // null for an empty body or an unresolved external declaration.
    Node*     firstBodyNode() const;
    NodeType* firstBodyType() const;

    // --- IS ---
    // Interface field `field` IS field `nodeField` of the body node DEF'd `node`. Refused, logged,
    // when one of them is unknown, the field types differ, or the access types do not allow it
    // (an interface field may stand only for a body field that has at least its own access: an
    // inputOnly entry for an inputOnly or inputOutput field, and so on).
    bool addIsLink(const char* field, const char* node, const char* nodeField);
    const std::vector<IsLink>& isLinks() const { return _isLinks; }

    // --- external declarations ---
    bool isExternal() const { return _external; }
    const std::vector<std::string>& urls() const { return _urls; }
    // The name after "#" of the URL that resolved, or of the first URL that has one.
    const std::string& externName() const { return _externName; }
    // Asks the prototype library once; true when the declaration is (now) resolved.
    bool              resolve();
    ProtoDeclaration* resolved() const;
    // The declaration that serves body, values and IS links: the resolved one or this.
    const ProtoDeclaration& effective() const;

    // Where the declaration was read from; instances' processors take it over.
    const std::string& sourceURL() const { return _sourceURL; }
    int                sourceLine() const { return _sourceLine; }
    void               setSource(const std::string& url, int line);

protected:
    ProtoDeclaration(NodeType& type, NodeNameSpace& nameSpace, const char* name);
    ~ProtoDeclaration() override;

private:
    friend class NodeType;
    friend class ProtoLibrary;

    static Node* create(NodeType& type, NodeNameSpace& nameSpace, const char* name);
    // Called by the proto type: the declaration belongs to it from now on.
    void attach(NodeType& protoType, NodeNameSpace& scene);
    void detachType() { _protoType = nullptr; }
    void setResolved(NodeType* type, const std::string& name);
    void touchType() const;

    NodeType*                                   _protoType = nullptr;
    SmartPtr<NodeNameSpace>                     _body;
    std::vector<SmartPtr<Node>>                 _rootNodes;
    std::deque<NodePartDesc>                    _descs;
    std::vector<std::unique_ptr<Field>>         _fields;
    std::vector<IsLink>                         _isLinks;
    bool                                        _external = false;
    bool                                        _resolveTried = false;
    std::vector<std::string>                    _urls;
    std::string                                 _externName;
    SmartPtr<NodeType>                          _resolvedType;
    std::string                                 _sourceURL;
    int                                         _sourceLine = 0;
};

} // namespace Orvane

#endif
