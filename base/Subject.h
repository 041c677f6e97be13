#ifndef ORVANE_BASE_SUBJECT_H
#define ORVANE_BASE_SUBJECT_H

#include "base/NotificationHandler.h"

#include <vector>

namespace Orvane {

class Observer;

// A named notification point. It does not own its observers, and it does not tell them when
// it goes away: an owner calls detachAll() before deleting a subject that still has some.
class ORVANE_API Subject : public NotificationHandler {
public:
    explicit Subject(const char* name = nullptr);
    Subject(const Subject& other);
    ~Subject() override;

    void attach(Observer& observer);
    void detach(Observer& observer);
    void detachAll();

    void notify(const double& time, BaseObject* a = nullptr, BaseObject* b = nullptr,
                BaseObject* c = nullptr);

    unsigned int observerCount() const { return countObserver(); }

protected:
    void         notifyObserver(const double& time, BaseObject* a, BaseObject* b, BaseObject* c);
    unsigned int countObserver() const;

private:
    std::vector<Observer*>* _observers = nullptr;
};

} // namespace Orvane

#endif
