// What the loader tests share: the test scenes, writing a scene back, and what makes two scenes
// equal.
#ifndef ORVANE_TESTS_LOADER_SCENESUPPORT_H
#define ORVANE_TESTS_LOADER_SCENESUPPORT_H

#include "base/EventInSlot.h"
#include "base/EventOutSlot.h"
#include "base/NodeNameSpace.h"
#include "base/NodeType.h"
#include "base/Route.h"
#include "base/VRMLWriteAction.h"
#include "modules/loader/SceneLoader.h"

#include <gtest/gtest.h>

#include <set>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

namespace Orvane::Test {

inline std::string data(const char* name)
{
    return std::string(ORVANE_TEST_DATA) + "/" + name;
}

inline std::string write(Node& root)
{
    VRMLWriteAction    writer;
    std::ostringstream out;
    EXPECT_TRUE(SceneLoader::write(root, writer, out));
    return out.str();
}

// What makes two scenes equal here: nodes by type, DEF names with their types, routes, and
// imports with the node each reaches.
inline std::multiset<std::string> shape(Node& root)
{
    std::multiset<std::string> out;
    std::vector<Node*> nodes;
    root.nameSpace().fillNodeVec(nodes);
    for (Node* node : nodes)
        out.insert(node->type().name() + (node->hasName() && !node->isAutoNamed() ? " " + node->name() : ""));
    std::vector<Route*> routes;
    Route::fillRouteVec(routes, &root.nameSpace(), Route::DEFAULT);
    for (Route* r : routes)
        out.insert("ROUTE " + r->outSlot().field().owner().name() + "." + r->outSlot().field().findName() + " " +
                   r->inSlot().field().owner().name() + "." + r->inSlot().field().findName());
    for (const NodeNameSpace::Import& import : root.nameSpace().importVec()) {
        Node* node = import.from ? import.from->getExportedNode(import.exportName) : nullptr;
        out.insert("IMPORT " + import.localName + " " + (node ? node->type().name() + " " + node->name() : "-"));
    }
    return out;
}

inline Node* named(const LoadedScene& scene, const char* name)
{
    return scene.root->nameSpace().findNode(name);
}

inline std::string text(Node& node, const char* field)
{
    return node.findField(std::string(field))->strValue();
}

// The faults of a load as line, column, message.
using Fault = std::tuple<int, int, std::string>;
inline std::vector<Fault> faults(const LoadedScene& scene)
{
    std::vector<Fault> out;
    for (const LoadError& e : scene.errors)
        out.emplace_back(e.line, e.column, e.message);
    return out;
}

// The node kept for an unknown type, null when there is none.
inline Node* unknownNode(const LoadedScene& scene, const char* typeName)
{
    std::vector<Node*> nodes;
    scene.root->nameSpace().fillNodeVec(nodes);
    for (Node* node : nodes)
        if (node->type().name() == typeName && SceneBuilder::isUnknown(node->type()))
            return node;
    return nullptr;
}

} // namespace Orvane::Test

#endif
