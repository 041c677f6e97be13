#include "base/TraversAction.h"

#include "base/Log.h"
#include "base/NodeType.h"

namespace Orvane {

TraversAction::TraversAction(const double& timeStamp) : _timeStamp(timeStamp) {}

TraversAction::TraversAction(const TraversAction& other)
    : BaseObject(other), _timeStamp(other._timeStamp), _skipCreatorMask(other._skipCreatorMask),
      _entered(other._entered),
      _skipTypes(other._skipTypes ? new std::vector<NodeType*>(*other._skipTypes) : nullptr),
      _paramMask(other._paramMask)
{
}

TraversAction::~TraversAction()
{
    delete _skipTypes;
}

void TraversAction::reset()
{
    _skipCreatorMask = 0;
    delete _skipTypes;
    _skipTypes = nullptr;
    _paramMask = SkipPrivateField;
}

void TraversAction::addSkipType(NodeType& type)
{
    if (!_skipTypes)
        _skipTypes = new std::vector<NodeType*>;
    _skipTypes->push_back(&type);
}

bool TraversAction::isSkipNodeType(Node& node) const
{
    if (creatorBit(node.creator()) & _skipCreatorMask)
        return true;
    if (!_skipTypes)
        return false;
    for (NodeType* type : *_skipTypes)
        if (node.type().isA(*type))
            return true;
    return false;
}

void TraversAction::dump() const
{
    // Lowest bit first, as the option bits are numbered.
    char bits[33];
    for (unsigned i = 0; i < 32; ++i)
        bits[i] = (_paramMask >> i) & 1u ? '1' : '0';
    bits[32] = '\0';
    ORV_PLOG("ParamMask: %sTimeStamp: %gskipCreateMask: %uskipTypeVec count: %u\n", bits, _timeStamp,
             _skipCreatorMask, skipTypeCount());
}

} // namespace Orvane
