#include "base/ProtoLibrary.h"

#include "base/Log.h"
#include "base/NodeType.h"
#include "base/NodeTypeNameSpace.h"
#include "base/ProtoDeclaration.h"
#include "platform/pordane/URL.h"

#include <algorithm>

namespace Orvane {

ProtoLibrary& ProtoLibrary::the()
{
    // Never destroyed: scenes kept until exit must not go during static destruction.
    static ProtoLibrary& library = *new ProtoLibrary;
    return library;
}

int ProtoLibrary::addResolver(Resolver resolver)
{
    std::lock_guard<std::mutex> lock(_mutex);
    _resolvers.emplace_back(_nextID, std::move(resolver));
    return _nextID++;
}

bool ProtoLibrary::removeResolver(int id)
{
    std::lock_guard<std::mutex> lock(_mutex);
    auto found = std::find_if(_resolvers.begin(), _resolvers.end(), [id](const auto& entry) { return entry.first == id; });
    if (found == _resolvers.end())
        return false;
    _resolvers.erase(found);
    return true;
}

std::string ProtoLibrary::absoluteURL(const std::string& url, const std::string& base, std::string& name)
{
    auto hash = url.find('#');
    name = hash == std::string::npos ? std::string() : url.substr(hash + 1);
    std::string location = url.substr(0, hash);
    if (base.empty() || location.empty())
        return location;
    return Pordane::URL(base).resolve(location).str();
}

SmartPtr<NodeNameSpace> ProtoLibrary::load(const std::string& url)
{
    std::vector<Resolver> resolvers;
    {
        std::lock_guard<std::mutex> lock(_mutex);
        auto cached = _scenes.find(url);
        if (cached != _scenes.end())
            return cached->second;
        for (const auto& entry : _resolvers)
            resolvers.push_back(entry.second);
    }
    // Resolvers run without the lock: loading a scene may resolve further declarations.
    for (const Resolver& resolver : resolvers) {
        SmartPtr<NodeNameSpace> scene = resolver(url);
        if (!scene)
            continue;
        NodeTypeNameSpace& types = scene->nodeTypeNameSpace();
        if (&types != &theBaseNodeTypeFactory() && !types.protoLibrary())
            types.setProtoLibrary(this);
        std::lock_guard<std::mutex> lock(_mutex);
        return _scenes.emplace(url, scene).first->second;
    }
    return nullptr;
}

bool ProtoLibrary::resolve(ProtoDeclaration& external)
{
    for (const std::string& url : external.urls()) {
        std::string name;
        std::string location = absoluteURL(url, external.sourceURL(), name);
        if (location.empty())
            continue;
        SmartPtr<NodeNameSpace> scene = load(location);
        if (!scene)
            continue;
        NodeTypeNameSpace& types = scene->nodeTypeNameSpace();
        // Without a name the scene's first prototype is meant.
        NodeType* type = name.empty() ? types.firstProto() : types.findLocalType(name);
        if (!type || !type->isProto() || type->protoDeclaration() == &external) {
            ORV_WARNING("EXTERNPROTO %s: no PROTO %s in %s\n", external.protoName().c_str(), name.c_str(),
                        location.c_str());
            continue;
        }
        if (!type->protoDeclaration()->resolve())
            continue;
        external.setResolved(type, name);
        ORV_INFO("EXTERNPROTO %s resolved to %s#%s\n", external.protoName().c_str(), location.c_str(),
                 type->name().c_str());
        return true;
    }
    ORV_WARNING("Can not resolve EXTERNPROTO %s: no URL answered\n", external.protoName().c_str());
    return false;
}

NodeNameSpace* ProtoLibrary::scene(const std::string& absoluteURL) const
{
    std::lock_guard<std::mutex> lock(_mutex);
    auto found = _scenes.find(absoluteURL);
    return found == _scenes.end() ? nullptr : found->second.get();
}

unsigned ProtoLibrary::sceneCount() const
{
    std::lock_guard<std::mutex> lock(_mutex);
    return static_cast<unsigned>(_scenes.size());
}

void ProtoLibrary::clear()
{
    std::map<std::string, SmartPtr<NodeNameSpace>> scenes;
    {
        std::lock_guard<std::mutex> lock(_mutex);
        scenes.swap(_scenes);
    }
    ORV_INFO("Clear Image/Proto cache: %u scenes\n", static_cast<unsigned>(scenes.size()));
    for (auto& [url, scene] : scenes)
        if (scene->nodeTypeNameSpace().protoLibrary() == this)
            scene->nodeTypeNameSpace().setProtoLibrary(nullptr);
}

} // namespace Orvane
