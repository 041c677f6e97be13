#include "base/SceneGraphBackend.h"

#include <atomic>

namespace Orvane {

namespace {

SceneGraphBackend           defaultBackend;
std::atomic<SceneGraphBackend*> installed{&defaultBackend};

} // namespace

SceneGraphBackend& SceneGraphBackend::the()
{
    return *installed.load(std::memory_order_acquire);
}

void SceneGraphBackend::install(SceneGraphBackend* backend)
{
    installed.store(backend ? backend : &defaultBackend, std::memory_order_release);
}

} // namespace Orvane
