#include "base/NotificationHandler.h"

#include "base/Log.h"

namespace Orvane {

NotificationHandler::NotificationHandler(const char* name) : _name(name ? name : "") {}

NotificationHandler::NotificationHandler(const NotificationHandler& other)
    : BaseObject(other), _name(other._name), _enabled(other._enabled)
{
    ORV_PLOG("Running Notification Handler copy constructor !\n");
}

} // namespace Orvane
