#include "base/ValueText.h"

#include <cmath>

namespace Orvane {

// --- bool ---

bool ValueText<bool>::parse(const char* p, const char* last)
{
    if (p >= last)
        return false;
    switch (*p) {
    case 'F': case 'N': case 'f': case 'n':
        return false;
    case 'T': case 'Y': case 't': case 'y':
        return true;
    default:
        break;
    }
    if (!((*p >= '0' && *p <= '9') || *p == '-' || *p == '.'))
        return false;
    const char* end = p;
    double value = NumberText::parseDouble(p, last, &end);
    return value != 0.0 || std::isnan(value);
}

const char* ValueText<bool>::readOne(const char* p, const char* last, bool& v)
{
    v = parse(p, last);
    while (p < last && !valueSeparators(*p))
        ++p;
    return p;
}

void ValueText<bool>::readList(const char* p, const char* last, std::list<bool>& out, const SeparatorSet& separators)
{
    for (;;) {
        while (p < last && separators(*p))
            ++p;
        if (p >= last)
            break;
        const char* token = p;
        while (p < last && !separators(*p))
            ++p;
        out.push_back(parse(token, p));
    }
}

// --- string ---

void ValueText<std::string>::writeMFElement(std::string& out, const std::string& v)
{
    out += '"';
    for (char c : v) {
        if (c == '\\' || c == '"')
            out += '\\';
        out += c;
    }
    out += '"';
}

const char* ValueText<std::string>::readOne(const char* p, const char* last, std::string& v)
{
    v.clear();
    while (p < last && *p != '"' && *p != '\'')
        ++p;
    if (p >= last)
        return last;
    // Only the opening quote character closes the run; a backslash escapes a quote or a
    // backslash and is kept before anything else.
    char quote = *p++;
    while (p < last && *p != quote) {
        if (*p == '\\' && p + 1 < last && (p[1] == '"' || p[1] == '\'' || p[1] == '\\'))
            ++p;
        v += *p++;
    }
    return p < last ? p + 1 : last;
}

void ValueText<std::string>::readList(const char* p, const char* last, std::list<std::string>& out)
{
    bool quoted = false;
    for (const char* q = p; q < last; ++q)
        if (*q == '"' || *q == '\'') {
            quoted = true;
            break;
        }
    if (!quoted) {
        // An empty text holds no element, so that an empty list reads back as empty.
        if (p < last)
            out.emplace_back(p, last);
        return;
    }
    for (;;) {
        while (p < last && *p != '"' && *p != '\'')
            ++p;
        if (p >= last)
            break;
        std::string element;
        p = readOne(p, last, element);
        out.push_back(std::move(element));
    }
}

// --- image ---

void ValueText<Image>::readSF(const char* p, const char*, Image& v)
{
    v = Image();
    v.fromText(p);
}

const char* ValueText<Image>::readOne(const char* p, const char* last, Image& v)
{
    const char* end = last;
    v = Image();
    v.fromText(p, &end);
    return end;
}

void ValueText<Image>::readList(const char* p, const char* last, std::list<Image>& out, const SeparatorSet& separators)
{
    for (;;) {
        while (p < last && separators(*p))
            ++p;
        if (p >= last)
            break;
        Image image;
        const char* end = readOne(p, last, image);
        if (end <= p)
            break;
        out.push_back(std::move(image));
        p = end;
    }
}

// --- qubit ---

void ValueText<Qubit>::readSF(const char* p, const char*, Qubit& v)
{
    v = Qubit();
    v.fromText(p);
}

const char* ValueText<Qubit>::readOne(const char* p, const char* last, Qubit& v)
{
    const char* end = last;
    v = Qubit();
    v.fromText(p, &end);
    return end;
}

void ValueText<Qubit>::readList(const char* p, const char* last, std::list<Qubit>& out, const SeparatorSet& separators)
{
    for (;;) {
        while (p < last && separators(*p))
            ++p;
        if (p >= last)
            break;
        Qubit qubit;
        const char* end = readOne(p, last, qubit);
        if (end <= p)
            break;
        out.push_back(qubit);
        p = end;
    }
}

// --- sound ---

void ValueText<PCMSound>::writeSF(std::string& out, const PCMSound& v)
{
    NumberText::appendInt(out, v.channels());
    out += ' ';
    NumberText::appendInt(out, v.sampleRate());
    out += ' ';
    NumberText::appendInt(out, static_cast<long long>(v.samples().size()));
    for (std::int16_t sample : v.samples()) {
        out += ' ';
        NumberText::appendInt(out, sample);
    }
}

void ValueText<PCMSound>::readSF(const char* p, const char* last, PCMSound& v)
{
    v = PCMSound();
    const char* end = p;
    int channels = NumberText::parseInt(p, last, &end);
    p = end;
    int rate = NumberText::parseInt(p, last, &end);
    p = end;
    long count = NumberText::parseInt(p, last, &end);
    p = end;
    std::vector<std::int16_t> samples;
    // The count cannot promise more samples than the text has room for.
    if (count > 0)
        samples.reserve(static_cast<std::size_t>(std::min<long>(count, (last - p + 1) / 2)));
    for (long i = 0; i < count && p < last; ++i) {
        int sample = NumberText::parseInt(p, last, &end);
        if (end == p)
            break;
        samples.push_back(static_cast<std::int16_t>(sample));
        p = end;
    }
    v.setChannels(channels);
    v.setSampleRate(rate);
    v.setSamples(std::move(samples));
}

} // namespace Orvane
