#include "platform/linux/NoRas.h"

#include "platform/Registry.h" // ErrorInvalidHandle

namespace korvalin {

int NoRas::EnumConnections(std::vector<RasConnection>&, std::uint32_t& count) {
    count = 0;
    return ErrorSuccess;
}

int NoRas::GetConnectionStatistics(std::int32_t, RasStatistics& statistics) {
    statistics = {};
    return ErrorInvalidHandle;
}

int NoRas::GetConnectStatus(std::int32_t, std::uint32_t& state) {
    state = 0;
    return ErrorInvalidHandle;
}

int NoRas::EnumEntries(std::vector<std::string>&, std::uint32_t& count) {
    count = 0;
    return ErrorSuccess;
}

int NoRas::GetEntryProperties(const std::string&, PhoneEntry& entry) {
    entry = {};
    return ErrorCannotFindPhonebookEntry;
}

int NoRas::HangUp(std::int32_t) {
    return ErrorInvalidHandle;
}

} // namespace korvalin
