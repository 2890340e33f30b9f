#include "traffic/LineRecord.h"

#include <algorithm>

namespace korvalin {

LinePart OpenPartOf(const LineRecord& line) {
    const Date logIn = line.PartLogIn != 0 ? line.PartLogIn : line.LogIn;
    return {logIn, std::max(logIn, line.LogIn + line.Duration), line.BytesReceived - line.RecordedReceived,
            line.BytesTransmitted - line.RecordedTransmitted};
}

} // namespace korvalin
