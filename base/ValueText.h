#ifndef ORVANE_BASE_VALUETEXT_H
#define ORVANE_BASE_VALUETEXT_H

#include "base/Components.h"
#include "base/Image.h"
#include "base/NumberText.h"
#include "base/PCMSound.h"
#include "base/Qubit.h"

#include <array>
#include <list>
#include <string>
#include <vector>

namespace Orvane {

// A set of separator characters, looked up in one step.
class SeparatorSet {
public:
    constexpr explicit SeparatorSet(const char* chars)
    {
        for (; *chars; ++chars)
            _is[static_cast<unsigned char>(*chars)] = true;
    }
    constexpr bool operator()(char c) const { return _is[static_cast<unsigned char>(c)]; }

private:
    std::array<bool, 256> _is{};
};

// What whole-value parsing of numeric lists splits at (NUL ends the text anyway).
inline constexpr SeparatorSet valueSeparators(" \t\n\r,");
// What a fragment of a larger value is split at.
inline constexpr SeparatorSet fragmentSeparators(" ,;\t\n\r");

// The text form of one element type: SF output (printf style), MF output (stream style,
// fixed notation), reading one element, and reading a list of elements.
// The generic form serves every numeric type through its components.
template <class T>
struct ValueText {
    using C = Components<T>;
    using Scalar = typename C::Scalar;

    static void appendScalarSF(std::string& out, Scalar s)
    {
        if constexpr (std::is_same_v<Scalar, int>)
            NumberText::appendInt(out, s);
        else if constexpr (std::is_same_v<T, double>)
            NumberText::appendGeneral(out, s, 16);  // SFDouble and SFTime keep 16 digits
        else
            NumberText::appendGeneral(out, static_cast<double>(s), 6);
    }
    static void appendScalarMF(std::string& out, Scalar s)
    {
        if constexpr (std::is_same_v<Scalar, int>)
            NumberText::appendInt(out, s);
        else if constexpr (std::is_same_v<Scalar, float>)
            NumberText::appendFixed6(out, s);
        else
            NumberText::appendFixed(out, static_cast<double>(s), 6);
    }
    static Scalar parseScalar(const char* p, const char* last, const char** end)
    {
        if constexpr (std::is_same_v<Scalar, int>)
            return NumberText::parseInt(p, last, end);
        else if constexpr (std::is_same_v<Scalar, float>)
            return NumberText::toFloat(NumberText::parseDouble(p, last, end));
        else
            return NumberText::parseDouble(p, last, end);
    }

    static void writeSF(std::string& out, const T& v)
    {
        for (unsigned i = 0; i < C::count; ++i) {
            if (i)
                out += ' ';
            appendScalarSF(out, C::get(v, i));
        }
    }
    static void writeMFElement(std::string& out, const T& v)
    {
        for (unsigned i = 0; i < C::count; ++i) {
            if (i)
                out += ' ';
            appendScalarMF(out, C::get(v, i));
        }
    }

    // One element: its numbers one after the other, blanks and commas after each skipped.
    static const char* readOne(const char* p, const char* last, T& v)
    {
        for (unsigned i = 0; i < C::count; ++i) {
            const char* end = p;
            C::set(v, i, parseScalar(p, last, &end));
            p = end;
            while (p < last && (*p == ',' || *p == ' ' || *p == '\t' || *p == '\n' || *p == '\r'))
                ++p;
        }
        return p;
    }
    static void readSF(const char* p, const char* last, T& v)
    {
        v = T();
        readOne(p, last, v);
    }

    // Appends the numbers of the text, token by token, every token converted on its own;
    // a last element that lacks numbers keeps the element type's defaults in their place.
    template <class Container>
    static void readList(const char* p, const char* last, Container& out, const SeparatorSet& separators)
    {
        T element{};
        unsigned component = 0;
        for (;;) {
            while (p < last && separators(*p))
                ++p;
            if (p >= last)
                break;
            // Bounded by the token: the C parser would skip a leading vertical tab or form
            // feed and then the separators after it, reading the next token's number.
            const char* tokenEnd = p;
            while (tokenEnd < last && !separators(*tokenEnd))
                ++tokenEnd;
            const char* end = p;
            C::set(element, component, parseScalar(p, tokenEnd, &end));
            if (++component == C::count) {
                out.push_back(element);
                element = T();
                component = 0;
            }
            p = tokenEnd;
        }
        if (component)
            out.push_back(element);
    }
};

// Booleans: "TRUE"/"FALSE" out; in, by the first character, numbers by value.
template <>
struct ORVANE_API ValueText<bool> {
    static void        writeSF(std::string& out, bool v) { out += v ? "TRUE" : "FALSE"; }
    static void        writeMFElement(std::string& out, bool v) { writeSF(out, v); }
    static bool        parse(const char* p, const char* last);
    static void        readSF(const char* p, const char* last, bool& v) { v = parse(p, last); }
    static const char* readOne(const char* p, const char* last, bool& v);
    static void        readList(const char* p, const char* last, std::list<bool>& out, const SeparatorSet& separators);
};

// Strings: raw as SF; quoted and escaped as MF elements.
template <>
struct ORVANE_API ValueText<std::string> {
    static void writeSF(std::string& out, const std::string& v) { out += v; }
    static void writeMFElement(std::string& out, const std::string& v);
    static void readSF(const char* p, const char* last, std::string& v) { v.assign(p, last); }
    // Appends the quoted runs of the text; a text without quotes is one element.
    static void readList(const char* p, const char* last, std::list<std::string>& out);
    static void readList(const char* p, const char* last, std::list<std::string>& out, const SeparatorSet&)
    {
        readList(p, last, out);
    }
    // One quoted run at p (or the rest of the text without quotes); returns the end.
    static const char* readOne(const char* p, const char* last, std::string& v);
};

template <>
struct ORVANE_API ValueText<Image> {
    static void        writeSF(std::string& out, const Image& v) { v.appendText(out); }
    static void        writeMFElement(std::string& out, const Image& v) { v.appendText(out); }
    static void        readSF(const char* p, const char* last, Image& v);
    static const char* readOne(const char* p, const char* last, Image& v);
    static void        readList(const char* p, const char* last, std::list<Image>& out, const SeparatorSet&);
};

template <>
struct ORVANE_API ValueText<Qubit> {
    static void        writeSF(std::string& out, const Qubit& v) { v.appendText(out); }
    static void        writeMFElement(std::string& out, const Qubit& v) { v.appendText(out); }
    static void        readSF(const char* p, const char* last, Qubit& v);
    static const char* readOne(const char* p, const char* last, Qubit& v);
    static void        readList(const char* p, const char* last, std::list<Qubit>& out, const SeparatorSet&);
};

// A sound as "channels sampleRate sampleCount sample…".
template <>
struct ORVANE_API ValueText<PCMSound> {
    static void        writeSF(std::string& out, const PCMSound& v);
    static void        readSF(const char* p, const char* last, PCMSound& v);
};

// Lists of elements, ", " between them unless told otherwise.
template <class T, class Container>
void writeList(std::string& out, const Container& values, const char* separator = ", ")
{
    bool first = true;
    for (const auto& v : values) {
        if (!first)
            out += separator;
        first = false;
        ValueText<T>::writeMFElement(out, v);
    }
}

} // namespace Orvane

#endif
