#include "modules/loader/XMLReader.h"

#include "modules/loader/XMLOutline.h"

#include "base/Field.h"
#include "base/FieldType.h"
#include "base/NodeType.h"
#include "base/ProtoDeclaration.h"
#include "base/SmartPtr.h"
#include "base/ValueText.h"

#include <pugixml.hpp>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstring>
#include <list>
#include <vector>

namespace Orvane {

namespace {

using Place = SceneBuilder::Place;

bool is(const char* name, const char* wanted)
{
    return std::strcmp(name, wanted) == 0;
}

// Elements that are statements wherever nodes may stand.
bool isStatement(const char* name)
{
    return is(name, "ROUTE") || is(name, "IMPORT") || is(name, "EXPORT") || is(name, "ProtoDeclare") ||
           is(name, "ExternProtoDeclare");
}

// Attributes of a node element that are not fields: naming, placement, and what only an HTML
// page or an XML tool looks at.
bool isMarkupAttribute(const char* name)
{
    return is(name, "DEF") || is(name, "USE") || is(name, "containerField") || is(name, "class") ||
           is(name, "id") || is(name, "style") || std::strchr(name, ':') != nullptr;
}

bool hasElements(const pugi::xml_node& e)
{
    for (pugi::xml_node c = e.first_child(); c; c = c.next_sibling())
        if (c.type() == pugi::node_element)
            return true;
    return false;
}

std::string_view text(const pugi::xml_attribute& a)
{
    return a ? std::string_view(a.value()) : std::string_view();
}

class Walker {
public:
    Walker(SceneBuilder& builder, std::string& buffer)
        : _builder(builder), _buffer(buffer), _pieces(buffer, XMLReader::pieceBytes())
    {
    }
    bool read();

private:
    enum class Kind { Root, Head, Scene, Node, Field, Proto, Interface, Body };
    struct Frame {
        pugi::xml_node    element;
        pugi::xml_node    child;  // the next child to look at
        Kind              kind;
        SmartPtr<Node>    node;   // Node: the node being filled; Field: the field's owner
        Field*            field = nullptr;
        ProtoDeclaration* proto = nullptr;
        pugi::xml_node    is;     // Node: its IS element, linked once its own fields are declared
        bool              text = false;  // Node: it holds text (source code)
        bool              scoped = false;  // Body: the body is the builder's scope
        bool              use = false;     // Node: a USE, with no fields, IS or text of its own
    };
    static Frame frame(const pugi::xml_node& e, Kind kind, SmartPtr<Node> node = {}, Field* field = nullptr)
    {
        Frame f;
        f.element = e;
        f.kind = kind;
        f.node = std::move(node);
        f.field = field;
        return f;
    }

    Place place(const char* at);
    // An element's place is its "<", just before its name.
    Place place(const pugi::xml_node& e)
    {
        Place p = place(e.name());
        p.column -= p.column > 1;
        return p;
    }
    Place place(const pugi::xml_attribute& a) { return place(a.name()); }
    void  unexpected(const pugi::xml_node& e, const char* where);
    // Calls `use` on each child element of `e` named `wanted`; others are reported.
    template <class Use>
    void  each(const pugi::xml_node& e, const char* wanted, Use use);

    bool  header(const pugi::xml_node& x3d);
    void  headStatement(const pugi::xml_node& e);
    // One child element of `parent`: handled here, or true with `out` to be walked.
    bool  open(const pugi::xml_node& e, Frame& parent, Frame& out);
    void  close(Frame& frame, Frame* parent);
    void  statement(const pugi::xml_node& e, Frame& out, bool& walk);
    bool  node(const pugi::xml_node& e, Frame& out);
    void  place(Frame& parent, Node& child, const pugi::xml_node& e);
    void  fields(Node& node, const pugi::xml_node& e);
    bool  fieldDeclaration(const pugi::xml_node& e, Frame& parent, Frame& out);
    bool  fieldValue(const pugi::xml_node& e, Frame& parent, Frame& out);
    void  links(Node& node, const pugi::xml_node& is);
    void  source(Frame& frame);
    void  route(const pugi::xml_node& e);
    void  externProto(const pugi::xml_node& e);
    // Parses the document, or, when it has an outline, the document without its Scene's content.
    void  parse(pugi::xml_document& doc);
    // Reports what the parser refused in the text parsed from `begin` on.
    void  malformed(const char* begin, const pugi::xml_parse_result& parsed);
    // Parses the next piece of the Scene's content into `_piece`; false when none is left.
    bool  nextPiece();

    SceneBuilder&              _builder;
    std::string&               _buffer;
    // Read in pieces: the document without its Scene's content, where that content lay in the
    // buffer, the ends of its pieces and the next one, and the Scene element's name, by which
    // the element is known in the walk.
    std::string                _outline;
    XMLOutline                 _pieces;
    std::size_t                _nextPiece = 0;
    const char*                _sceneName = nullptr;
    pugi::xml_document         _piece;
    std::vector<std::uint32_t> _newlines;  // offsets of the line feeds, taken before parsing
    std::size_t                _line = 0;  // the line of the last place, as an index into _newlines
    std::string                _scratch;
};

Place Walker::place(const char* at)
{
    const char*   begin = _buffer.data();
    std::uint32_t offset = 0;
    if (!_outline.empty() && at >= _outline.data() && at <= _outline.data() + _outline.size()) {
        offset = static_cast<std::uint32_t>(at - _outline.data());
        if (offset >= _pieces.contentBegin)
            offset += static_cast<std::uint32_t>(_pieces.contentEnd - _pieces.contentBegin);
    } else if (at >= begin && at <= begin + _buffer.size()) {
        offset = static_cast<std::uint32_t>(at - begin);
    } else {
        return {0, 0};
    }
    // The walk goes forward through the document: the line is looked for from the last one.
    std::size_t line = _line;
    if (line > 0 && offset <= _newlines[line - 1])
        line = static_cast<std::size_t>(std::lower_bound(_newlines.begin(), _newlines.end(), offset) - _newlines.begin());
    while (line < _newlines.size() && _newlines[line] < offset)
        ++line;
    _line = line;
    const std::uint32_t start = line == 0 ? 0 : _newlines[line - 1] + 1;
    return {static_cast<int>(line) + 1, static_cast<int>(offset - start) + 1};
}

void Walker::unexpected(const pugi::xml_node& e, const char* where)
{
    _builder.error(place(e), std::string("unexpected element '") + e.name() + "' in " + where);
}

template <class Use>
void Walker::each(const pugi::xml_node& e, const char* wanted, Use use)
{
    for (pugi::xml_node c = e.first_child(); c; c = c.next_sibling()) {
        if (c.type() != pugi::node_element)
            continue;
        if (is(c.name(), wanted))
            use(c);
        else
            unexpected(c, e.name());
    }
}

bool Walker::read()
{
    if (_buffer.size() >= UINT32_MAX) {
        _builder.error({0, 0}, "XML document of 4 GiB or more: refused");
        return false;
    }
    // The parser writes into the buffer (ends of names and values, whitespace in values): line
    // feeds are counted before, for the places of messages.
    for (const char* p = _buffer.data(), *end = p + _buffer.size();
         (p = static_cast<const char*>(std::memchr(p, '\n', static_cast<std::size_t>(end - p)))); ++p)
        _newlines.push_back(static_cast<std::uint32_t>(p - _buffer.data()));

    pugi::xml_document doc;
    parse(doc);
    for (pugi::xml_node n = doc.first_child(); n; n = n.next_sibling())
        if (n.type() == pugi::node_doctype && std::strstr(n.value(), "<!ENTITY"))
            _builder.error(place(n.value()), "the DOCTYPE declares entities; they are not expanded");

    pugi::xml_node x3d = doc.document_element();
    if (!x3d || !is(x3d.name(), "X3D")) {
        _builder.error(x3d ? place(x3d) : Place{1, 1}, "no X3D root element: not an X3D scene");
        return false;
    }
    if (!header(x3d))
        return false;

    std::vector<Frame> stack;
    stack.reserve(XMLReader::MaxDepth + 1);
    stack.push_back(frame(x3d, Kind::Root));
    stack.back().child = x3d.first_child();
    // Elements done with are taken out of the document as the walk goes: the parser's memory
    // pages are given back as they empty and the scene's nodes reuse them, so that a large
    // document does not hold its whole tree beside its whole scene. Only elements without
    // children left are taken out, so that no removal recurses.
    while (!stack.empty()) {
        Frame& top = stack.back();
        if (!top.child && top.kind == Kind::Scene && top.element.name() == _sceneName && nextPiece()) {
            top.child = _piece.first_child();
            continue;
        }
        if (!top.child) {
            pugi::xml_node done = top.element;
            close(top, stack.size() > 1 ? &stack[stack.size() - 2] : nullptr);
            stack.pop_back();
            if (!stack.empty() && !done.first_child())
                stack.back().element.remove_child(done);
            continue;
        }
        pugi::xml_node e = top.child;
        top.child = e.next_sibling();
        if (e.type() != pugi::node_element) {
            if (e.type() == pugi::node_pcdata || e.type() == pugi::node_cdata)
                top.text = true;
            continue;
        }
        if (stack.size() >= static_cast<std::size_t>(XMLReader::MaxDepth)) {
            _builder.error(place(e), "nesting deeper than " + std::to_string(XMLReader::MaxDepth) + " levels");
            continue;
        }
        Frame next;
        if (open(e, top, next)) {
            if (!next.use)
                next.child = e.first_child();
            stack.push_back(std::move(next));
        } else if (!e.first_child() && top.is != e) {
            top.element.remove_child(e);
        }
    }
    return true;
}

// No comments or processing instructions kept; the DOCTYPE only to see what it declares.
constexpr unsigned parseOptions = pugi::parse_cdata | pugi::parse_escapes | pugi::parse_wconv_attribute |
                                  pugi::parse_eol | pugi::parse_doctype;

void Walker::malformed(const char* begin, const pugi::xml_parse_result& parsed)
{
    // What was parsed before the fault is read all the same.
    if (!parsed)
        _builder.error(place(begin + parsed.offset), std::string("malformed XML: ") + parsed.description());
}

void Walker::parse(pugi::xml_document& doc)
{
    std::string& text = _pieces.found ? _outline : _buffer;
    if (_pieces.found) {
        _outline.reserve(_buffer.size() - (_pieces.contentEnd - _pieces.contentBegin));
        _outline.assign(_buffer, 0, _pieces.contentBegin);
        _outline.append(_buffer, _pieces.contentEnd);
        _sceneName = _outline.data() + _pieces.sceneName;
    }
    malformed(text.data(), doc.load_buffer_inplace(text.data(), text.size(), parseOptions, pugi::encoding_utf8));
}

bool Walker::nextPiece()
{
    if (_nextPiece >= _pieces.cuts.size())
        return false;
    const std::size_t begin = _nextPiece ? _pieces.cuts[_nextPiece - 1] : _pieces.contentBegin;
    const std::size_t end = _pieces.cuts[_nextPiece++];
    // Parsing anew gives the last piece's memory back to the parser for this one.
    char* text = _buffer.data() + begin;
    malformed(text, _piece.load_buffer_inplace(text, end - begin, parseOptions | pugi::parse_fragment,
                                               pugi::encoding_utf8));
    return true;
}

bool Walker::header(const pugi::xml_node& x3d)
{
    SceneHeader& h = _builder.header();
    h.encoding = "X3D";
    h.charset = "utf8";
    h.version = text(x3d.attribute("version"));
    h.profile = text(x3d.attribute("profile"));
    if (SceneBuilder::isX3DVersion(h.version))
        return true;
    _builder.error(place(x3d), "no X3D version 3.0 to 4.1 in the X3D element: not a scene file");
    return false;
}

void Walker::headStatement(const pugi::xml_node& e)
{
    SceneHeader& h = _builder.header();
    const char*  name = e.name();
    if (is(name, "component")) {
        pugi::xml_attribute level = e.attribute("level");
        if (!e.attribute("name") || !level)
            _builder.error(place(e), "component needs a name and a level");
        else
            h.components.emplace_back(e.attribute("name").value(), level.as_int());
    } else if (is(name, "unit")) {
        if (!e.attribute("category") || !e.attribute("name") || !e.attribute("conversionFactor"))
            _builder.error(place(e), "unit needs a category, a name and a conversionFactor");
        else
            h.units.push_back({e.attribute("category").value(), e.attribute("name").value(),
                               e.attribute("conversionFactor").value()});
    } else if (is(name, "meta")) {
        h.meta.emplace_back(e.attribute("name").value(), e.attribute("content").value());
    } else {
        unexpected(e, "head");
    }
}

bool Walker::open(const pugi::xml_node& e, Frame& parent, Frame& out)
{
    const char* name = e.name();
    switch (parent.kind) {
    case Kind::Root:
        if (is(name, "head")) {
            out = frame(e, Kind::Head);
            return true;
        }
        if (is(name, "Scene")) {
            out = frame(e, Kind::Scene);
            return true;
        }
        unexpected(e, "X3D");
        return false;
    case Kind::Head:
        headStatement(e);
        return false;
    case Kind::Proto:
        if (is(name, "ProtoInterface")) {
            out = frame(e, Kind::Interface);
            out.proto = parent.proto;
            return parent.proto != nullptr;
        }
        if (is(name, "ProtoBody")) {
            out = frame(e, Kind::Body);
            out.proto = parent.proto;
            if (parent.proto) {
                _builder.enterProtoBody(*parent.proto);
                out.scoped = true;
            }
            return parent.proto != nullptr;
        }
        unexpected(e, "ProtoDeclare");
        return false;
    case Kind::Interface:
        if (is(name, "field"))
            return fieldDeclaration(e, parent, out);
        unexpected(e, "ProtoInterface");
        return false;
    case Kind::Node:
        if (is(name, "IS")) {
            parent.is = e;
            return false;
        }
        if (is(name, "field"))
            return fieldDeclaration(e, parent, out);
        if (is(name, "fieldValue"))
            return fieldValue(e, parent, out);
        break;
    case Kind::Scene:
    case Kind::Body:
    case Kind::Field:
        break;
    }
    if (isStatement(name)) {
        bool walk = false;
        statement(e, out, walk);
        return walk;
    }
    return node(e, out);
}

void Walker::statement(const pugi::xml_node& e, Frame& out, bool& walk)
{
    const char* name = e.name();
    if (is(name, "ROUTE")) {
        route(e);
    } else if (is(name, "IMPORT")) {
        pugi::xml_attribute inlineDef = e.attribute("inlineDEF"), imported = e.attribute("importedDEF");
        if (!inlineDef || !imported)
            _builder.error(place(e), "IMPORT needs inlineDEF and importedDEF");
        else
            _builder.importNode(text(inlineDef), text(imported), text(e.attribute("AS")), place(e));
    } else if (is(name, "EXPORT")) {
        pugi::xml_attribute local = e.attribute("localDEF");
        if (!local)
            _builder.error(place(e), "EXPORT needs localDEF");
        else
            _builder.exportNode(text(local), text(e.attribute("AS")), place(e));
    } else if (is(name, "ProtoDeclare")) {
        pugi::xml_attribute protoName = e.attribute("name");
        if (!protoName) {
            _builder.error(place(e), "ProtoDeclare needs a name");
            return;
        }
        out = frame(e, Kind::Proto);
        out.proto = _builder.beginProto(text(protoName), nullptr, place(e));
        walk = out.proto != nullptr;
    } else {
        externProto(e);
    }
}

void Walker::route(const pugi::xml_node& e)
{
    pugi::xml_attribute from = e.attribute("fromNode"), fromField = e.attribute("fromField"),
                        to = e.attribute("toNode"), toField = e.attribute("toField");
    if (!from || !fromField || !to || !toField) {
        _builder.error(place(e), "ROUTE needs fromNode, fromField, toNode and toField");
        return;
    }
    _builder.route(text(from), text(fromField), text(to), text(toField), place(e));
}

void Walker::externProto(const pugi::xml_node& e)
{
    pugi::xml_attribute protoName = e.attribute("name"), url = e.attribute("url");
    if (!protoName || !url) {
        _builder.error(place(e), "ExternProtoDeclare needs a name and a url");
        return;
    }
    std::list<std::string> items;
    ValueText<std::string>::readList(url.value(), url.value() + std::strlen(url.value()), items);
    std::vector<std::string> urls(items.begin(), items.end());
    ProtoDeclaration* decl = _builder.beginProto(text(protoName), &urls, place(e));
    if (!decl)
        return;
    // Its interface has no values and no nodes: no walk needed.
    each(e, "field", [&](const pugi::xml_node& f) {
        _builder.addProtoField(*decl, text(f.attribute("accessType")), text(f.attribute("type")),
                               text(f.attribute("name")), nullptr, place(f));
    });
}

bool Walker::node(const pugi::xml_node& e, Frame& out)
{
    const bool instance = is(e.name(), "ProtoInstance");
    pugi::xml_attribute use = e.attribute("USE");
    if (use) {
        // A USE stands for the node: it takes containerField, and nothing else that counts.
        Node* used = _builder.use(text(use), place(e));
        for (pugi::xml_attribute a = e.first_attribute(); a; a = a.next_attribute())
            if (!isMarkupAttribute(a.name()) && !(instance && is(a.name(), "name")))
                _builder.error(place(a), std::string("attribute '") + a.name() + "' beside USE is ignored");
        if (hasElements(e))
            _builder.error(place(e), "content of a USE element is ignored");
        if (!used)
            return false;
        out = frame(e, Kind::Node, SmartPtr<Node>(used));
        out.use = true;
        return true;
    }
    std::string_view type = instance ? text(e.attribute("name")) : std::string_view(e.name());
    if (instance && type.empty()) {
        _builder.error(place(e), "ProtoInstance needs a name");
        return false;
    }
    SmartPtr<Node> created(_builder.createNode(type, text(e.attribute("DEF")), place(e)));
    if (!created)
        return false;
    fields(*created, e);
    out = frame(e, Kind::Node, created);
    return true;
}

void Walker::fields(Node& node, const pugi::xml_node& e)
{
    const bool unknown = SceneBuilder::isUnknown(node.type());
    const bool instance = is(e.name(), "ProtoInstance");
    for (pugi::xml_attribute a = e.first_attribute(); a; a = a.next_attribute()) {
        const char* name = a.name();
        if (isMarkupAttribute(name) || (instance && is(name, "name")))
            continue;
        const std::string_view value(a.value());
        if (unknown) {
            _builder.addUnknownField(node, name, value, false, place(a));
            continue;
        }
        if (Field* field = _builder.findField(node, name, place(a)))
            _builder.setValue(*field, value, place(a), true);
    }
}

bool Walker::fieldDeclaration(const pugi::xml_node& e, Frame& parent, Frame& out)
{
    const std::string_view access = text(e.attribute("accessType")), type = text(e.attribute("type")),
                           name = text(e.attribute("name"));
    pugi::xml_attribute    value = e.attribute("value");
    const bool             holdsNodes = type == "SFNode" || type == "MFNode";
    if (parent.kind == Kind::Interface) {
        ProtoDeclaration& decl = *parent.proto;
        if (holdsNodes) {
            if (!_builder.addProtoField(decl, access, type, name, nullptr, place(e)))
                return false;
            out = frame(e, Kind::Field, SmartPtr<Node>(&decl), decl.field(decl.fieldCount() - 1));
            return true;
        }
        _scratch.assign(text(value));
        _builder.addProtoField(decl, access, type, name, value ? &_scratch : nullptr, place(e));
        return false;
    }
    Field* field = _builder.addDynamicField(*parent.node, access, type, name, place(e));
    if (!field)
        return false;
    if (holdsNodes) {
        out = frame(e, Kind::Field, parent.node, field);
        return true;
    }
    if (value)
        _builder.setValue(*field, text(value), place(value), true);
    return false;
}

bool Walker::fieldValue(const pugi::xml_node& e, Frame& parent, Frame& out)
{
    Node&               node = *parent.node;
    pugi::xml_attribute name = e.attribute("name"), value = e.attribute("value");
    if (!name) {
        _builder.error(place(e), "fieldValue needs a name");
        return false;
    }
    const bool nodes = hasElements(e);
    if (SceneBuilder::isUnknown(node.type())) {
        Field* field = _builder.addUnknownField(node, text(name), text(value), nodes, place(e));
        if (field && nodes)
            out = frame(e, Kind::Field, parent.node, field);
        return field && nodes;
    }
    Field* field = _builder.findField(node, text(name), place(name));
    if (!field)
        return false;
    if (value)
        _builder.setValue(*field, text(value), place(value), true);
    if (!nodes)
        return false;
    _builder.clearNodes(*field);
    out = frame(e, Kind::Field, parent.node, field);
    return true;
}

void Walker::links(Node& node, const pugi::xml_node& isElement)
{
    if (SceneBuilder::isUnknown(node.type()))
        return;  // its fields are text; nothing to link
    each(isElement, "connect", [&](const pugi::xml_node& c) {
        pugi::xml_attribute nodeField = c.attribute("nodeField"), protoField = c.attribute("protoField");
        if (!nodeField || !protoField)
            _builder.error(place(c), "connect needs nodeField and protoField");
        else
            _builder.isLink(node, text(nodeField), text(protoField), place(c));
    });
}

void Walker::source(Frame& frame)
{
    // Adjacent text and CDATA sections make one text (a "]]>" in code splits a CDATA section).
    _scratch.clear();
    pugi::xml_node first;
    for (pugi::xml_node c = frame.element.first_child(); c; c = c.next_sibling())
        if (c.type() == pugi::node_pcdata || c.type() == pugi::node_cdata) {
            if (!first)
                first = c;
            _scratch += c.value();
        }
    _builder.addSource(*frame.node, _scratch, first ? place(first.value()) : place(frame.element));
}

void Walker::close(Frame& frame, Frame* parent)
{
    if (frame.kind == Kind::Body && frame.scoped) {
        _builder.endProto();
        return;
    }
    if (frame.kind != Kind::Node || !parent)
        return;
    if (!frame.use) {
        if (frame.is)
            links(*frame.node, frame.is);
        if (frame.text)
            source(frame);
    }
    place(*parent, *frame.node, frame.element);
}

void Walker::place(Frame& parent, Node& child, const pugi::xml_node& e)
{
    switch (parent.kind) {
    case Kind::Scene:
    case Kind::Body:
        _builder.addRoot(child, place(e));
        break;
    case Kind::Field:
        _builder.addChild(*parent.node, *parent.field, child, place(e));
        break;
    case Kind::Node:
        if (Field* field = _builder.containerField(*parent.node, child, text(e.attribute("containerField")), place(e)))
            _builder.addChild(*parent.node, *field, child, place(e));
        break;
    default:
        break;
    }
}

} // namespace

namespace {
std::atomic<std::size_t> thePieceBytes{64 * 1024};
} // namespace

std::size_t XMLReader::pieceBytes()
{
    return thePieceBytes.load(std::memory_order_relaxed);
}

void XMLReader::setPieceBytes(std::size_t bytes)
{
    thePieceBytes.store(bytes ? bytes : 1, std::memory_order_relaxed);
}

XMLReader::XMLReader(SceneBuilder& builder) : _builder(builder) {}

bool XMLReader::read(std::string& text)
{
    return Walker(_builder, text).read();
}

} // namespace Orvane
