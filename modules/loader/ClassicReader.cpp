#include "modules/loader/ClassicReader.h"

#include "modules/loader/PlainList.h"

#include "base/Field.h"
#include "base/FieldType.h"
#include "base/NodePart.h"
#include "base/NodeType.h"
#include "base/ProtoDeclaration.h"
#include "base/SmartPtr.h"

#include <cstring>

namespace Orvane {

namespace {

constexpr bool endsWord(char c)
{
    return SceneBuilder::isSeparator(c) || c == '#' || c == '"' || c == '{' || c == '}' || c == '[' || c == ']';
}

// What a byte is to a list scan.
enum ListByte : unsigned char { WordByte, SpaceByte, LineByte, StopByte, CloseByte };
struct ListBytes {
    ListByte of[256];
    constexpr ListBytes() : of()
    {
        for (int c = 0; c < 256; ++c) {
            const char byte = static_cast<char>(c);
            if (byte == '\n')
                of[c] = LineByte;
            else if (byte == ']')
                of[c] = CloseByte;
            else if (SceneBuilder::isSeparator(byte))
                of[c] = SpaceByte;
            else
                of[c] = endsWord(byte) ? StopByte : WordByte;
        }
    }
};
constexpr ListBytes listBytes;

bool isAccessWord(std::string_view w)
{
    return w == "field" || w == "eventIn" || w == "eventOut" || w == "exposedField" || w == "initializeOnly" ||
           w == "inputOnly" || w == "outputOnly" || w == "inputOutput";
}

bool holdsValue(std::string_view access)
{
    return access == "field" || access == "exposedField" || access == "initializeOnly" || access == "inputOutput";
}

std::string quote(std::string_view text)
{
    return "'" + std::string(text) + "'";
}

} // namespace

ClassicReader::ClassicReader(SceneBuilder& builder) : _builder(builder) {}

// --- tokens ---

void ClassicReader::skipSpace()
{
    while (_pos < _src.size()) {
        char c = _src[_pos];
        if (c == '\n') {
            ++_pos;
            ++_line;
            _lineStart = _pos;
        } else if (SceneBuilder::isSeparator(c)) {
            ++_pos;
        } else if (c == '#') {
            _commentSeen = true;
            while (_pos < _src.size() && _src[_pos] != '\n')
                ++_pos;
        } else {
            break;
        }
    }
}

ClassicReader::Token ClassicReader::next()
{
    skipSpace();
    Token token;
    token.place = {_line, static_cast<int>(_pos - _lineStart) + 1};
    if (_pos >= _src.size())
        return token;
    const std::size_t start = _pos;
    switch (_src[_pos]) {
    case '{': token.kind = OpenBrace; ++_pos; break;
    case '}': token.kind = CloseBrace; ++_pos; break;
    case '[': token.kind = OpenBracket; ++_pos; break;
    case ']': token.kind = CloseBracket; ++_pos; break;
    case '"': {
        token.kind = StringToken;
        ++_pos;
        while (_pos < _src.size() && _src[_pos] != '"') {
            if (_src[_pos] == '\\' && _pos + 1 < _src.size())
                ++_pos;
            if (_src[_pos] == '\n') {
                ++_line;
                _lineStart = _pos + 1;
            }
            ++_pos;
        }
        if (_pos >= _src.size() && !_peeking)
            _builder.error(token.place, "unterminated string");
        else
            ++_pos;
        break;
    }
    default:
        token.kind = WordToken;
        while (_pos < _src.size() && !endsWord(_src[_pos]))
            ++_pos;
        break;
    }
    token.text = _src.substr(start, _pos - start);
    return token;
}

bool ClassicReader::plainList(std::string_view& out)
{
    // The common case of a long list, numbers up to the closing bracket with no comment or
    // string among them, in one pass; anything else is left to the token walk.
    std::size_t pos = _pos, lineStart = _lineStart, begin = std::string_view::npos, end = 0;
    int         line = _line;
    const auto byte = [this](std::size_t at) { return listBytes.of[static_cast<unsigned char>(_src[at])]; };
    while (pos < _src.size()) {
        switch (byte(pos)) {
        case CloseByte:
            _pos = pos + 1;
            _line = line;
            _lineStart = lineStart;
            out = begin == std::string_view::npos ? std::string_view() : _src.substr(begin, end - begin);
            return true;
        case LineByte:
            ++line;
            lineStart = ++pos;
            break;
        case SpaceByte:
            ++pos;
            break;
        case StopByte:
            return false;  // a comment, a string or a brace
        case WordByte:
            if (begin == std::string_view::npos)
                begin = pos;
            while (++pos < _src.size() && byte(pos) == WordByte) {
            }
            end = pos;
            break;
        }
    }
    return false;
}

bool ClassicReader::plainNumbers(Field& field)
{
    if (peek().kind != OpenBracket)
        return false;
    const State start = save();
    next();
    const char* first = _src.data() + _pos;
    const char* close = PlainList::read(field, first, _src.data() + _src.size(), ']');
    if (!close) {
        restore(start);
        return false;
    }
    // The lines the list spans, for the places of what follows.
    for (const char* p = first; p < close; ++p)
        if (*p == '\n') {
            ++_line;
            _lineStart = static_cast<std::size_t>(p - _src.data()) + 1;
        }
    _pos = static_cast<std::size_t>(close - _src.data()) + 1;
    return true;
}

ClassicReader::Token ClassicReader::peek()
{
    State s = save();
    bool comment = _commentSeen;
    _peeking = true;
    Token t = next();
    _peeking = false;
    restore(s);
    _commentSeen = comment;
    return t;
}

bool ClassicReader::expect(TokenKind kind, const char* what, Token& token)
{
    token = peek();
    if (token.kind == kind) {
        next();
        return true;
    }
    _builder.error(token.place, std::string("expected ") + what +
                                    (token.kind == EndToken ? " at the end of the file" : " before " + quote(token.text)));
    return false;
}

bool ClassicReader::isValueWord(std::string_view w)
{
    if (w.empty())
        return false;
    char c = w[0];
    return (c >= '0' && c <= '9') || c == '+' || c == '-' || c == '.' || w == "TRUE" || w == "FALSE" ||
           w == "true" || w == "false";
}

void ClassicReader::unescape(std::string_view quoted, std::string& out) const
{
    out.clear();
    if (!quoted.empty() && quoted.front() == '"')
        quoted.remove_prefix(1);
    if (!quoted.empty() && quoted.back() == '"')
        quoted.remove_suffix(1);
    for (std::size_t i = 0; i < quoted.size(); ++i) {
        if (quoted[i] == '\\' && i + 1 < quoted.size())
            ++i;
        out += quoted[i];
    }
}

void ClassicReader::skipBlock(TokenKind, TokenKind)
{
    // Braces and brackets are counted together: the block ends where its level does, whatever
    // went wrong inside.
    int level = 1;
    while (level > 0) {
        Token t = next();
        if (t.kind == EndToken)
            return;
        if (t.kind == OpenBrace || t.kind == OpenBracket)
            ++level;
        else if (t.kind == CloseBrace || t.kind == CloseBracket)
            --level;
    }
}

void ClassicReader::skipValue()
{
    Token t = peek();
    if (t.kind == OpenBracket || t.kind == OpenBrace) {
        next();
        skipBlock(t.kind, t.kind);
    } else if (t.kind == StringToken) {
        next();
    } else if (t.kind == WordToken) {
        if (isValueWord(t.text)) {
            while (peek().kind == WordToken && isValueWord(peek().text))
                next();
            return;
        }
        next();
        if (t.text == "USE" || t.text == "IS") {
            next();
            return;
        }
        if (t.text == "DEF") {
            next();
            next();
        }
        if (peek().kind == OpenBrace) {
            next();
            skipBlock(OpenBrace, CloseBrace);
        }
    }
}

// --- grammar ---

bool ClassicReader::header()
{
    SceneHeader& h = _builder.header();
    std::string_view line = _src.substr(0, _src.find('\n'));
    if (!line.empty() && line.back() == '\r')
        line.remove_suffix(1);
    auto words = [&](std::string_view rest) {
        std::size_t space = rest.find(' ');
        h.version = std::string(rest.substr(0, space));
        h.charset = space == std::string_view::npos ? std::string() : std::string(rest.substr(space + 1));
        if (std::size_t end = h.charset.find_first_of(" \t"); end != std::string::npos)
            h.charset.resize(end);
    };
    if (line.substr(0, 7) == "#VRML V") {
        h.encoding = "VRML";
        words(line.substr(7));
        if (h.version == "2.0")
            return true;
    } else if (line.substr(0, 6) == "#X3D V") {
        h.encoding = "X3D";
        words(line.substr(6));
        if (SceneBuilder::isX3DVersion(h.version))
            return true;
    }
    _builder.error({1, 1}, "no '#VRML V2.0 utf8' or '#X3D V3.0 utf8' (to V4.1) header: not a scene file");
    return false;
}

bool ClassicReader::read(std::string_view text)
{
    _src = text;
    _pos = 0;
    _line = 1;
    _lineStart = 0;
    if (!header())
        return false;
    for (Token t = next(); t.kind != EndToken; t = next())
        statement(t, 0, nullptr);
    return true;
}

void ClassicReader::statement(Token first, int depth, Node* parentNode)
{
    if (first.kind != WordToken) {
        _builder.error(first.place, "unexpected " + quote(first.text));
        if (first.kind == OpenBrace || first.kind == OpenBracket)
            skipBlock(first.kind, first.kind);
        return;
    }
    const std::string_view w = first.text;
    if (w == "PROTO")
        proto(first, depth);
    else if (w == "EXTERNPROTO")
        externProto(first);
    else if (w == "ROUTE")
        route(first);
    else if (w == "IMPORT")
        importStatement(first);
    else if (w == "EXPORT")
        exportStatement(first);
    else if (!parentNode && (w == "PROFILE" || w == "COMPONENT" || w == "UNIT" || w == "META"))
        profileStatement(first);
    else if (parentNode)
        _builder.error(first.place, "unexpected " + quote(w));
    else if (w == "NULL")
        return;
    else if (SmartPtr<Node> node = nodeStatement(first, depth))
        _builder.addRoot(*node, first.place);
}

SmartPtr<Node> ClassicReader::nodeStatement(Token first, int depth)
{
    if (first.kind != WordToken) {
        _builder.error(first.place, "expected a node before " + quote(first.text));
        if (first.kind == OpenBrace || first.kind == OpenBracket)
            skipBlock(first.kind, first.kind);
        return {};
    }
    if (first.text == "USE") {
        Token name;
        if (!expect(WordToken, "a name after USE", name))
            return {};
        return SmartPtr<Node>(_builder.use(name.text, first.place));
    }
    if (first.text == "DEF") {
        Token name, type;
        if (!expect(WordToken, "a name after DEF", name) || !expect(WordToken, "a node type", type))
            return {};
        return nodeBody(type, name.text, depth);
    }
    return nodeBody(first, std::string_view(), depth);
}

SmartPtr<Node> ClassicReader::nodeBody(Token typeToken, std::string_view defName, int depth)
{
    if (depth >= MaxDepth) {
        _builder.error(typeToken.place, "nesting deeper than " + std::to_string(MaxDepth) + " levels");
        if (peek().kind == OpenBrace) {
            next();
            skipBlock(OpenBrace, CloseBrace);
        }
        return {};
    }
    // The message names the type: build it only when the brace is missing.
    Token open;
    if (peek().kind != OpenBrace) {
        expect(OpenBrace, ("'{' after node type " + quote(typeToken.text)).c_str(), open);
        return {};
    }
    open = next();
    SmartPtr<Node> node = _builder.createNode(typeToken.text, defName, typeToken.place);
    if (!node) {
        skipBlock(OpenBrace, CloseBrace);
        return {};
    }
    for (;;) {
        Token t = next();
        if (t.kind == CloseBrace)
            break;
        if (t.kind == EndToken) {
            _builder.error(open.place, "missing '}' for this " + std::string(typeToken.text) + " node");
            break;
        }
        if (t.kind == WordToken) {
            nodeItem(*node, t, depth + 1);
            continue;
        }
        _builder.error(t.place, "unexpected " + quote(t.text) + " in " + std::string(typeToken.text) + " node");
        if (t.kind == OpenBrace || t.kind == OpenBracket)
            skipBlock(t.kind, t.kind);
    }
    return node;
}

void ClassicReader::nodeItem(Node& node, Token name, int depth)
{
    const std::string_view w = name.text;
    if (w == "ROUTE" || w == "PROTO" || w == "EXTERNPROTO" || w == "IMPORT" || w == "EXPORT") {
        statement(name, depth, &node);
        return;
    }
    _scratch.assign(w);
    Field* field = node.findField(_scratch);
    if (!field && isAccessWord(w)) {
        interfaceDeclaration(node, name, depth);
        return;
    }
    if (SceneBuilder::isUnknown(node.type())) {
        unknownField(node, name, depth);
        return;
    }
    if (!field)
        field = _builder.findField(node, w, name.place);
    Token t = peek();
    if (t.kind == WordToken && t.text == "IS") {
        next();
        Token target;
        if (expect(WordToken, "an interface field name after IS", target) && field)
            _builder.isLink(node, w, target.text, name.place);
        return;
    }
    if (!field) {
        skipValue();
        return;
    }
    fieldValue(node, *field, depth);
}

bool ClassicReader::valueText(bool single, bool isString, std::string_view& out, SceneBuilder::Place& place)
{
    Token t = peek();
    place = t.place;
    if (t.kind == StringToken) {
        next();
        out = t.text;
        return true;
    }
    if (isString && t.kind != OpenBracket) {
        _builder.error(t.place, "expected a string before " + quote(t.text));
        return false;
    }
    const bool bracketed = t.kind == OpenBracket && !single;
    if (!bracketed && !(t.kind == WordToken && isValueWord(t.text))) {
        _builder.error(t.place, "missing value before " + quote(t.text));
        return false;
    }
    if (bracketed) {
        next();
        if (!isString && plainList(out))
            return true;
    }
    _commentSeen = false;
    const State first = save();
    std::size_t begin = std::string_view::npos, end = 0;
    for (;;) {
        Token v = peek();
        if (bracketed) {
            if (v.kind == CloseBracket) {
                next();
                break;
            }
            if (v.kind != WordToken && v.kind != StringToken) {
                _builder.error(t.place, v.kind == EndToken ? "missing ']' for this list" : "unexpected " + quote(v.text) + " in a list");
                if (v.kind == OpenBrace || v.kind == OpenBracket) {
                    next();
                    skipBlock(v.kind, v.kind);
                }
                return false;
            }
        } else if (v.kind != WordToken || !isValueWord(v.text)) {
            break;
        }
        next();
        if (begin == std::string_view::npos)
            begin = static_cast<std::size_t>(v.text.data() - _src.data());
        end = static_cast<std::size_t>(v.text.data() - _src.data()) + v.text.size();
    }
    if (begin == std::string_view::npos) {
        out = std::string_view();
        return true;
    }
    if (!_commentSeen) {
        out = _src.substr(begin, end - begin);
        return true;
    }
    // Comments between the values: the words again, without them.
    const State after = save();
    restore(first);
    _scratch.clear();
    while (_pos < end) {
        Token v = next();
        if (!_scratch.empty())
            _scratch += ' ';
        _scratch.append(v.text);
    }
    restore(after);
    out = _scratch;
    return true;
}

void ClassicReader::fieldValue(Node& node, Field& field, int depth)
{
    const NodePartDataType type = field.dataType();
    if (type == SFNodeType || type == MFNodeType) {
        nodeValues(node, field, depth);
        return;
    }
    const bool single = field.cardinality() == Field::Single;
    const bool isString = type == SFStringType || type == MFStringType;
    if (!single && !isString && plainNumbers(field))
        return;
    std::string_view text;
    SceneBuilder::Place place;
    if (!valueText(single, isString, text, place)) {
        skipValue();
        return;
    }
    if (type == SFStringType) {
        std::string value;
        unescape(text, value);
        _builder.setValue(field, value, place);
        return;
    }
    _builder.setValue(field, text, place);
}

void ClassicReader::nodeValues(Node& node, Field& field, int depth)
{
    Token t = peek();
    _builder.clearNodes(field);
    if (t.kind == OpenBracket && field.dataType() == MFNodeType) {
        next();
        for (;;) {
            Token v = next();
            if (v.kind == CloseBracket)
                return;
            if (v.kind == EndToken) {
                _builder.error(t.place, "missing ']' for this list");
                return;
            }
            if (v.kind == WordToken && v.text == "NULL")
                continue;
            // A statement between the nodes of a list (the IMPORT written after a nested
            // Inline) counts as one of the node's own.
            if (v.kind == WordToken && (v.text == "ROUTE" || v.text == "IMPORT" || v.text == "EXPORT")) {
                statement(v, depth, &node);
                continue;
            }
            if (SmartPtr<Node> child = nodeStatement(v, depth))
                _builder.addChild(node, field, *child, v.place);
        }
    }
    if (t.kind != WordToken) {
        _builder.error(t.place, "expected a node for field " + std::string(field.findName()) + " before " + quote(t.text));
        skipValue();
        return;
    }
    next();
    if (t.text == "NULL")
        return;
    if (SmartPtr<Node> child = nodeStatement(t, depth))
        _builder.addChild(node, field, *child, t.place);
}

void ClassicReader::unknownField(Node& node, Token name, int depth)
{
    Token t = peek();
    bool nodes = t.kind == WordToken && !isValueWord(t.text) && t.text != "IS";
    if (t.kind == OpenBracket) {
        State s = save();
        next();
        Token inside = next();
        restore(s);
        nodes = inside.kind == WordToken && !isValueWord(inside.text);
    }
    if (nodes) {
        if (Field* field = _builder.addUnknownField(node, name.text, std::string_view(), true, name.place))
            nodeValues(node, *field, depth);
        else
            skipValue();
        return;
    }
    if (t.kind == WordToken && t.text == "IS") {
        next();
        next();
        return;
    }
    std::string_view text;
    SceneBuilder::Place place;
    if (valueText(false, false, text, place))
        _builder.addUnknownField(node, name.text, text, false, name.place);
    else
        skipValue();
}

void ClassicReader::interfaceDeclaration(Node& node, Token access, int depth)
{
    Token type, name;
    if (!expect(WordToken, "a field type", type) || !expect(WordToken, "a field name", name))
        return;
    Field* field = _builder.addDynamicField(node, access.text, type.text, name.text, name.place);
    Token t = peek();
    if (t.kind == WordToken && t.text == "IS") {
        next();
        Token target;
        if (expect(WordToken, "an interface field name after IS", target) && field)
            _builder.isLink(node, name.text, target.text, name.place);
        return;
    }
    if (!holdsValue(access.text))
        return;
    if (field)
        fieldValue(node, *field, depth);
    else
        skipValue();
}

void ClassicReader::proto(Token keyword, int depth)
{
    Token name, open;
    if (!expect(WordToken, "a prototype name", name))
        return;
    if (depth >= MaxDepth) {
        _builder.error(keyword.place, "nesting deeper than " + std::to_string(MaxDepth) + " levels");
        for (int blocks = 0; blocks < 2 && peek().kind != EndToken; ++blocks) {
            Token t = next();
            skipBlock(t.kind, t.kind);
        }
        return;
    }
    ProtoDeclaration* decl = _builder.beginProto(name.text, nullptr, keyword.place);
    if (!expect(OpenBracket, "'[' after the prototype name", open))
        return;
    for (;;) {
        Token access = next();
        if (access.kind == CloseBracket)
            break;
        if (access.kind == EndToken) {
            _builder.error(open.place, "missing ']' for this interface");
            return;
        }
        Token type, field;
        if (access.kind != WordToken || !isAccessWord(access.text)) {
            _builder.error(access.place, "expected an access type before " + quote(access.text));
            continue;
        }
        if (!expect(WordToken, "a field type", type) || !expect(WordToken, "a field name", field))
            continue;
        FieldType* fieldType = FieldType::findType(std::string(type.text));
        const bool value = holdsValue(access.text);
        if (fieldType && value && (fieldType->dataType() == SFNodeType || fieldType->dataType() == MFNodeType)) {
            if (decl && _builder.addProtoField(*decl, access.text, type.text, field.text, nullptr, field.place))
                nodeValues(*decl, *decl->field(decl->fieldCount() - 1), depth + 1);
            else
                skipValue();
            continue;
        }
        std::string text;
        std::string_view raw;
        SceneBuilder::Place place;
        if (value) {
            if (!valueText(fieldType && !fieldType->isMulti(), false, raw, place)) {
                skipValue();
                continue;
            }
            if (fieldType && fieldType->dataType() == SFStringType)
                unescape(raw, text);
            else
                text.assign(raw);
        }
        if (decl)
            _builder.addProtoField(*decl, access.text, type.text, field.text, value ? &text : nullptr, field.place);
    }
    Token body;
    if (!expect(OpenBrace, "'{' before the prototype body", body))
        return;
    if (decl)
        _builder.enterProtoBody(*decl);
    for (;;) {
        Token t = next();
        if (t.kind == CloseBrace)
            break;
        if (t.kind == EndToken) {
            _builder.error(body.place, "missing '}' for this prototype body");
            break;
        }
        if (decl)
            statement(t, depth + 1, nullptr);
        else if (t.kind == OpenBrace || t.kind == OpenBracket)
            skipBlock(t.kind, t.kind);
    }
    if (decl)
        _builder.endProto();
}

bool ClassicReader::urlList(std::vector<std::string>& urls)
{
    Token t = next();
    std::string url;
    if (t.kind == StringToken) {
        unescape(t.text, url);
        urls.push_back(url);
        return true;
    }
    if (t.kind != OpenBracket) {
        _builder.error(t.place, "expected the URL list before " + quote(t.text));
        return false;
    }
    for (Token v = next(); v.kind != CloseBracket; v = next()) {
        if (v.kind != StringToken) {
            _builder.error(v.place, v.kind == EndToken ? "missing ']' for the URL list" : "expected a URL before " + quote(v.text));
            return false;
        }
        unescape(v.text, url);
        urls.push_back(url);
    }
    return true;
}

void ClassicReader::externProto(Token keyword)
{
    Token name, open;
    if (!expect(WordToken, "a prototype name", name) || !expect(OpenBracket, "'[' after the prototype name", open))
        return;
    struct Entry {
        Token access, type, field;
    };
    std::vector<Entry> entries;
    for (;;) {
        Token access = next();
        if (access.kind == CloseBracket)
            break;
        if (access.kind == EndToken) {
            _builder.error(open.place, "missing ']' for this interface");
            return;
        }
        Entry e{access, {}, {}};
        if (access.kind != WordToken || !isAccessWord(access.text)) {
            _builder.error(access.place, "expected an access type before " + quote(access.text));
            continue;
        }
        if (expect(WordToken, "a field type", e.type) && expect(WordToken, "a field name", e.field))
            entries.push_back(e);
    }
    std::vector<std::string> urls;
    if (!urlList(urls))
        return;
    ProtoDeclaration* decl = _builder.beginProto(name.text, &urls, keyword.place);
    if (!decl)
        return;
    for (const Entry& e : entries)
        _builder.addProtoField(*decl, e.access.text, e.type.text, e.field.text, nullptr, e.field.place);
}

void ClassicReader::route(Token keyword)
{
    Token from, to, target;
    if (!expect(WordToken, "'NODE.field' after ROUTE", from))
        return;
    if (!expect(WordToken, "TO", to) || to.text != "TO" || !expect(WordToken, "'NODE.field' after TO", target)) {
        if (to.text != "TO")
            _builder.error(to.place, "expected TO before " + quote(to.text));
        return;
    }
    std::size_t a = from.text.find('.'), b = target.text.find('.');
    if (a == std::string_view::npos || b == std::string_view::npos) {
        _builder.error(keyword.place, "ROUTE needs 'NODE.field TO NODE.field'");
        return;
    }
    _builder.route(from.text.substr(0, a), from.text.substr(a + 1), target.text.substr(0, b),
                   target.text.substr(b + 1), keyword.place);
}

bool ClassicReader::asName(std::string_view& out)
{
    if (peek().kind != WordToken || peek().text != "AS")
        return true;
    next();
    Token name;
    if (!expect(WordToken, "a name after AS", name))
        return false;
    out = name.text;
    return true;
}

void ClassicReader::importStatement(Token keyword)
{
    Token what;
    if (!expect(WordToken, "'INLINE.name' after IMPORT", what))
        return;
    std::string_view as;
    if (!asName(as))
        return;
    std::size_t dot = what.text.find('.');
    if (dot == std::string_view::npos) {
        _builder.error(keyword.place, "IMPORT needs 'INLINE.name'");
        return;
    }
    _builder.importNode(what.text.substr(0, dot), what.text.substr(dot + 1), as, keyword.place);
}

void ClassicReader::exportStatement(Token keyword)
{
    Token local;
    if (!expect(WordToken, "a name after EXPORT", local))
        return;
    std::string_view as;
    if (!asName(as))
        return;
    _builder.exportNode(local.text, as, keyword.place);
}

void ClassicReader::profileStatement(Token keyword)
{
    SceneHeader& h = _builder.header();
    if (h.encoding != "X3D")
        _builder.error(keyword.place, std::string(keyword.text) + " belongs to X3D files only");
    Token a, b, c;
    if (keyword.text == "PROFILE") {
        if (expect(WordToken, "a profile name", a))
            h.profile = std::string(a.text);
    } else if (keyword.text == "COMPONENT") {
        if (!expect(WordToken, "'name:level'", a))
            return;
        std::string_view text = a.text;
        std::size_t colon = text.find(':');
        if (colon == std::string_view::npos || colon + 1 >= text.size()) {
            _builder.error(a.place, "COMPONENT needs 'name:level'");
            return;
        }
        h.components.emplace_back(std::string(text.substr(0, colon)),
                                  std::atoi(std::string(text.substr(colon + 1)).c_str()));
    } else if (keyword.text == "UNIT") {
        if (expect(WordToken, "a unit category", a) && expect(WordToken, "a unit name", b) &&
            expect(WordToken, "a conversion factor", c))
            h.units.push_back({std::string(a.text), std::string(b.text), std::string(c.text)});
    } else if (expect(StringToken, "a META name", a) && expect(StringToken, "a META content", b)) {
        std::string name, content;
        unescape(a.text, name);
        unescape(b.text, content);
        h.meta.emplace_back(name, content);
    }
}

} // namespace Orvane
