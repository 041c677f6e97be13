// Uses the installed library the way an application would: a node type, a node, a field.
#include "base/FieldType.h"
#include "base/Log.h"
#include "base/MFVec3f.h"
#include "base/Node.h"
#include "base/NodePartDesc.h"
#include "base/NodeNameSpace.h"
#include "base/NodeType.h"
#include "base/NodeTypeNameSpace.h"
#include "base/SmartPtr.h"
#include "modules/x3d/X3DCatalog.h"

#include <cstdio>

using namespace Orvane;

int main()
{
    // Its one field follows the two that every type inherits from "Node".
    NodePartDesc parts[] = {
        NodePartDesc(2, PartMask::bit(2), ExposedFieldPartType, MFVec3fType, 0, "point"),
    };
    NodeType type(theBaseNodeTypeFactory(), "Points", "Consumer", "Node", nullptr, "1.0", "Consumer", nullptr,
                  "stable", "A list of points", "Orvane", false, false, &Node::isNodeType, &Node::createNode,
                  &Node::createProc, parts, 1);
    SmartPtr<NodeNameSpace> scene(new NodeNameSpace("scene"));
    SmartPtr<Node> node(type.createNode(scene.get()));

    Field* point = node ? node->findField("point") : nullptr;
    if (!point || FieldType::typeCount() != 51) {
        std::fprintf(stderr, "consumer: library not usable\n");
        return 1;
    }
    point->setValueByStr(0.0, "0 1 2, 3 4 5");
    std::string text = point->strValue();
    std::printf("consumer: %s = [%s]\n", point->findName(), text.c_str());
    if (text != "0.000000 1.000000 2.000000, 3.000000 4.000000 5.000000")
        return 1;

    // The X3D catalog module: a standard node with its standard defaults.
    X3DCatalog::init();
    SmartPtr<Node> transform(NodeType::createNode(scene.get(), "Transform", nullptr, UnknownCreator));
    Field* scale = transform ? transform->findField("scale") : nullptr;
    std::string scaleText = scale ? scale->strValue() : std::string();
    std::printf("consumer: Transform.scale = [%s]\n", scaleText.c_str());
    return scaleText == "1 1 1" ? 0 : 1;
}
