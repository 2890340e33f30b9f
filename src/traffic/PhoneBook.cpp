#include "traffic/PhoneBook.h"

#include "base/ProgramTitle.h"
#include "errors/Errors.h"
#include "inet/ConnectionState.h"

#include <algorithm>

namespace korvalin {
namespace {

std::string EnumFailed(int code) {
    return "RasEnumEntries failed: " + std::to_string(code);
}

} // namespace

PhoneBook::PhoneBook(Ras& ras, Internet& internet, MessageBoxes& messageBoxes, Errors& errors)
    : ras_(ras), internet_(internet), messageBoxes_(messageBoxes), errors_(errors) {}

// Offered no room, the system tells how much it needs; it has nothing to tell when there are no entries.
std::size_t PhoneBook::RASGetEntriesCount() {
    if (!IsRasInstalled(internet_)) return 0;
    std::vector<std::string> noRoom;
    std::uint32_t count = 0;
    const int code = ras_.EnumEntries(noRoom, count);
    if (code == ErrorBufferTooSmall) return count;
    if (code != 0) errors_.WriteErrorLog(EnumFailed(code), "RAS");
    return 0;
}

std::size_t PhoneBook::RASGetEntries(TableFromOne<std::string>& names) {
    std::vector<std::string> read(RASGetEntriesCount());
    names = TableFromOne<std::string>(read.size());
    if (read.empty()) return 0;
    std::uint32_t count = 0;
    const int code = ras_.EnumEntries(read, count);
    if (code == 0) {
        std::sort(read.begin(), read.end());
        std::move(read.begin(), read.end(), names.begin());
    } else {
        messageBoxes_.Show(EnumFailed(code), std::string(ProgramTitle), MessageIcon::Warning,
                           MessageButtons::Ok);
    }
    return names.Size();
}

} // namespace korvalin
