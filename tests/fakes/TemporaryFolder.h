#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <string_view>

namespace korvalin {

/// A folder for one test, removed at its end.
class TemporaryFolder {
  public:
    TemporaryFolder() {
        // A test that was killed may have left its own behind.
        std::string name = std::filesystem::temp_directory_path() / "korvalin-test-XXXXXX";
        path_ = mkdtemp(name.data());
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::filesystem::path& Path() const { return path_; }
    std::filesystem::path operator/(std::string_view name) const { return path_ / name; }

    std::filesystem::path Write(const std::filesystem::path& name, std::string_view content) const {
        std::ofstream(path_ / name, std::ios::binary) << content;
        return path_ / name;
    }
    std::string Read(const std::filesystem::path& name) const {
        std::ifstream file(path_ / name, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    /// Writes over a part of a file.
    void Overwrite(const std::filesystem::path& name, std::streamoff from, std::string_view bytes) const {
        std::fstream(path_ / name, std::ios::binary | std::ios::in | std::ios::out).seekp(from) << bytes;
    }
    /// The paths of what lies in it.
    std::set<std::filesystem::path> Entries() const {
        const std::filesystem::directory_iterator all(path_);
        return {begin(all), end(all)};
    }

  private:
    std::filesystem::path path_;
};

} // namespace korvalin
