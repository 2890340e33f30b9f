#include "stats/OpenConnections.h"

#include "data/DataFolder.h"
#include "platform/RecordingLock.h"
#include "traffic/LineRecord.h"

namespace korvalin {

std::vector<OpenConnection> OpenConnections::Now() const {
    switch (source_) {
    case Source::Lines: return OpenConnectionsOf(parts_.LineState);
    case Source::Recorder: return OfRecorder();
    case Source::Nobody: break;
    }
    return {};
}

std::vector<OpenConnection> OpenConnections::OfRecorder() const {
    std::vector<OpenConnection> open;
    const std::filesystem::path folder = parts_.DataFolder.GetDataPath();
    if (!parts_.RecordingLock.IsTaken(folder)) return open;
    const JournalFound found = parts_.Journal.Look(folder);
    for (const JournalEntry& entry : found.Picture.Entries) {
        if (found.SameBoot && entry.Open && !entry.Open->Recorded) open.push_back(*entry.Open);
    }
    return open;
}

} // namespace korvalin
