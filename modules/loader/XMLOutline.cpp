#include "modules/loader/XMLOutline.h"

#include <string>

namespace Orvane {

namespace {

constexpr std::size_t npos = std::string_view::npos;

bool isSpace(char c)
{
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

} // namespace

XMLOutline::XMLOutline(std::string_view text, std::size_t pieceBytes) : _text(text)
{
    scan(pieceBytes);
}

std::size_t XMLOutline::skipPast(std::size_t at, std::string_view end) const
{
    const std::size_t found = _text.find(end, at);
    return found == npos ? npos : found + end.size();
}

std::size_t XMLOutline::skipDoctype(std::size_t at) const
{
    // A DOCTYPE with an internal subset declares things; such a document is parsed whole.
    for (std::size_t p = at; p < _text.size(); ++p) {
        const char c = _text[p];
        if (c == '"' || c == '\'') {
            p = _text.find(c, p + 1);
            if (p == npos)
                return npos;
        } else if (c == '[' || c == '<') {
            return npos;
        } else if (c == '>') {
            return p + 1;
        }
    }
    return npos;
}

std::size_t XMLOutline::startTag(std::size_t at, std::string_view& name, bool& empty) const
{
    std::size_t p = at + 1;
    while (p < _text.size() && !isSpace(_text[p]) && _text[p] != '/' && _text[p] != '>' && _text[p] != '<')
        ++p;
    if (p == at + 1)
        return npos;
    name = _text.substr(at + 1, p - at - 1);
    while (p < _text.size()) {
        const char c = _text[p];
        if (c == '"' || c == '\'') {
            p = _text.find(c, p + 1);
            if (p == npos)
                return npos;
            ++p;
        } else if (c == '>') {
            empty = false;
            return p + 1;
        } else if (c == '/') {
            if (p + 1 >= _text.size() || _text[p + 1] != '>')
                return npos;
            empty = true;
            return p + 2;
        } else if (c == '<') {
            return npos;
        } else {
            ++p;
        }
    }
    return npos;
}

std::size_t XMLOutline::endTag(std::size_t at, std::string_view& name) const
{
    std::size_t p = at + 2;
    while (p < _text.size() && !isSpace(_text[p]) && _text[p] != '>' && _text[p] != '<')
        ++p;
    name = _text.substr(at + 2, p - at - 2);
    while (p < _text.size() && isSpace(_text[p]))
        ++p;
    return p < _text.size() && _text[p] == '>' && !name.empty() ? p + 1 : npos;
}

void XMLOutline::scan(std::size_t pieceBytes)
{
    std::vector<std::string_view> open;
    bool                          root = false;
    std::size_t                   pieceBegin = 0;
    for (std::size_t p = 0;;) {
        const std::size_t at = _text.find('<', p);
        if (at == npos)
            return;
        const std::string_view rest = _text.substr(at);
        std::size_t            next = npos;
        if (rest.starts_with("<!--")) {
            next = skipPast(at + 4, "-->");
        } else if (rest.starts_with("<![CDATA[")) {
            next = skipPast(at + 9, "]]>");
        } else if (rest.starts_with("<?")) {
            next = skipPast(at + 2, "?>");
        } else if (rest.starts_with("<!DOCTYPE")) {
            if (!root)
                next = skipDoctype(at + 9);
        } else if (rest.starts_with("</")) {
            std::string_view name;
            next = endTag(at, name);
            if (next == npos || open.empty() || open.back() != name)
                return;
            if (contentBegin && open.size() == 2) {  // the Scene's end
                contentEnd = at;
                if (cuts.empty() || cuts.back() != at)
                    cuts.push_back(at);
                found = true;
                return;
            }
            open.pop_back();
        } else if (!rest.starts_with("<!")) {
            std::string_view name;
            bool             empty = false;
            next = startTag(at, name, empty);
            if (next == npos || (open.empty() && (root || name != "X3D")))
                return;
            root = true;
            if (!empty) {
                if (open.size() >= MaxOpen)
                    return;
                open.push_back(name);
                if (!contentBegin && open.size() == 2 && name == "Scene") {
                    sceneName = at + 1;
                    contentBegin = pieceBegin = next;
                }
            }
        }
        if (next == npos)
            return;
        p = next;
        if (contentBegin && open.size() == 2 && p - pieceBegin >= pieceBytes) {
            cuts.push_back(p);
            pieceBegin = p;
        }
    }
}

} // namespace Orvane
