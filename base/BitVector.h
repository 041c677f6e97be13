#ifndef ORVANE_BASE_BITVECTOR_H
#define ORVANE_BASE_BITVECTOR_H

namespace Orvane {

// A set of bits in one machine word: the part masks of nodes and descriptors.
template <class Word>
class BitVector {
public:
    constexpr BitVector() = default;
    constexpr explicit BitVector(Word bits) : _bits(bits) {}

    static constexpr BitVector bit(unsigned index) { return BitVector(Word(1) << index); }

    constexpr Word value() const { return _bits; }
    constexpr bool empty() const { return _bits == 0; }
    constexpr bool any() const { return _bits != 0; }
    constexpr bool test(BitVector other) const { return (_bits & other._bits) != 0; }
    constexpr bool contains(BitVector other) const { return (_bits & other._bits) == other._bits; }

    constexpr BitVector& set(BitVector other)
    {
        _bits |= other._bits;
        return *this;
    }
    constexpr BitVector& clear(BitVector other)
    {
        _bits &= ~other._bits;
        return *this;
    }
    constexpr void reset() { _bits = 0; }

    constexpr BitVector operator|(BitVector other) const { return BitVector(_bits | other._bits); }
    constexpr BitVector operator&(BitVector other) const { return BitVector(_bits & other._bits); }
    constexpr BitVector& operator|=(BitVector other) { return set(other); }
    constexpr bool operator==(const BitVector&) const = default;

private:
    Word _bits = 0;
};

using PartMask = BitVector<unsigned long long>;

} // namespace Orvane

#endif
