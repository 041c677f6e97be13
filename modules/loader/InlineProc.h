#ifndef ORVANE_MODULES_LOADER_INLINEPROC_H
#define ORVANE_MODULES_LOADER_INLINEPROC_H

#include "base/Node.h"
#include "base/NodeProc.h"
#include "base/SmartPtr.h"
#include "modules/loader/LoaderExport.h"

#include <string>

namespace Orvane {

// The processor of an Inline node that the loader took on: it holds the inlined scene (its
// "SceneRoot" node, and through it the scene's namespace) for as long as the node lives, so
// that IMPORT statements of the including scene reach the exports of the inlined one. Each
// Inline holds a scene of its own, even when two name the same file. The inlined scene follows
// the Inline node's state. Writers write the node itself (its url), never the inlined scene,
// which is a document of its own.
class ORVANE_LOADER_API InlineProc : public NodeProc {
public:
    InlineProc(Node& node, SmartPtr<Node> scene);

    // The root of the inlined scene. Where no file was read, the scene is empty but for
    // stand-ins of the nodes that routes through IMPORTs from it reach.
    Node* scene() const { return _scene.get(); }
    // The file the scene was read from, as resolved from the url; empty where none was read.
    const std::string& file() const { return _file; }
    void               setFile(std::string file) { _file = std::move(file); }

    // The inline processor of `node`; null when it is no Inline the loader took on.
    static InlineProc* of(const Node& node);

    NodeNameSpace* ownNameSpace() const override;
    bool           ownsDocument() const override { return true; }
    std::string    info() const override;

    void initialize(const double& time) override { follow(time); }
    void attach(const double& time) override { follow(time); }
    void detach(const double& time) override { follow(time); }
    void shutdown(const double& time) override { follow(time); }
    void dispose(const double& time) override { follow(time); }

private:
    void follow(const double& time);

    SmartPtr<Node> _scene;
    std::string    _file;
};

} // namespace Orvane

#endif
