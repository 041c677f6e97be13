// EXTERNPROTO through the prototype library: resolvers, the scene cache, unresolved declarations.
#include "tests/protos/ProtoKit.h"

#include <string>
#include <vector>

using namespace Orvane;
using namespace Orvane::Test;

namespace {

struct ProtoLibraryTest : ProtoKit {
    std::vector<std::string> asked;
    int                      resolver = ProtoLibrary::the().addResolver([this](const std::string& url) {
        asked.push_back(url);
        SmartPtr<NodeNameSpace> lib;
        if (url == "mem://lib/shapes.wrl") {
            lib = new NodeNameSpace("shapes", &scope.nodes());
            declareBox(*lib);
        }
        return lib;
    });

    ~ProtoLibraryTest() override
    {
        ProtoLibrary::the().removeResolver(resolver);
        ProtoLibrary::the().clear();
    }

    ProtoDeclaration* declareExtern(const char* name, std::vector<std::string> urls)
    {
        ProtoDeclaration* d = ProtoDeclaration::declareExtern(*scene, name, urls);
        d->addField("inputOnly", "SFFloat", "setIn");
        d->addField("inputOutput", "SFFloat", "both", "9");  // no value in an external interface
        d->addField("outputOnly", "SFFloat", "changed");
        return d;
    }
};

} // namespace

TEST_F(ProtoLibraryTest, AnExternalPrototypeBehavesAsThePrototypeItNames)
{
    ProtoDeclaration* ext = declareExtern("MyBox", {"missing.wrl#Box", "../shapes.wrl#Box"});
    ext->setSource("mem://lib/scenes/main.wrl", 3);
    EXPECT_EQ(ext->externName(), "Box");
    LogCapture log;
    SmartPtr<Node> a = make(*scene, "MyBox", "A0");
    ASSERT_TRUE(a);
    EXPECT_EQ(asked, (std::vector<std::string>{"mem://lib/scenes/missing.wrl", "mem://lib/shapes.wrl"}));
    SmartPtr<NodeNameSpace> lib = ProtoLibrary::the().scene("mem://lib/shapes.wrl");
    ASSERT_TRUE(lib);
    NodeType& box = *lib->nodeTypeNameSpace().firstProto();
    EXPECT_EQ(ext->resolved(), box.protoDeclaration());
    EXPECT_EQ(lib->nodeTypeNameSpace().protoLibrary(), &ProtoLibrary::the());

    // The named prototype's values and body, through the external interface.
    EXPECT_FLOAT_EQ(sf(*a, "both"), 1.5f);
    EXPECT_TRUE(a->findField("both")->valueIsDefault());
    EXPECT_EQ(a->findField("size"), nullptr);
    SmartPtr<Node> source = make(*scene, "Value", "S");
    ASSERT_TRUE(scene->createRoute("S", "f", "A0", "setIn"));
    setF(*source, "f", 2.0f);
    EXPECT_FLOAT_EQ(sf(*body(a, "V"), "in"), 2.0f);
    setF(*body(a, "V"), "out", 3.0f);
    EXPECT_FLOAT_EQ(sf(*a, "changed"), 3.0f);
    EXPECT_TRUE(a->type().isA(box));
    EXPECT_TRUE(a->type().isA(value));
    EXPECT_EQ(dynamic_cast<ProtoInstance::Proc&>(*a->proc()).sourceLine(), 3);

    // The scene is loaded once; its prototypes used here go through an alias of a library type.
    log.clear();
    asked.clear();
    ProtoDeclaration* again = declareExtern("Other", {"mem://lib/shapes.wrl"});
    ASSERT_TRUE(again->resolve());
    EXPECT_TRUE(asked.empty());
    EXPECT_EQ(again->resolved(), box.protoDeclaration());
    SmartPtr<Node> direct(box.createNode(scene.get(), nullptr));
    EXPECT_TRUE(log.contains("Proto Alias Box: Link Libray Type\n", LOG_INFO));

    // A reload forgets the scenes; what was resolved stays resolved.
    ProtoLibrary::the().clear();
    EXPECT_EQ(ProtoLibrary::the().sceneCount(), 0u);
    EXPECT_EQ(lib->nodeTypeNameSpace().protoLibrary(), nullptr);
    SmartPtr<Node> b = make(*scene, "MyBox");
    EXPECT_TRUE(body(b, "V"));
}

TEST_F(ProtoLibraryTest, AnUnresolvedExternalPrototypeKeepsItsInterface)
{
    ProtoDeclaration* ghost = declareExtern("Ghost", {"mem://nowhere.wrl#Ghost", "mem://lib/shapes.wrl#Nothing"});
    LogCapture log;
    SmartPtr<Node> g = make(*scene, "Ghost");
    ASSERT_TRUE(g);
    EXPECT_TRUE(log.contains("EXTERNPROTO Ghost: no PROTO Nothing in mem://lib/shapes.wrl\n", LOG_WARNING));
    EXPECT_TRUE(log.contains("Can not resolve EXTERNPROTO Ghost: no URL answered\n", LOG_WARNING));
    EXPECT_TRUE(log.contains("Ghost Proto without body\n", LOG_WARNING));
    EXPECT_FALSE(ghost->resolved());
    EXPECT_EQ(g->partCount(), 3u);
    EXPECT_FLOAT_EQ(sf(*g, "both"), 0.0f);
    EXPECT_EQ(instance(g).firstNode(), nullptr);
    EXPECT_FALSE(g->type().isA(value));

    // Asked once: the next instance does not ask again.
    log.clear();
    make(*scene, "Ghost");
    EXPECT_FALSE(log.containsFragment("Can not resolve"));
}
