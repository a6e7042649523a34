#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

namespace zuvo::tests {

/// A fresh, empty folder of the test's own, removed with everything in it at destruction.
class TemporaryFolder {
public:
    TemporaryFolder() {
        auto pattern = (std::filesystem::temp_directory_path() / "zuvo-test-XXXXXX").string();
        if (mkdtemp(pattern.data()) == nullptr)
            throw std::runtime_error("No folder could be made as " + pattern);
        m_path = pattern;
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    /// Absolute, without a "/" at its end.
    [[nodiscard]] const std::string& path() const { return m_path; }

    /// The path of something in the folder; "a/b" lies in a sub-folder.
    [[nodiscard]] std::string operator/(const std::string& name) const { return m_path + "/" + name; }

    /// Writes a file, with the sub-folders in its name, and returns its path.
    std::string write(const std::string& name, const std::string& bytes) const {
        const auto path = *this / name;
        std::filesystem::create_directories(std::filesystem::path(path).parent_path());
        std::ofstream file(path, std::ios::binary);
        file << bytes;
        if (!file.flush())
            throw std::runtime_error("Cannot write " + path);
        return path;
    }

    /// Makes a sub-folder and returns its path.
    std::string makeFolder(const std::string& name) const {
        std::filesystem::create_directories(*this / name);
        return *this / name;
    }

    /// The bytes of a file; throws if there is none.
    [[nodiscard]] std::string read(const std::string& name) const {
        std::ifstream file(*this / name, std::ios::binary);
        if (!file)
            throw std::runtime_error("Cannot read " + (*this / name));
        return {std::istreambuf_iterator<char>(file), {}};
    }

private:
    std::string m_path;
};

} // namespace zuvo::tests
