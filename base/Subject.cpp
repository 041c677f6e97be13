#include "base/Subject.h"

#include "base/Observer.h"

#include <algorithm>

namespace Orvane {

Subject::Subject(const char* name) : NotificationHandler(name) {}

// A copy starts without observers: an observer belongs to one subject only.
Subject::Subject(const Subject& other) : NotificationHandler(other) {}

Subject::~Subject()
{
    delete _observers;
}

void Subject::attach(Observer& observer)
{
    if (observer._subject == this)
        return;
    if (observer._subject)
        observer._subject->detach(observer);
    if (!_observers)
        _observers = new std::vector<Observer*>;
    _observers->push_back(&observer);
    observer._subject = this;
}

void Subject::detach(Observer& observer)
{
    if (observer._subject != this)
        return;
    if (_observers)
        _observers->erase(std::remove(_observers->begin(), _observers->end(), &observer), _observers->end());
    observer._subject = nullptr;
}

void Subject::detachAll()
{
    if (!_observers)
        return;
    for (Observer* observer : *_observers)
        observer->_subject = nullptr;
    _observers->clear();
}

void Subject::notify(const double& time, BaseObject* a, BaseObject* b, BaseObject* c)
{
    if (enabled() && _observers)
        notifyObserver(time, a, b, c);
}

void Subject::notifyObserver(const double& time, BaseObject* a, BaseObject* b, BaseObject* c)
{
    // Walk by index: a callback may attach or detach observers while we notify. Step on only
    // if the observer just notified is still in its place; otherwise the next one has moved
    // into this slot and must not be skipped.
    std::size_t i = 0;
    while (i < _observers->size()) {
        Observer* observer = (*_observers)[i];
        if (observer->enabled())
            observer->notifyAll(time, a, b, c);
        if (i < _observers->size() && (*_observers)[i] == observer)
            ++i;
    }
}

unsigned int Subject::countObserver() const
{
    return _observers ? static_cast<unsigned int>(_observers->size()) : 0u;
}

} // namespace Orvane
