#ifndef ORVANE_MODULES_LOADER_PLAINLIST_H
#define ORVANE_MODULES_LOADER_PLAINLIST_H

namespace Orvane {

class Field;

// The common shape of a long numeric list, plain numbers and separators up to a closing
// bracket, read in one pass straight into a multi-value field. Anything else (a comment, a
// sign the number parser treats specially, a malformed number, an incomplete last element) is
// left to the full path, which reads and reports it; the fast path then changes nothing.
class PlainList {
public:
    // Reads [p, last) up to `close` (to `last` when `close` is NUL) into `field`, a multi-value
    // field of numbers, and processes the change as a text setter does; returns where the list
    // ended, or null when it is not plain or the field holds no numbers.
    static const char* read(Field& field, const char* p, const char* last, char close);
};

} // namespace Orvane

#endif
