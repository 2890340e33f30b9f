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
    const std::filesystem::path folder = parts_.DataFolder.GetDataPath();
    if (!parts_.RecordingLock.IsTaken(folder)) return {};
    return parts_.Journal.Look(parts_.DataFolder.JournalFolder()).StillOpen();
}

} // namespace korvalin
