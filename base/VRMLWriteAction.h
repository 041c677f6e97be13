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

protected:
    void writeProto(NodeNameSpace& nameSpace);

private:
    // The routes of one scope, each once, in the order the walk handed them over (so that the
    // same scene always gives the same file).
    struct RouteBag {
        std::vector<Route*>        order;
        std::unordered_set<Route*> members;
    };
    struct UseEntry {
        unsigned    count;
        std::string name;
    };

    // The declaration words of a field in the two interface styles.
    void writeDeclaration(const Field& field, FieldStyle style);
    void writeValue(const Field& field);
    // An interface entry of a prototype declaration, by its kind of field.
    void writeInterface(Field& field, FieldStyle style);
    // The name of a node's own scope: the one its processor reports, else the one it lives in.
    static NodeNameSpace& ownNameSpace(const Node& node);

    std::deque<RouteBag>                  _routeBagStack;
    std::unordered_map<Node*, UseEntry>   _useTable;
    std::deque<Field*>                    _openFields;
    std::vector<Field*>                   _deferred;
    // The namespaces whose prototypes this document declared already: a scope is entered again
    // after each of its root nodes, but its prototypes are declared once.
    std::unordered_set<const NodeNameSpace*> _protoWritten;
};

} // namespace Orvane

#endif
