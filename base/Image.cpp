#include "base/Image.h"

#include "base/Log.h"
#include "platform/pordane/ibinstream.h"
#include "platform/pordane/obinstream.h"

#include <cstdio>
#include <utility>

namespace Orvane {

namespace {

bool isSeparator(char c)
{
    return c == ' ' || c == ',' || c == '\t' || c == '\n' || c == '\r' || c == '\f' || c == '\v';
}

const char* skipSeparators(const char* p)
{
    while (isSeparator(*p))
        ++p;
    return p;
}

int hexDigit(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return -1;
}

// One optionally signed decimal or "0x" hex integer at p. Not strtol: X3D decimal pixels
// with a leading 0 are not octal, and we want no errno or locale involved. The magnitude
// saturates instead of overflowing. Returns the end, or null if there is no number.
const char* parseInteger(const char* p, bool& negative, unsigned long long& magnitude)
{
    negative = false;
    if (*p == '-' || *p == '+')
        negative = *p++ == '-';
    constexpr unsigned long long limit = ~0ULL;
    magnitude = 0;
    unsigned base = 10;
    if (p[0] == '0' && (p[1] == 'x' || p[1] == 'X') && hexDigit(p[2]) >= 0) {
        base = 16;
        p += 2;
    }
    const char* digits = p;
    for (;; ++p) {
        int d = base == 16 ? hexDigit(*p) : (*p >= '0' && *p <= '9' ? *p - '0' : -1);
        if (d < 0)
            break;
        magnitude = magnitude > (limit - unsigned(d)) / base ? limit : magnitude * base + unsigned(d);
    }
    return p == digits ? nullptr : p;
}

// A header number: must fit an int.
const char* parseHeaderInt(const char* p, long long& value)
{
    bool negative;
    unsigned long long magnitude;
    const char* end = parseInteger(skipSeparators(p), negative, magnitude);
    if (!end)
        return nullptr;
    constexpr unsigned long long big = 1ULL << 40;  // far outside int, no overflow below
    long long m = (long long)(magnitude < big ? magnitude : big);
    value = negative ? -m : m;
    return end;
}

} // namespace

Image::Image(int width, int height, int components, std::vector<uint32_t> pixels)
{
    set(width, height, components, std::move(pixels));
}

bool Image::set(int width, int height, int components, std::vector<uint32_t> pixels)
{
    if (width < 0 || height < 0 || (long long)width * height > maxPixelCount) {
        ORV_WARNING("Image: invalid image size %dx%d\n", width, height);
        return false;
    }
    if (!validComponents(components)) {
        ORV_WARNING("Image: invalid number of components (%d)\n", components);
        return false;
    }
    pixels.resize(std::size_t(width) * std::size_t(height), 0u);
    _width = width;
    _height = height;
    _components = components;
    _pixels = std::move(pixels);
    return true;
}

std::string Image::toText() const
{
    std::string out;
    appendText(out);
    return out;
}

void Image::appendText(std::string& out) const
{
    char buf[48];
    int n = std::snprintf(buf, sizeof buf, "%d %d %d", _width, _height, _components);
    out.reserve(out.size() + std::size_t(n) + _pixels.size() * 9);
    out.append(buf, std::size_t(n));
    for (uint32_t px : _pixels) {
        n = std::snprintf(buf, sizeof buf, " 0x%X", unsigned(px));
        out.append(buf, std::size_t(n));
    }
}

bool Image::fromText(const char* text, const char** end)
{
    const char* p = skipSeparators(text ? text : "");
    if (end)
        *end = p;
    if (*p == '\0') {
        *this = Image();
        return true;
    }

    long long header[3];
    for (long long& h : header) {
        const char* after = parseHeaderInt(p, h);
        if (!after) {
            ORV_WARNING("Image: incomplete image header, image not read\n");
            return false;
        }
        p = after;
    }
    long long width = header[0], height = header[1], components = header[2];
    if (width < 0 || height < 0 || width > maxPixelCount || height > maxPixelCount ||
        width * height > maxPixelCount) {
        ORV_WARNING("Image: invalid image size %lldx%lld, image not read\n", width, height);
        return false;
    }
    if (components < 0 || components > 4) {
        ORV_WARNING("Image: invalid number of components (%lld), image not read\n", components);
        return false;
    }

    // Grow only with the pixels actually present, so a large header over a short text
    // allocates once at the end, within maxPixelCount.
    std::size_t count = std::size_t(width * height);
    std::vector<uint32_t> pixels;
    while (pixels.size() < count) {
        bool negative;
        unsigned long long magnitude;
        const char* after = parseInteger(skipSeparators(p), negative, magnitude);
        if (!after)
            break;
        auto value = uint32_t(magnitude);
        pixels.push_back(negative ? uint32_t(0u - value) : value);
        p = after;
    }
    if (pixels.size() < count)
        ORV_WARNING("Image: %zu of %zu pixels missing, set to 0\n", count - pixels.size(), count);
    pixels.resize(count, 0u);

    _width = int(width);
    _height = int(height);
    _components = int(components);
    _pixels = std::move(pixels);
    if (end)
        *end = p;
    return true;
}

void Image::write(const Pordane::obinstream& out) const
{
    out.reserve(out.size() + (3 + _pixels.size()) * 4);
    out << _width << _height << _components;
    for (uint32_t px : _pixels)
        out << int(px);
}

Image::BinStatus Image::read(const Pordane::ibinstream& in, int* componentsRead)
{
    int width = 0, height = 0, components = 0;
    in >> width >> height >> components;
    if (componentsRead)
        *componentsRead = components;
    if (in.fail())
        return BinStatus::Truncated;
    if (width < 0 || height < 0 || (long long)width * height > maxPixelCount)
        return BinStatus::InvalidSize;
    if (!validComponents(components))
        return BinStatus::InvalidComponents;

    std::size_t count = std::size_t(width) * std::size_t(height);
    if (in.remaining() / 4 < count)
        return BinStatus::Truncated;
    std::vector<uint32_t> pixels(count);
    for (uint32_t& px : pixels) {
        int value;
        in >> value;
        px = uint32_t(value);
    }
    if (in.fail())
        return BinStatus::Truncated;

    _width = width;
    _height = height;
    _components = components;
    _pixels = std::move(pixels);
    return BinStatus::Ok;
}

} // namespace Orvane
