#ifndef ORVANE_BASE_MFNODE_H
#define ORVANE_BASE_MFNODE_H

#include "base/NodeLink.h"
#include "base/TypedField.h"

namespace Orvane {

// A list of child links, one per child. Like SFNode, its text form only names the children.
class ORVANE_API MFNode : public TypedField<MFNode, MLField<NodeLink, 1>> {
public:
    explicit MFNode(Node& owner) : TypedField(owner) {}
    MFNode(Node& owner, const MFNode& other);
    MFNode(const MFNode& other);
    MFNode& operator=(const MFNode& other);
    using Field::setValueByStr;
    static constexpr NodePartDataType DataType = MFNodeType;

    NodeLink* addChild(Node* node);
    NodeLink* insertChild(int index, Node* node);
    Node*     childNode(int index) const { return elem(index).node(); }

    std::string& getStrValue(std::string& out) const override;
    const char*  addValueByStr(const char* text, Cardinality cardinality) override;

protected:
    void setValueByStr(const char* text) override;

private:
    friend class BuiltinFieldTypes;
    static Field* create(Node& owner);
};

} // namespace Orvane

#endif
