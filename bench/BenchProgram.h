// What the benchmarks of statistics have in common: a stopwatch and a program on this machine's back ends.
#pragma once

#include "cli/Windowless.h"
#include "platform/linux/system/LinuxSystem.h"
#include "program/Program.h"

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>

namespace korvalin {

class Stopwatch {
  public:
    double Milliseconds() const {
        return std::chrono::duration<double, std::milli>(Clockwork::now() - start_).count();
    }

  private:
    using Clockwork = std::chrono::steady_clock;
    Clockwork::time_point start_ = Clockwork::now();
};

/// A program with this machine's back ends whose data folder is `dataFolder`; its settings lie in a folder
/// that goes with it.
class BenchProgram {
  public:
    BenchProgram(const std::filesystem::path& dataFolder, Events& events, MessageBoxes& boxes)
        : settings_(MakeFolder()) {
        setenv("XDG_CONFIG_HOME", settings_.c_str(), 1);
        setenv("XDG_DATA_HOME", settings_.c_str(), 1);
        system_ = std::make_unique<LinuxSystem>();
        ports_.emplace(system_->PortsWith(events, boxes, screen_));
        program_ = std::make_unique<Program>(*ports_, Locale());
        program_->settings.SetReg("DataPath", std::filesystem::absolute(dataFolder).string());
        if (program_->language.LoadLanguageChoices()) program_->language.UseLanguage("ENG");
        program_->LoadRecords();
    }
    ~BenchProgram() {
        program_.reset();
        system_.reset();
        std::error_code ignored;
        std::filesystem::remove_all(settings_, ignored);
    }
    BenchProgram(const BenchProgram&) = delete;
    BenchProgram& operator=(const BenchProgram&) = delete;

    Program& operator*() const { return *program_; }
    Program* operator->() const { return program_.get(); }
    const Ports& AllPorts() const { return *ports_; }
    Clock& SystemTime() const { return system_->SystemTime(); }

  private:
    static std::filesystem::path MakeFolder() {
        std::string folder = (std::filesystem::temp_directory_path() / "korvalin-bench-XXXXXX").string();
        if (mkdtemp(folder.data()) == nullptr) throw std::runtime_error("no temporary folder");
        return folder;
    }

    std::filesystem::path settings_;
    NoScreen screen_;
    std::unique_ptr<LinuxSystem> system_;
    std::optional<Ports> ports_;
    std::unique_ptr<Program> program_;
};

} // namespace korvalin
