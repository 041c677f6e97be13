#ifndef ORVANE_BASE_BUILTINFIELDTYPES_H
#define ORVANE_BASE_BUILTINFIELDTYPES_H

namespace Orvane {

// Registers the field types of the library, in a fixed order: the MF names, then the SF names,
// then "XFAny", alphabetically within each group. "XFAny" therefore comes last and is the
// single-value entry of the base type Any.
class BuiltinFieldTypes {
public:
    static void registerAll();
    // Calls the init() of every concrete field class.
    static void initAll();
};

} // namespace Orvane

#endif
