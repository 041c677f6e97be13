#include "platform/xeltra/EncodingAlgorithmRegistry.h"

#include "base/Log.h"

namespace Xeltra {

EncodingAlgorithmRegistry::EncodingAlgorithmRegistry() = default;
EncodingAlgorithmRegistry::~EncodingAlgorithmRegistry() = default;

EncodingAlgorithmRegistry& EncodingAlgorithmRegistry::the()
{
    static EncodingAlgorithmRegistry registry;
    return registry;
}

bool EncodingAlgorithmRegistry::add(const std::string& uri, Factory factory, bool replace)
{
    if (uri.empty() || !factory) {
        ORV_WARNING("EncodingAlgorithmRegistry::add(): refused an algorithm without URI or factory\n");
        return false;
    }
    std::lock_guard<std::mutex> guard(_lock);
    auto found = _factories.find(uri);
    if (found != _factories.end()) {
        if (!replace) {
            ORV_WARNING("EncodingAlgorithmRegistry::add(): %s is already registered\n", uri.c_str());
            return false;
        }
        found->second = std::move(factory);
        return true;
    }
    _factories.emplace(uri, std::move(factory));
    return true;
}

bool EncodingAlgorithmRegistry::remove(std::string_view uri)
{
    std::lock_guard<std::mutex> guard(_lock);
    auto found = _factories.find(uri);
    if (found == _factories.end())
        return false;
    _factories.erase(found);
    return true;
}

bool EncodingAlgorithmRegistry::contains(std::string_view uri) const
{
    std::lock_guard<std::mutex> guard(_lock);
    return _factories.find(uri) != _factories.end();
}

EncodingAlgorithmRegistry::Factory EncodingAlgorithmRegistry::find(std::string_view uri) const
{
    std::lock_guard<std::mutex> guard(_lock);
    auto found = _factories.find(uri);
    return found == _factories.end() ? Factory() : found->second;
}

std::unique_ptr<EncodingAlgorithm> EncodingAlgorithmRegistry::create(std::string_view uri) const
{
    // The factory runs outside the lock: it may well consult the registry itself.
    Factory factory = find(uri);
    return factory ? factory() : nullptr;
}

std::vector<std::string> EncodingAlgorithmRegistry::uris() const
{
    std::lock_guard<std::mutex> guard(_lock);
    std::vector<std::string> list;
    list.reserve(_factories.size());
    for (const auto& entry : _factories)
        list.push_back(entry.first);
    return list;
}

} // namespace Xeltra
