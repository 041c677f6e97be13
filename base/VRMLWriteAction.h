#ifndef ORVANE_BASE_VRMLWRITEACTION_H
#define ORVANE_BASE_VRMLWRITEACTION_H

#include "base/WriteAction.h"

#include <deque>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace Orvane {

// Writes a scene, or any part of it, as a classic VRML 2.0 text file: header, node blocks with
// DEF and USE, field values in their text form, PROTO and EXTERNPROTO declarations, ROUTE,
// IMPORT and EXPORT statements.
//
//     VRMLWriteAction writer;
//     writer.writeFile(root, "scene.wrl");
class ORVANE_API VRMLWriteAction : public WriteAction {
public:
    explicit VRMLWriteAction(const double& timeStamp = 0.0);
    VRMLWriteAction(const VRMLWriteAction& other);
    // Takes the base state of any writer.
    explicit VRMLWriteAction(const WriteAction& other);
    VRMLWriteAction& operator=(const VRMLWriteAction& other);
    ~VRMLWriteAction() override;

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
    void writeProto(NodeNameSpace& nameSpace);
    // The EXPORT statements of `nameSpace` and the IMPORT statements of the Inline `node`:
    // indented once before the first (even when there is none), or each.
    void writeExportLines(NodeNameSpace& nameSpace, bool indentEach);
    void writeImportLines(Node& node, bool indentEach);
    // The first lines of a document.
    virtual void writeHeader();
    // The word of an access type in a declaration.
    virtual const char* accessName(NodePartType partType) const;
    // A string in double quotes, with every double quote and backslash escaped by a backslash.
    void putQuoted(std::string_view text);

private:
    // The declaration words of a field in the two interface styles.
    void writeDeclaration(const Field& field, FieldStyle style);
    void writeValue(const Field& field);
    // The common start of an SFNode or MFNode field: pushed on the open fields, style resolved,
    // declaration and name written; false with a failed stream.
    bool openNodeField(Field& field, FieldStyle& style);

    std::deque<Field*>                    _openFields;
    std::vector<Field*>                   _deferred;
};

} // namespace Orvane

#endif
