#pragma once

#include "platform/linux/files/Descriptor.h"

#include <filesystem>
#include <optional>
#include <string_view>
#include <vector>

namespace korvalin {

/// A short text of the kernel that is read again and again: its file stays open, which saves most of the
/// time.
class KernelFile {
  public:
    explicit KernelFile(std::filesystem::path path) : path_(std::move(path)) {}

    /// The first 16 KB of the text as it is now, valid until the next call; nullopt when it cannot be read,
    /// with errno telling why.
    [[nodiscard]] std::optional<std::string_view> Read();

  private:
    std::filesystem::path path_;
    Descriptor file_;
    std::vector<char> text_;
};

} // namespace korvalin
