#pragma once

#include "platform/Ports.h"

#include <memory>

namespace korvalin {

class DialDialog;
class Errors;

/// This system's back ends, all but those that need a window system.
class LinuxSystem {
  public:
    LinuxSystem();
    ~LinuxSystem();
    LinuxSystem(const LinuxSystem&) = delete;
    LinuxSystem& operator=(const LinuxSystem&) = delete;

    /// The ports of the program with the three that depend on how it is used.
    Ports PortsWith(Events& events, MessageBoxes& messageBoxes, Screen& screen);

    /// The window that dialling shows; null for none, as at the beginning.
    void PlugDialDialog(DialDialog* dialog);

    Clock& SystemTime();
    Shell& UserShell();

    /// Writes to the error log what went wrong before there was one (a damaged settings store moved aside).
    void TellNotes(Errors& errors);

  private:
    struct BackEnds;
    std::unique_ptr<BackEnds> backEnds_;
};

} // namespace korvalin
