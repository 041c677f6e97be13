#include "modules/loader/SceneLoader.h"

#include "base/Context.h"
#include "base/Log.h"
#include "base/MFNode.h"
#include "base/MFString.h"
#include "base/NodeNameSpace.h"
#include "base/Observer.h"
#include "base/ProtoLibrary.h"
#include "base/SFString.h"
#include "base/Subject.h"
#include "base/WriteAction.h"
#include "modules/loader/ClassicReader.h"
#include "modules/loader/XMLReader.h"
#include "platform/pordane/URL.h"

#include <zlib.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <list>
#include <sstream>
#include <ostream>

namespace Orvane {

bool SceneLoader::isGzip(const std::string& content)
{
    return content.size() >= 2 && static_cast<unsigned char>(content[0]) == 0x1f &&
           static_cast<unsigned char>(content[1]) == 0x8b;
}

bool SceneLoader::isXml(std::string_view content)
{
    std::size_t i = content.substr(0, 3) == "\xEF\xBB\xBF" ? 3 : 0;  // a UTF-8 byte order mark
    for (;;) {
        while (i < content.size() && (content[i] == ' ' || content[i] == '\t' || content[i] == '\r' || content[i] == '\n'))
            ++i;
        if (content.compare(i, 4, "<!--") != 0)
            break;
        std::size_t end = content.find("-->", i + 4);
        if (end == std::string_view::npos)
            return false;
        i = end + 3;
    }
    const std::string_view rest = content.substr(std::min(i, content.size()));
    return rest.substr(0, 5) == "<?xml" || rest.substr(0, 4) == "<X3D" || rest.substr(0, 9) == "<!DOCTYPE";
}

bool SceneLoader::inflate(std::string& content)
{
    if (!isGzip(content))
        return true;
    z_stream stream{};
    if (inflateInit2(&stream, 16 + MAX_WBITS) != Z_OK)
        return false;
    std::string out;
    out.resize(content.size() * 4 + 4096);
    stream.next_in = reinterpret_cast<Bytef*>(content.data());
    stream.avail_in = static_cast<uInt>(content.size());
    int status = Z_OK;
    while (status == Z_OK) {
        if (stream.total_out == out.size()) {
            if (out.size() >= MaxInflatedSize) {
                ORV_WARNING("Compressed scene expands beyond %zu bytes; refused\n", MaxInflatedSize);
                break;
            }
            out.resize(std::min(out.size() * 2, MaxInflatedSize));
        }
        stream.next_out = reinterpret_cast<Bytef*>(out.data() + stream.total_out);
        stream.avail_out = static_cast<uInt>(out.size() - stream.total_out);
        status = ::inflate(&stream, Z_NO_FLUSH);
        // Concatenated gzip members are read on.
        if (status == Z_STREAM_END && stream.avail_in > 0 && inflateReset(&stream) == Z_OK)
            status = Z_OK;
    }
    const bool good = status == Z_STREAM_END;
    out.resize(stream.total_out);
    inflateEnd(&stream);
    if (good)
        content.swap(out);
    return good;
}

bool SceneLoader::readFile(const std::string& url, std::string& content, std::string* reason)
{
    content.clear();
    Pordane::URL      location(url);
    const std::string path = location.isLocal() ? location.localPath() : std::string();
    std::error_code   error;
    const auto        status = std::filesystem::status(path, error);
    const char*       why = nullptr;
    if (path.empty())
        why = "is no local file";
    else if (!std::filesystem::exists(status))
        why = "does not exist";
    else if (!std::filesystem::is_regular_file(status))
        why = "is no regular file";
    else if (std::filesystem::file_size(path, error) > MaxInflatedSize)
        why = "is too large";
    else if (!Pordane::URL::readLocalFile(path, content))
        why = "cannot be read";
    else if (!inflate(content))
        why = "holds broken or too large gzip data";
    if (!why)
        return true;
    content.clear();
    if (reason)
        *reason = why;
    else
        ORV_WARNING("%s %s\n", url.c_str(), why);
    return false;
}

bool SceneLoader::readScene(SceneBuilder& builder, std::string& data)
{
    return isXml(data) ? XMLReader(builder).read(data) : ClassicReader(builder).read(data);
}

LoadedScene SceneLoader::loadData(std::string data, const std::string& url, const LoadOptions& options)
{
    LoadedScene scene;
    if (!inflate(data)) {
        scene.errors.push_back({url, 0, 0, "broken gzip data"});
        ORV_WARNING("%s: broken gzip data\n", url.c_str());
        return scene;
    }
    SceneBuilder builder(url);
    builder.setInlineLoading(options.loadInlines);
    const bool read = readScene(builder, data);
    // Finishing reads the inlined files, whose faults join the scene's.
    SmartPtr<Node> root = builder.finish();
    scene.header = builder.header();
    scene.errors = builder.errors();
    if (read)
        scene.root = root;
    return scene;
}

LoadedScene SceneLoader::load(const std::string& url, const LoadOptions& options)
{
    std::string data;
    if (!Pordane::URL(url).readFile(data)) {
        LoadedScene scene;
        scene.errors.push_back({url, 0, 0, "cannot read the file"});
        return scene;
    }
    return loadData(std::move(data), url, options);
}

SceneHeader SceneLoader::header(const Node& root)
{
    SceneHeader header;
    auto text = [&](const char* name) {
        auto* field = dynamic_cast<const SFString*>(root.findField(std::string(name)));
        return field ? field->value() : std::string();
    };
    auto list = [&](const char* name) {
        auto* field = dynamic_cast<const MFString*>(root.findField(std::string(name)));
        return field ? field->value() : std::list<std::string>();
    };
    header.encoding = text("encoding");
    header.version = text("version");
    header.charset = "utf8";
    header.profile = text("profile");
    for (const std::string& component : list("components")) {
        auto colon = component.rfind(':');
        if (colon != std::string::npos)
            header.components.emplace_back(component.substr(0, colon), std::atoi(component.c_str() + colon + 1));
    }
    for (const std::string& unit : list("units")) {
        std::istringstream words(unit);
        std::vector<std::string> parts(3);
        if (words >> parts[0] >> parts[1] >> parts[2])
            header.units.push_back(std::move(parts));
    }
    for (const NodeNameSpace::MetaData& meta : root.nameSpace().metaDataVec())
        header.meta.emplace_back(meta.name, meta.content);
    return header;
}

bool SceneLoader::write(Node& root, WriteAction& writer, std::ostream& out)
{
    auto* children = dynamic_cast<MFNode*>(root.findField(std::string("children")));
    writer.setSceneHeader(header(root));
    writer.begin(out, "");
    writer.writePrototypes(root.nameSpace());
    // A prototype instance at the top is written as itself unless the writer resolves them.
    for (unsigned i = 0, n = children ? children->size() : 0; i < n; ++i) {
        const NodeLink& link = children->elem(static_cast<int>(i));
        if (Node* node = writer.resolveProto() ? link.node() : link.directNode())
            writer.writeNode(*node);
    }
    writer.writeExports(root.nameSpace());
    writer.end();
    return static_cast<bool>(out);
}

namespace {

void loadContextCallback(const double&, Observer*, BaseObject* a, BaseObject*, BaseObject*, const void*)
{
    auto* request = dynamic_cast<Context::LoadRequest*>(a);
    if (!request || request->context)
        return;
    LoadedScene scene = request->data.empty() ? SceneLoader::load(request->url)
                                              : SceneLoader::loadData(request->data, request->url);
    if (!scene.root)
        return;
    SmartPtr<Context> context(Context::create());
    context->addRoot(*scene.root);
    context->setSourceUrl(request->url);
    request->context = context;
}

SmartPtr<NodeNameSpace> resolvePrototypes(const std::string& url)
{
    if (!Pordane::URL(url).isLocal())
        return {};
    // The namespace keeps its prototypes; the scene's own nodes, and so its inlines, are not
    // needed.
    LoadedScene scene = SceneLoader::load(url, LoadOptions{false});
    if (!scene.root)
        return {};
    return SmartPtr<NodeNameSpace>(&scene.root->nameSpace());
}

// Registered while the library is loaded, taken back when it is unloaded.
struct Registration {
    Observer observer{"ClassicSceneLoader"};
    int      resolverID = 0;
    Registration()
    {
        observer.addCallback(&loadContextCallback);
        observer.setSubject(&Context::loadContextSubject());
        resolverID = ProtoLibrary::the().addResolver(&resolvePrototypes);
    }
    ~Registration()
    {
        observer.setSubject(nullptr);
        ProtoLibrary::the().removeResolver(resolverID);
    }
};

Registration& registration()
{
    static Registration r;
    return r;
}

[[maybe_unused]] const bool registeredAtLoad = (registration(), true);

} // namespace

void SceneLoader::init()
{
    registration();
}

} // namespace Orvane
