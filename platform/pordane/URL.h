#ifndef ORVANE_PLATFORM_PORDANE_URL_H
#define ORVANE_PLATFORM_PORDANE_URL_H

#include "base/OrvaneExport.h"

#include <string>
#include <string_view>

namespace Pordane {

// A URI reference split into its generic parts: scheme ":" "//" authority path "?" query
// "#" fragment. An absent part and an empty one are told apart (hasAuthority(), hasQuery(),
// hasFragment()), so that str() gives back what was parsed. A plain file path is a relative
// reference without a scheme and counts as local.
class ORVANE_API URL {
public:
    URL();
    explicit URL(std::string_view text);
    ~URL();

    URL(const URL&) = default;
    URL& operator=(const URL&) = default;
    URL(URL&&) noexcept = default;
    URL& operator=(URL&&) noexcept = default;

    // Replaces the parts from text. False when the authority is malformed (a port that is no
    // number up to 65535, an unclosed IPv6 bracket); the parts are still filled as far as they
    // go. The empty text is a valid reference: "this same document".
    bool parse(std::string_view text);
    bool valid() const { return _valid; }

    // Lower case; empty for a relative reference.
    const std::string& scheme() const { return _scheme; }
    bool               hasAuthority() const { return _hasAuthority; }
    const std::string& authority() const { return _authority; }
    const std::string& userInfo() const { return _userInfo; }
    // Without the brackets of an IPv6 literal.
    const std::string& host() const { return _host; }
    // -1 when the authority names no port.
    int                port() const { return _port; }
    const std::string& path() const { return _path; }
    bool               hasQuery() const { return _hasQuery; }
    const std::string& query() const { return _query; }
    bool               hasFragment() const { return _hasFragment; }
    const std::string& fragment() const { return _fragment; }

    std::string str() const;

    bool isRelative() const { return _scheme.empty(); }
    // A file: URL on this machine (no host, or "localhost"), or a plain path.
    bool isLocal() const;
    // The file path of a local URL, percent-decoded for file: URLs and taken as it is for
    // plain paths, without query or fragment. Empty when the URL is not local.
    std::string localPath() const;

    // The target of reference taken relative to this URL as its base, by the generic
    // algorithm: merge the paths, then remove "." and ".." segments.
    URL resolve(const URL& reference) const;
    URL resolve(std::string_view reference) const { return resolve(URL(reference)); }

    // Reads the whole file of a local URL. False, logged, when it is not local or unreadable.
    bool        readFile(std::string& content) const;
    static bool readLocalFile(const std::string& path, std::string& content);

    static std::string percentDecode(std::string_view text);
    // Applies the dot-segment removal of reference resolution to a path.
    static std::string removeDotSegments(std::string_view path);

private:
    bool setAuthority(std::string_view authority);

    std::string _scheme;
    std::string _authority;
    std::string _userInfo;
    std::string _host;
    std::string _path;
    std::string _query;
    std::string _fragment;
    int         _port         = -1;
    bool        _hasAuthority = false;
    bool        _hasQuery     = false;
    bool        _hasFragment  = false;
    bool        _valid        = false;
};

} // namespace Pordane

#endif
