#pragma once

#include <QDialog>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

namespace Ui {
class frmAbout;
}

namespace korvalin {

class Language;
class Shell;

/// The about box: version, author, links, and the update check on demand.
class frmAbout : public QDialog {
    Q_OBJECT

  public:
    struct Parts {
        korvalin::Language& Language;
        korvalin::Shell& Shell;
        std::string Version; ///< "2.1.7"
    };
    /// What the update check plugs in; without it there is no button for it.
    struct Hooks {
        /// Looks for a newer version, tells on the way with ShowStatus, ShowRunning and ShowProgress, and
        /// returns its result code.
        std::function<int()> CheckUpdate = {};
        /// Gives up a check that is running.
        std::function<void()> CancelUpdate = [] {};
        /// Ends the program, for the new one that was started.
        std::function<void()> EndProgram = [] {};
    };
    /// Result code of an update check that has started the new program.
    static constexpr int NewProgramStarted = 9;

    explicit frmAbout(Parts parts);
    ~frmAbout() override;

    void Plug(Hooks hooks);

    /// Shows the box or brings it to the front.
    void Open();

    /// Shows how far the update check is.
    void ShowStatus(const QString& text);

    /// While a check runs it can be cancelled but not begun.
    void ShowRunning(bool running);

    /// Shows how many bytes have come in, and how many will.
    void ShowProgress(std::uint64_t received, std::optional<std::uint64_t> announced);

  protected:
    void changeEvent(QEvent* event) override;

  private:
    void Form_Load();
    void ShowTexts();
    void OpenLink(const QString& address);
    void lblLinkKorvalin_Click();
    void picKorvalin_Click();
    void lblInfoLink_Click();
    void lblSupportMail_Click();
    void cmdUpdate_Click();
    void cmdCancel_Click();

    Parts parts_;
    Hooks hooks_;
    std::unique_ptr<Ui::frmAbout> ui_;
    bool checking_ = false; ///< by this box's button
};

} // namespace korvalin
