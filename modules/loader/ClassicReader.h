#ifndef ORVANE_MODULES_LOADER_CLASSICREADER_H
#define ORVANE_MODULES_LOADER_CLASSICREADER_H

#include "modules/loader/SceneBuilder.h"

#include <string>
#include <string_view>

namespace Orvane {

// The front end for the classic encodings: VRML 2.0 (".wrl") and X3D classic (".x3dv"). It only
// tokenizes and parses; everything it finds goes to a SceneBuilder. Faults are reported through
// the builder and skipped to the next point where reading can go on.
class ORVANE_LOADER_API ClassicReader {
public:
    // Nodes, field values and prototypes nested deeper than this are an error (and skipped),
    // so that no input can exhaust the stack.
    static constexpr int MaxDepth = 200;

    explicit ClassicReader(SceneBuilder& builder);
    // Reads the whole (uncompressed) text. False when it is no classic scene at all (no header).
    bool read(std::string_view text);

private:
    enum TokenKind { EndToken, WordToken, StringToken, OpenBrace, CloseBrace, OpenBracket, CloseBracket };
    struct Token {
        TokenKind          kind = EndToken;
        std::string_view   text;
        SceneBuilder::Place place;
    };
    struct State {
        std::size_t pos;
        int         line;
        std::size_t lineStart;
    };

    // --- tokens ---
    Token next();
    Token peek();
    State save() const { return {_pos, _line, _lineStart}; }
    void  restore(const State& s) { _pos = s.pos; _line = s.line; _lineStart = s.lineStart; }
    void  skipSpace();
    bool  expect(TokenKind kind, const char* what, Token& token);
    static bool isValueWord(std::string_view word);

    // --- grammar ---
    bool  header();
    void  statement(Token first, int depth, Node* parentNode);
    SmartPtr<Node> nodeStatement(Token first, int depth);
    SmartPtr<Node> nodeBody(Token typeToken, std::string_view defName, int depth);
    void  nodeItem(Node& node, Token name, int depth);
    void  fieldValue(Node& node, Field& field, int depth);
    void  nodeValues(Node& node, Field& field, int depth);
    void  unknownField(Node& node, Token name, int depth);
    void  interfaceDeclaration(Node& node, Token access, int depth);
    void  proto(Token keyword, int depth);
    void  externProto(Token keyword);
    void  route(Token keyword);
    // The optional "AS name" of IMPORT and EXPORT; false after an error.
    bool  asName(std::string_view& out);
    void  importStatement(Token keyword);
    void  exportStatement(Token keyword);
    void  profileStatement(Token keyword);
    // Value text of a non-node field type: a bracketed list or a run of value words, or a string.
    // Returns false (after an error) when there is no value.
    bool  valueText(bool single, bool isString, std::string_view& out, SceneBuilder::Place& place);
    // A bracketed list of plain words after its '[', up to and past its ']'; false (nothing
    // consumed) when the list holds anything else.
    bool  plainList(std::string_view& out);
    // A bracketed list of plain numbers read straight into `field`; false, with nothing read,
    // when the value is anything else.
    bool  plainNumbers(Field& field);
    bool  urlList(std::vector<std::string>& urls);
    void  skipValue();
    void  skipBlock(TokenKind open, TokenKind close);
    void  unescape(std::string_view quoted, std::string& out) const;

    SceneBuilder&    _builder;
    std::string_view _src;
    std::size_t      _pos = 0;
    int              _line = 1;
    std::size_t      _lineStart = 0;
    bool             _commentSeen = false;
    bool             _peeking = false;  // a token looked at ahead reports nothing
    std::string      _scratch;
};

} // namespace Orvane

#endif
