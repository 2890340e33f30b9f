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

std::size_t PhoneBook::RASGetEntriesCount() {
    if (!IsRasInstalled(internet_)) return 0;
    const PhoneBookNames read = ras_.EnumEntries();
    if (read.Error != 0) errors_.WriteErrorLog(EnumFailed(read.Error), "RAS");
    return read.Names.size();
}

std::size_t PhoneBook::RASGetEntries(TableFromOne<std::string>& names) {
    names = TableFromOne<std::string>(RASGetEntriesCount());
    if (names.Size() == 0) return 0;
    PhoneBookNames read = ras_.EnumEntries();
    if (read.Error == 0) {
        names = TableFromOne<std::string>(read.Names.size());
        std::sort(read.Names.begin(), read.Names.end());
        std::move(read.Names.begin(), read.Names.end(), names.begin());
    } else {
        messageBoxes_.Show(EnumFailed(read.Error), std::string(ProgramTitle), MessageIcon::Warning,
                           MessageButtons::Ok);
    }
    return names.Size();
}

} // namespace korvalin
