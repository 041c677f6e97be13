#ifndef ORVANE_BASE_SFNODE_H
#define ORVANE_BASE_SFNODE_H

#include "base/NodeLink.h"
#include "base/TypedField.h"

namespace Orvane {

// One child link. Node values are built by loaders and copies, not parsed from text, and have
// no binary form; the text form names the child (its DEF name or ID text) for diagnostics.
class ORVANE_API SFNode : public TypedField<SFNode, SField<NodeLink, 1>> {
public:
    explicit SFNode(Node& owner);
    SFNode(Node& owner, const SFNode& other);
    SFNode(const SFNode& other);
    SFNode& operator=(const SFNode& other);
    using Field::setValueByStr;
    using Field::setValueByBin;
    using Field::setValueByField;
    static constexpr NodePartDataType DataType = SFNodeType;

    Node*     node() const { return _value.node(); }
    NodeLink& link() { return _value; }
    bool      setNode(const Node* node) { return _value.setNode(node); }

    std::string& getStrValue(std::string& out) const override;

protected:
    void setValueByStr(const char* text) override;
    bool setValueByField(const Field& from, ConvertParam* param) override;

private:
    friend class BuiltinFieldTypes;
    static Field* create(Node& owner);
};

} // namespace Orvane

#endif
