#include "platform/tessil/Thread.h"

#include "base/Log.h"

#include <chrono>
#include <pthread.h>
#include <system_error>

namespace Tessil {

Thread::Thread(std::string name) : _name(std::move(name)) {}

Thread::~Thread()
{
    // A thread that destroys its own object cannot join itself; let it run out on its own.
    if (_thread.joinable() && _thread.get_id() == std::this_thread::get_id())
        _thread.detach();
    else
        join();
}

bool Thread::start(std::function<void()> body)
{
    if (_thread.joinable()) {
        ORV_WARNING("Thread::start(): thread '%s' is already running\n", _name.c_str());
        return false;
    }
    if (!body)
        return false;
    try {
        _thread = std::thread([name = _name, body = std::move(body)] {
            if (!name.empty()) {
                // Linux allows 15 characters plus the terminator.
                std::string shortName = name.substr(0, 15);
                pthread_setname_np(pthread_self(), shortName.c_str());
            }
            body();
        });
    } catch (const std::system_error& error) {
        ORV_WARNING("Thread::start(): could not start thread '%s': %s\n", _name.c_str(), error.what());
        return false;
    }
    return true;
}

bool Thread::join()
{
    if (!_thread.joinable() || _thread.get_id() == std::this_thread::get_id())
        return false;
    _thread.join();
    return true;
}

void Thread::sleep(unsigned int milliseconds)
{
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

} // namespace Tessil
