#pragma once

namespace korvalin {

class AddressReader;
class Clock;
class Events;
class Files;
class Http;
class InstanceLock;
class Internet;
class Journal;
class MessageBoxes;
class NetworkTables;
class Networks;
class Ras;
class RecordingLock;
class Registry;
class Screen;
class Shell;
class Signatures;
class User;

/// The system's facilities that the program runs on; all of them outlive it.
struct Ports {
    korvalin::Registry& Registry;
    korvalin::NetworkTables& NetworkTables;
    korvalin::Internet& Internet;
    korvalin::Ras& Ras;
    korvalin::Clock& Clock;
    korvalin::Events& Events;
    korvalin::MessageBoxes& MessageBoxes;
    korvalin::Screen& Screen;
    korvalin::Shell& Shell;
    korvalin::User& User;
    korvalin::InstanceLock& InstanceLock;
    korvalin::Files& Files;
    korvalin::RecordingLock& RecordingLock;
    korvalin::Journal& Journal;
    korvalin::Networks& Networks;
    korvalin::Http& Http;
    korvalin::Signatures& Signatures;
    korvalin::AddressReader& AddressReader;
};

} // namespace korvalin
