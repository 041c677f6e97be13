#ifndef ORVANE_BASE_X3DCLASSICWRITEACTION_H
#define ORVANE_BASE_X3DCLASSICWRITEACTION_H

#include "base/VRMLWriteAction.h"

namespace Orvane {

// Writes a scene in the X3D classic encoding (.x3dv): the header line "#X3D V4.0 utf8" (or
// the version of the scene header, see WriteAction::setSceneHeader), the PROFILE, COMPONENT,
// UNIT and META statements, the X3D access words (initializeOnly, inputOnly, outputOnly,
// inputOutput) in declarations, and otherwise the classic syntax of VRMLWriteAction.
//
//     X3DClassicWriteAction writer;
//     writer.setSceneHeader(scene.header);  // optional: profile "Immersive", version 4.0
//     writer.writeFile(root, "scene.x3dv");
class ORVANE_API X3DClassicWriteAction : public VRMLWriteAction {
public:
    explicit X3DClassicWriteAction(const double& timeStamp = 0.0) : VRMLWriteAction(timeStamp) {}

    // Each EXPORT and IMPORT line at the level of its scope, and no indentation without one.
    void writeExports(NodeNameSpace& nameSpace) override { writeExportLines(nameSpace, true); }
    void writeImports(Node& node) override { writeImportLines(node, true); }

protected:
    void        writeHeader() override;
    const char* accessName(NodePartType partType) const override;
};

} // namespace Orvane

#endif
