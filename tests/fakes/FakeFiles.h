#pragma once

#include "platform/Files.h"

#include <fstream>
#include <iterator>
#include <string>

namespace korvalin {

/// Writes plainly into the file system; `DiskFull` lets every write fail, `CopyFails` only copies.
class FakeFiles : public Files {
  public:
    bool DiskFull = false;
    bool CopyFails = false;
    int CreateFoldersResult = 0;

    bool Append(const std::filesystem::path& path, std::string_view lines) override {
        return Write(path, lines, std::ios::app);
    }
    bool Replace(const std::filesystem::path& path, std::string_view content) override {
        return Write(path, content, std::ios::trunc);
    }
    bool Copy(const std::filesystem::path& from, const std::filesystem::path& to) override {
        std::error_code error;
        return !DiskFull && !CopyFails &&
               std::filesystem::copy_file(from, to, std::filesystem::copy_options::overwrite_existing, error);
    }
    int CreateFolders(const std::filesystem::path& folder) override {
        if (CreateFoldersResult != 0) return CreateFoldersResult;
        std::error_code error;
        std::filesystem::create_directories(folder, error);
        return error.value();
    }

  private:
    bool Write(const std::filesystem::path& path, std::string_view content, std::ios::openmode mode) const {
        if (DiskFull) return false;
        std::ofstream file(path, std::ios::binary | mode);
        file << content;
        return file.good();
    }
};

} // namespace korvalin
