#include "base/ValueBinary.h"

#include "base/Log.h"

namespace Orvane {

namespace {

// Components 1 to 4; 0 only where there is nothing to describe.
bool binaryComponents(int components, std::size_t pixelCount)
{
    return (components >= 1 && components <= 4) || (components == 0 && pixelCount == 0);
}

} // namespace

bool ValueBinary<Image>::encode(const Pordane::obinstream& out, const Image& v, const char* className)
{
    if (!binaryComponents(v.components(), v.pixelCount())) {
        ORV_WARNING("%s::getBinValue(): Invalid component (%i)\n", className, v.components());
        return false;
    }
    v.write(out);
    return true;
}

bool ValueBinary<Image>::decode(const Pordane::ibinstream& in, Image& v, const char* className)
{
    Image image;
    int components = 0;
    Image::BinStatus status = image.read(in, &components);
    if (status == Image::BinStatus::InvalidComponents ||
        (status == Image::BinStatus::Ok && !binaryComponents(components, image.pixelCount()))) {
        ORV_WARNING("%s::setValueByBin(): Invalid number of components (%i)\n", className, components);
        return false;
    }
    if (status != Image::BinStatus::Ok)
        return false;
    v = std::move(image);
    return true;
}

} // namespace Orvane
