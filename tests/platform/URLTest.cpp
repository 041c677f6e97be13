// URLs: parts, local files, references resolved against a base, reading local files.
#include "platform/pordane/URL.h"
#include "tests/support/LogCapture.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <unistd.h>
#include <utility>
#include <vector>

using Pordane::URL;

TEST(URL, SplitsIntoGenericParts)
{
    URL url("HTTP://user:pw@Example.com:8080/a/b.wrl?x=1&y#view");
    ASSERT_TRUE(url.valid());
    EXPECT_EQ(url.scheme(), "http");
    EXPECT_EQ(url.authority(), "user:pw@Example.com:8080");
    EXPECT_EQ(url.userInfo(), "user:pw");
    EXPECT_EQ(url.host(), "Example.com");
    EXPECT_EQ(url.port(), 8080);
    EXPECT_EQ(url.path(), "/a/b.wrl");
    EXPECT_EQ(url.query(), "x=1&y");
    EXPECT_EQ(url.fragment(), "view");
    EXPECT_FALSE(url.isLocal());
    EXPECT_EQ(url.localPath(), "");

    URL v6("http://[::1]:81/");
    EXPECT_EQ(v6.host(), "::1");
    EXPECT_EQ(v6.port(), 81);

    URL mail("mailto:someone@example.com");
    EXPECT_EQ(mail.scheme(), "mailto");
    EXPECT_FALSE(mail.hasAuthority());
    EXPECT_EQ(mail.path(), "someone@example.com");

    // A colon after the first slash is no scheme separator.
    URL relative("dir/a:b.wrl");
    EXPECT_TRUE(relative.isRelative());
    EXPECT_EQ(relative.path(), "dir/a:b.wrl");

    EXPECT_EQ(URL("http://h:/p").port(), -1);
    EXPECT_FALSE(URL("http://h:8x/p").valid());
    EXPECT_FALSE(URL("http://h:70000/p").valid());
    EXPECT_FALSE(URL("http://[::1/p").valid());
}

TEST(URL, StrGivesBackWhatWasParsed)
{
    for (const char* text : {"http://a/b/c/d;p?q", "http://a?", "http://a#", "http://a", "//host/p", "file:///tmp/x",
                             "file:x.wrl", "scene.wrl#vp", "?q", "", "urn:x3d:a:b"})
        EXPECT_EQ(URL(text).str(), text) << text;
}

TEST(URL, TellsLocalFilesApart)
{
    struct Case {
        const char* url;
        const char* path;  // empty: not local
    };
    const Case cases[] = {
        {"/tmp/a b.wrl", "/tmp/a b.wrl"},
        {"scene.wrl#Viewpoint1", "scene.wrl"},
        {"a%20b.wrl", "a%20b.wrl"},  // a plain path is taken as it is
        {"file:///tmp/a%20b.wrl", "/tmp/a b.wrl"},
        {"FILE://localhost/x/y.wrl", "/x/y.wrl"},
        {"file:/x/y.wrl", "/x/y.wrl"},
        {"file:///bad%zzescape", "/bad%zzescape"},
        {"file://server/share/y.wrl", ""},
        {"http://example.com/y.wrl", ""},
        {"//host/y.wrl", ""},
        {"", ""},
    };
    for (const Case& c : cases) {
        URL url(c.url);
        EXPECT_EQ(url.localPath(), c.path) << c.url;
        EXPECT_EQ(url.isLocal(), *c.path != 0) << c.url;
    }
}

TEST(URL, ResolvesReferencesAgainstABase)
{
    // From the worked examples of the generic URI syntax, normal and abnormal.
    const URL base("http://a/b/c/d;p?q");
    const std::vector<std::pair<const char*, const char*>> cases = {
        {"g:h", "g:h"},
        {"./g", "http://a/b/c/g"},
        {"g/", "http://a/b/c/g/"},
        {"/g", "http://a/g"},
        {"//g", "http://g"},
        {"?y", "http://a/b/c/d;p?y"},
        {"#s", "http://a/b/c/d;p?q#s"},
        {"g?y#s", "http://a/b/c/g?y#s"},
        {";x", "http://a/b/c/;x"},
        {"", "http://a/b/c/d;p?q"},
        {".", "http://a/b/c/"},
        {"..", "http://a/b/"},
        {"../g", "http://a/b/g"},
        {"../../", "http://a/"},
        {"../../../../g", "http://a/g"},
        {"/./g", "http://a/g"},
        {"/../g", "http://a/g"},
        {"g.", "http://a/b/c/g."},
        {"..g", "http://a/b/c/..g"},
        {"./g/.", "http://a/b/c/g/"},
        {"g/../h", "http://a/b/c/h"},
        {"g;x=1/../y", "http://a/b/c/y"},
        {"g?y/../x", "http://a/b/c/g?y/../x"},
        {"g#s/./x", "http://a/b/c/g#s/./x"},
        {"http:g", "http:g"},
    };
    for (const auto& [reference, expected] : cases)
        EXPECT_EQ(base.resolve(reference).str(), expected) << "reference " << reference;

    EXPECT_EQ(base.resolve("//g:90/x").port(), 90);
    EXPECT_EQ(URL("http://a").resolve("g").str(), "http://a/g");  // empty base path with authority
}

TEST(URL, ResolvesAgainstPlainPathsAndFileURLs)
{
    const URL scene("/home/user/worlds/scene.wrl");
    EXPECT_EQ(scene.resolve("textures/wood.png").str(), "/home/user/worlds/textures/wood.png");
    EXPECT_EQ(scene.resolve("../other.wrl#vp").localPath(), "/home/user/other.wrl");
    EXPECT_EQ(URL("scene.wrl").resolve("inline.wrl").str(), "inline.wrl");
    URL fileURL = URL("file:///home/user/scene.wrl").resolve("my%20tex.png");
    EXPECT_EQ(fileURL.str(), "file:///home/user/my%20tex.png");
    EXPECT_EQ(fileURL.localPath(), "/home/user/my tex.png");
}

TEST(URL, ReadsLocalFiles)
{
    Orvane::Test::LogCapture log;
    const std::string content("#VRML V2.0 utf8\n\0binary\xff", 24);
    const std::string path =
        (std::filesystem::temp_directory_path() / ("orvane url test " + std::to_string(getpid()) + ".wrl")).string();
    std::ofstream(path, std::ios::binary) << content;

    std::string read;
    EXPECT_TRUE(URL(path).readFile(read));
    EXPECT_EQ(read, content);
    read.clear();
    EXPECT_TRUE(URL("file://" + path).readFile(read));  // spaces unescaped are tolerated
    EXPECT_EQ(read, content);
    std::filesystem::remove(path);

    read = "stale";
    EXPECT_FALSE(URL(path).readFile(read));
    EXPECT_EQ(read, "");
    EXPECT_FALSE(URL("http://example.com/x.wrl").readFile(read));
    EXPECT_FALSE(URL::readLocalFile(std::filesystem::temp_directory_path().string(), read));  // a folder
    EXPECT_TRUE(log.containsFragment("is not a local file"));
}
