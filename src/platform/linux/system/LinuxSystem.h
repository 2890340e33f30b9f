#pragma once

#include "platform/Ports.h"

#include <memory>
#include <string>
#include <vector>

namespace korvalin {

class DialDialog;

/// This system's back ends, all but those that need a window system.
class LinuxSystem {
  public:
    LinuxSystem();
    ~LinuxSystem();
    LinuxSystem(const LinuxSystem&) = delete;
    LinuxSystem& operator=(const LinuxSystem&) = delete;

    /// The ports of the program with the three that depend on how it is used.
    Ports PortsWith(Events& events, MessageBoxes& messageBoxes, Screen& screen);

    /// The window that dialing shows; null for none, as at the beginning.
    void PlugDialDialog(DialDialog* dialog);

    Clock& SystemTime();
    Shell& UserShell();

    /// Whether settings that are stored outlive this run.
    bool SettingsAreKept() const;

    /// What has happened to the settings store since the last call (a damaged one moved aside), for the error
    /// log.
    std::vector<std::string> TakeNotes();

  private:
    struct BackEnds;
    std::unique_ptr<BackEnds> backEnds_;
};

} // namespace korvalin
