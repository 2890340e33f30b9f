#include "platform/linux/netlink/InterfaceCounters.h"

#include "platform/linux/files/WholeFile.h"

#include <array>
#include <charconv>
#include <fcntl.h>
#include <unistd.h>

namespace korvalin {
namespace {

Descriptor OpenFile(const std::filesystem::path& path) {
    return Descriptor(open(path.c_str(), O_RDONLY | O_CLOEXEC));
}

std::optional<std::uint64_t> ReadNumber(const Descriptor& file) {
    std::array<char, 24> text;
    const ssize_t length = pread(file.Get(), text.data(), text.size(), 0);
    std::uint64_t number = 0;
    if (length <= 0) return std::nullopt;
    if (std::from_chars(text.data(), text.data() + length, number).ec != std::errc()) return std::nullopt;
    return number;
}

} // namespace

InterfaceCounters::InterfaceCounters(const std::filesystem::path& folder)
    : received_(OpenFile(folder / "statistics/rx_bytes")),
      transmitted_(OpenFile(folder / "statistics/tx_bytes")),
      index_(static_cast<std::uint32_t>(ReadNumber(OpenFile(folder / "ifindex")).value_or(0))) {}

std::optional<InterfaceBytes> InterfaceCounters::Read() const {
    const auto received = ReadNumber(received_);
    const auto transmitted = ReadNumber(transmitted_);
    if (!received || !transmitted) return std::nullopt;
    return InterfaceBytes{*received, *transmitted};
}

void EarlierBytes::NoteAll(const std::filesystem::path& folder) {
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(folder, error)) {
        const InterfaceCounters counters(entry.path());
        if (const auto bytes = counters.Read()) Note(counters.Index(), *bytes);
    }
}

InterfaceBytes EarlierBytes::Without(std::uint32_t index, const InterfaceBytes& bytes) const {
    const auto found = noted_.find(index);
    if (found == noted_.end()) return bytes;
    const InterfaceBytes& earlier = found->second;
    if (bytes.Received < earlier.Received || bytes.Transmitted < earlier.Transmitted) return bytes;
    return {bytes.Received - earlier.Received, bytes.Transmitted - earlier.Transmitted};
}

} // namespace korvalin
