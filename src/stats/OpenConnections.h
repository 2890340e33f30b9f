#pragma once

#include "platform/Journal.h"

#include <vector>

namespace korvalin {

class DataFolder;
class RecordingLock;
struct LineState;

/// The connections that are open now, as far as no record holds them.
class OpenConnections {
  public:
    struct Parts {
        const korvalin::LineState& LineState;
        korvalin::DataFolder& DataFolder;
        korvalin::RecordingLock& RecordingLock;
        korvalin::Journal& Journal;
    };
    explicit OpenConnections(const Parts& parts) : parts_(parts) {}

    enum class Source {
        Lines,    ///< this program's
        Recorder, ///< of the program that records, as its journal has them
        Nobody
    };
    /// Whose they are; at first this program's.
    void UseThoseOf(Source source) { source_ = source; }

    /// As they are at this moment; none when there is nobody to tell.
    std::vector<OpenConnection> Now() const;

  private:
    std::vector<OpenConnection> OfRecorder() const;

    Parts parts_;
    Source source_ = Source::Lines;
};

} // namespace korvalin
