#include "platform/linux/files/KernelFile.h"

#include <fcntl.h>

namespace korvalin {

std::optional<std::string_view> KernelFile::Read() {
    constexpr std::size_t limit = 16384;
    text_.resize(limit);
    if (!file_) file_ = Descriptor(open(path_.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (!file_) return std::nullopt;
    // Such a text comes whole when there is room for it.
    const ssize_t count = pread(file_.Get(), text_.data(), text_.size(), 0);
    if (count < 0) return std::nullopt;
    return std::string_view(text_.data(), static_cast<std::size_t>(count));
}

} // namespace korvalin
