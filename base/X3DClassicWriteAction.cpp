#include "base/X3DClassicWriteAction.h"

#include "base/NodePartDesc.h"

namespace Orvane {

void X3DClassicWriteAction::writeHeader()
{
    const SceneHeader& header = sceneHeader();
    put("#X3D V");
    put(header.x3dVersion(false));
    put(" utf8\nPROFILE ");
    put(header.x3dProfile());
    put('\n');
    for (const auto& [name, level] : header.components) {
        put("COMPONENT ");
        put(name);
        put(':');
        putInt(level);
        put('\n');
    }
    for (const std::vector<std::string>& unit : header.units) {
        put("UNIT");
        for (const std::string& word : unit) {
            put(' ');
            put(word);
        }
        put('\n');
    }
    for (const auto& [name, content] : header.meta) {
        put("META ");
        putQuoted(name);
        put(' ');
        putQuoted(content);
        put('\n');
    }
    put('\n');
}

const char* X3DClassicWriteAction::accessName(NodePartType partType) const
{
    return NodePartDesc::accessTypeName(partType);
}

} // namespace Orvane
