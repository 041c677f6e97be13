#ifndef ORVANE_BASE_SYSTEM_H
#define ORVANE_BASE_SYSTEM_H

#include "base/BaseObject.h"
#include "base/Node.h"
#include "base/SmartPtr.h"

#include <list>
#include <memory>
#include <string>

namespace Orvane {

class Context;
class Subject;

// Starts and stops the library: initialises the scene-graph back end and the type trees, keeps
// the list of running contexts, runs one frame of all of them, and shuts the caches and the task
// pool down in a fixed order. An application calls System::the().init(...) once, then
// runContextBag() once a frame until it returns a negative value, then System::the().exit().
// Everything here belongs to the application's main thread and takes no lock.
class ORVANE_API System : public BaseObject {
public:
    // Bits of the flag word given to init. Other bits are kept as they are.
    enum Parameter : int {
        AltLogHeaderParam    = 0x2,   // log header with source path and line
        ExitHandlerParam     = 0x4,   // shut down at process exit and on an interrupt
        BackendInitParam     = 0x10,  // start the scene-graph back end (read-write change lists)
        BackendExitParam     = 0x20,  // stop the back end at exit()
        ExitWithoutContext   = 0x40,  // end the process when no context is left to run
        ContextAutoExitParam = 0x200, // a context exits when its last external reference goes
        ThreadLogHeaderParam = 0x800, // log header with the thread id
    };

    static System& the();

    void init(int argc, char** argv, int param);
    void exit();
    bool isInitialized() const { return _initialized; }
    bool checkParam(Parameter param) const { return (_param & param) != 0; }
    int  param() const { return _param; }

    // The header mask handed to the log for a flag word.
    static unsigned logHeaderMask(int param);

    // One frame of every listed context: the smallest time to the next frame (at most 1000.0),
    // or -1.0 when no context is left.
    static double runContextBag();

    // --- the context list ---
    bool     addContext(Context& context);
    bool     removeContext(Context& context);
    // Drops the entries that runContextBag left empty; how many went.
    unsigned eraseContext();
    Context* findContext(const std::string& name) const;
    Context* beginContext() const;
    void     clearContexts();
    bool     hasContext() const;
    unsigned contextCount() const { return static_cast<unsigned>(_contexts.size()); }

    bool setRootState(const double& time, NodeState state);
    void dump() const;

    // --- build information ---
    const std::string& buildInfo() const { return _buildInfo; }
    static const char* version();
    static const char* revision();
    static const char* buildTime();
    // The platform words of the machine built for, each with its leading blank.
    static const char* platformName();

    Subject& initSystemSubject();
    Subject& exitSystemSubject();
    Subject& shutdownSystemSubject();

    System(const System&) = delete;
    System& operator=(const System&) = delete;

private:
    System();
    ~System() override;

    static void atExitHandler();
    static void sigIntHandler(int signal);
    void        initHandler();
    void        shutdown();
    void        buildBuildInfo();

    bool                            _initialized = false;
    bool                            _handlersInstalled = false;
    bool                            _running = false;   // runContextBag is walking the list
    bool                            _emptied = false;   // entries were emptied meanwhile
    int                             _param = 0;
    std::string                     _buildInfo;
    std::list<SmartPtr<Context>>    _contexts;
    std::unique_ptr<Subject>        _initSystemSubject;
    std::unique_ptr<Subject>        _exitSystemSubject;
    std::unique_ptr<Subject>        _shutdownSystemSubject;
};

} // namespace Orvane

#endif
