#ifndef ORVANE_BASE_NODELAYOUT_H
#define ORVANE_BASE_NODELAYOUT_H

#include <cstdint>
#include <vector>

namespace Orvane {

class FieldType;

// Where the declared fields and the default processor of a type's nodes sit in the block after
// the node object. A layout never changes once made: a type that lays its nodes out anew keeps
// the old layout for the nodes built with it.
struct NodeLayout {
    static constexpr std::uint32_t NoPlace = ~0u;

    // Per part ID: the field's offset in the area (NoPlace for a field made on the heap) and
    // its field type (null for a part without field).
    std::vector<std::uint32_t>    fieldOffsets;
    std::vector<const FieldType*> fieldTypes;
    std::uint32_t                 procOffset = NoPlace;
    std::uint32_t                 areaSize = 0;
    // Every part that holds a field has its place, and there are at most 64 parts: a node
    // finds its declared fields from the offsets and keeps no part table.
    bool placesAll = false;

    bool operator==(const NodeLayout&) const = default;
};

} // namespace Orvane

#endif
