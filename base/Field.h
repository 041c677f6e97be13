#ifndef ORVANE_BASE_FIELD_H
#define ORVANE_BASE_FIELD_H

#include "base/NodePart.h"

#include <string>
#include <vector>

namespace Orvane {

class ConvertParam;
class EventInSlot;
class EventOutSlot;

// One typed value slot of a node. Every change of value ends in processValueChange, which marks
// the owner changed, lets it react, and sends the value on.
class ORVANE_API Field : public NodePart {
public:
    enum Cardinality { Single = 0, Multi = 1 };
    // FieldCaller: a change through the field's own setters; SendCaller: forward the change to the
    // out-slot even when the descriptor does not ask for it.
    enum CallerType { FieldCaller = 0, SendCaller = 1 };

    class ORVANE_API Listener {
    public:
        virtual ~Listener() = default;
        virtual void fieldChanged(const double& time, Field& field) = 0;
    };

    explicit Field(Node& owner) : NodePart(owner) {}
    Field(const Field& other) : NodePart(other) {}
    ~Field() override;

    virtual const std::string& typeName() const;

    // Binary form. The raw-buffer variants are not implemented by any field.
    virtual unsigned int getBinSize();
    virtual std::string  getBinValue(int = 0);
    virtual unsigned int getBinValue(unsigned char* buffer);
    virtual std::string  get1ValueAsBin(int index);
    virtual void         set1ValueByBin(int index, const std::string& data);

    // Text form.
    virtual std::string& getStrValue(std::string& out) const = 0;
    virtual const char*  addValueByStr(const char* text, Cardinality cardinality) = 0;

    // Elements.
    virtual Cardinality  cardinality() const = 0;
    virtual unsigned int size() const = 0;
    virtual bool         empty() const = 0;
    virtual void         resize(unsigned int count) = 0;
    virtual void         reserve(unsigned int count) = 0;
    virtual void         clear() = 0;
    virtual void         free() = 0;

    virtual bool equalValue(const Field& other) const = 0;

    // Setters with change processing.
    void setValueByStr(const double& time, const char* text);
    bool setAndValidateValueByStr(const double& time, const char* text, bool flag);
    void setValueByBin(const double& time, const std::string& data);
    void setValueByBin(const double& time, unsigned char* data, unsigned int size);
    bool setValueByField(const double& time, const Field& from, ConvertParam* param = nullptr);
    void setDefaultValue(const double& time);

    bool valueIsDefault() const;
    bool changed() const;
    std::string strValue() const;

    void processValueChange(const double& time, CallerType callerType);

    // Event slots, made on demand and owned by the field. Without `force` a slot is made only
    // when the access type has that side: input for eventIn and exposedField, output for
    // eventOut and exposedField.
    EventInSlot*  getInSlot(bool create = false, bool force = false);
    EventOutSlot* getOutSlot(bool create = false, bool force = false);
    EventInSlot*  createInSlot(bool force = false);
    EventOutSlot* createOutSlot(bool force = false);
    // The slot's routes (see EventSlot::routeCount), plus, with `withObservers`, the observers
    // of the slot's event subject; 0 without the slot.
    unsigned int inRouteCount(bool all = true, bool withObservers = true) const;
    unsigned int outRouteCount(bool all = true, bool withObservers = true) const;
    // Deletes every route of both slots.
    void disconnectAll();

    void addListener(Listener* listener);
    void removeListener(Listener* listener);
    void callListeners(const double& time);

    void dump(bool withOwner = false) const;

    static const std::string _typeName;

protected:
    // The slots set values, mark and send on behalf of the field.
    friend class EventInSlot;
    friend class EventOutSlot;

    virtual void setValueByStr(const char* text) = 0;
    virtual bool setAndValidateValueByStr(const char* text, bool flag);
    virtual void setValueByBin(const std::string& data);
    virtual void setValueByBin(unsigned char* data, unsigned int size);
    virtual bool setValueByField(const Field& from, ConvertParam* param);

    void markChanged();
    bool receive(const double& time);
    void send(const double& time, bool markChanging, bool flag);
    int  splitAndAddValues(const char* text, const char* separators);

    // Copies or converts a value between fields of any types.
    static bool assign(Field& to, const Field& from, ConvertParam* param);

    // "Class::operation() is not imp" style reports of the binary form.
    void binaryNotImplemented(const char* operation) const;

private:
    // Slots and listeners are rare beside the number of fields, so they share one record made
    // on first need, which also takes over the descriptor.
    struct Events : Extension {
        Events() { withEvents = true; }
        EventInSlot*           inSlot = nullptr;
        EventOutSlot*          outSlot = nullptr;
        std::vector<Listener*> listeners;
        // Tells the in-slot whether it may send on through the out-slot directly.
        void refreshFastPath();
    };
    Events&       events();
    Events* eventsIfAny() const
    {
        Extension* e = extension();
        return e && e->withEvents ? static_cast<Events*>(e) : nullptr;
    }
    EventInSlot*  inSlotIfAny() const { return eventsIfAny() ? eventsIfAny()->inSlot : nullptr; }
    EventOutSlot* outSlotIfAny() const { return eventsIfAny() ? eventsIfAny()->outSlot : nullptr; }
};

} // namespace Orvane

#endif
