#ifndef ORVANE_MODULES_X3D_X3DCATALOG_H
#define ORVANE_MODULES_X3D_X3DCATALOG_H

#include "base/NodePartDesc.h"
#include "base/SmartPtr.h"
#include "modules/x3d/X3DExport.h"

#include <string>
#include <unordered_map>
#include <vector>

namespace Orvane {

class Node;
class NodeType;
class NodeTypeNameSpace;

// The node types of the X3D standard (its 260 concrete and 72 abstract node types and its 6
// abstract object types) with their fields, defaults, ranges, allowed child types and components,
// registered as native types from the generated catalog table. The core declares none of them;
// an application that wants them calls init() once, before or after System::init.
class ORVANE_X3D_API X3DCatalog {
public:
    // Registers every catalog type in `nameSpace`, which must see the core's "Node" and
    // "MetadataObject", and completes them. The catalog owns the types and their descriptors and
    // unregisters them when it is destroyed.
    explicit X3DCatalog(NodeTypeNameSpace& nameSpace);
    ~X3DCatalog();
    X3DCatalog(const X3DCatalog&) = delete;
    X3DCatalog& operator=(const X3DCatalog&) = delete;

    // The process-wide catalog in the base namespace of native types, made on the first call.
    static X3DCatalog& init();

    NodeTypeNameSpace& nameSpace() const { return *_nameSpace; }
    // Types that did not complete (each one logged); 0 for a sound catalog.
    int                failures() const { return _failures; }
    // Every catalog type, in table order: abstract object types, abstract node types, concrete.
    const std::vector<SmartPtr<NodeType>>& types() const { return _types; }
    unsigned concreteTypeCount() const;
    unsigned abstractNodeTypeCount() const;
    unsigned abstractObjectTypeCount() const;

    // What the node type has no member for; null, 0 for a type that is not from this catalog.
    // The containerField default is where the X3D XML encoding puts a node in its parent.
    const char* containerField(const NodeType& type) const;
    int         componentLevel(const NodeType& type) const;

    // VRML97 defaults where they differ from X3D, for loaders of VRML97 files: the text of one
    // (null when the field has the same default in both), and the setting of all of a node's.
    static const char* vrml97Default(const std::string& typeName, const std::string& fieldName);
    // Sets every field of `node` whose VRML97 default differs to that default; the count set.
    static int         applyVrml97Defaults(Node& node);

private:
    NodeTypeNameSpace*                          _nameSpace;
    int                                         _failures = 0;
    std::vector<NodePartDesc>                   _descs;  // every own descriptor, one block per type
    std::vector<SmartPtr<NodeType>>             _types;
    std::unordered_map<const NodeType*, unsigned> _index;  // type -> table row
};

} // namespace Orvane

#endif
