#ifndef ORVANE_BASE_SCENEGRAPHBACKEND_H
#define ORVANE_BASE_SCENEGRAPHBACKEND_H

#include "base/OrvaneExport.h"

namespace Orvane {

// The hooks through which a rendering module takes part in start-up, shut-down and the
// worker threads. A module installs its own before System::init; the default does nothing
// and succeeds, so that the library runs on its own.
class ORVANE_API SceneGraphBackend {
public:
    virtual ~SceneGraphBackend() = default;

    // Start the scene graph; false when it could not be started.
    virtual bool init(int argc, char** argv) { return true; }
    // Shut the scene graph down.
    virtual void exit() {}
    // Make change lists read-write by default (before init).
    virtual void setChangeListsReadWrite() {}
    // Clear the change list of the calling thread.
    virtual void clearChangeList() {}
    // Register the calling worker thread so that it may touch scene-graph containers.
    virtual void registerWorkerThread() {}
    // Free the texture chunks the back end keeps for shared images (at system exit).
    virtual void shutdownTextureCache() {}

    // The installed back end (never null), and installing one: null restores the default.
    // The caller keeps ownership and keeps the back end alive while installed.
    static SceneGraphBackend& the();
    static void               install(SceneGraphBackend* backend);
};

} // namespace Orvane

#endif
