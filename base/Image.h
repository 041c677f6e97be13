#ifndef ORVANE_BASE_IMAGE_H
#define ORVANE_BASE_IMAGE_H

#include "base/OrvaneExport.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace Pordane {
class obinstream;
class ibinstream;
} // namespace Pordane

namespace Orvane {

// The value of an SFImage: width × height pixels, each one packed integer as X3D writes it
// (for 3 components 0xRRGGBB, for 4 0xRRGGBBAA, for 1 the grey value), rows from the bottom.
// pixels().size() is always width × height, and components is always 0 to 4.
class ORVANE_API Image {
public:
    // Upper bound on width × height (4096 × 4096), so that a corrupt header in text or
    // binary input cannot make us allocate without bound.
    static constexpr long long maxPixelCount = 1LL << 24;

    Image() = default;  // "0 0 0"
    // An invalid size or component count is logged and leaves the default image.
    Image(int width, int height, int components, std::vector<uint32_t> pixels = {});

    // Replaces the value; pixels are padded with 0 or cut to width × height. Logs and
    // returns false (value unchanged) for a negative or too large size or for a
    // component count outside 0..4.
    bool set(int width, int height, int components, std::vector<uint32_t> pixels = {});

    int width() const { return _width; }
    int height() const { return _height; }
    int components() const { return _components; }

    std::size_t                  pixelCount() const { return _pixels.size(); }
    const std::vector<uint32_t>& pixels() const { return _pixels; }
    // Row y from the bottom, column x; not range-checked.
    uint32_t pixel(int x, int y) const { return _pixels[std::size_t(y) * std::size_t(_width) + std::size_t(x)]; }
    void setPixel(int x, int y, uint32_t value) { _pixels[std::size_t(y) * std::size_t(_width) + std::size_t(x)] = value; }

    bool operator==(const Image&) const = default;

    static bool validComponents(int components) { return components >= 0 && components <= 4; }

    // Text form: "width height components" followed by one " 0x..." per pixel, hex digits in
    // upper case without leading zeros ("2 1 3 0xFF0000 0x0").
    std::string toText() const;
    void        appendText(std::string& out) const;

    // Reads the text form at the start of text: three integers, then the pixels, decimal
    // or hex ("0x"), optionally signed (wrapped to 32 bits), separated by any white space
    // or commas. Pixels missing from the text become 0 (logged). A null or blank text gives
    // the default image. A missing header, a negative or too large size or a component count
    // outside 0..4 is logged and leaves the image unchanged (false).
    // *end, when given, receives the position after the last character read, so that
    // several images can be read one after the other.
    bool fromText(const char* text, const char** end = nullptr);

    // Binary form: int width, int height, int components, then each pixel as an int.
    void write(const Pordane::obinstream& out) const;

    enum class BinStatus { Ok, Truncated, InvalidSize, InvalidComponents };
    // Reads the binary form. On any failure the image is left unchanged and nothing is
    // logged, so that the caller can report it in its own words; *components, when given,
    // receives the component count read. The pixels are only allocated once the stream is
    // known to hold them all.
    BinStatus read(const Pordane::ibinstream& in, int* components = nullptr);

private:
    int                   _width = 0;
    int                   _height = 0;
    int                   _components = 0;
    std::vector<uint32_t> _pixels;
};

} // namespace Orvane

#endif
