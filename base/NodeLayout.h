#ifndef ORVANE_BASE_NODELAYOUT_H
#define ORVANE_BASE_NODELAYOUT_H

#include "base/OrvaneExport.h"

#include <atomic>
#include <cstdint>
#include <string>
#include <vector>

namespace Orvane {

class FieldType;
class Node;
class NodePartDesc;

// Where the declared fields and the default processor of a type's nodes sit in the block after
// the node object, and the fields' default values. A layout never changes once made: a type
// that lays its nodes out anew keeps the old layout for the nodes built with it.
class ORVANE_API NodeLayout {
public:
    static constexpr std::uint32_t NoPlace = ~0u;

    NodeLayout() = default;
    NodeLayout(const NodeLayout&) = delete;
    NodeLayout& operator=(const NodeLayout&) = delete;
    ~NodeLayout();

    // Per part ID: the field's offset in the area (NoPlace for a field made on the heap), its
    // field type (null for a part without field) and its default text.
    std::vector<std::uint32_t>    fieldOffsets;
    std::vector<const FieldType*> fieldTypes;
    std::vector<std::string>      defaultTexts;
    // The descriptor of the field at each 8-byte step of the area (null between fields): a
    // field in the block finds its descriptor from its place.
    std::vector<NodePartDesc*>    slotDescs;
    std::uint32_t                 procOffset = NoPlace;
    std::uint32_t                 areaSize = 0;
    // What the area's start must be aligned to: the most any part placed in it asks for. The
    // area follows the node object at the next such boundary, not at the allocator's.
    std::uint32_t                 areaAlign = alignof(void*);
    // The parts whose fields a node makes only on first use, on the heap: the two every node
    // inherits, which few nodes ever set.
    std::uint64_t                 onDemand = 0;
    // Every part that holds a field has its place or is made on demand, and there are at most
    // 64 parts: a node finds its declared fields from the offsets and keeps no part table.
    bool placesAll = false;

    bool madeOnDemand(std::size_t id) const { return id < 64 && ((onDemand >> id) & 1u); }

    bool sameAs(const NodeLayout& other) const;

    // Per part ID, the default value read once from its text (see FieldType's default value
    // methods), null where the field reads its text itself. Made on the first call, by fields
    // that `owner` lends its name to while they read.
    const void* const* defaultValues(Node& owner) const;

private:
    mutable std::atomic<void**> _defaults{nullptr};
};

} // namespace Orvane

#endif
