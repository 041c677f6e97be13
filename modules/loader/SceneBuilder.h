#ifndef ORVANE_MODULES_LOADER_SCENEBUILDER_H
#define ORVANE_MODULES_LOADER_SCENEBUILDER_H

#include "base/Node.h"
#include "base/SceneHeader.h"
#include "base/SmartPtr.h"
#include "modules/loader/LoaderExport.h"

#include <string>
#include <string_view>
#include <vector>

namespace Orvane {

class Field;
class NodeNameSpace;
class NodeType;
class ProtoDeclaration;

// One fault found in a scene file, where it starts.
struct LoadError {
    std::string file;
    int         line = 0;
    int         column = 0;
    std::string message;
};

// Makes a scene from what a front end has parsed, whatever its syntax: nodes through their
// types' createNode, values through the fields' text setters, DEF/USE, routes, IMPORT/EXPORT,
// prototypes with IS and dynamic (Script) fields. Every fault is recorded once with its place
// and logged as "file:line:column: message"; the builder never gives up on a scene.
class ORVANE_LOADER_API SceneBuilder {
public:
    struct Place {
        int line = 0;
        int column = 0;
    };

    // `url` names the file (for messages and for resolving EXTERNPROTO URLs).
    explicit SceneBuilder(std::string url);
    ~SceneBuilder();
    SceneBuilder(const SceneBuilder&) = delete;
    SceneBuilder& operator=(const SceneBuilder&) = delete;

    // What separates values in value text, and words in the classic syntax: blank, tab, line
    // feed, vertical tab, form feed, carriage return, or a comma.
    static constexpr bool isSeparator(char c)
    {
        const auto u = static_cast<unsigned char>(c);
        return u == ',' || (u <= ' ' && ((0x100003E00ull >> u) & 1u));
    }

    const std::string& url() const { return _url; }
    void error(Place place, std::string message);
    const std::vector<LoadError>& errors() const { return _errors; }

    // --- header statements ---
    SceneHeader& header() { return _header; }
    bool         isVrml97() const { return _header.encoding == "VRML"; }

    // --- nodes ---
    // A node of `typeName` (DEF'd as `defName` when not empty) in the current scope, not yet
    // placed. An unknown type gives a node of the generic type "UnknownNode" that remembers
    // the name, after an error.
    Node* createNode(std::string_view typeName, std::string_view defName, Place place);
    Node* use(std::string_view name, Place place);
    // Places `child` at the top of the current scope, or in `field` of `parent`.
    bool  addRoot(Node& child, Place place);
    bool  addChild(Node& parent, Field& field, Node& child, Place place);
    // Node values a file gives for a field replace what it held (a prototype instance starts with
    // its interface's nodes): called before the first of them.
    void  clearNodes(Field& field);
    // The field `name` of `node`; null after an error when there is none.
    Field* findField(Node& node, std::string_view name, Place place);
    // Sets `field` from value text in its text form (strings unquoted for SFString). Values that
    // do not fit the field type, and text for a field that holds nodes, are refused after an
    // error. `terminated`: a NUL follows the text, so the setter reads it where it lies.
    bool   setValue(Field& field, std::string_view text, Place place, bool terminated = false);
    // The field of `parent` that `child` goes in where the syntax names it by containerField:
    // `given` when not empty, else the default of the child's type ("children" for prototype
    // instances and unknown types). An unknown parent grows a node field of that name. Null
    // after an error when the parent has no such field.
    Field* containerField(Node& parent, Node& child, std::string_view given, Place place);
    // Inline source code (the text content of a Script or shader element): one more entry of the
    // node's url field, without the blanks around it. False after an error for other nodes.
    bool   addSource(Node& node, std::string_view code, Place place);
    // A field of an unknown node, kept as text: its type is guessed from the text.
    Field* addUnknownField(Node& node, std::string_view name, std::string_view text, bool holdsNodes, Place place);
    // An interface declaration on a Script (or other extensible) node.
    Field* addDynamicField(Node& node, std::string_view access, std::string_view type, std::string_view name,
                           Place place);

    // --- routes, IMPORT, EXPORT ---
    bool route(std::string_view fromNode, std::string_view fromField, std::string_view toNode,
               std::string_view toField, Place place);
    bool exportNode(std::string_view local, std::string_view as, Place place);
    bool importNode(std::string_view inlineName, std::string_view exported, std::string_view as, Place place);

    // --- prototypes ---
    // PROTO, or with URLs EXTERNPROTO, `name` in the current scope.
    ProtoDeclaration* beginProto(std::string_view name, const std::vector<std::string>* externUrls, Place place);
    bool addProtoField(ProtoDeclaration& proto, std::string_view access, std::string_view type,
                       std::string_view name, const std::string* value, Place place);
    // The body of `proto` becomes the current scope until endProto.
    void enterProtoBody(ProtoDeclaration& proto);
    void endProto();
    bool inProtoBody() const { return !_scopes.empty() && _scopes.back().proto; }
    // `field` of `node` IS interface field `interfaceName` of the innermost prototype.
    bool isLink(Node& node, std::string_view field, std::string_view interfaceName, Place place);

    // The X3D versions read: 3.0 to 4.1.
    static bool isX3DVersion(std::string_view version);

    // The scene: a root node of type "SceneRoot" whose "children" hold the top-level nodes and
    // whose fields keep the header statements. Null once taken.
    SmartPtr<Node> finish();
    NodeNameSpace* sceneNameSpace() const;

    // The context root type of loaded scenes (registered with the loader).
    static NodeType& sceneRootType();
    // The abstract parent of the types that stand in for node types the reader did not know;
    // isUnknown tells such a stand-in.
    static NodeType& unknownNodeType();
    static bool      isUnknown(const NodeType& type);

private:
    struct Scope {
        NodeNameSpace*    nameSpace;
        ProtoDeclaration* proto;
    };
    NodeNameSpace& scope() const;
    NodeType*      standInType(const std::string& typeName);
    std::string    fieldLabel(const Field& field) const;

    std::string            _url;
    std::vector<LoadError> _errors;
    SceneHeader            _header;
    SmartPtr<Node>         _root;
    std::vector<Scope>     _scopes;
    std::string            _text;  // scratch for names turned into C strings
};

} // namespace Orvane

#endif
