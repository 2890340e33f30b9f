#include "traffic/LineRecord.h"

#include <algorithm>

namespace korvalin {

LinePart OpenPartOf(const LineRecord& line) {
    const Date logIn = line.PartLogIn != 0 ? line.PartLogIn : line.LogIn;
    Date end = line.LogIn + line.Duration;
    if (line.SampleTime != 0) end = line.PartLogIn != 0 ? line.SampleTime : std::min(end, line.SampleTime);
    if (line.PartEnd != 0) end = line.PartEnd;
    return {logIn, std::max(logIn, end), line.BytesReceived - line.RecordedReceived,
            line.BytesTransmitted - line.RecordedTransmitted};
}

OpenConnection ConnectionOf(const LineRecord& line) {
    const LinePart part = OpenPartOf(line);
    return {line.EntryName, part.LogIn, part.End, part.BytesReceived, part.BytesTransmitted, line.User,
            line.IpAddress, line.IsRas, false,    line.Continued};
}

std::vector<OpenConnection> OpenConnectionsOf(const LineState& lines) {
    std::vector<OpenConnection> open;
    for (const LineRecord& line : lines.LineTable) {
        if (line.Connected) open.push_back(ConnectionOf(line));
    }
    return open;
}

} // namespace korvalin
