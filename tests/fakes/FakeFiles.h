#pragma once

#include "platform/Files.h"

#include <cerrno>
#include <fstream>
#include <iterator>
#include <string>

namespace korvalin {

/// Writes plainly into the file system; `DiskFull` lets every write fail, `CopyFails` only copies, as on a
/// full disk.
class FakeFiles : public Files {
  public:
    bool DiskFull = false;
    bool CopyFails = false;
    int CreateFoldersResult = 0;
    int DurableResult = 0; ///< what AppendLines fails with
    bool Foreign = false;  ///< somebody else can write every file
    bool Held = false;     ///< another program holds every file
    Wait LastWait = Wait::ForRewrite;

    bool Append(const std::filesystem::path& path, std::string_view lines) override {
        return Write(path, lines, std::ios::app);
    }
    int AppendLines(const std::filesystem::path& path, std::string_view header, std::string_view lines,
                    std::string_view, Flush, Wait wait) override {
        LastWait = wait;
        if (DurableResult != 0) return DurableResult;
        const bool isNew = !std::filesystem::exists(path);
        const std::string text = std::string(isNew ? header : "") + std::string(lines);
        return Write(path, text, std::ios::app) ? 0 : ENOSPC;
    }
    std::unique_ptr<FileLock> Hold(const std::filesystem::path&) override {
        return Held ? nullptr : std::make_unique<FileLock>();
    }
    bool ReplaceKeeping(const std::filesystem::path& path, const std::filesystem::path& kept,
                        const std::function<bool(const Sink& sink)>& write) override {
        std::string content;
        const bool written = write([&](std::string_view part) {
            content += part;
            return !DiskFull;
        });
        errno = ENOSPC;
        if (!written) return false;
        std::filesystem::rename(path, kept);
        return Write(path, content, std::ios::trunc);
    }
    bool Replace(const std::filesystem::path& path, std::string_view content) override {
        return Write(path, content, std::ios::trunc);
    }
    std::unique_ptr<NewFile> BeginReplace(const std::filesystem::path& path) override {
        struct Part : NewFile {
            Part(FakeFiles& files, std::filesystem::path target) : Owner(files), Target(std::move(target)) {}
            bool Write(std::string_view part) override {
                Content += part;
                return !Owner.DiskFull;
            }
            bool PutInPlace() override { return Owner.Replace(Target, Content); }
            FakeFiles& Owner;
            std::filesystem::path Target;
            std::string Content;
        };
        return std::make_unique<Part>(*this, path);
    }
    bool Copy(const std::filesystem::path& from, const std::filesystem::path& to) override {
        std::error_code error;
        errno = ENOSPC;
        return !DiskFull && !CopyFails &&
               std::filesystem::copy_file(from, to, std::filesystem::copy_options::overwrite_existing, error);
    }
    bool IsOursAlone(const std::filesystem::path& path) override {
        return !Foreign && std::filesystem::is_regular_file(std::filesystem::symlink_status(path));
    }
    int CreateFolders(const std::filesystem::path& folder) override {
        if (CreateFoldersResult != 0) return CreateFoldersResult;
        std::error_code error;
        std::filesystem::create_directories(folder, error);
        return error.value();
    }

  private:
    bool Write(const std::filesystem::path& path, std::string_view content, std::ios::openmode mode) const {
        errno = ENOSPC;
        if (DiskFull) return false;
        std::ofstream file(path, std::ios::binary | mode);
        file << content;
        return file.good();
    }
};

} // namespace korvalin
