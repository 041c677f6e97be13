// Every test scene, read and written in each X3D encoding, reads back into the same scene, and
// the second write gives the bytes of the first.
#include "base/X3DClassicWriteAction.h"
#include "base/X3DWriteAction.h"
#include "modules/loader/SceneLoader.h"
#include "tests/loader/SceneSupport.h"
#include "tests/support/LogCapture.h"
#include "tests/support/X3DDocuments.h"

#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <tuple>

using namespace Orvane;
using namespace Orvane::Test;

namespace {

std::string writeAs(bool xml, Node& root)
{
    std::unique_ptr<WriteAction> writer;
    if (xml)
        writer = std::make_unique<X3DWriteAction>();
    else
        writer = std::make_unique<X3DClassicWriteAction>();
    std::ostringstream out;
    EXPECT_TRUE(SceneLoader::write(root, *writer, out));
    if (xml)
        Documents::the().keep(out.str());
    return out.str();
}

class RoundTrip : public ::testing::TestWithParam<std::tuple<const char*, bool>> {};

TEST_P(RoundTrip, WrittenSceneReadsBackTheSame)
{
    LogCapture  log;
    const auto& [file, xml] = GetParam();
    LoadedScene first = SceneLoader::load(data(file));
    ASSERT_TRUE(first.readable());
    ASSERT_TRUE(first.errors.empty());
    const std::string once = writeAs(xml, *first.root);
    LoadedScene second = SceneLoader::loadData(once, data(file));
    ASSERT_TRUE(second.readable());
    for (const LoadError& e : second.errors)
        ADD_FAILURE() << e.line << ":" << e.column << ": " << e.message << "\n" << once;
    EXPECT_EQ(shape(*second.root), shape(*first.root));
    EXPECT_EQ(second.header.profile, first.header.profile.empty() ? "Immersive" : first.header.profile);
    EXPECT_EQ(second.header.components, first.header.components);
    EXPECT_EQ(writeAs(xml, *second.root), once);
}

INSTANTIATE_TEST_SUITE_P(Scenes, RoundTrip,
                         ::testing::Combine(::testing::Values("classic-all.wrl", "classic-x3d.x3dv", "protos.wrl",
                                                             "both.x3dv", "xml-nodes.x3d", "xml-protos.x3d",
                                                             "xml-script.x3d", "both.x3d", "inline-host.x3dv",
                                                             "inline-host.x3d"),
                                            ::testing::Bool()));

// One scene written for the tests in both encodings reads into the same scene and header, and
// writes the same text in every encoding.
TEST(RoundTrip, OneSceneInBothEncodingsReadsAndWritesTheSame)
{
    LogCapture  log;
    LoadedScene classic = SceneLoader::load(data("both.x3dv"));
    LoadedScene xml = SceneLoader::load(data("both.x3d"));
    ASSERT_TRUE(classic.readable() && xml.readable());
    EXPECT_TRUE(classic.errors.empty() && xml.errors.empty());
    EXPECT_EQ(shape(*xml.root), shape(*classic.root));
    EXPECT_EQ(xml.header.profile, classic.header.profile);
    EXPECT_EQ(xml.header.components, classic.header.components);
    EXPECT_EQ(xml.header.meta, classic.header.meta);
    EXPECT_EQ(write(*xml.root), write(*classic.root));
    EXPECT_EQ(writeAs(false, *xml.root), writeAs(false, *classic.root));
    EXPECT_EQ(writeAs(true, *xml.root), writeAs(true, *classic.root));
}

} // namespace
