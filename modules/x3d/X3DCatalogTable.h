#ifndef ORVANE_MODULES_X3D_X3DCATALOGTABLE_H
#define ORVANE_MODULES_X3D_X3DCATALOGTABLE_H

#include "base/FieldType.h"
#include "base/NodePart.h"

// The facts of the X3D node catalog as plain constant data, generated into X3DCatalogTable.cpp
// by scripts/generate-x3d-catalog. Each type lists only the fields it adds to its parent's, in
// the standard's order; fields that come from an additional parent are the type's own here.
namespace Orvane::X3DTable {

enum TypeKind : unsigned char { AbstractObject, AbstractNode, Concrete };

struct FieldFact {
    const char*      name;
    NodePartType     access;
    NodePartDataType type;
    const char*      defaultValue;  // classic text form, as the field's text setter reads it
    const char*      valueType;     // "[0,1]" style range, or allowed node types separated by '|'
};

struct TypeFact {
    const char* name;
    TypeKind    kind;
    const char* parent;          // a catalog type, or the core's "Node" / "MetadataObject"
    const char* additional;      // further parents separated by '|', or ""
    const char* component;
    int         level;
    const char* containerField;  // concrete types only
    unsigned    firstField;      // index of the type's first own field in `fields`
    unsigned    fieldCount;
};

extern const FieldFact fields[];
extern const TypeFact  types[];
extern const unsigned  fieldCount;
extern const unsigned  typeCount;

} // namespace Orvane::X3DTable

#endif
