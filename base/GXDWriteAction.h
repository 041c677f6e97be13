#ifndef ORVANE_BASE_GXDWRITEACTION_H
#define ORVANE_BASE_GXDWRITEACTION_H

#include "base/WriteAction.h"

#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace Orvane {

// Writes a scene as a dataflow graph for a graph viewer or editor: every node once as a
// component with typed slots (event inputs and outputs, one node-link output per node field and
// one parent input), and every parent-child link and every route as an edge between two slots.
class ORVANE_API GXDWriteAction : public WriteAction {
public:
    explicit GXDWriteAction(const double& timeStamp = 0.0);
    GXDWriteAction(const GXDWriteAction& other);
    ~GXDWriteAction() override;

    void reset() override;
    void writeSingleRoute(const char*, const char*, const char*, const char*) override {}
    void begin(std::ostream& stream, const std::string& name) override;
    void end() override;
    void flushRouteBag(bool pop) override;
    bool beginNode(Node& node) override;
    int  endNode(Node& node) override;
    void writeField(Field&, FieldStyle) override {}
    bool beginSFNode(Field&, FieldStyle) override { return true; }
    void endSFNode(FieldStyle) override {}
    bool beginMFNode(Field&, FieldStyle) override { return true; }
    void endMFNode(FieldStyle) override {}
    void writeRoute(Route& route) override;
    void writeExports(NodeNameSpace&) override {}
    void writeImports(Node&) override {}

private:
    // An attribute value: the text with the three characters that would end or break it
    // written as entities.
    void putAttribute(std::string_view text);
    void putEdge(std::string_view outComponent, std::string_view outSlot, std::string_view suffix,
                 std::string_view inComponent, std::string_view inSlot);

    // Both kept in the order the walk met them, so that one scene always gives one file.
    std::vector<Route*>                         _routes;
    std::unordered_set<Route*>                  _routeSet;
    std::vector<Node*>                          _components;
    std::unordered_map<Node*, std::string>      _componentNames;
};

} // namespace Orvane

#endif
