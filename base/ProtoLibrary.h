#ifndef ORVANE_BASE_PROTOLIBRARY_H
#define ORVANE_BASE_PROTOLIBRARY_H

#include "base/NodeNameSpace.h"
#include "base/SmartPtr.h"

#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace Orvane {

class ProtoDeclaration;

// Resolves EXTERNPROTO declarations. Loaders register resolvers that turn an absolute URL into
// the scene it names (its prototypes declared in the scene's type namespace); the library asks
// them in the order they were registered, keeps each scene by its absolute URL, and finds the
// prototype by the name after "#" (the scene's first prototype without one). The cache lives
// until clear(), which a context's reload calls.
class ORVANE_API ProtoLibrary {
public:
    // A scene for an absolute URL (without "#name"), or null when the resolver does not know it.
    using Resolver = std::function<SmartPtr<NodeNameSpace>(const std::string& url)>;

    static ProtoLibrary& the();

    // Returns an ID for removeResolver.
    int  addResolver(Resolver resolver);
    bool removeResolver(int id);

    // Links `external` to the declaration that its URL list names: the first URL that resolves
    // to a scene holding the prototype wins. False, logged, when none does.
    bool resolve(ProtoDeclaration& external);

    // The absolute form of `url` against `base` (the declaring scene's URL), without "#name";
    // the name goes to `name`.
    static std::string absoluteURL(const std::string& url, const std::string& base, std::string& name);

    // Scenes kept, by absolute URL; null when not loaded.
    NodeNameSpace* scene(const std::string& absoluteURL) const;
    unsigned       sceneCount() const;
    // Forgets every kept scene ("Clear Image/Proto cache"); resolved declarations keep what
    // they resolved to.
    void clear();

    ProtoLibrary(const ProtoLibrary&) = delete;
    ProtoLibrary& operator=(const ProtoLibrary&) = delete;

private:
    ProtoLibrary() = default;
    ~ProtoLibrary() = default;

    // The scene for an absolute URL, from the cache or a resolver.
    SmartPtr<NodeNameSpace> load(const std::string& url);

    mutable std::mutex                             _mutex;
    std::map<std::string, SmartPtr<NodeNameSpace>> _scenes;
    std::vector<std::pair<int, Resolver>>          _resolvers;
    int                                            _nextID = 1;
};

} // namespace Orvane

#endif
