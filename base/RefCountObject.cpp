#include "base/RefCountObject.h"

#include "base/Log.h"

#include <vector>

namespace Orvane {

namespace {

// Releases nest when a dying object drops the last reference to another. Past this depth the
// next ones wait in a list that the outermost release works off, so a chain of any length ends
// in bounded stack.
constexpr int maxReleaseDepth = 128;
thread_local int releaseDepth = 0;

std::vector<const RefCountObject*>& waitingReleases()
{
    thread_local std::vector<const RefCountObject*> waiting;
    return waiting;
}

} // namespace

void RefCountObject::release() const
{
    // A reference taken and dropped again while the object shuts down brings the count back to
    // zero inside shutdown(): the release already under way finishes the job, not this one.
    if (_refCount != 0 || _shuttingDown)
        return;
    if (releaseDepth >= maxReleaseDepth) {
        // Under way, though later: a release in between leaves the object alone.
        _shuttingDown = true;
        waitingReleases().push_back(this);
        return;
    }
    ++releaseDepth;
    finishRelease();
    if (releaseDepth == 1) {
        std::vector<const RefCountObject*>& waiting = waitingReleases();
        while (!waiting.empty()) {
            const RefCountObject* next = waiting.back();
            waiting.pop_back();
            // Somebody may have taken a reference while it waited; then it lives on.
            next->_shuttingDown = false;
            if (next->_refCount == 0)
                next->finishRelease();
        }
    }
    --releaseDepth;
}

void RefCountObject::finishRelease() const
{
    _shuttingDown = true;
    shutdown();
    _shuttingDown = false;
    if (_refCount == 0) {
        delete this;
        return;
    }
    ORV_FATAL("Illegal Transition: RefCount != 0 after shutdown\n");
}

RefCountObject::~RefCountObject()
{
    if (_refCount != 0)
        ORV_FATAL("_refCount == %d in RefCountObject Destructor\n", _refCount);
}

} // namespace Orvane
