#ifndef ORVANE_BASE_X3DWRITEACTION_H
#define ORVANE_BASE_X3DWRITEACTION_H

#include "base/WriteAction.h"

#include <string_view>
#include <vector>

namespace Orvane {

// Writes a scene, or any part of it, as an X3D document in the XML encoding (.x3d): the XML
// declaration and DOCTYPE, <X3D profile version> with its schema location, <head> with the
// COMPONENT, UNIT and META statements of the scene header (WriteAction::setSceneHeader; a
// scene without one is written as profile "Immersive", version 4.0), and <Scene>.
//
// Nodes are elements with DEF and USE (a USE is an empty element); values are attributes in the
// XML value syntax (true/false, MFString items in double quotes, & < > " ' as entities);
// fields at their default are left out unless writeDefaultValue. A child node carries
// containerField only where its field differs from its type's NodeType::containerField.
// Prototypes are ProtoDeclare (ProtoInterface, ProtoBody, IS/connect) and ExternProtoDeclare,
// their instances ProtoInstance with fieldValue children; added fields (Script) are <field>
// elements. ROUTE, EXPORT and import routes follow the last node of their scope (the scene, or
// a ProtoBody); an IMPORT follows the node it imports from. The first url value of a Script or
// shader node that is inline code (ecmascript:, javascript:, vrmlscript:, data:) is written as
// the element's CDATA content, the other values stay in url. Attribute values are delimited by
// apostrophes; the nodes' run-time logFeature switch is not written.
//
//     X3DWriteAction writer;
//     writer.writeFile(root, "scene.x3d");
class ORVANE_API X3DWriteAction : public WriteAction {
public:
    explicit X3DWriteAction(const double& timeStamp = 0.0);
    X3DWriteAction(const X3DWriteAction& other);
    ~X3DWriteAction() override;

    void reset() override;
    void writeSingleRoute(const char* fromNode, const char* fromField, const char* toNode,
                          const char* toField) override;
    void begin(std::ostream& stream, const std::string& name) override;
    void end() override;
    void flushRouteBag(bool pop) override;
    bool beginNode(Node& node) override;
    int  endNode(Node& node) override;
    void writeField(Field& field, FieldStyle style) override;
    bool beginSFNode(Field& field, FieldStyle style) override;
    void endSFNode(FieldStyle style) override;
    bool beginMFNode(Field& field, FieldStyle style) override;
    void endMFNode(FieldStyle style) override;
    void writeRoute(Route& route) override;
    void writeExports(NodeNameSpace& nameSpace) override;
    void writeImports(Node& node) override;
    void writePrototypes(NodeNameSpace& nameSpace) override;

protected:
    bool valuesFirst() const override { return true; }
    void writeProto(NodeNameSpace& nameSpace);

private:
    // An element whose end is still to come.
    struct Element {
        std::string_view tag;
        Node*             node = nullptr;    // the node of a node element
        bool              open = true;       // the start tag waits for its ">" (or "/>")
        bool              linked = false;    // the IS block is written, or none is due
        bool              instance = false;  // a ProtoInstance: values are fieldValue elements
        bool              code = false;      // a Script or shader: inline code goes to CDATA
        const Field*      cdata = nullptr;   // the url whose first value is the CDATA content
    };
    // An SFNode or MFNode field being written; `wrapper` when it is an element of its own
    // (field or fieldValue), whose nodes need no containerField; `opened` when that element
    // was written and waits for its end.
    struct OpenField {
        const Field* field;
        bool         wrapper;
        bool         opened;
    };

    void openElement(std::string_view tag, Node* node = nullptr);
    void closeStartTag();
    // Before content of the innermost element: its start tag closed and, before a child node
    // or statement, its IS block.
    void enterContent(bool child);
    void closeElement();
    void writeLinks(Element& element);
    // A <field> declaration, left open.
    void openDeclaration(const Field& field);
    void putAttribute(std::string_view name, std::string_view value);
    // Text with the XML specials as entities; `quoted` for an MFString item, where a double
    // quote and a backslash also take a backslash first.
    void putEscaped(std::string_view text, bool quoted = false);
    // A field value in the XML syntax, leaving out the first `skip` items of an MFString.
    void putXmlValue(const Field& field, unsigned skip = 0);
    void putCData(std::string_view text);

    std::vector<Element>   _elements;
    std::vector<OpenField> _openFields;
};

} // namespace Orvane

#endif
