#include "platform/tessil/Semaphore.h"

#include <chrono>

namespace Tessil {

Semaphore::Semaphore(unsigned int initial) : _count(initial) {}

Semaphore::~Semaphore() = default;

void Semaphore::post(unsigned int n)
{
    if (n == 0)
        return;
    {
        std::lock_guard<std::mutex> guard(_lock);
        _count += n;
    }
    if (n == 1)
        _cond.notify_one();
    else
        _cond.notify_all();
}

void Semaphore::wait()
{
    std::unique_lock<std::mutex> guard(_lock);
    _cond.wait(guard, [this] { return _count > 0; });
    --_count;
}

bool Semaphore::tryWait()
{
    std::lock_guard<std::mutex> guard(_lock);
    if (_count == 0)
        return false;
    --_count;
    return true;
}

bool Semaphore::waitFor(unsigned int milliseconds)
{
    std::unique_lock<std::mutex> guard(_lock);
    if (!_cond.wait_for(guard, std::chrono::milliseconds(milliseconds), [this] { return _count > 0; }))
        return false;
    --_count;
    return true;
}

unsigned int Semaphore::count() const
{
    std::lock_guard<std::mutex> guard(_lock);
    return _count;
}

} // namespace Tessil
