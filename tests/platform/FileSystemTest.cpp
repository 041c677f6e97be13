// Folders, the file locator, system information and shared libraries.
#include "platform/tessil/Dir.h"
#include "platform/tessil/DynamicLibrary.h"
#include "platform/tessil/FileLocator.h"
#include "platform/tessil/SysInfo.h"
#include "tests/support/LogCapture.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <unistd.h>

namespace fs = std::filesystem;
using namespace Tessil;

namespace {

// A fresh folder under the system's temporary folder, removed with everything in it.
class TempFolder {
public:
    TempFolder()
    {
        static int serial = 0;
        _path = fs::temp_directory_path() /
                ("orvane-platform-" + std::to_string(getpid()) + "-" + std::to_string(++serial));
        fs::create_directories(_path);
    }
    ~TempFolder()
    {
        std::error_code error;
        fs::remove_all(_path, error);
    }
    std::string path(const std::string& relative = std::string()) const
    {
        return relative.empty() ? _path.string() : (_path / relative).string();
    }
    void touch(const std::string& relative) const { std::ofstream(_path / relative) << "x"; }

private:
    fs::path _path;
};

} // namespace

TEST(Dir, CreatesNestedFoldersAndListsSortedFilteredNames)
{
    TempFolder temp;
    EXPECT_TRUE(Dir::create(temp.path("a/b/c")));
    EXPECT_TRUE(Dir::exists(temp.path("a/b/c")));
    EXPECT_TRUE(Dir::create(temp.path("a/b/c")));  // already there is fine
    temp.touch("z.cdf");
    temp.touch("m.cdf");
    temp.touch("readme.txt");
    EXPECT_TRUE(Dir::isFile(temp.path("readme.txt")));
    EXPECT_FALSE(Dir::exists(temp.path("readme.txt")));
    EXPECT_FALSE(Dir::isFile(temp.path("a")));

    std::vector<std::string> names;
    ASSERT_TRUE(Dir::list(temp.path(), names));
    EXPECT_EQ(names, (std::vector<std::string>{"a", "m.cdf", "readme.txt", "z.cdf"}));
    ASSERT_TRUE(Dir::list(temp.path(), names, Dir::FILES, ".cdf"));
    EXPECT_EQ(names, (std::vector<std::string>{"m.cdf", "z.cdf"}));
    ASSERT_TRUE(Dir::list(temp.path(), names, Dir::DIRECTORIES));
    EXPECT_EQ(names, (std::vector<std::string>{"a"}));

    EXPECT_FALSE(Dir::list(temp.path("missing"), names));
    EXPECT_TRUE(names.empty());
    EXPECT_FALSE(Dir::list(temp.path("readme.txt"), names));

    Orvane::Test::LogCapture log;
    EXPECT_FALSE(Dir::create(temp.path("readme.txt/sub")));  // a file in the way
    EXPECT_FALSE(Dir::create(""));
    EXPECT_TRUE(log.containsFragment("Dir::create(): could not create"));
}

TEST(FileLocator, FindsTheFirstMatchInSearchOrder)
{
    TempFolder temp;
    Dir::create(temp.path("one"));
    Dir::create(temp.path("two"));
    Dir::create(temp.path("two/sub"));
    temp.touch("one/shared.wrl");
    temp.touch("two/shared.wrl");
    temp.touch("two/only.wrl");
    temp.touch("two/sub/deep.wrl");

    FileLocator locator;
    EXPECT_EQ(locator.find("shared.wrl"), "");  // no search folders, no implicit working folder
    locator.addPathList("::" + temp.path("one") + ":" + temp.path("two") + ":" + temp.path("one"));
    EXPECT_EQ(locator.paths(), (std::vector<std::string>{temp.path("one"), temp.path("two")}));

    EXPECT_EQ(locator.find("shared.wrl"), temp.path("one/shared.wrl"));
    EXPECT_EQ(locator.find("only.wrl"), temp.path("two/only.wrl"));
    EXPECT_EQ(locator.find("sub/deep.wrl"), temp.path("two/sub/deep.wrl"));
    EXPECT_EQ(locator.find(temp.path("two/only.wrl")), temp.path("two/only.wrl"));
    for (const std::string& nothing : {std::string("sub") /* a folder */, std::string("missing.wrl"), std::string(),
                                       temp.path("two/nothing.wrl")})
        EXPECT_EQ(locator.find(nothing), "") << nothing;

    locator.clearPaths();
    EXPECT_TRUE(locator.paths().empty());
    EXPECT_EQ(locator.find("only.wrl"), "");
}

TEST(SysInfo, ReportsTheMachineAndKeepsTheArguments)
{
    SysInfo& info = SysInfo::the();
    EXPECT_GE(info.processorCount(), 1u);
    // A null argument is skipped.
    const char* argv[] = {"viewer", "scene.wrl", nullptr, "-fullscreen"};
    info.setArguments(4, argv);
    EXPECT_EQ(info.argumentCount(), 3);
    EXPECT_EQ(info.programName(), "viewer");
    EXPECT_EQ(info.argument(2), "-fullscreen");
    EXPECT_EQ(info.argument(3), "");
    EXPECT_EQ(info.argument(-1), "");
    info.setArguments({});
    EXPECT_EQ(info.programName(), "");

    std::string value;
    setenv("ORVANE_PLATFORM_TEST_VAR", "on", 1);
    EXPECT_TRUE(SysInfo::environment("ORVANE_PLATFORM_TEST_VAR", value));
    EXPECT_EQ(value, "on");
    unsetenv("ORVANE_PLATFORM_TEST_VAR");
    EXPECT_FALSE(SysInfo::environment("ORVANE_PLATFORM_TEST_VAR", value));
}

TEST(DynamicLibrary, OpensALibraryFindsAFunctionAndReportsWhatWentWrong)
{
    Orvane::Test::LogCapture log;
    DynamicLibrary           library;
    EXPECT_EQ(library.symbol("abs"), nullptr);
    EXPECT_FALSE(library.error().empty());
    EXPECT_FALSE(library.open("liborvane-no-such-library.so"));
    EXPECT_FALSE(library.isOpen());
    EXPECT_NE(library.error().find("liborvane-no-such-library.so"), std::string::npos);
    EXPECT_TRUE(log.containsFragment("DynamicLibrary::open()"));

    DynamicLibrary libc;
    ASSERT_TRUE(libc.open("libc.so.6")) << libc.error();
    EXPECT_TRUE(libc.isOpen());
    auto absolute = libc.function<int (*)(int)>("abs");
    ASSERT_NE(absolute, nullptr);
    EXPECT_EQ(absolute(-3), 3);
    EXPECT_TRUE(libc.error().empty());

    DynamicLibrary moved(std::move(libc));
    EXPECT_FALSE(libc.isOpen());
    EXPECT_TRUE(moved.isOpen());
    EXPECT_EQ(moved.path(), "libc.so.6");
    EXPECT_EQ(moved.symbol("orvane_no_such_symbol"), nullptr);
    EXPECT_NE(moved.error().find("orvane_no_such_symbol"), std::string::npos);
    EXPECT_TRUE(moved.close());
    EXPECT_FALSE(moved.close());
}
