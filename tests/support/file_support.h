#ifndef ZAVBASE_TESTS_SUPPORT_FILE_SUPPORT_H
#define ZAVBASE_TESTS_SUPPORT_FILE_SUPPORT_H

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

/// A folder of the running test's own, empty at first and gone with the object.
class TestFolder {
public:
    TestFolder() {
        const testing::TestInfo& test = *testing::UnitTest::GetInstance()->current_test_info();
        const std::filesystem::path name = std::filesystem::temp_directory_path() /
                                           (std::string("zavbase-") + test.test_suite_name() + "-" + test.name());
        // The same test may run in two programs or two lanes at once.
        for (int i = 0; mPath.empty() || !std::filesystem::create_directory(mPath); ++i)
            (mPath = name) += "-" + std::to_string(i);
    }
    ~TestFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(mPath, ignored);
    }
    TestFolder(const TestFolder&) = delete;
    TestFolder& operator=(const TestFolder&) = delete;

    std::string Path(const std::string& name = "") const { return (mPath / name).string(); }
    int FileCount() const {
        std::filesystem::directory_iterator first(mPath);
        return static_cast<int>(std::distance(begin(first), end(first)));
    }

private:
    std::filesystem::path mPath;
};

inline std::string FileText(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

inline void PutFile(const std::string& path, const std::string& text) {
    std::ofstream(path, std::ios::binary) << text;
}

#endif
