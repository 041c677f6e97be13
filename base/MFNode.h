#ifndef ORVANE_BASE_MFNODE_H
#define ORVANE_BASE_MFNODE_H

#include "base/NodeLink.h"
#include "base/TypedField.h"

namespace Orvane {

// A list of child links, one per child. Every link is placed first and then given its child,
// so that parent and child hear of each other; removing a link clears it the same way. Like
// SFNode, its text form only names the children and there is no binary form.
class ORVANE_API MFNode : public TypedField<MFNode, MLField<NodeLink, 1>> {
public:
    explicit MFNode(Node& owner) : TypedField(owner) {}
    MFNode(Node& owner, const MFNode& other);
    MFNode(const MFNode& other);
    MFNode& operator=(const MFNode& other);
    ~MFNode() override;
    using Field::setValueByStr;
    using Field::setValueByBin;
    using Field::setValueByField;
    static constexpr NodePartDataType DataType = MFNodeType;

    // A null node is refused.
    NodeLink* addChild(Node* node);
    NodeLink* insertChild(int index, Node* node);
    Node*     childNode(int index) const { return elem(index).node(); }
    // Clears and removes one link; false when the link is not one of this field's.
    bool removeLink(NodeLink* link);

    // The element operations of the list, made to keep the links attached to this field.
    NodeLink* addValue(const NodeLink& value) { return placeLink(-1, value.directNode()); }
    NodeLink* insertValue(int index, const NodeLink& value) { return placeLink(index, value.directNode()); }
    void      removeValueByIndex(int index);
    void      removeValue(const NodeLink& value);

    void clear() override;
    void free() override;
    void resize(unsigned int count) override;

    std::string& getStrValue(std::string& out) const override;
    const char*  addValueByStr(const char* text, Cardinality cardinality) override;

protected:
    void setValueByStr(const char* text) override;
    bool setValueByField(const Field& from, ConvertParam* param) override;

private:
    friend class BuiltinFieldTypes;
    static Field* create(Node& owner);

    // Inserts an empty link owned by this field, then sets its child (which may be null or be
    // refused by the field's type restriction, leaving the link out again).
    NodeLink* placeLink(int index, Node* node);
    void      eraseLink(iterator it);
};

} // namespace Orvane

#endif
