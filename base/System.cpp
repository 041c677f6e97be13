#include "base/System.h"

#include "base/Component.h"
#include "base/Context.h"
#include "base/FieldType.h"
#include "base/ImageDownloadCache.h"
#include "base/Log.h"
#include "base/NodeType.h"
#include "base/SceneGraphBackend.h"
#include "base/Subject.h"
#include "base/TaskManager.h"
#include "platform/tessil/SysInfo.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>

#ifndef ORVANE_VERSION
#define ORVANE_VERSION "0.0.0"
#endif
#ifndef ORVANE_REVISION
#define ORVANE_REVISION "unknown"
#endif

namespace Orvane {

namespace {

// The platform words, each led by a blank so that they join as they are.
#if defined(_WIN32)
#define ORVANE_OS_WORD " Windows"
#elif defined(__APPLE__)
#define ORVANE_OS_WORD " Darwin"
#elif defined(__linux__)
#define ORVANE_OS_WORD " Linux"
#else
#define ORVANE_OS_WORD " Unix"
#endif

#if defined(__x86_64__) || defined(_M_X64)
#define ORVANE_CPU_WORD " x86_64"
#elif defined(__aarch64__) || defined(_M_ARM64)
#define ORVANE_CPU_WORD " aarch64"
#elif defined(__i386__) || defined(_M_IX86)
#define ORVANE_CPU_WORD " x86"
#else
#define ORVANE_CPU_WORD " unknown"
#endif

Subject& lazySubject(std::unique_ptr<Subject>& subject, const char* name)
{
    if (!subject)
        subject = std::make_unique<Subject>(name);
    return *subject;
}

void notifyIfObserved(const std::unique_ptr<Subject>& subject, BaseObject* object)
{
    if (subject && subject->observerCount())
        subject->notify(0.0, object);
}

} // namespace

System& System::the()
{
    // Never destroyed: the process exit handler may still need it while statics go away.
    static System& system = *new System;
    return system;
}

System::System() = default;

System::~System()
{
    if (_initialized)
        ORV_WARNING("System is initialized in destructor\n");
    for (std::unique_ptr<Subject>* subject : {&_initSystemSubject, &_exitSystemSubject, &_shutdownSystemSubject})
        if (*subject)
            (*subject)->detachAll();
}

unsigned System::logHeaderMask(int param)
{
    unsigned mask = (param & AltLogHeaderParam) ? 0x600Au : 0x400Au;
    if (param & ThreadLogHeaderParam)
        mask |= 0x1000u;
    return mask;
}

const char* System::version()
{
    return ORVANE_VERSION;
}

const char* System::revision()
{
    return ORVANE_REVISION;
}

const char* System::buildTime()
{
    return __DATE__ " " __TIME__;
}

const char* System::platformName()
{
    return ORVANE_OS_WORD ORVANE_CPU_WORD;
}

void System::buildBuildInfo()
{
    _buildInfo = std::string("V") + version() + " R" + revision() + " build: " + buildTime() + platformName();
}

void System::init(int argc, char** argv, int param)
{
    if (_initialized) {
        ORV_WARNING("Run System::init() and System is already initialized\n");
        return;
    }
    _initialized = true;
    _param = param;

    SceneGraphBackend& backend = SceneGraphBackend::the();
    if (checkParam(BackendInitParam)) {
        backend.setChangeListsReadWrite();
        if (!backend.init(argc, argv))
            ORV_FATAL("System::init: Failed to initialize OpenSG!\n");
    }

    Tessil::SysInfo& info = Tessil::SysInfo::the();
    info.setupExceptionPolicy();
    if (argv)
        info.setArguments(argc, argv);

    Log::the().setHeaderMask(logHeaderMask(param));
    backend.clearChangeList();

    if (checkParam(ExitHandlerParam))
        initHandler();

    FieldType::initTypeTree();
    NodeType::initTypeTree(false);

    buildBuildInfo();
    ORV_PLOG("Init: %d/%d, %s\n", static_cast<int>(Component::compCount()), static_cast<int>(NodeType::typeCount()),
             _buildInfo.c_str());

    const char* docStatus = std::getenv("ORVANE_LOG_DOCSTATUS");
    const std::string docText = docStatus ? docStatus : "";
    if (!NodeType::reportDocStatus(docText, docStatus != nullptr))
        ORV_WARNING("Incomplete DocStatus: %s\n", docText.c_str());

    notifyIfObserved(_initSystemSubject, this);
}

void System::initHandler()
{
    if (_handlersInstalled)
        return;
    _handlersInstalled = true;
    std::atexit(&System::atExitHandler);
    std::signal(SIGINT, &System::sigIntHandler);
}

void System::atExitHandler()
{
    ORV_PLOG("Run System::atExitHandler\n");
    System& system = the();
    if (system._initialized)
        system.shutdown();
}

void System::sigIntHandler(int signal)
{
    ORV_PLOG("Run System::sigIntHandler\n");
    // Leave through the normal exit path, so that the exit handler shuts the system down.
    std::exit(128 + signal);
}

void System::shutdown()
{
    ORV_PLOG("Run System::shutdown\n");
    exit();
}

double System::runContextBag()
{
    System& system = the();
    // Downloads finished since the last frame reach their listeners before the scenes run.
    ImageDownloadCache::the().deliver();
    double result = 1000.0;
    bool ran = false;
    // While the frames run, leaving the list only empties entries (see removeContext).
    const bool outer = !system._running;
    system._running = true;
    for (SmartPtr<Context>& context : system._contexts) {
        if (!context)
            continue;
        if (context->state() == Dispose) {
            ORV_PLOG("Subref DISPOSED Context\n");
            context = nullptr;
            continue;
        }
        // Held across the frame: an observer may take the context out of the list.
        SmartPtr<Context> running = context;
        result = std::min(result, running->runFrame());
        ran = true;
    }
    if (outer) {
        system._running = false;
        if (system._emptied) {
            system._emptied = false;
            system.eraseContext();
        }
    }
    if (ran)
        return result;
    if (!system.checkParam(ExitWithoutContext)) {
        ORV_WARNING("Run system without context\n");
        return -1.0;
    }
    system.exit();
    std::exit(0);
}

void System::exit()
{
    if (!_initialized) {
        ORV_PLOG("Run System::exit() and System is not initialized\n");
        return;
    }
    notifyIfObserved(_exitSystemSubject, this);
    clearContexts();

    const auto nodes = static_cast<int>(Node::idMapSize());
    const auto objects = static_cast<int>(BaseObject::baseObjCount());
    if (nodes || objects)
        ORV_WARNING("%s::exitSystem() call and node/obj left: %d/%d\n", "Orvane", nodes, objects);
    else
        ORV_PLOG("%s::exitSystem() call\n", "Orvane");

    ImageDownloadCache::the().shutdown();
    TaskManager::the().shutdown();
    SceneGraphBackend::the().shutdownTextureCache();

    notifyIfObserved(_shutdownSystemSubject, this);
    Component::exit();
    if (checkParam(BackendExitParam))
        SceneGraphBackend::the().exit();
    _initialized = false;
}

// --- the context list ---

bool System::addContext(Context& context)
{
    for (const SmartPtr<Context>& listed : _contexts) {
        if (listed.get() == &context) {
            ORV_WARNING("Cannot register context a second time in System\n");
            return false;
        }
    }
    _contexts.emplace_back(&context);
    return true;
}

bool System::removeContext(Context& context)
{
    for (auto it = _contexts.begin(); it != _contexts.end(); ++it) {
        if (it->get() != &context)
            continue;
        if (_running) {
            *it = nullptr;
            _emptied = true;
        } else {
            _contexts.erase(it);
        }
        return true;
    }
    return false;
}

unsigned System::eraseContext()
{
    if (_running)
        return 0;
    const std::size_t before = _contexts.size();
    _contexts.remove_if([](const SmartPtr<Context>& context) { return !context; });
    return static_cast<unsigned>(before - _contexts.size());
}

Context* System::findContext(const std::string& name) const
{
    for (const SmartPtr<Context>& context : _contexts)
        if (context && context->name() == name)
            return context.get();
    return nullptr;
}

Context* System::beginContext() const
{
    for (const SmartPtr<Context>& context : _contexts)
        if (context)
            return context.get();
    return nullptr;
}

void System::clearContexts()
{
    if (_running) {
        for (SmartPtr<Context>& context : _contexts)
            context = nullptr;
        _emptied = true;
        return;
    }
    // Emptied before the contexts go, so that none of them finds itself listed while it ends.
    std::list<SmartPtr<Context>> contexts;
    contexts.swap(_contexts);
}

bool System::hasContext() const
{
    return beginContext() != nullptr;
}

bool System::setRootState(const double& time, NodeState state)
{
    bool ok = true;
    for (SmartPtr<Context>& context : _contexts)
        if (context)
            ok = context->setRootState(time, state) && ok;
    return ok;
}

void System::dump() const
{
    ORV_PLOG("--- System Dump ---\n");
    ORV_PLOG("Initialized: %d, Param: 0x%x, Contexts: %d\n", _initialized ? 1 : 0, static_cast<unsigned>(_param),
             static_cast<int>(_contexts.size()));
    ORV_PLOG("Build: %s\n", _buildInfo.c_str());
    for (const SmartPtr<Context>& context : _contexts)
        if (context)
            context->dump();
}

Subject& System::initSystemSubject()
{
    return lazySubject(_initSystemSubject, "initSystem");
}

Subject& System::exitSystemSubject()
{
    return lazySubject(_exitSystemSubject, "exitSystem");
}

Subject& System::shutdownSystemSubject()
{
    return lazySubject(_shutdownSystemSubject, "shutdownSystem");
}

} // namespace Orvane
