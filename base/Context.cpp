#include "base/Context.h"

#include "base/ContextSetup.h"
#include "base/Field.h"
#include "base/ImageDownloadCache.h"
#include "base/Log.h"
#include "base/Node.h"
#include "base/NodeNameSpace.h"
#include "base/NodePartDesc.h"
#include "base/NodeType.h"
#include "base/SFBool.h"
#include "base/SFFloat.h"
#include "base/SFInt32.h"
#include "base/SFString.h"
#include "base/Subject.h"
#include "base/System.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace Orvane {

namespace {

// The parameter descriptors by ID. Never destroyed: contexts may read it during static
// destruction. Entries are never removed, so their addresses stay valid.
std::vector<NodePartDesc*>& paramRegistry()
{
    static std::vector<NodePartDesc*>& descs = [] () -> std::vector<NodePartDesc*>& {
        auto* v = new std::vector<NodePartDesc*>;
        v->reserve(32);
        return *v;
    }();
    return descs;
}

// Toward zero, and within the range of int: the value of a float parameter as a number.
int truncateToInt(double value)
{
    if (std::isnan(value))
        return 0;
    if (value >= static_cast<double>(INT_MAX))
        return INT_MAX;
    if (value <= static_cast<double>(INT_MIN))
        return INT_MIN;
    return static_cast<int>(value);
}

// The number the text begins with (blanks and a sign allowed, as atoi reads it); 0 without one.
int leadingInt(const std::string& text)
{
    long value = std::strtol(text.c_str(), nullptr, 10);
    return static_cast<int>(std::clamp<long>(value, INT_MIN, INT_MAX));
}

// Whether a command-line text is a value of the field's type. Only the scalar types whose text
// reading would quietly turn anything into a value are checked here; the others validate
// themselves when set.
bool acceptsText(const Field& field, const char* text)
{
    switch (field.dataType()) {
    case SFBoolType:
        return std::strcmp(text, "TRUE") == 0 || std::strcmp(text, "FALSE") == 0 || std::strcmp(text, "true") == 0 ||
               std::strcmp(text, "false") == 0 || std::strcmp(text, "1") == 0 || std::strcmp(text, "0") == 0;
    case SFInt32Type: {
        int value = 0;
        const char* end = text + std::strlen(text);
        auto [rest, ec] = std::from_chars(text + (*text == '+' ? 1 : 0), end, value);
        return ec == std::errc() && rest == end && rest != text;
    }
    default:
        return true;
    }
}

// Whether the process lets a context exit with its last external reference.
bool autoExit()
{
    return System::the().checkParam(System::ContextAutoExitParam);
}

// Reloading drops cached images and prototypes unless this is off.
const unsigned reloadClearCacheParam =
    Context::createParamID("reloadClearCache", "Clear the image and prototype caches when a context reloads",
                           "Context", true);

} // namespace

// --- the registry ---

unsigned int Context::createTypedParamID(NodePartDataType type, const std::string& name,
                                         const std::string& description, const std::string& defaultValue,
                                         const std::string& group, const char* extra)
{
    std::vector<NodePartDesc*>& descs = paramRegistry();
    const auto id = static_cast<unsigned int>(descs.size());
    std::string value = defaultValue;
    const std::string variable = "ACP_" + name;
    if (const char* text = std::getenv(variable.c_str())) {
        value = text;
        ORV_NOTICE("Overwrite context default value: %s/%s\n", variable.c_str(), text);
    }
    descs.push_back(new NodePartDesc(id, PartMask::bit(id % 64), ExposedFieldPartType, type,
                                     NodePartDesc::CtorAutoProcess, name.c_str(), group.c_str(), value.c_str(),
                                     extra, description.c_str()));
    return id;
}

unsigned int Context::createParamID(const std::string& name, const std::string& description,
                                    const std::string& group, bool defaultValue)
{
    return createTypedParamID(SFBoolType, name, description, defaultValue ? "TRUE" : "FALSE", group);
}

unsigned int Context::createParamID(const std::string& name, const std::string& description,
                                    const std::string& group, int defaultValue)
{
    return createTypedParamID(SFInt32Type, name, description, std::to_string(defaultValue), group);
}

unsigned int Context::createParamID(const std::string& name, const std::string& description,
                                    const std::string& group, float defaultValue)
{
    char buffer[32];
    auto [end, ec] = std::to_chars(buffer, buffer + sizeof buffer, defaultValue);
    return createTypedParamID(SFFloatType, name, description, std::string(buffer, end), group);
}

unsigned int Context::createParamID(const std::string& name, const std::string& description,
                                    const std::string& group, const char* defaultValue)
{
    return createTypedParamID(SFStringType, name, description, defaultValue ? defaultValue : "", group);
}

unsigned int Context::createParamID(const std::string& name, const std::string& description,
                                    const std::string& group, const char* defaultValue, const char* extra)
{
    return createTypedParamID(SFStringType, name, description, defaultValue ? defaultValue : "", group, extra);
}

NodePartDesc* Context::paramDesc(unsigned int id)
{
    const std::vector<NodePartDesc*>& descs = paramRegistry();
    return id < descs.size() ? descs[id] : nullptr;
}

unsigned int Context::paramCount()
{
    return static_cast<unsigned int>(paramRegistry().size());
}

// --- life ---

Context* Context::create()
{
    return new Context;
}

Context* Context::create(const std::string& name)
{
    return new Context(name);
}

Context* Context::create(const std::string& name, ContextSetup& setup)
{
    auto* context = new Context(name);
    context->setContextSetup(setup);
    return context;
}

Context::Context(const std::string& name) : _name(name) {}

Context::~Context()
{
    if (!_rootBag.empty()) {
        ORV_WARNING("RootBag is not empty in Context destructor\n");
        releaseRoots();
    }
    // The namespaces outlive this context when someone else holds their roots.
    for (NodeNameSpace* nameSpace : _nameSpaces)
        nameSpace->_context = nullptr;
    _nameSpaces.clear();
    // Observers may outlive the subjects; they must not keep pointing at them.
    for (std::unique_ptr<Subject>* subject : {&_runFrameSubject, &_logMessageSubject, &_sourceUrlChangedSubject})
        if (*subject)
            (*subject)->detachAll();
}

void Context::shutdown() const
{
    auto* self = const_cast<Context*>(this);
    self->_commandQueue.clear();
    self->_state = Dispose;
}

void Context::releaseRoots()
{
    // Disposed first, so that a scene shared with another context does not keep running.
    std::vector<SmartPtr<Node>> roots;
    roots.swap(_rootBag);
    for (SmartPtr<Node>& root : roots) {
        if (!root)
            continue;
        root->setTreeState(_timeStamp, Dispose);
        if (root->nameSpace().context() == this)
            root->nameSpace().setContext(nullptr);
    }
}

void Context::subExternRef()
{
    if (_externRefCount > 0)
        --_externRefCount;
    if (_externRefCount == 0 && autoExit()) {
        ORV_PLOG("Auto exit Context on extern RefCount\n");
        _commandQueue.clear();
        _state = Dispose;
    }
}

void Context::exit()
{
    _commandQueue.clear();
    _state = Dispose;
}

// --- the frame ---

double Context::runFrame()
{
    if (_state == Dispose) {
        ORV_FATAL("Context State is DISPOSED in runFrame\n");
        return -1.0;
    }
    if (!_commandQueue.empty())
        dispatchCommandQueue();
    _state = Live;
    Subject& frame = runFrameSubject();
    if (frame.observerCount())
        frame.notify(_timeStamp, this);
    return _targetRate == 0.0 ? 0.0 : 1.0 / _targetRate;
}

void Context::setFrameValues(const double& timeStamp, double frameRate, double targetRate, double frameTime,
                             float navSpeed)
{
    _timeStamp = timeStamp;
    _frameRate = frameRate;
    _targetRate = targetRate;
    _frameTime = frameTime;
    _navSpeed = navSpeed;
}

void Context::dispatchCommandQueue()
{
    addExternRef();
    // Commands queued while these run wait for the next frame.
    std::vector<Command> commands;
    commands.swap(_commandQueue);
    for (Command& command : commands) {
        if (_state == Dispose)
            break;
        switch (command.type) {
        case ReplaceCommand:
        case MergeCommand:
            tellBrowserListeners(BrowserListener::LoadStarted);
            if (command.type == ReplaceCommand) {
                std::vector<Node*> roots;
                for (SmartPtr<Context>& other : command.contexts) {
                    roots.clear();
                    other->getRootVec(roots);
                    for (Node* root : roots)
                        if (!ContextSetup::isType(root))
                            removeRoot(root->type());
                }
                setSourceUrl(std::string());
            }
            for (SmartPtr<Context>& other : command.contexts)
                mergeRoot(*other, nullptr);
            setRootState(_timeStamp, Live);
            tellBrowserListeners(BrowserListener::LoadFinished);
            break;
        case SkipCommand:
            break;
        default:
            ORV_FATAL("Invalid Context::Command type: %d\n", command.type);
            break;
        }
    }
    subExternRef();
}

void Context::tellBrowserListeners(BrowserListener::Action action)
{
    // A listener may remove itself while told.
    std::vector<BrowserListener*> listeners = _browserListeners;
    for (BrowserListener* listener : listeners)
        listener->browserAction(action);
}

Subject& Context::runFrameSubject()
{
    if (!_runFrameSubject)
        _runFrameSubject = std::make_unique<Subject>("runFrame");
    return *_runFrameSubject;
}

Subject& Context::logMessageSubject()
{
    if (!_logMessageSubject)
        _logMessageSubject = std::make_unique<Subject>("logMessage");
    return *_logMessageSubject;
}

Subject& Context::sourceUrlChangedSubject()
{
    if (!_sourceUrlChangedSubject)
        _sourceUrlChangedSubject = std::make_unique<Subject>("sourceUrlChanged");
    return *_sourceUrlChangedSubject;
}

Subject& Context::loadContextSubject()
{
    // Never destroyed: modules detach their observers during static destruction.
    static Subject& subject = *new Subject("loadContext");
    return subject;
}

Subject& Context::syncSetupSubject()
{
    static Subject& subject = *new Subject("syncSetup");
    return subject;
}

// --- loading ---

bool Context::load(Context& other, LoadType type)
{
    Command command{type == MergeLoad ? MergeCommand : ReplaceCommand, {}};
    command.contexts.emplace_back(&other);
    _commandQueue.push_back(std::move(command));
    return true;
}

bool Context::queueLoaded(Context* loaded, LoadType type, std::string name)
{
    if (!name.empty())
        loaded->setName(name);
    return load(*loaded, type);
}

bool Context::load(const std::string& url, LoadType type, std::string name)
{
    SmartPtr<Context> loaded = loadContext(url, std::string());
    if (!loaded) {
        ORV_FATAL("Could not loadURL %s\n", url.c_str());
        return false;
    }
    if (loaded->sourceUrl().empty())
        loaded->setSourceUrl(url);
    return queueLoaded(loaded.get(), type, std::move(name));
}

bool Context::load(const std::string& data, const std::string& url, LoadType type, std::string name)
{
    SmartPtr<Context> loaded = loadContext(url, data);
    if (!loaded) {
        ORV_FATAL("Could not loadData %s\n", url.c_str());
        return false;
    }
    return queueLoaded(loaded.get(), type, std::move(name));
}

SmartPtr<Context> Context::loadContext(const std::string& url, const std::string& data)
{
    ORV_INFO("Try to load Context by Observer: >%s<\n", url.c_str());
    Subject& subject = loadContextSubject();
    if (subject.observerCount() == 0) {
        ORV_FATAL("No _loadContextSubject Observer, cannot load %s\n", url.c_str());
        return SmartPtr<Context>();
    }
    LoadRequest request(url, data);
    subject.notify(0.0, &request);
    if (!request.context)
        ORV_WARNING("Could not load Context: >%s<\n", url.c_str());
    return request.context;
}

bool Context::reload()
{
    if (_sourceUrl.empty() || _sourceUrl.front().empty()) {
        ORV_WARNING("Cannot reload Context; empty source\n");
        return false;
    }
    ORV_INFO("Reload context");
    if (paramBValue(reloadClearCacheParam)) {
        ORV_INFO("Clear Image/Proto cache\n");
        ImageDownloadCache::the().clear();
    } else {
        ORV_INFO("Skip  Image/Proto cache clear on reload\n");
    }
    // Copied: the replace empties the source list when it runs, and takes the new scene's.
    const std::string url = _sourceUrl.front();
    return load(url, ReplaceLoad);
}

bool Context::mergeRoot(Context& other, NodeType* glue)
{
    if (&other == this)
        return false;
    bool ok = true;
    std::vector<Node*> roots;
    other.getRootVec(roots);
    for (Node* root : roots) {
        if (glue && &root->type() != glue)
            continue;
        ORV_INFO("Merge context root %s, glue type: %s\n", root->type().name().c_str(),
                 glue ? glue->name().c_str() : "None");
        SmartPtr<Node> hold(root);
        Node* mine = findRoot(root->type());
        if (mine && mine != root) {
            // The nodes move over to this scene's namespace: theirs ends with their root.
            std::vector<Node*> moved;
            root->collectAllChildren(moved);
            NodeNameSpace& from = root->nameSpace();
            for (Node* node : moved)
                if (&node->nameSpace() == &from)
                    node->transfer(_timeStamp, mine->nameSpace());
            ok = mine->merge(*root) && ok;
        } else {
            ok = addRoot(*root) && ok;
        }
        other.removeRoot(root->type());
    }
    if (!other._sourceUrl.empty() && _sourceUrl.empty())
        setSourceUrl(other._sourceUrl.front());
    return ok;
}

bool Context::setRootState(const double& time, NodeState state)
{
    bool ok = true;
    // A root may leave the bag while its state changes.
    std::vector<SmartPtr<Node>> roots = _rootBag;
    for (SmartPtr<Node>& root : roots) {
        if (!root) {
            ORV_FATAL("Invalid root node in Context::setRootState()\n");
            ok = false;
            continue;
        }
        ok = root->setTreeState(time, state) && ok;
    }
    return ok;
}

// --- the command line ---

bool Context::createContextVec(int argc, char** argv, ContextSetup& setup, std::vector<Context*>& out, bool report)
{
    if (argc < 2 || !argv)
        return true;
    bool ok = true;
    for (int i = 1; i < argc; ++i) {
        const char* arg = argv[i];
        if (!arg)
            continue;
        if (*arg != '-') {
            SmartPtr<Context> loaded = loadContext(arg, std::string());
            if (loaded) {
                loaded->addRef();
                out.push_back(loaded.get());
            } else {
                ok = false;
                if (report)
                    ORV_FATAL("Could not load URL: %s\n", arg);
            }
            continue;
        }
        while (*arg == '-')
            ++arg;
        std::string name;
        const char* value = "";
        if (const char* equals = std::strchr(arg, '=')) {
            name.assign(arg, equals);
            value = equals + 1;
        } else {
            name = arg;
            if (i + 1 < argc && argv[i + 1])
                value = argv[++i];
        }
        Field* field = name.empty() ? nullptr : setup.paramField(name);
        if (field && acceptsText(*field, value) && field->setAndValidateValueByStr(0.0, value, true)) {
            ORV_INFO("Valid parameter set: %s/%s\n", name.c_str(), value);
            continue;
        }
        ok = false;
        ORV_FATAL("Invalid param/value: >%s/%s<\n", name.c_str(), value);
        ORV_PLOG("%s usage: \n", argv[0] ? argv[0] : "");
        for (unsigned id = 0; id < paramCount(); ++id) {
            const NodePartDesc* desc = paramDesc(id);
            ORV_PLOG("  --%s %s (%s)\n", desc->name().c_str(), desc->dataTypeName().c_str(),
                     desc->defaultValue().c_str());
            ORV_PLOG("    %s\n", desc->description().c_str());
        }
    }
    return ok;
}

// --- source, description, services, listeners ---

void Context::setSourceUrl(const std::string& url)
{
    _sourceUrl.clear();
    if (!url.empty())
        _sourceUrl.push_back(url);
    if (_sourceUrlChangedSubject && _sourceUrlChangedSubject->observerCount())
        _sourceUrlChangedSubject->notify(_timeStamp, this);
}

void Context::addSourceUrl(const std::string& url)
{
    _sourceUrl.push_back(url);
    if (_sourceUrlChangedSubject && _sourceUrlChangedSubject->observerCount())
        _sourceUrlChangedSubject->notify(_timeStamp, this);
}

void Context::setDescription(const std::string& description)
{
    _description = description;
    std::vector<DescriptionListener*> listeners = _descriptionListeners;
    for (DescriptionListener* listener : listeners)
        listener->descriptionChanged(*this, _description);
}

bool Context::addService(const std::string& name, BaseObject* service)
{
    if (!service)
        return false;
    return _services.emplace(name, service).second;
}

bool Context::removeService(const std::string& name)
{
    return _services.erase(name) != 0;
}

BaseObject* Context::findService(const std::string& name) const
{
    auto found = _services.find(name);
    return found == _services.end() ? nullptr : found->second;
}

namespace {

template <class T>
void addOnce(std::vector<T*>& list, T* item)
{
    if (item && std::find(list.begin(), list.end(), item) == list.end())
        list.push_back(item);
}

template <class T>
void removeAll(std::vector<T*>& list, T* item)
{
    list.erase(std::remove(list.begin(), list.end(), item), list.end());
}

} // namespace

void Context::addBrowserListener(BrowserListener* listener)
{
    addOnce(_browserListeners, listener);
}

void Context::removeBrowserListener(BrowserListener* listener)
{
    removeAll(_browserListeners, listener);
}

void Context::addDescriptionListener(DescriptionListener* listener)
{
    addOnce(_descriptionListeners, listener);
}

void Context::removeDescriptionListener(DescriptionListener* listener)
{
    removeAll(_descriptionListeners, listener);
}

void Context::sendLogMessage(const double& time, const std::string& text, LogLevel level)
{
    if (!_logMessageSubject || !_logMessageSubject->observerCount())
        return;
    LogMessage message(text, level);
    _logMessageSubject->notify(time, this, &message);
}

void Context::dump() const
{
    ORV_PLOG("--- Context Dump ---\n");
    ORV_PLOG("Name: %s, State: %s, ExternRefs: %d, Commands: %d\n", _name.c_str(), Node::stateName(_state),
             _externRefCount, static_cast<int>(_commandQueue.size()));
    for (const std::string& url : _sourceUrl)
        ORV_PLOG("SourceUrl: %s\n", url.c_str());
    for (const SmartPtr<Node>& root : _rootBag)
        ORV_PLOG("RootNode: %s %s %s\n", root->type().name().c_str(), root->getIDStr().c_str(), root->stateName());
}
void Context::bind(NodeNameSpace& nameSpace)
{
    if (std::find(_nameSpaces.begin(), _nameSpaces.end(), &nameSpace) == _nameSpaces.end())
        _nameSpaces.push_back(&nameSpace);
}

void Context::unbind(NodeNameSpace& nameSpace)
{
    _nameSpaces.erase(std::remove(_nameSpaces.begin(), _nameSpaces.end(), &nameSpace), _nameSpaces.end());
}

// --- roots ---

bool Context::addRoot(Node& root)
{
    SmartPtr<Node> hold(&root);
    for (SmartPtr<Node>& held : _rootBag) {
        if (&held->type() == &root.type()) {
            if (held.get() != &root && held->nameSpace().context() == this)
                held->nameSpace().setContext(nullptr);
            held = hold;
            root.nameSpace().setContext(this);
            return true;
        }
    }
    _rootBag.push_back(hold);
    root.nameSpace().setContext(this);
    return true;
}

Node* Context::findRoot(const NodeType& type) const
{
    for (const SmartPtr<Node>& root : _rootBag)
        if (&root->type() == &type)
            return root.get();
    return nullptr;
}

bool Context::removeRoot(NodeType& type)
{
    for (auto it = _rootBag.begin(); it != _rootBag.end(); ++it) {
        if (&(*it)->type() != &type)
            continue;
        SmartPtr<Node> root = *it;
        _rootBag.erase(it);
        if (root->nameSpace().context() == this)
            root->nameSpace().setContext(nullptr);
        return true;
    }
    return false;
}

void Context::getRootVec(std::vector<Node*>& out) const
{
    for (const SmartPtr<Node>& root : _rootBag)
        out.push_back(root.get());
}

// --- parameter values ---

bool Context::setContextSetup(ContextSetup& setup)
{
    if (_setup) {
        ORV_INFO("Have valid context setup; do not create a second one\n");
        return false;
    }
    _setup = &setup;
    _setup->nameSpace().setContext(this);
    return true;
}

ContextSetup* Context::contextSetup()
{
    if (!_setup) {
        ORV_INFO("Autocreate ContextSetup on access\n");
        _setup = ContextSetup::create();
        if (!_setup) {
            ORV_FATAL("Could not autocreate ContextSetup on access\n");
            return nullptr;
        }
        _setup->nameSpace().setContext(this);
    }
    return _setup.get();
}

Field* Context::paramField(unsigned int id)
{
    ContextSetup* setup = contextSetup();
    return setup ? setup->paramField(id) : nullptr;
}

Field* Context::paramField(const std::string& name)
{
    ContextSetup* setup = contextSetup();
    return setup ? setup->paramField(name) : nullptr;
}

void Context::reportInvalidParam(unsigned int id) const
{
    ORV_FATAL("No valid context ID ( %p.%d )\n", static_cast<const void*>(this), static_cast<int>(id));
}

bool Context::paramBValue(unsigned int id)
{
    Field* field = paramField(id);
    if (!field) {
        reportInvalidParam(id);
        return false;
    }
    switch (field->dataType()) {
    case SFBoolType:
        return static_cast<SFBool*>(field)->value();
    case SFFloatType:
        // Truncated first: 0.5 reads as false.
        return truncateToInt(static_cast<SFFloat*>(field)->value()) != 0;
    case SFInt32Type:
        return static_cast<SFInt32*>(field)->value() != 0;
    case SFStringType:
        return leadingInt(static_cast<SFString*>(field)->value()) != 0;
    default:
        return leadingInt(field->strValue()) != 0;
    }
}

int Context::paramIValue(unsigned int id)
{
    Field* field = paramField(id);
    if (!field) {
        reportInvalidParam(id);
        return 0;
    }
    switch (field->dataType()) {
    case SFBoolType:
        return static_cast<SFBool*>(field)->value() ? 1 : 0;
    case SFFloatType:
        return truncateToInt(static_cast<SFFloat*>(field)->value());
    case SFInt32Type:
        return static_cast<SFInt32*>(field)->value();
    case SFStringType:
        return leadingInt(static_cast<SFString*>(field)->value());
    default:
        return leadingInt(field->strValue());
    }
}

float Context::paramFValue(unsigned int id)
{
    Field* field = paramField(id);
    if (!field) {
        reportInvalidParam(id);
        return 0.0f;
    }
    switch (field->dataType()) {
    case SFBoolType:
        return static_cast<SFBool*>(field)->value() ? 1.0f : 0.0f;
    case SFFloatType:
        return static_cast<SFFloat*>(field)->value();
    case SFInt32Type:
        return static_cast<float>(static_cast<SFInt32*>(field)->value());
    case SFStringType:
        return std::strtof(static_cast<SFString*>(field)->value().c_str(), nullptr);
    default:
        return std::strtof(field->strValue().c_str(), nullptr);
    }
}

std::string Context::paramSValue(unsigned int id)
{
    Field* field = paramField(id);
    if (!field) {
        reportInvalidParam(id);
        return std::string();
    }
    switch (field->dataType()) {
    case SFBoolType:
        return static_cast<SFBool*>(field)->value() ? "TRUE" : "FALSE";
    case SFStringType:
        return static_cast<SFString*>(field)->value();
    default:
        return field->strValue();
    }
}

} // namespace Orvane
