#pragma once

#include "platform/Files.h"

namespace korvalin {

class PosixFiles : public Files {
  public:
    bool Append(const std::filesystem::path& path, std::string_view lines) override;
    int AppendLines(const std::filesystem::path& path, std::string_view header, std::string_view lines,
                    std::string_view lineEnd, Flush flush, Wait wait) override;
    std::unique_ptr<FileLock> Hold(const std::filesystem::path& path) override;
    bool ReplaceKeeping(const std::filesystem::path& path, const std::filesystem::path& kept,
                        const std::function<bool(const Sink& sink)>& write) override;
    bool Replace(const std::filesystem::path& path, std::string_view content) override;
    std::unique_ptr<NewFile> BeginReplace(const std::filesystem::path& path) override;
    bool Copy(const std::filesystem::path& from, const std::filesystem::path& to) override;
    bool IsOursAlone(const std::filesystem::path& path) override;
    int CreateFolders(const std::filesystem::path& folder) override;
};

} // namespace korvalin
