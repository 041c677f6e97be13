#include "base/SceneGraphBackend.h"

#include <gtest/gtest.h>

using namespace Orvane;

namespace {

class RecordingBackend : public SceneGraphBackend {
public:
    bool init(int argc, char**) override
    {
        ++inits;
        lastArgc = argc;
        return false;
    }
    void exit() override { ++exits; }

    int inits = 0;
    int exits = 0;
    int lastArgc = -1;
};

// Puts the default back even when an assertion leaves the test early.
struct RestoreDefault {
    ~RestoreDefault() { SceneGraphBackend::install(nullptr); }
};

} // namespace

TEST(SceneGraphBackend, InstallReplacesAndNullRestoresTheDefault)
{
    RestoreDefault     restore;
    SceneGraphBackend& standard = SceneGraphBackend::the();
    EXPECT_TRUE(standard.init(0, nullptr));

    RecordingBackend recording;
    SceneGraphBackend::install(&recording);
    EXPECT_EQ(&SceneGraphBackend::the(), &recording);
    EXPECT_FALSE(SceneGraphBackend::the().init(3, nullptr));
    SceneGraphBackend::the().exit();
    EXPECT_EQ(recording.inits, 1);
    EXPECT_EQ(recording.lastArgc, 3);
    EXPECT_EQ(recording.exits, 1);

    SceneGraphBackend::install(nullptr);
    EXPECT_EQ(&SceneGraphBackend::the(), &standard);
}
