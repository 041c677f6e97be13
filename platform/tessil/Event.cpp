#include "platform/tessil/Event.h"

#include <chrono>

namespace Tessil {

Event::Event(bool initiallySet) : _set(initiallySet) {}

Event::~Event() = default;

void Event::set()
{
    {
        std::lock_guard<std::mutex> guard(_lock);
        _set = true;
    }
    _cond.notify_all();
}

void Event::reset()
{
    std::lock_guard<std::mutex> guard(_lock);
    _set = false;
}

bool Event::isSet() const
{
    std::lock_guard<std::mutex> guard(_lock);
    return _set;
}

void Event::wait()
{
    std::unique_lock<std::mutex> guard(_lock);
    _cond.wait(guard, [this] { return _set; });
}

bool Event::waitFor(unsigned int milliseconds)
{
    std::unique_lock<std::mutex> guard(_lock);
    return _cond.wait_for(guard, std::chrono::milliseconds(milliseconds), [this] { return _set; });
}

} // namespace Tessil
