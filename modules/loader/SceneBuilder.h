#ifndef ORVANE_MODULES_LOADER_SCENEBUILDER_H
#define ORVANE_MODULES_LOADER_SCENEBUILDER_H

#include "base/Node.h"
#include "base/NodeNameSpace.h"
#include "base/SceneHeader.h"
#include "base/SmartPtr.h"
#include "modules/loader/LoaderExport.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace Orvane {

class Field;
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

    // --- Inline ---
    // Each Inline node placed in the scene outside prototypes gets a scene of its own, held by
    // an InlineProc. With inline loading on (off for a new builder; SceneLoader turns it on
    // unless told not to) and its load TRUE, the first local file of its url that reads
    // (relative to this file; plain paths and file: URLs; other schemes are never fetched) is
    // read into that scene. The files are read when this one is done (in finish), so that
    // nesting costs no stack; routes through imports of those scenes wait until then. A file
    // that is being read around the Inline (a cycle), nesting beyond MaxInlineDepth files and
    // more than MaxInlineFiles files for one load are refused. Faults of an inlined file keep
    // its name. The scene of an Inline whose file is not read stays empty but for stand-ins of
    // the nodes that routes through its IMPORTs reach, so that nothing of the file is lost.
    static constexpr int MaxInlineDepth = 16;
    static constexpr int MaxInlineFiles = 4096;
    void setInlineLoading(bool on) { _inlineLoading = on; }
    bool inlineLoading() const { return _inlineLoading; }
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
    // An Inline waiting for its file, with the builder of its scene.
    struct PendingInline {
        SmartPtr<Node>                node;
        std::unique_ptr<SceneBuilder> scene;
        Place                         place;
        std::string                   file;  // where the Inline was written: its urls are relative to it
    };
    // A ROUTE through an import of a scene still waiting to be read.
    struct PendingRoute {
        NodeNameSpace* nameSpace;
        std::string    from, fromField, to, toField;
        Place          place;
    };
    NodeNameSpace& scope() const;
    static NodeType* standInType(NodeNameSpace& scene, const std::string& typeName);
    std::string    fieldLabel(const Field& field) const;
    bool           routeIn(NodeNameSpace& ns, const std::string& a, const std::string& af, const std::string& b,
                           const std::string& bf, Place place);
    // A fault of `file`, which may be another than this builder's (a prototype's).
    void           fault(const std::string& file, Place place, std::string message);
    void           noteInline(Node& node, Place place, NodeNameSpace& parent, const std::string& file);
    void           noteInstanceInlines();
    // The IMPORTs of a prototype's declared body, and the routes through them, made again in an
    // instance's `body` from the instance's own Inlines.
    void           copyBodyImports(NodeNameSpace& declared, NodeNameSpace& body, Place place);
    // The root of the scene of an Inline whose file was not read, whose namespace is `inner`.
    Node* unreadScene(const NodeNameSpace* inner) const;
    // The import `name` of `ns` when it imports from an Inline whose file was not read.
    const NodeNameSpace::Import* unreadImport(const NodeNameSpace& ns, const std::string& name) const;
    // A ROUTE through such an import: the Inline's empty scene gets a stand-in export with the
    // routed field (`source`: the route leaves it), typed after the other end's field.
    void standInImport(const NodeNameSpace::Import& import, const std::string& field, Node& other,
                       const std::string& otherField, bool source);
    bool           awaitsInline(const NodeNameSpace& ns, const std::string& name) const;
    void           loadInlines();
    void           loadInline(PendingInline& pending);
    // Why the file at `canonical` may not be inlined here; empty when it may (and then counted).
    std::string    inlineRefusal(const std::string& canonical);

    std::string            _url;
    std::vector<LoadError> _errors;
    SceneHeader            _header;
    SmartPtr<Node>         _root;
    std::vector<Scope>     _scopes;
    std::string            _text;  // scratch for names turned into C strings

    bool                       _inlineLoading = false;
    SceneBuilder*              _outer = nullptr;  // the builder of the file that inlines this one
    int                        _inlineDepth = 0;
    int                        _inlineCount = 0;  // in the outermost builder: files inlined in all
    std::string                _canonical;        // this file's path, for cycles; made on need
    std::vector<PendingInline> _pendingInlines;
    std::vector<PendingRoute>  _pendingRoutes;
    // The scenes of Inlines whose files were not read: loading off, load FALSE, or no file.
    std::vector<SmartPtr<Node>> _unreadScenes;
    bool                        _madeInstances = false;  // of prototypes: their bodies may hold Inlines
};

} // namespace Orvane

#endif
