#ifndef ORVANE_TESTS_SUPPORT_X3DDOCUMENTS_H
#define ORVANE_TESTS_SUPPORT_X3DDOCUMENTS_H

// Every X3D XML document a test run writes is kept and, when the run ends, all of them are
// validated against the X3D 4.0 schema in one xmllint call (loading the schema takes seconds).
// Without the schema or xmllint the check is skipped with a message.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>
#include <vector>

namespace Orvane::Test {

class Documents : public ::testing::Environment {
public:
    static Documents& the()
    {
        static Documents* documents = static_cast<Documents*>(::testing::AddGlobalTestEnvironment(new Documents));
        return *documents;
    }

    void keep(const std::string& text)
    {
        if (_dir.empty()) {
            _dir = std::filesystem::temp_directory_path() / ("orvane-x3d-" + std::to_string(::getpid()));
            std::filesystem::create_directories(_dir);
        }
        std::string path = (_dir / ("doc" + std::to_string(_files.size()) + ".x3d")).string();
        std::ofstream(path, std::ios::binary) << text;
        _files.push_back(path);
    }

    void TearDown() override
    {
        if (_files.empty())
            return;
        if (!std::filesystem::exists(ORVANE_X3D_SCHEMA) || std::system("command -v xmllint >/dev/null") != 0) {
            std::printf("X3D schema (%s) or xmllint not found: %zu written documents not validated\n",
                        ORVANE_X3D_SCHEMA, _files.size());
        } else {
            std::string log = (_dir / "xmllint.log").string();
            std::string command = "xmllint --noout --nonet --schema '" + std::string(ORVANE_X3D_SCHEMA) + "'";
            for (const std::string& file : _files)
                command += " '" + file + "'";
            if (std::system((command + " 2>'" + log + "'").c_str()) != 0) {
                std::ifstream in(log);
                ADD_FAILURE() << "written X3D is not valid:\n" << in.rdbuf();
            }
        }
        std::filesystem::remove_all(_dir);
    }

private:
    std::filesystem::path    _dir;
    std::vector<std::string> _files;
};

} // namespace Orvane::Test

#endif
