#pragma once

#include "fakes/FakeClock.h"
#include "platform/Events.h"
#include "platform/InstanceLock.h"
#include "platform/RecordingLock.h"
#include "platform/Shell.h"
#include "platform/User.h"

#include <functional>
#include <vector>

namespace korvalin {

class FakeUser : public User {
  public:
    std::string Name() override { return "alice"; }
};

class FakeInstanceLock : public InstanceLock {
  public:
    bool Running = false;
    bool PreviousInstanceRunning() override { return Running; }
    bool IsRunning(const std::string& name) override {
        return name == "Korvalin.exe" ? OldProgramRuns() : NewProgramRuns();
    }
    std::function<bool()> OldProgramRuns = [] { return false; };
    std::function<bool()> NewProgramRuns = [] { return true; };
    bool NewProgramIsReady = true;
    bool SaidReady = false;
    void SayReady() override { SaidReady = true; }
    bool IsReady(const std::string&) override { return NewProgramIsReady; }
};

class FakeRecordingLock : public RecordingLock {
  public:
    bool AnotherRecords = false;
    bool Take(const std::filesystem::path&) override { return !AnotherRecords; }
    bool IsTaken(const std::filesystem::path&) override { return AnotherRecords; }
};

/// Sleeping moves the fake clock; `OnProcessPending` runs instead of the window system's events.
class FakeEvents : public Events {
  public:
    explicit FakeEvents(FakeClock& clock) : clock_(clock) {}
    std::function<void()> OnProcessPending = [] {};

    void ProcessPending() override { OnProcessPending(); }
    void Sleep(int milliseconds) override { clock_.Advance(milliseconds / 1000.0); }

  private:
    FakeClock& clock_;
};

class FakeShell : public Shell {
  public:
    std::filesystem::path AppData;
    std::filesystem::path Executable;
    std::vector<std::filesystem::path> Started;
    bool Starts = true;
    std::vector<std::string> Pages, Addresses;
    std::string Language = "de";
    bool Supported = true;

    std::filesystem::path CommonAppData() override { return AppData; }
    std::filesystem::path SettingsFolder() override { return Executable.parent_path() / "settings"; }
    bool ComponentPresent(const std::string&) override { return true; }
    std::filesystem::path ExecutablePath() override { return Executable; }
    bool IsSupported() override { return Supported; }
    std::string UserLanguage() override { return Language; }
    bool StartProgram(const std::filesystem::path& program) override {
        if (Starts) Started.push_back(program);
        return Starts;
    }
    bool OpenPage(const std::string& address) override {
        Pages.push_back(address);
        return true;
    }
    bool OpenAddress(const std::string& address) override {
        if (Starts) Addresses.push_back(address);
        return Starts;
    }
};

} // namespace korvalin
