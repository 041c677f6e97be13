#include "base/Observer.h"

#include "base/Subject.h"

namespace Orvane {

int Observer::_callbackCounter = 0;

Observer::Observer(const char* name) : NotificationHandler(name) {}

Observer::Observer(Subject& subject, const char* name) : NotificationHandler(name)
{
    subject.attach(*this);
}

Observer::Observer(const Observer& other) : NotificationHandler(other), _callbacks(other._callbacks) {}

Observer::~Observer()
{
    if (_subject)
        _subject->detach(*this);
}

int Observer::addCallback(Callback fn, const void* userData)
{
    int id = _callbackCounter++;
    _callbacks[id].set(fn, userData);
    return id;
}

void Observer::setSubject(Subject* subject)
{
    if (subject == _subject)
        return;
    if (_subject)
        _subject->detach(*this);
    // attach() records the subject itself; storing it first would make attach() think the
    // observer is already in its list.
    if (subject)
        subject->attach(*this);
}

void Observer::notify(const double&, BaseObject*, BaseObject*, BaseObject*) {}

void Observer::notifyAll(const double& time, BaseObject* a, BaseObject* b, BaseObject* c)
{
    // A callback may remove callbacks (its own among them): step by key, not by iterator.
    auto it = _callbacks.begin();
    while (it != _callbacks.end()) {
        int id = it->first;
        CallbackDesc desc = it->second;
        desc.call(time, this, a, b, c);
        it = _callbacks.upper_bound(id);
    }
}

} // namespace Orvane
