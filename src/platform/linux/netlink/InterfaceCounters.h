#pragma once

#include "platform/linux/files/Descriptor.h"

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>

namespace korvalin {

/// Bytes since an interface came into being.
struct InterfaceBytes {
    std::uint64_t Received = 0;
    std::uint64_t Transmitted = 0;
};

/// The byte counters of one interface, whose files stay open between readings.
class InterfaceCounters {
  public:
    InterfaceCounters() = default;
    /// `folder` is the interface's in /sys/class/net.
    explicit InterfaceCounters(const std::filesystem::path& folder);

    /// nullopt when the interface is not there (any more), also when another one has its name now.
    [[nodiscard]] std::optional<InterfaceBytes> Read() const;

    /// The kernel's number of the interface, never given twice; 0 when there is none.
    [[nodiscard]] std::uint32_t Index() const { return index_; }

  private:
    Descriptor received_;
    Descriptor transmitted_;
    std::uint32_t index_ = 0;
};

/// What interfaces had already counted before the connection that uses them now came up: the data port of a
/// modem stays when the connection ends, and its counters go on.
class EarlierBytes {
  public:
    /// Notes what an interface has counted up to now.
    void Note(std::uint32_t index, const InterfaceBytes& bytes) { noted_[index] = bytes; }

    /// Notes every interface in `folder` (/sys/class/net).
    void NoteAll(const std::filesystem::path& folder);

    /// Nothing is known before this interface's counters any more: they belong to whoever uses it.
    void Forget(std::uint32_t index) { noted_.erase(index); }

    /// `bytes` without what was noted; whole when the interface has counted anew since.
    [[nodiscard]] InterfaceBytes Without(std::uint32_t index, const InterfaceBytes& bytes) const;

  private:
    std::map<std::uint32_t, InterfaceBytes> noted_;
};

} // namespace korvalin
