#ifndef ORVANE_BASE_TRAVERSACTION_H
#define ORVANE_BASE_TRAVERSACTION_H

#include "base/BaseObject.h"
#include "base/Node.h"

#include <cstdint>
#include <set>
#include <vector>

namespace Orvane {

class NodeType;

// Base of every action that walks a scene graph (writers, copies, GenericAction). It does not
// walk by itself: whoever walks asks it at each node whether to skip the node, and keeps in it
// the nodes of the current path, which also guards against cycles.
class ORVANE_API TraversAction : public BaseObject {
public:
    // Bits of the option word; subclasses use further bits of the same word.
    enum Option : std::uint32_t {
        SkipExtField     = 0x1,  // leave out the fields added to single nodes (dynamic fields)
        SkipPrivateField = 0x2,  // leave out the fields of private access
    };

    ~TraversAction() override;

    // Back to the defaults: no skip creators, no skip types, options exactly SkipPrivateField.
    // The entered nodes stay as they are.
    virtual void reset();

    // The creator bits of a node: bit n stands for NodeCreator n.
    static std::uint32_t creatorBit(NodeCreator creator) { return 1u << (static_cast<unsigned>(creator) & 31u); }
    void          addSkipCreator(unsigned int mask) { _skipCreatorMask |= mask; }
    std::uint32_t skipCreatorMask() const { return _skipCreatorMask; }
    // Nodes of the type and of every type derived from it are skipped. The type is not owned.
    void          addSkipType(NodeType& type);
    unsigned int  skipTypeCount() const { return _skipTypes ? static_cast<unsigned int>(_skipTypes->size()) : 0u; }

    // The current path.
    void         enter(Node& node) { _entered.insert(&node); }
    void         leave(Node& node) { _entered.erase(&node); }
    unsigned int treeDepth() const { return static_cast<unsigned int>(_entered.size()); }

    bool isSkipNodeTree(Node& node) const { return _entered.count(&node) != 0; }
    bool isSkipNodeType(Node& node) const;
    bool isSkipNode(Node& node) const { return isSkipNodeTree(node) || isSkipNodeType(node); }

    std::uint32_t paramMask() const { return _paramMask; }
    bool          skipExtField() const { return option(SkipExtField); }
    void          setSkipExtField(bool on) { setOption(SkipExtField, on); }
    bool          skipPrivateField() const { return option(SkipPrivateField); }
    void          setSkipPrivateField(bool on) { setOption(SkipPrivateField, on); }

    const double& timeStamp() const { return _timeStamp; }
    void          setTimeStamp(const double& timeStamp) { _timeStamp = timeStamp; }

    // One log line: the option bits lowest first, the time stamp, the skip creators and the
    // number of skip types.
    void dump() const;

    TraversAction& operator=(const TraversAction&) = delete;

protected:
    // A new action starts in the state that reset() gives.
    explicit TraversAction(const double& timeStamp);
    TraversAction(const TraversAction& other);

    bool option(std::uint32_t bit) const { return (_paramMask & bit) != 0; }
    void setOption(std::uint32_t bit, bool on) { _paramMask = on ? _paramMask | bit : _paramMask & ~bit; }

private:
    double                  _timeStamp;
    std::uint32_t           _skipCreatorMask = 0;
    std::set<Node*>         _entered;
    std::vector<NodeType*>* _skipTypes = nullptr;  // made on the first addSkipType
    std::uint32_t           _paramMask = SkipPrivateField;
};

} // namespace Orvane

#endif
