#ifndef ORVANE_BASE_WRITEACTION_H
#define ORVANE_BASE_WRITEACTION_H

#include "base/Field.h"
#include "base/SceneHeader.h"
#include "base/TraversAction.h"

#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace Orvane {

class BaseObject;
class Field;
class Node;
class NodeNameSpace;
class NodePartDesc;
class NodeType;
class ProtoDeclaration;
class Route;

// The common machinery of the scene writers: the output stream, the indentation, the IS links of
// the prototype body being written, and the decision whether a node-holding field is written at
// all. Nodes drive the walk (writeNode); every piece of syntax is a hook of a concrete writer.
//
// Output is collected in a buffer of the action and reaches the stream in large blocks, so that
// a scene of any size costs a few large writes rather than one per line.
class ORVANE_API WriteAction : public TraversAction {
public:
    // How a field is written; DefaultStyle is resolved from the field's descriptor first.
    enum FieldStyle : std::int32_t {
        DefaultStyle = 0,
        NormalStyle = 1,            // name and value
        InterfaceStyle = 2,         // access type, field type, name and value: a declaration
        ExternInterfaceStyle = 3,   // access type, field type and name, never a value
    };

    // Option bits in the action's option word, beside the traversal's skip bits.
    enum WriteOption : std::uint32_t {
        VrmlResetOption     = 0x4,    // set by the classic writer's reset, not tested anywhere
        UseTAB              = 0x8,    // indent with a tab a level instead of two blanks
        ForbidNodeUSE       = 0x10,   // write numbered DEF copies instead of USE
        ResolveProto        = 0x20,   // write prototype instances as what they resolve to
        WriteProcInfo       = 0x40,   // a comment with state and processor information per node
        WriteAbstract       = 0x80,   // write the standard type that an internal type stands for
        WriteDefaultValue   = 0x100,  // also write fields that hold their default value
        WriteInternalRoutes = 0x200,  // routes of every type, not only user routes
        WriteExactNumbers   = 0x400,  // every float and double in its shortest exact text
    };

    ~WriteAction() override;

    void reset() override;
    virtual void indent();
    virtual void writeImportRoutes(NodeNameSpace& nameSpace);
    virtual void writeSingleRoute(const char* fromNode, const char* fromField, const char* toNode,
                                  const char* toField) = 0;
    virtual void beginFile(const std::string& fileName);
    virtual void begin(std::ostream& stream, const std::string& name) = 0;
    virtual void end() = 0;
    virtual void flushRouteBag(bool pop) = 0;
    virtual bool beginNode(Node& node) = 0;
    virtual int  endNode(Node& node) = 0;
    virtual void beginAttrField() {}
    virtual void endAttrField() {}
    virtual void writeField(Field& field, FieldStyle style) = 0;
    virtual void writeContainerField(Field& field, FieldStyle style, bool withBrackets);
    virtual bool beginSFNode(Field& field, FieldStyle style) = 0;
    virtual void endSFNode(FieldStyle style) = 0;
    virtual bool beginMFNode(Field& field, FieldStyle style) = 0;
    virtual void endMFNode(FieldStyle style) = 0;
    virtual void writeRoute(Route& route) = 0;
    virtual void writeExports(NodeNameSpace& nameSpace) = 0;
    virtual void writeImports(Node& node) = 0;
    // The prototype declarations of `nameSpace`, where the writer has any; a scene without
    // nodes (a prototype library) has no node to bring them out.
    virtual void writePrototypes(NodeNameSpace&) {}

    // Options.
    bool useTAB() const { return option(UseTAB); }
    void setUseTAB(bool on) { setOption(UseTAB, on); }
    bool forbidNodeUSE() const { return option(ForbidNodeUSE); }
    void setForbidNodeUSE(bool on) { setOption(ForbidNodeUSE, on); }
    bool resolveProto() const { return option(ResolveProto); }
    void setResolveProto(bool on) { setOption(ResolveProto, on); }
    bool writeAbstract() const { return option(WriteAbstract); }
    void setWriteAbstract(bool on) { setOption(WriteAbstract, on); }
    bool writeDefaultValue() const { return option(WriteDefaultValue); }
    void setWriteDefaultValue(bool on) { setOption(WriteDefaultValue, on); }
    bool writeInternalRoutes() const { return option(WriteInternalRoutes); }
    void setWriteInternalRoutes(bool on) { setOption(WriteInternalRoutes, on); }
    bool writeProcInfo() const { return option(WriteProcInfo); }
    void setWriteProcInfo(bool on) { setOption(WriteProcInfo, on); }
    // Off by default, so that the standard text forms hold: numbers that read back bit for bit.
    bool writeExactNumbers() const { return option(WriteExactNumbers); }
    void setWriteExactNumbers(bool on) { setOption(WriteExactNumbers, on); }

    // The stream; a stream that the action opened itself (beginFile) is deleted when let go.
    void          setStream(std::ostream& stream);
    void          resetStream();
    std::ostream* stream() const { return _stream; }
    int           indentLevel() const { return _indentLevel; }
    void          setIndentLevel(int level) { _indentLevel = level; }
    NodeNameSpace* currentNameSpace() const { return _currentNameSpace; }

    // The interface field that `field` is linked to by IS in the innermost prototype body.
    NodePartDesc* getInterfaceDesc(Field& field) const;

    // "Text/HTML; charset=x" gives "text/html".
    static std::string normalizeMimetype(const std::string& mimetype);

    // The walk: a node through its processor, or in the common way when the processor leaves it
    // to the action: header, fields, children, routes, end.
    void writeNode(Node& node);
    // The common way, for processors that add to it.
    void writeNodeFields(Node& node);
    // Which fields one pass of the walk writes: all in slot order, or (with valuesFirst) the
    // plain values, then the declarations of added fields, then the node-holding fields.
    enum FieldPass { AllPass, ValuePass, DeclarationPass, ChildPass };
    void writeFieldPass(Node& node, FieldPass pass);

    // One call for a whole scene: the roots, in order, as one document. The answer is whether
    // everything reached the stream.
    bool writeFile(const std::vector<Node*>& roots, const std::string& fileName);
    bool writeFile(Node& root, const std::string& fileName);
    bool writeStream(const std::vector<Node*>& roots, std::ostream& stream);
    bool writeStream(Node& root, std::ostream& stream);

    // The header statements that the X3D writers write (profile, components, units, meta,
    // version); a scene built in code keeps the empty header, written with the defaults.
    void               setSceneHeader(const SceneHeader& header) { _sceneHeader = header; }
    const SceneHeader& sceneHeader() const { return _sceneHeader; }

    // Whether the last stream that was let go took every byte written to it.
    bool lastStreamGood() const { return _lastStreamGood; }

    // The standard tag of the system's own node types, which writeAbstract looks through.
    static const std::string& systemStandard();

protected:
    explicit WriteAction(const double& timeStamp);
    WriteAction(const WriteAction& other);

    using IsMap = std::map<const Field*, const NodePartDesc*>;

    FieldStyle resolveStyle(const Field& field, FieldStyle style) const;
    // The node of an SFNode or MFNode entry as the options want it read.
    Node* linkedNode(const class NodeLink& link) const;
    // The written type of a node (writeAbstract).
    const NodeType& writtenType(const Node& node) const;
    // The name under which a node is known in routes: its DEF name, or empty for none.
    static const std::string* nodeName(const Node& node);
    // Whether a field holds its descriptor's default value (Field::valueIsDefault, faster).
    bool holdsDefault(const Field& field);
    // Writes the text of a value: the field's own text form, or with writeExactNumbers every
    // float and double in its shortest exact text.
    void putValue(const Field& field);
    // Whether putValue writes the field's numbers itself (no text that needs quoting).
    static bool isNumeric(const Field& field);
    // An interface entry of a prototype declaration, by its kind of field.
    void writeInterfaceField(Field& field, FieldStyle style);
    // The field's own text form, in the action's scratch text.
    const std::string& valueText(const Field& field);

    // Output. good() is false without a stream or with one in a failed state.
    bool good() const { return _stream && _stream->good(); }
    void put(std::string_view text)
    {
        _buffer.append(text);
        if (_buffer.size() >= flushSize)
            flushBuffer();
    }
    void put(char c)
    {
        _buffer.push_back(c);
        if (_buffer.size() >= flushSize)
            flushBuffer();
    }
    void putInt(long long value);
    void flushBuffer();

    std::deque<IsMap>& isMapStack() { return _isMapStack; }
    void               setCurrentNameSpace(NodeNameSpace* nameSpace) { _currentNameSpace = nameSpace; }

    // Whether the walk writes a node's value fields in a pass of their own, between
    // beginAttrField and endAttrField, before its declarations and its child nodes (a syntax
    // whose values sit in the node's start tag). The classic syntax keeps slot order.
    virtual bool valuesFirst() const { return false; }

    // How a node is introduced, by the DEF/USE table of the document: without name, DEF'd
    // (a numbered copy when `copy` is not 0, with forbidNodeUSE), or USE'd (no body).
    enum NodeMark { PlainNode, DefinedNode, UsedNode };
    NodeMark markNode(Node& node, const std::string& typeName, const std::string*& name, unsigned& copy);

    // The routes of one scope, each once, in the order the walk handed them over (so that the
    // same scene always gives the same file).
    struct RouteBag {
        std::vector<Route*>        order;
        std::unordered_set<Route*> members;
    };
    std::deque<RouteBag>& routeBagStack() { return _routeBagStack; }
    // writeRoute and flushRouteBag of the text writers: user routes (every route with
    // writeInternalRoutes) between named nodes, each written through writeSingleRoute.
    void bagRoute(Route& route);
    void flushRoutes(bool pop);

    // The prototypes of `nameSpace` to declare, in declaration order, without aliases; empty
    // with resolveProto or once the scope's declarations were written in this document.
    std::vector<NodeType*> prototypesToDeclare(NodeNameSpace& nameSpace);
    // A new document: no scope has its prototypes or its import routes written yet.
    void                   startDocument()
    {
        _protoWritten.clear();
        _importRoutesWritten.clear();
    }
    // Pushes the IS map of a prototype body; a link to a node or field that the body lacks is
    // reported and left out.
    void pushIsLinks(ProtoDeclaration& declaration);
    // The DEF/USE table and the route bags of another writer's document.
    void copyDocumentState(const WriteAction& other);
    // An external prototype's address as written: its first URL without fragment, "#" and the
    // prototype's name in that file.
    static std::string externUrl(const NodeType& type, const ProtoDeclaration& declaration);
    // The name of a node's own scope: the one its processor reports, else the one it lives in.
    // A scope that is a document of its own (NodeProc::ownsDocument) is not the node's here.
    static NodeNameSpace& ownNameSpace(const Node& node);
    // The scope that IMPORT statements naming the node import from; null for none.
    static NodeNameSpace* importScope(const Node& node);

private:
    static constexpr std::size_t flushSize = 1u << 18;

    void releaseStream();

    std::string        _ownedFile;
    std::ostream*      _stream = nullptr;
    int                _indentLevel = 0;
    NodeNameSpace*     _currentNameSpace = nullptr;
    std::deque<IsMap>  _isMapStack;
    std::string        _buffer;
    std::string        _text;
    // Parsed defaults of the current document, one per descriptor.
    std::unordered_map<const NodePartDesc*, std::unique_ptr<Field>> _defaults;
    bool               _lastStreamGood = true;
    SceneHeader        _sceneHeader;
    std::deque<RouteBag> _routeBagStack;
    struct UseEntry {
        unsigned    count;
        std::string name;
    };
    std::unordered_map<Node*, UseEntry> _useTable;
    // The namespaces whose prototypes this document declared already: a scope is entered again
    // after each of its root nodes, but its prototypes are declared once.
    std::unordered_set<const NodeNameSpace*> _protoWritten;
    // Scopes whose import routes this document has: a prototype body with several root nodes
    // ends each of them with its scope's routes.
    std::unordered_set<const NodeNameSpace*> _importRoutesWritten;
};

} // namespace Orvane

#endif
