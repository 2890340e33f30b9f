// What another program has counted, day by day, in a file of its own.
#pragma once

#include "base/Date.h"

#include <filesystem>
#include <string>
#include <vector>

namespace korvalin {

/// The bytes of an adapter on one day.
struct CountedDay {
    std::string Adapter; ///< the kernel's name
    Date Day = 0;
    double BytesReceived = 0;
    double BytesTransmitted = 0;
};

class DayCounts {
  public:
    virtual ~DayCounts() = default;

    enum class Fault {
        None,
        NoFile,
        Unreadable, ///< the system or the file's owner does not allow it
        Foreign,    ///< the file is something else
        Damaged,
        Newer, ///< of a release that may keep it in another way
        Locked ///< the program that counts is writing all the time
    };
    struct Reading {
        korvalin::DayCounts::Fault Fault = Fault::None;
        std::vector<CountedDay> Days = {}; ///< sorted by adapter and day; none after a fault
    };
    /// All days as of one moment. The file stays as it is, and may be in use.
    [[nodiscard]] virtual Reading Read(const std::filesystem::path& file) = 0;
};

} // namespace korvalin
