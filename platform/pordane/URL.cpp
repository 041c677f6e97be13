#include "platform/pordane/URL.h"

#include "base/Log.h"

#include <cstdio>
#include <filesystem>
#include <memory>
#include <system_error>

namespace Pordane {

namespace {

bool isAlpha(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

bool isScheme(std::string_view text)
{
    if (text.empty() || !isAlpha(text[0]))
        return false;
    for (char c : text)
        if (!isAlpha(c) && !isDigit(c) && c != '+' && c != '-' && c != '.')
            return false;
    return true;
}

int hexValue(char c)
{
    if (isDigit(c))
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return -1;
}

// Everything of path up to and including its last "/", or nothing.
std::string_view directoryOf(std::string_view path)
{
    std::size_t slash = path.rfind('/');
    return slash == std::string_view::npos ? std::string_view() : path.substr(0, slash + 1);
}

} // namespace

URL::URL() = default;

URL::URL(std::string_view text)
{
    parse(text);
}

URL::~URL() = default;

bool URL::parse(std::string_view text)
{
    *this  = URL();
    _valid = true;

    // The generic split: the first of ":/?#" decides whether a scheme comes first.
    std::size_t colon = text.find_first_of(":/?#");
    if (colon != std::string_view::npos && text[colon] == ':' && isScheme(text.substr(0, colon))) {
        for (char c : text.substr(0, colon))
            _scheme += (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
        text.remove_prefix(colon + 1);
    }
    if (text.substr(0, 2) == "//") {
        text.remove_prefix(2);
        std::size_t end = text.find_first_of("/?#");
        _hasAuthority   = true;
        if (!setAuthority(text.substr(0, end)))
            _valid = false;
        text.remove_prefix(end == std::string_view::npos ? text.size() : end);
    }
    std::size_t hash = text.find('#');
    if (hash != std::string_view::npos) {
        _hasFragment = true;
        _fragment    = text.substr(hash + 1);
        text         = text.substr(0, hash);
    }
    std::size_t question = text.find('?');
    if (question != std::string_view::npos) {
        _hasQuery = true;
        _query    = text.substr(question + 1);
        text      = text.substr(0, question);
    }
    _path = text;
    return _valid;
}

bool URL::setAuthority(std::string_view authority)
{
    _authority = authority;
    _userInfo.clear();
    _host.clear();
    _port = -1;

    std::size_t at = authority.rfind('@');
    if (at != std::string_view::npos) {
        _userInfo = authority.substr(0, at);
        authority.remove_prefix(at + 1);
    }
    std::string_view port;
    if (!authority.empty() && authority[0] == '[') {
        std::size_t close = authority.find(']');
        if (close == std::string_view::npos)
            return false;
        _host = authority.substr(1, close - 1);
        authority.remove_prefix(close + 1);
        if (!authority.empty()) {
            if (authority[0] != ':')
                return false;
            port = authority.substr(1);
        }
    } else {
        std::size_t colon = authority.rfind(':');
        _host             = authority.substr(0, colon);
        if (colon != std::string_view::npos)
            port = authority.substr(colon + 1);
    }
    if (port.empty())
        return true;  // "host:" names no port
    long number = 0;
    for (char c : port) {
        if (!isDigit(c))
            return false;
        number = number * 10 + (c - '0');
        if (number > 65535)
            return false;
    }
    _port = static_cast<int>(number);
    return true;
}

std::string URL::str() const
{
    std::string text;
    text.reserve(_scheme.size() + _authority.size() + _path.size() + _query.size() + _fragment.size() + 6);
    if (!_scheme.empty())
        text.append(_scheme).append(1, ':');
    if (_hasAuthority)
        text.append("//").append(_authority);
    text.append(_path);
    if (_hasQuery)
        text.append(1, '?').append(_query);
    if (_hasFragment)
        text.append(1, '#').append(_fragment);
    return text;
}

bool URL::isLocal() const
{
    if (_scheme.empty())
        return !_hasAuthority && !_path.empty();
    return _scheme == "file" && (_host.empty() || _host == "localhost");
}

std::string URL::localPath() const
{
    if (!isLocal())
        return std::string();
    return _scheme.empty() ? _path : percentDecode(_path);
}

URL URL::resolve(const URL& reference) const
{
    URL target;
    target._valid = _valid && reference._valid;
    if (!reference._scheme.empty()) {
        target = reference;
        target._path = removeDotSegments(reference._path);
        return target;
    }
    if (reference._hasAuthority) {
        target._hasAuthority = true;
        target.setAuthority(reference._authority);
        target._path     = removeDotSegments(reference._path);
        target._hasQuery = reference._hasQuery;
        target._query    = reference._query;
    } else {
        if (reference._path.empty()) {
            target._path     = _path;
            target._hasQuery = reference._hasQuery || _hasQuery;
            target._query    = reference._hasQuery ? reference._query : _query;
        } else {
            if (reference._path[0] == '/') {
                target._path = removeDotSegments(reference._path);
            } else {
                std::string merged;
                if (_hasAuthority && _path.empty())
                    merged = "/";
                else
                    merged = directoryOf(_path);
                merged.append(reference._path);
                target._path = removeDotSegments(merged);
            }
            target._hasQuery = reference._hasQuery;
            target._query    = reference._query;
        }
        target._hasAuthority = _hasAuthority;
        if (_hasAuthority)
            target.setAuthority(_authority);
    }
    target._scheme      = _scheme;
    target._hasFragment = reference._hasFragment;
    target._fragment    = reference._fragment;
    return target;
}

std::string URL::removeDotSegments(std::string_view input)
{
    std::string output;
    output.reserve(input.size());
    auto dropLastSegment = [&output] {
        std::size_t slash = output.rfind('/');
        output.erase(slash == std::string::npos ? 0 : slash);
    };
    while (!input.empty()) {
        if (input.substr(0, 3) == "../") {
            input.remove_prefix(3);
        } else if (input.substr(0, 2) == "./") {
            input.remove_prefix(2);
        } else if (input.substr(0, 3) == "/./") {
            input.remove_prefix(2);
        } else if (input == "/.") {
            input = input.substr(0, 1);
        } else if (input.substr(0, 4) == "/../") {
            input.remove_prefix(3);
            dropLastSegment();
        } else if (input == "/..") {
            input = input.substr(0, 1);
            dropLastSegment();
        } else if (input == "." || input == "..") {
            input = std::string_view();
        } else {
            std::size_t end = input.find('/', 1);
            if (end == std::string_view::npos)
                end = input.size();
            output.append(input.substr(0, end));
            input.remove_prefix(end);
        }
    }
    return output;
}

std::string URL::percentDecode(std::string_view text)
{
    std::string decoded;
    decoded.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        int high = i + 2 < text.size() && text[i] == '%' ? hexValue(text[i + 1]) : -1;
        int low  = high >= 0 ? hexValue(text[i + 2]) : -1;
        if (low >= 0) {
            decoded += static_cast<char>(high * 16 + low);
            i += 2;
        } else {
            decoded += text[i];
        }
    }
    return decoded;
}

bool URL::readFile(std::string& content) const
{
    content.clear();
    if (!isLocal()) {
        ORV_WARNING("URL::readFile(): %s is not a local file\n", str().c_str());
        return false;
    }
    return readLocalFile(localPath(), content);
}

bool URL::readLocalFile(const std::string& path, std::string& content)
{
    content.clear();
    std::error_code error;
    if (path.empty() || !std::filesystem::is_regular_file(path, error)) {
        ORV_WARNING("URL::readLocalFile(): no file %s\n", path.c_str());
        return false;
    }
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"), &std::fclose);
    if (!file) {
        ORV_WARNING("URL::readLocalFile(): cannot open %s\n", path.c_str());
        return false;
    }
    std::uintmax_t expected = std::filesystem::file_size(path, error);
    if (!error)
        content.reserve(static_cast<std::size_t>(expected));
    // Read to the end rather than trusting the size: the file may change while we read.
    char        chunk[65536];
    std::size_t got;
    while ((got = std::fread(chunk, 1, sizeof(chunk), file.get())) > 0)
        content.append(chunk, got);
    if (std::ferror(file.get())) {
        ORV_WARNING("URL::readLocalFile(): error reading %s\n", path.c_str());
        content.clear();
        return false;
    }
    return true;
}

} // namespace Pordane
