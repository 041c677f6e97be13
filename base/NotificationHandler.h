#ifndef ORVANE_BASE_NOTIFICATIONHANDLER_H
#define ORVANE_BASE_NOTIFICATIONHANDLER_H

#include "base/BaseObject.h"

#include <string>

namespace Orvane {

// What subjects and observers share: a name and an enabled switch.
class ORVANE_API NotificationHandler : public BaseObject {
public:
    explicit NotificationHandler(const char* name);
    NotificationHandler(const NotificationHandler& other);
    ~NotificationHandler() override = default;

    const std::string& name() const { return _name; }
    bool               enabled() const { return _enabled; }
    void               setEnabled(bool on) { _enabled = on; }

private:
    std::string _name;
    bool        _enabled = true;
};

} // namespace Orvane

#endif
