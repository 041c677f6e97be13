#include "base/Field.h"

#include "base/BaseTypeAssign.h"
#include "base/ConvertParam.h"
#include "base/EventInSlot.h"
#include "base/EventOutSlot.h"
#include "base/Log.h"
#include "base/Node.h"
#include "base/NodePartDesc.h"
#include "base/NodeType.h"
#include "base/ProtoDeclaration.h"
#include "base/Subject.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <utility>

namespace Orvane {

namespace {

const char* stateName(NodeState state)
{
    static const char* const names[] = {"Creation", "Setup", "Realize", "Live", "Dispose"};
    return state >= Creation && state <= Dispose ? names[state] : "Invalid";
}

} // namespace

const std::string Field::_typeName = "Field";

Field::~Field()
{
    Events* e = eventsIfAny();
    if (!e)
        return;
    // The record itself goes with the part, after the slots that still ask for it.
    delete std::exchange(e->inSlot, nullptr);
    delete std::exchange(e->outSlot, nullptr);
}

void Field::Events::refreshFastPath()
{
    if (inSlot)
        inSlot->_fastOut = listeners.empty() ? outSlot : nullptr;
}

Field::Events& Field::events()
{
    Events* e = eventsIfAny();
    if (!e) {
        e = new Events;
        setExtension(e);
        owner()._fieldsWithEvents = true;
    }
    return *e;
}

const std::string& Field::typeName() const
{
    return _typeName;
}

unsigned int Field::getBinSize()
{
    ORV_FATAL("%s getBinSize not Impl\n", ("base/" + dataTypeName()).c_str());
    return 0;
}

std::string Field::getBinValue(int)
{
    return std::string();
}

unsigned int Field::getBinValue(unsigned char*)
{
    ORV_FATAL("%s getBinValue not Impl\n", ("base/" + dataTypeName()).c_str());
    return 0;
}

void Field::setValueByBin(const std::string&) {}

std::string Field::get1ValueAsBin(int)
{
    return std::string();
}

void Field::set1ValueByBin(int, const std::string&) {}

void Field::setValueByBin(unsigned char*, unsigned int)
{
    ORV_FATAL("%s setValueByBin not Impl\n", ("base/" + dataTypeName()).c_str());
}

bool Field::setAndValidateValueByStr(const char* text, bool)
{
    setValueByStr(text);
    return true;
}

bool Field::setValueByField(const Field& from, ConvertParam* param)
{
    return assign(*this, from, param);
}

void Field::binaryNotImplemented(const char* operation) const
{
    ORV_WARNING("%s::%s() is not imp\n", dataTypeName().c_str(), operation);
}

// --- setters with change processing ---

void Field::setValueByStr(const double& time, const char* text)
{
    setValueByStr(text);
    processValueChange(time, FieldCaller);
}

bool Field::setAndValidateValueByStr(const double& time, const char* text, bool flag)
{
    bool valid = setAndValidateValueByStr(text, flag);
    processValueChange(time, FieldCaller);
    return valid;
}

void Field::setValueByBin(const double& time, const std::string& data)
{
    setValueByBin(data);
    processValueChange(time, FieldCaller);
}

void Field::setValueByBin(const double& time, unsigned char* data, unsigned int size)
{
    setValueByBin(data, size);
    processValueChange(time, FieldCaller);
}

bool Field::setValueByField(const double& time, const Field& from, ConvertParam* param)
{
    if (!setValueByField(from, param))
        return false;
    processValueChange(time, FieldCaller);
    return true;
}

void Field::setDefaultValue(const double&)
{
    const NodePartDesc* d = desc();
    if (d && !d->defaultValue().empty())
        setValueByStr(d->defaultValue().c_str());
}

// --- state queries ---

bool Field::valueIsDefault() const
{
    const NodePartDesc* d = desc();
    if (!d)
        return true;
    // A field of a prototype instance is at its default while it holds the declaration's value.
    if (const ProtoDeclaration* declaration = owner().type().protoDeclaration()) {
        if (d->ID() < declaration->fieldCount()) {
            const Field* initial = declaration->initialValue(d->ID());
            return initial && initial->equalValue(*this);
        }
    }
    const std::string& text = d->defaultValue();
    if (text.empty()) {
        if (cardinality() == Multi && size() == 0)
            return true;
        // A node field without default is at its default while its link is empty.
        if (dataType() == SFNodeType)
            return strValue().empty();
        return false;
    }
    std::unique_ptr<Field> reference(FieldType::create(dataType(), owner()));
    if (!reference)
        return false;
    reference->setValueByStr(text.c_str());
    return reference->equalValue(*this);
}

bool Field::changed() const
{
    const NodePartDesc* d = desc();
    return d && owner().checkChangedMask(d->mask());
}

std::string Field::strValue() const
{
    std::string text;
    getStrValue(text);
    return text;
}

// --- change processing ---

void Field::markChanged()
{
    const NodePartDesc* d = desc();
    if (!d) {
        ORV_INFO("Field without desc in XField::markChanged()\n");
        return;
    }
    Node& node = owner();
    if (!node.hasFlag(Node::MarkedFlag)) {
        node.markParent(1);
        node.setFlag(Node::MarkedFlag);
    }
    node.markChanged(d->mask());
}

void Field::processValueChange(const double& time, CallerType callerType)
{
    const NodePartDesc* d = desc();
    if (!d)
        return;
    Node& node = owner();
    if (node.checkLogFeature(LogFieldValueChanged))
        ORV_PLOG("%s/%s.%s: processValueChange()\n", node.type().name().c_str(), node.getIDStr().c_str(),
                 d->name().c_str());
    if (node.checkIsChangingMask(d->mask()) && d->autoProcess())
        ORV_WARNING("%s/%s.%s: processValueChange() && _isChangingMask set\n", node.type().name().c_str(),
                    node.getIDStr().c_str(), d->name().c_str());

    if (!node.isLive()) {
        markChanged();
        send(0.0, true, true);
        return;
    }
    switch (d->partType()) {
    case FieldPartType:
    case EventOutPartType:
        markChanged();
        send(time, true, false);
        break;
    case EventInPartType:
        markChanged();
        if (receive(time))
            send(time, true, false);
        break;
    case ExposedFieldPartType:
        markChanged();
        if (receive(time) && (d->autoProcess() || callerType == SendCaller))
            send(time, true, false);
        break;
    default:
        break;
    }
}

bool Field::receive(const double& time)
{
    Node& node = owner();
    if (node.checkLogFeature(LogEventIn))
        ORV_PLOG("%s/%s Field Receive on %s: %f/%s\n", node.type().name().c_str(), node.getIDStr().c_str(),
                 nameOrNoName(), time, strValue().c_str());
    // The node's own reaction may drop the last other reference to it.
    node.addRef();
    bool result = node.fieldChanged(*this, time, nullptr);
    if (node.refCount() == 1)
        ORV_PLOG("SubRef to zero in Field::receive()\n");
    node.subRef();
    return result;
}

void Field::send(const double& time, bool markChanging, bool onlyIS)
{
    const NodePartDesc* d = desc();
    // An exported node's output reaches the importing side even before anyone routed it.
    if (!outSlotIfAny() && d && d->hasOutSlot() && owner().isExported())
        createOutSlot(false);
    Events* e = eventsIfAny();
    if (!e)
        return;
    if (!e->listeners.empty())
        callListeners(time);
    EventOutSlot* out = e->outSlot;
    if (!out)
        return;
    // This is every hop of an event cascade: the out-slot is called directly, without the
    // own-value overload: one frame less on every hop.
    if (!markChanging) {
        out->sendEvent(time, *this, nullptr, onlyIS);
        return;
    }
    // While the field sends, its bit in the is-changing mask is what stops an event that comes
    // back round a cycle. The bit is cleared when the send is over, a nested send of the same
    // field (a change during its own cascade) included: an event that comes back after the
    // nested send is taken once more.
    const PartMask mask = d ? d->mask() : _nullMask;
    Node& node = owner();
    node.setIsChanging(mask);
    out->sendEvent(time, *this, nullptr, onlyIS);
    node.clearIsChanging(mask);
}

// --- event slots ---

EventInSlot* Field::getInSlot(bool create, bool force)
{
    EventInSlot* slot = inSlotIfAny();
    return !slot && create ? createInSlot(force) : slot;
}

EventOutSlot* Field::getOutSlot(bool create, bool force)
{
    EventOutSlot* slot = outSlotIfAny();
    return !slot && create ? createOutSlot(force) : slot;
}

EventInSlot* Field::createInSlot(bool force)
{
    if (EventInSlot* slot = inSlotIfAny())
        return slot;
    if (!force && !(type() & EventInPartType))
        return nullptr;
    Events& e = events();
    e.inSlot = new EventInSlot(*this);
    e.refreshFastPath();
    return e.inSlot;
}

EventOutSlot* Field::createOutSlot(bool force)
{
    if (EventOutSlot* slot = outSlotIfAny())
        return slot;
    if (!force && !(type() & EventOutPartType))
        return nullptr;
    Events& e = events();
    e.outSlot = new EventOutSlot(*this);
    e.refreshFastPath();
    return e.outSlot;
}

namespace {

unsigned int slotRouteCount(const EventSlot* slot, bool all, bool withObservers)
{
    if (!slot)
        return 0;
    unsigned int count = slot->routeCount(all);
    if (withObservers)
        if (const Subject* subject = slot->processEventSubjectIfAny())
            count += subject->observerCount();
    return count;
}

} // namespace

unsigned int Field::inRouteCount(bool all, bool withObservers) const
{
    return slotRouteCount(inSlotIfAny(), all, withObservers);
}

unsigned int Field::outRouteCount(bool all, bool withObservers) const
{
    return slotRouteCount(outSlotIfAny(), all, withObservers);
}

void Field::disconnectAll()
{
    Events* e = eventsIfAny();
    if (!e)
        return;
    if (e->inSlot)
        e->inSlot->disconnectAll();
    if (e->outSlot)
        e->outSlot->disconnectAll();
}

// --- listeners ---

void Field::addListener(Listener* listener)
{
    Events& e = events();
    e.listeners.push_back(listener);
    e.refreshFastPath();
}

void Field::removeListener(Listener* listener)
{
    Events* e = eventsIfAny();
    if (!e)
        return;
    auto& listeners = e->listeners;
    auto found = std::find(listeners.begin(), listeners.end(), listener);
    if (found != listeners.end())
        listeners.erase(found);
    e->refreshFastPath();
}

void Field::callListeners(const double& time)
{
    Events* e = eventsIfAny();
    if (!e)
        return;
    // By index: a listener may add or remove listeners.
    for (std::size_t i = 0; i < e->listeners.size(); ++i)
        e->listeners[i]->fieldChanged(time, *this);
}

// --- text helpers ---

int Field::splitAndAddValues(const char* text, const char* separators)
{
    if (!text)
        return 0;
    int count = 0;
    const char* p = text;
    while (*p) {
        while (*p && std::strchr(separators, *p))
            ++p;
        if (!*p)
            break;
        addValueByStr(p, Single);
        ++count;
        while (*p && !std::strchr(separators, *p))
            ++p;
    }
    return count;
}

void Field::dump(bool withOwner) const
{
    ORV_PLOG("FieldDump: %s, dataType %s, value: %s\n", nameOrNoName(), dataTypeName().c_str(), strValue().c_str());
    if (withOwner)
        ORV_PLOG(" Node: %s, %s, %s\n", owner().type().name().c_str(), owner().getIDStr().c_str(),
                 stateName(owner().state()));
}

bool Field::assign(Field& to, const Field& from, ConvertParam* param)
{
    const FieldType* toType = FieldType::findType(to.dataType());
    const FieldType* fromType = FieldType::findType(from.dataType());
    if (toType && fromType) {
        if (FieldAssignFunction convert = fieldAssignFunction(toType->baseType(), fromType->baseType()))
            return convert(to, from, param ? *param : ConvertParam::defaults());
    }
    ORV_WARNING("%s to %s not implementet\n", from.dataTypeName().c_str(), to.dataTypeName().c_str());
    return false;
}

} // namespace Orvane
