#pragma once

#include <filesystem>
#include <functional>
#include <string_view>
#include <utility>

namespace korvalin {

class Clock;
class Errors;
class Files;
class Language;
class MessageBoxes;
class Settings;
class Shell;

/// The statistics file in the data folder. Its backups have this name, "_" and the moment they were made.
inline constexpr std::string_view StatFileName = "Korvalin_Stats.db";
/// The file of older releases, converted once.
inline constexpr std::string_view OldStatFileName = "Korvalin_Stats.txt";
/// A copy of every record for other programs.
inline constexpr std::string_view StatExportName = "Korvalin_Stats.csv";

/// The folder of the statistics, their backups and the error log.
class DataFolder {
  public:
    struct Parts {
        korvalin::Settings& Settings;
        korvalin::Language& Language;
        korvalin::Errors& Errors;
        korvalin::MessageBoxes& MessageBoxes;
        korvalin::Files& Files;
        korvalin::Shell& Shell;
        korvalin::Clock& Clock;
    };
    struct Hooks {
        /// Before another folder is stored: brings what the running program keeps in this one to a place
        /// where the next start finds it whatever folder is stored then. False when that fails.
        std::function<bool()> LeaveFolder = [] { return true; };
    };
    DataFolder(const Parts& parts, const std::filesystem::path& programFolder)
        : parts_(parts), programFolder_(programFolder), runFolder_(programFolder) {}

    void Plug(Hooks hooks) { hooks_ = std::move(hooks); }

    /// The data folder, ending with a separator. The one that the settings name, whenever it is there; while
    /// it is not, another one serves, which is told once and not stored. Without a setting the usual folder,
    /// created when it is missing. Cheap while the folder is there; may be called from inside itself (a
    /// log line).
    std::filesystem::path GetDataPath();

    /// Where the journal is kept: in the data folder, but while another one stands in for it in the settings
    /// folder, as the next start may find either of them.
    std::filesystem::path JournalFolder();

    /// For the program that records: tells when no file can be created in the folder. What another folder has
    /// taken while this one was away joins the records here; a folder that stands in for it now is remembered
    /// for that. True when records have come.
    bool BeginToRecord();

    /// Where the data are kept unless the user says otherwise.
    std::filesystem::path CommonFolder() const;

    /// Whether the folder is there (the user may let it be created) and files can be created in it. Tells the
    /// user what is wrong with it, and why.
    bool CheckDataFolder(const std::filesystem::path& folder);

    /// Stores the data folder, on the medium. False leaves the one that is stored.
    [[nodiscard]] bool Use(const std::filesystem::path& folder);

    /// Moves the statistics file to a new data folder; `ask` lets the user decide, and then the folder is
    /// stored before the old file is put aside. What is there already is renamed, never overwritten, and a
    /// move that fails leaves both folders as they were. Without `ask` the records join those that are there
    /// already. False when the new folder was refused or the statistics could not be moved, true also when
    /// there was nothing to move.
    bool ChangeDataPath(const std::filesystem::path& oldFolder, const std::filesystem::path& newFolder,
                        bool ask);

    /// Removes statistics backups older than the number of days in the settings.
    void DeleteStatistics();

  private:
    void DecideFolder(const std::filesystem::path& stored);
    void TellSubstitute(const std::filesystem::path& wanted);
    std::filesystem::path AnyWritable();
    bool HasTexts();
    bool StandsIn();
    void Fetch(const std::filesystem::path& from, const std::filesystem::path& to);
    void Refuse(const std::filesystem::path& folder, int error, int before, int behind);
    int CreateFolderPath(const std::filesystem::path& folder);
    int TryFileIn(const std::filesystem::path& folder);
    bool CanCreateFileIn(const std::filesystem::path& folder) { return TryFileIn(folder) == 0; }
    bool UserKeepsNewStatistics();
    bool UserMovesStatistics();
    void JoinStatistics(const std::filesystem::path& oldFile, const std::filesystem::path& newFile);
    void PutAside(const std::filesystem::path& oldFile);
    void MoveStatistics(const std::filesystem::path& oldFile, const std::filesystem::path& newFile, bool use);

    Parts parts_;
    Hooks hooks_;
    std::filesystem::path programFolder_;
    /// Where this run's data go while the setting names no folder that exists.
    std::filesystem::path runFolder_;
    /// The folder that runFolder_ stands in for, until the user was told.
    std::filesystem::path untold_;
    std::filesystem::path recordsInto_;
    bool decided_ = false;
    bool deciding_ = false;
};

} // namespace korvalin
