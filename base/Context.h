#ifndef ORVANE_BASE_CONTEXT_H
#define ORVANE_BASE_CONTEXT_H

#include "base/FieldType.h"
#include "base/Log.h"
#include "base/Node.h"
#include "base/RefCountObject.h"
#include "base/SmartPtr.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace Orvane {

class ContextSetup;
class Field;
class Node;
class NodeNameSpace;
class NodePartDesc;
class NodeType;
class Subject;
class WriteAction;

// One running scene. A context holds the root nodes of its scene and the values of the
// configuration parameters that every part of the system reads (paramBValue and friends).
//
// The parameters themselves are declared once per process: a registry of descriptors, filled
// while the modules load, whose index is the parameter ID. Each context holds its own values in
// the fields of its setup node, one field per registered parameter, starting from the defaults.
// The environment variable "ACP_" + name replaces a parameter's default for the whole process.
//
// A node finds its context through its namespace: adding a root binds the root's namespace, and
// namespaces below it inherit the binding.
//
// The application drives a context by calling runFrame() once a frame. A new scene is never
// loaded into a running context in place: load() queues a command that the next frame carries
// out before the "runFrame" observers run. A context belongs to the one thread that runs its
// frames; nothing here takes a lock.
class ORVANE_API Context : public RefCountObject {
public:
    // How a loaded scene joins a running one.
    enum LoadType { ReplaceLoad = 0, MergeLoad = 1 };
    // The queued commands.
    enum CommandType { ReplaceCommand = 1, MergeCommand = 2, SkipCommand = 3 };

    struct Command {
        int                            type;
        std::vector<SmartPtr<Context>> contexts;
    };

    // Told around every queued load: LoadStarted before the roots change, LoadFinished after.
    class ORVANE_API BrowserListener {
    public:
        enum Action { LoadFinished = 0, LoadStarted = 1 };
        virtual ~BrowserListener() = default;
        virtual void browserAction(Action action) = 0;
    };

    // Told when the description of the context changes.
    class ORVANE_API DescriptionListener {
    public:
        virtual ~DescriptionListener() = default;
        virtual void descriptionChanged(Context& context, const std::string& description) = 0;
    };

    // What a "loadContext" observer is handed (as the first object): the URL and, for a scene
    // given as data, its text. The observer that can load it puts the new context in `context`.
    class ORVANE_API LoadRequest : public BaseObject {
    public:
        LoadRequest(const std::string& url, const std::string& data) : url(url), data(data) {}
        const std::string& url;
        const std::string& data;
        SmartPtr<Context>  context;
    };

    // What a "logMessage" observer is handed (as the second object, after the context).
    class ORVANE_API LogMessage : public BaseObject {
    public:
        LogMessage(const std::string& text, LogLevel level) : text(text), level(level) {}
        const std::string& text;
        LogLevel           level;
    };

    // A new context, without a name or with one; its setup node is made on first access unless
    // one is given.
    static Context* create();
    static Context* create(const std::string& name);
    static Context* create(const std::string& name, ContextSetup& setup);

    const std::string& name() const { return _name; }
    void               setName(const std::string& name) { _name = name; }
    NodeState          state() const { return _state; }

    // --- life ---
    // References held by the application (windows, browsers) rather than by the scene. With the
    // system's auto-exit bit set the context exits when the last one goes.
    void addExternRef() { ++_externRefCount; }
    void subExternRef();
    int  externRefCount() const { return _externRefCount; }
    // Drops the queued commands and disposes the context at once.
    void exit();

    // --- the frame ---
    // Runs the queued commands, then the "runFrame" observers; the time to the next frame (0.0
    // without a target rate), or -1.0 for a disposed context.
    double runFrame();
    double timeStamp() const { return _timeStamp; }
    double frameRate() const { return _frameRate; }
    double desiredFrameRate() const { return _frameRate; }
    double targetFrameRate() const { return _targetRate; }
    double frameTime() const { return _frameTime; }
    float  navSpeed() const { return _navSpeed; }

    Subject& runFrameSubject();
    Subject& logMessageSubject();
    Subject& sourceUrlChangedSubject();
    // Process-wide: who can load a scene, and who keeps setups in step.
    static Subject& loadContextSubject();
    static Subject& syncSetupSubject();

    // --- loading, carried out at the next frame ---
    // Queues `other`: a merge command for MergeLoad, a replace command otherwise. Always true.
    bool load(Context& other, LoadType type);
    // Loads a scene from a URL, or from data (with the URL it came from), through the
    // "loadContext" observers into a new context, and queues that; false when nobody could.
    bool load(const std::string& url, LoadType type, std::string name = std::string());
    bool load(const std::string& data, const std::string& url, LoadType type, std::string name = std::string());
    // Loads the first source URL again, replacing the scene.
    bool reload();
    // Moves the roots of `other` into this context: a root of a type this context has merges its
    // children into that root, any other is added. With a glue type only the root of that type
    // moves.
    bool mergeRoot(Context& other, NodeType* glue);
    // Every root's tree state.
    bool setRootState(const double& time, NodeState state);

    const std::vector<Command>& commandQueue() const { return _commandQueue; }
    // Appends a command as it is; load() is the usual way in.
    void addCommand(Command command) { _commandQueue.push_back(std::move(command)); }

    // --- the command line ---
    // Arguments from index 1: a URL is loaded into a new context appended to `out` (each with a
    // reference the caller owns), "-name value" and "--name=value" set the parameter `name` in
    // `setup`. A bad parameter is reported with the usage text. False when an argument failed.
    static bool createContextVec(int argc, char** argv, ContextSetup& setup, std::vector<Context*>& out,
                                 bool report);

    // --- source, description, services, listeners ---
    const std::vector<std::string>& sourceUrl() const { return _sourceUrl; }
    void setSourceUrl(const std::string& url);
    void addSourceUrl(const std::string& url);
    const std::string& description() const { return _description; }
    void               setDescription(const std::string& description);

    // Named objects that the modules of a running scene share; not owned.
    bool        addService(const std::string& name, BaseObject* service);
    bool        removeService(const std::string& name);
    BaseObject* findService(const std::string& name) const;

    void addBrowserListener(BrowserListener* listener);
    void removeBrowserListener(BrowserListener* listener);
    void addDescriptionListener(DescriptionListener* listener);
    void removeDescriptionListener(DescriptionListener* listener);

    // Tells the "logMessage" observers.
    void sendLogMessage(const double& time, const std::string& text, LogLevel level);

    // --- the process-wide parameter registry ---
    // Registration happens during start-up and is not locked; reading afterwards needs no lock.
    static unsigned int createTypedParamID(NodePartDataType type, const std::string& name,
                                           const std::string& description, const std::string& defaultValue,
                                           const std::string& group, const char* extra = nullptr);
    static unsigned int createParamID(const std::string& name, const std::string& description,
                                      const std::string& group, bool defaultValue);
    static unsigned int createParamID(const std::string& name, const std::string& description,
                                      const std::string& group, int defaultValue);
    static unsigned int createParamID(const std::string& name, const std::string& description,
                                      const std::string& group, float defaultValue);
    static unsigned int createParamID(const std::string& name, const std::string& description,
                                      const std::string& group, const char* defaultValue);
    // A string parameter with an extra text (for example the values it may take).
    static unsigned int createParamID(const std::string& name, const std::string& description,
                                      const std::string& group, const char* defaultValue, const char* extra);
    // The descriptor of a parameter; null for an ID at or beyond the registry's size.
    static NodePartDesc* paramDesc(unsigned int id);
    static unsigned int  paramCount();

    // --- this context's parameter values ---
    // The setup node that holds them, made on first access.
    ContextSetup* contextSetup();
    // Gives the context its setup node; refused when it has one already.
    bool          setContextSetup(ContextSetup& setup);
    Field*        paramField(unsigned int id);
    Field*        paramField(const std::string& name);
    // Read by the parameter's type: an SFBool as it is, an SFFloat truncated toward zero, an
    // SFInt32 not 0, an SFString (and any other type's text) by its leading decimal digits, so
    // that "TRUE" reads as false. An unknown ID is reported and reads as false.
    bool        paramBValue(unsigned int id);
    int         paramIValue(unsigned int id);
    float       paramFValue(unsigned int id);
    // An SFBool reads "TRUE" or "FALSE".
    std::string paramSValue(unsigned int id);

    // --- roots: one per node type ---
    // Holds the root, replacing one of the same type, and binds the root's namespace to this
    // context.
    bool     addRoot(Node& root);
    Node*    findRoot(const NodeType& type) const;
    bool     removeRoot(NodeType& type);
    void     getRootVec(std::vector<Node*>& out) const;
    unsigned rootCount() const { return static_cast<unsigned>(_rootBag.size()); }
    // Hands every root (with `types`, only the roots of those types) to the writer's walk, in
    // the order they were added; the caller opens and closes the document. Returns the number
    // of roots written.
    unsigned int write(WriteAction& action, std::vector<NodeType*>* types);
    void         dump() const;

    Context(const Context&) = delete;
    Context& operator=(const Context&) = delete;

protected:
    explicit Context(const std::string& name = std::string());
    ~Context() override;

    // The last reference went: the context is disposed; the destructor lets the roots go.
    void shutdown() const override;

private:
    friend class NodeNameSpace;
    friend class NodeProc;

    static SmartPtr<Context> loadContext(const std::string& url, const std::string& data);
    bool queueLoaded(Context* loaded, LoadType type, std::string name);
    void dispatchCommandQueue();
    void setFrameValues(const double& timeStamp, double frameRate, double targetRate, double frameTime,
                        float navSpeed);
    void tellBrowserListeners(BrowserListener::Action action);
    void releaseRoots();

    // Kept by the namespaces themselves; the context forgets a namespace that goes away.
    void bind(NodeNameSpace& nameSpace);
    void unbind(NodeNameSpace& nameSpace);
    void reportInvalidParam(unsigned int id) const;

    std::string                         _name;
    NodeState                           _state = Creation;
    int                                 _externRefCount = 0;
    double                              _timeStamp = 0.0;
    double                              _frameRate = 0.0;
    double                              _targetRate = 0.0;
    double                              _frameTime = 0.0;
    float                               _navSpeed = 1.0f;
    std::vector<Command>                _commandQueue;
    std::unique_ptr<Subject>            _runFrameSubject;
    std::unique_ptr<Subject>            _logMessageSubject;
    std::unique_ptr<Subject>            _sourceUrlChangedSubject;
    std::vector<std::string>            _sourceUrl;
    std::string                         _description;
    std::map<std::string, BaseObject*>  _services;
    std::vector<BrowserListener*>       _browserListeners;
    std::vector<DescriptionListener*>   _descriptionListeners;
    SmartPtr<ContextSetup>              _setup;
    std::vector<SmartPtr<Node>>         _rootBag;
    std::vector<NodeNameSpace*>         _nameSpaces;
};

} // namespace Orvane

#endif
