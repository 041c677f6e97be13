#ifndef ORVANE_BASE_VALUEBINARY_H
#define ORVANE_BASE_VALUEBINARY_H

#include "base/Components.h"
#include "base/Image.h"
#include "platform/pordane/ibinstream.h"
#include "platform/pordane/obinstream.h"

#include <bit>
#include <cstddef>
#include <list>
#include <string>
#include <type_traits>
#include <vector>

namespace Orvane {

// The binary form of one element type, through the Pordane streams: one stream value per
// scalar component in component order (a rotation as axis x, y, z and angle, a matrix in
// storage order); bool, int, float, double and string as themselves.
//   supported: whether the type has a binary form at all;
//   minSize:   the fewest bytes one element takes, which bounds how many elements a string
//              of some length can hold;
//   packed:    the elements lie in memory exactly as the stream writes them, so a vector of
//              them is copied in one block.
// encode/decode take the field's class name for types whose values can be refused (images).
template <class T>
struct ValueBinary {
    static constexpr bool supported = false;
};

template <class T>
concept HasComponents = requires { Components<T>::count; };

// encode/decode of the types whose every value has a binary form: write and read.
template <class T, class Self>
struct StreamedBinary {
    static bool encode(const Pordane::obinstream& out, const T& v, const char*)
    {
        Self::write(out, v);
        return true;
    }
    static bool decode(const Pordane::ibinstream& in, T& v, const char*)
    {
        Self::read(in, v);
        return true;
    }
};

template <HasComponents T>
struct ValueBinary<T> : StreamedBinary<T, ValueBinary<T>> {
    using C = Components<T>;
    using Scalar = typename C::Scalar;
    static constexpr bool        supported = true;
    static constexpr std::size_t minSize = C::count * sizeof(Scalar);
    static constexpr bool packed = std::endian::native == std::endian::little && sizeof(T) == minSize &&
                                   std::is_trivially_copyable_v<T>;

    static void write(const Pordane::obinstream& out, const T& v)
    {
        for (unsigned i = 0; i < C::count; ++i)
            out << C::get(v, i);
    }
    static void read(const Pordane::ibinstream& in, T& v)
    {
        for (unsigned i = 0; i < C::count; ++i) {
            Scalar s;
            in >> s;
            C::set(v, i, s);
        }
    }
};

// bool and string: one stream value each.
template <class T>
struct PlainValueBinary : StreamedBinary<T, PlainValueBinary<T>> {
    static constexpr bool        supported = true;
    static constexpr std::size_t minSize = std::is_same_v<T, bool> ? 1 : 4;
    static constexpr bool        packed = false;

    static void write(const Pordane::obinstream& out, const T& v) { out << v; }
    static void read(const Pordane::ibinstream& in, T& v) { in >> v; }
};
template <>
struct ValueBinary<bool> : PlainValueBinary<bool> {};
template <>
struct ValueBinary<std::string> : PlainValueBinary<std::string> {};

// An image as width, height, components and its pixels. Components 1 to 4 are written, and
// 0 only for an image without pixels; anything else is refused with the field's class name.
// A decoded image replaces the value only when it was read whole.
template <>
struct ORVANE_API ValueBinary<Image> {
    static constexpr bool        supported = true;
    static constexpr std::size_t minSize = 12;
    static constexpr bool        packed = false;

    static bool encode(const Pordane::obinstream& out, const Image& v, const char* className);
    static bool decode(const Pordane::ibinstream& in, Image& v, const char* className);
};

// Whole fields: a single value alone, a list as its int count and then its elements.
template <class T>
struct FieldBinary {
    using Binary = ValueBinary<T>;

    static std::string encodeOne(const T& v, const char* className)
    {
        Pordane::obinstream out(Binary::minSize);
        if (!Binary::encode(out, v, className))
            return std::string();
        return out.take();
    }

    static void decodeOne(const std::string& data, T& v, const char* className)
    {
        Pordane::ibinstream in{std::string_view(data)};
        Binary::decode(in, v, className);
    }

    template <class Container>
    static std::string encodeList(const Container& values, const char* className)
    {
        Pordane::obinstream out(4 + values.size() * Binary::minSize);
        out << static_cast<int>(values.size());
        if constexpr (Binary::packed && std::is_same_v<Container, std::vector<T>>) {
            out.write(values.data(), values.size() * sizeof(T));
        } else {
            for (const T& v : values)
                Binary::encode(out, v, className);
        }
        return out.take();
    }

    // The count is cut to what the bytes after it can hold, so a corrupt count cannot make us
    // allocate without bound. Past the data's end the stream delivers zeros, so a final
    // partial element is completed with them.
    template <class Container>
    static void decodeList(const std::string& data, Container& values, const char* className)
    {
        Pordane::ibinstream in{std::string_view(data)};
        int stated = 0;
        in >> stated;
        std::size_t count = stated > 0 ? static_cast<std::size_t>(stated) : 0;
        std::size_t whole = in.remaining() / Binary::minSize;
        std::size_t fits = whole + (in.remaining() % Binary::minSize ? 1 : 0);
        if (count > fits)
            count = fits;
        if constexpr (std::is_same_v<Container, std::vector<T>>) {
            values.resize(count);
            std::size_t i = 0;
            if constexpr (Binary::packed) {
                i = count < whole ? count : whole;
                in.read(values.data(), i * sizeof(T));
            }
            for (; i < count; ++i)
                Binary::decode(in, values[i], className);
        } else {
            values.clear();
            for (std::size_t i = 0; i < count; ++i) {
                values.emplace_back();
                Binary::decode(in, values.back(), className);
            }
        }
    }
};

} // namespace Orvane

#endif
