#ifndef ORVANE_BASE_BUILTINFIELDTYPES_H
#define ORVANE_BASE_BUILTINFIELDTYPES_H

#include "base/FieldType.h"

namespace Orvane {

// Registers the field types of the library, in a fixed order: the MF names, then the SF names,
// then "XFAny", alphabetically within each group. "XFAny" therefore comes last and is the
// single-value entry of the base type Any.
class BuiltinFieldTypes {
public:
    static void registerAll();
    // Calls the init() of every concrete field class.
    static void initAll();

private:
    // Registers field class F (whose create and constructor this class may reach).
    template <class F>
    static void add(BaseType baseType, const char* name, bool multi);
};

} // namespace Orvane

#endif
