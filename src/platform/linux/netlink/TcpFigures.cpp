#include "platform/linux/netlink/TcpFigures.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <string_view>

namespace korvalin {
namespace {

std::string_view TakeUntil(std::string_view& text, char separator) {
    const std::size_t end = std::min(text.find(separator), text.size());
    const std::string_view part = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    return part;
}

// The rest of the first line that starts with `label`; what follows it stays in `text`.
std::optional<std::string_view> TakeLine(std::string_view& text, std::string_view label) {
    while (!text.empty()) {
        const std::string_view line = TakeUntil(text, '\n');
        if (line.starts_with(label)) return line.substr(label.size());
    }
    return std::nullopt;
}

// The kernel counts on where 32 bits end: the figure is the low half, as a 32-bit counter would show it.
std::uint32_t Figure(std::string_view text) {
    std::uint64_t value = 0;
    std::from_chars(text.data(), text.data() + text.size(), value);
    return static_cast<std::uint32_t>(value);
}

// "TCP: inuse 5 orphan 0 ..."
std::uint32_t SocketsInUse(KernelFile& file, std::string_view label) {
    std::string_view text = file.Read().value_or(""); // no file: no IPv6 in this kernel
    std::string_view line = TakeLine(text, label).value_or("");
    return TakeUntil(line, ' ') == "inuse" ? Figure(TakeUntil(line, ' ')) : 0;
}

} // namespace

TcpFigures::TcpFigures(const std::filesystem::path& procNet)
    : snmp_(procNet / "snmp"), sockets_(procNet / "sockstat"), socketsVersion6_(procNet / "sockstat6") {}

TcpStatistics TcpFigures::Read() {
    TcpStatistics statistics;
    // A line of names and a line of figures; the order differs from kernel to kernel.
    std::string_view text = snmp_.Read().value_or("");
    std::optional<std::string_view> names = TakeLine(text, "Tcp: ");
    std::optional<std::string_view> figures = TakeLine(text, "Tcp: ");
    if (!names || !figures) return statistics;
    while (!names->empty() && !figures->empty()) {
        const std::string_view name = TakeUntil(*names, ' ');
        const std::uint32_t figure = Figure(TakeUntil(*figures, ' '));
        if (name == "CurrEstab") statistics.CurrEstab = figure;
        if (name == "InSegs") statistics.InSegs = figure;
        if (name == "OutSegs") statistics.OutSegs = figure;
    }
    statistics.NumConns = SocketsInUse(sockets_, "TCP: ") + SocketsInUse(socketsVersion6_, "TCP6: ");
    return statistics;
}

} // namespace korvalin
