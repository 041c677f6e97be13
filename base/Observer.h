#ifndef ORVANE_BASE_OBSERVER_H
#define ORVANE_BASE_OBSERVER_H

#include "base/NotificationHandler.h"

#include <map>

namespace Orvane {

class Subject;

// Receives the notifications of at most one subject and passes them to its callbacks,
// in ascending callback id.
class ORVANE_API Observer : public NotificationHandler {
    friend class Subject;

public:
    using Callback = void (*)(const double& time, Observer* observer, BaseObject* a, BaseObject* b,
                              BaseObject* c, const void* userData);

    class CallbackDesc {
    public:
        void set(Callback fn, const void* userData)
        {
            _fn = fn;
            _userData = userData;
        }
        void call(const double& time, Observer* observer, BaseObject* a, BaseObject* b, BaseObject* c) const
        {
            if (_fn)
                _fn(time, observer, a, b, c, _userData);
        }
        Callback    function() const { return _fn; }
        const void* userData() const { return _userData; }

    private:
        Callback    _fn = nullptr;
        const void* _userData = nullptr;
    };

    explicit Observer(const char* name = nullptr);
    Observer(Subject& subject, const char* name = nullptr);
    Observer(const Observer& other);
    ~Observer() override;

    int  addCallback(Callback fn, const void* userData = nullptr);
    void removeCallback(int id) { _callbacks.erase(id); }
    void removeAllCallback() { _callbacks.clear(); }
    unsigned int callbackCount() const { return static_cast<unsigned int>(_callbacks.size()); }

    void     setSubject(Subject* subject);
    Subject* subject() const { return _subject; }

    // Free for derived observers; the base class does nothing with it.
    virtual void notify(const double& time, BaseObject* a, BaseObject* b, BaseObject* c);

protected:
    void notifyAll(const double& time, BaseObject* a, BaseObject* b, BaseObject* c);

private:
    std::map<int, CallbackDesc> _callbacks;
    Subject*                    _subject = nullptr;

    static int _callbackCounter;
};

} // namespace Orvane

#endif
