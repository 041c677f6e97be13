#ifndef ORVANE_PLATFORM_XELTRA_ENCODINGALGORITHMREGISTRY_H
#define ORVANE_PLATFORM_XELTRA_ENCODINGALGORITHMREGISTRY_H

#include "base/OrvaneExport.h"
#include "platform/xeltra/EncodingAlgorithm.h"

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace Xeltra {

// The process-wide map from algorithm URI to a factory of that algorithm, which the document
// reader consults when it meets an algorithm URI. It is created on first use, so code that
// registers from static constructors works whatever order those run in. Every operation is
// safe to call from several threads.
class ORVANE_API EncodingAlgorithmRegistry {
public:
    using Factory = std::function<std::unique_ptr<EncodingAlgorithm>()>;

    static EncodingAlgorithmRegistry& the();

    // Registers factory under uri. An empty uri or factory is refused, and so is a uri that is
    // already registered unless replace is given. False, logged, when refused.
    bool add(const std::string& uri, Factory factory, bool replace = false);
    template <class T>
    bool addType(const std::string& uri, bool replace = false)
    {
        return add(uri, [] { return std::unique_ptr<EncodingAlgorithm>(new T()); }, replace);
    }
    bool remove(std::string_view uri);

    bool contains(std::string_view uri) const;
    // The factory registered under uri; an empty one when there is none.
    Factory find(std::string_view uri) const;
    // A new algorithm object for uri; null when the uri is unknown.
    std::unique_ptr<EncodingAlgorithm> create(std::string_view uri) const;
    // The registered URIs, sorted.
    std::vector<std::string> uris() const;

    EncodingAlgorithmRegistry(const EncodingAlgorithmRegistry&) = delete;
    EncodingAlgorithmRegistry& operator=(const EncodingAlgorithmRegistry&) = delete;

private:
    EncodingAlgorithmRegistry();
    ~EncodingAlgorithmRegistry();

    mutable std::mutex                        _lock;
    std::map<std::string, Factory, std::less<>> _factories;
};

} // namespace Xeltra

#endif
