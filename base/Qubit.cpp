#include "base/Qubit.h"

#include "base/NumberText.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace Orvane {

namespace {

bool isSeparator(char c)
{
    return c == ' ' || c == ',' || c == '\t' || c == '\n' || c == '\r';
}

const char* skipSeparators(const char* p)
{
    while (isSeparator(*p))
        ++p;
    return p;
}

} // namespace

void Qubit::unset()
{
    _alpha = _beta = Amplitude();
    _set = false;
}

void Qubit::set(const Amplitude& alpha, const Amplitude& beta)
{
    _alpha = alpha;
    _beta = beta;
    _set = true;
}

bool Qubit::operator==(const Qubit& other) const
{
    if (_set != other._set)
        return false;
    return !_set || (_alpha == other._alpha && _beta == other._beta);
}

std::string Qubit::toText() const
{
    std::string out;
    appendText(out);
    return out;
}

void Qubit::appendText(std::string& out) const
{
    if (!_set) {
        out += "UNSET";
        return;
    }
    // "%g" in the C locale, whatever the process locale says.
    const double parts[4] = {_alpha.real(), _alpha.imag(), _beta.real(), _beta.imag()};
    for (int i = 0; i < 4; ++i) {
        if (i)
            out += ' ';
        NumberText::appendGeneral(out, parts[i], 6);
    }
}

bool Qubit::fromText(const char* text, const char** end)
{
    const char* p = skipSeparators(text ? text : "");
    if (*p == '\0') {
        unset();
        if (end)
            *end = p;
        return true;
    }
    if (std::strncmp(p, "UNSET", 5) == 0 && (p[5] == '\0' || isSeparator(p[5]))) {
        unset();
        if (end)
            *end = p + 5;
        return true;
    }

    double v[4] = {0.0, 0.0, 0.0, 0.0};
    for (int i = 0; i < 4; ++i) {
        const char* after = p;
        double d = NumberText::parseDouble(p, &after);
        if (after == p) {
            if (i == 0) {
                if (end)
                    *end = p;
                return false;
            }
            break;
        }
        v[i] = d;
        p = i < 3 ? skipSeparators(after) : after;
    }
    set(Amplitude(v[0], v[1]), Amplitude(v[2], v[3]));
    if (end)
        *end = p;
    return true;
}

} // namespace Orvane
