#include "platform/linux/SqliteJournal.h"

namespace korvalin {

JournalFound SqliteJournal::Load(const std::filesystem::path&) {
    return {};
}
bool SqliteJournal::Save(const std::filesystem::path&, const JournalPicture&, Durability) {
    return true;
}
void SqliteJournal::Note(const std::vector<JournalNote>&) {}
JournalFound SqliteJournal::Look(const std::filesystem::path&) {
    return {};
}

} // namespace korvalin
