#include "base/MetadataObject.h"

#include "base/Log.h"
#include "base/NodePartDesc.h"
#include "base/NodeType.h"
#include "base/NodeTypeNameSpace.h"
#include "base/SFBool.h"
#include "base/SFString.h"

namespace Orvane {

NodeType& MetadataObject::classType()
{
    static NodePartDesc descs[] = {
        NodePartDesc(2, PartMask::bit(2), ExposedFieldPartType, SFStringType, NodePartDesc::CtorAutoProcess, "name",
                     nullptr, nullptr, nullptr, "Enter the metadata attribute name here."),
        NodePartDesc(3, PartMask::bit(3), ExposedFieldPartType, SFStringType, NodePartDesc::CtorAutoProcess,
                     "reference", nullptr, nullptr, nullptr,
                     "Reference to the metadata standard or definition defining this particular metadata value."),
        NodePartDesc(4, PartMask::bit(4), ExposedFieldPartType, SFBoolType,
                     NodePartDesc::CtorAutoProcess | NodePartDesc::CtorTypeExtension, "enabled", nullptr, "TRUE",
                     nullptr,
                     "flag to enable or disable the Object; Does not change any internal handling but is only a "
                     "hint for application programms"),
    };
    static NodeType type(theBaseNodeTypeFactory(), "MetadataObject", "Base", "Node", nullptr, nullptr, "Core",
                         nullptr, "stable",
                         "This abstract interface is the basis for all metadata nodes. The interface is inherited by "
                         "all metadata nodes. The specification of the reference field is optional. If provided, it "
                         "identifies the metadata standard or other specification that defines the name field. If "
                         "the reference field is not provided or is empty, the meaning of the name field is "
                         "considered implicit to the characters in the string.",
                         "X3D3.0", false, false, &MetadataObject::isType, nullptr, nullptr, descs, 3);
    return type;
}

namespace {
[[maybe_unused]] const bool metadataTypeRegistered = (MetadataObject::classType(), true);
} // namespace

MetadataObject::MetadataObject(NodeType& type, NodeNameSpace& nameSpace, const char* name)
    : Node(type, nameSpace, name)
{
    for (unsigned id = 2; id <= 4; ++id)
        makeField(id, true);
}

Node* MetadataObject::create(BaseObject* parent, const char* name, NodeCreator creator)
{
    return classType().createNode(parent, name, creator);
}

bool MetadataObject::init()
{
    NodeType* type = NodeTypeNameSpace::findType(&theBaseNodeTypeFactory(), "MetadataObject", CaseSensitive);
    ORV_INFO("Init %s: %s\n", "MetadataObject", type ? "OK" : "FAILED");
    return type != nullptr;
}

bool MetadataObject::isType(const Node* node)
{
    return dynamic_cast<const MetadataObject*>(node) != nullptr;
}

SFString& MetadataObject::name() const
{
    return *static_cast<SFString*>(findField(2u));
}

SFString& MetadataObject::reference() const
{
    return *static_cast<SFString*>(findField(3u));
}

SFBool& MetadataObject::enabled() const
{
    return *static_cast<SFBool*>(findField(4u));
}

// The node's own loop guard around the processor's reaction is exactly what a metadata object
// needs.
bool MetadataObject::fieldChanged(Field& field, const double& time, Field* source)
{
    return Node::fieldChanged(field, time, source);
}

bool MetadataObjectProc::fieldChanged(Node& node, Field& field, const double& time, Field* source)
{
    if (auto* metadata = dynamic_cast<MetadataObject*>(&node))
        return fieldChanged(*metadata, field, time, source);
    return NodeProc::fieldChanged(node, field, time, source);
}

bool MetadataObjectProc::fieldChanged(MetadataObject& node, Field& field, const double& time, Field* source)
{
    switch (field.desc() ? field.desc()->ID() : ~0u) {
    case 2:
        ORV_FATAL("MetadataObjectProc::fieldChanged(name) not impl.\n");
        return true;
    case 3:
        ORV_FATAL("MetadataObjectProc::fieldChanged(reference) not impl.\n");
        return true;
    case 4:
        ORV_FATAL("MetadataObjectProc::fieldChanged(enabled) not impl.\n");
        return true;
    default:
        return NodeProc::fieldChanged(node, field, time, source);
    }
}

} // namespace Orvane
