#pragma once

#include <QDialog>

#include <functional>
#include <memory>

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
        /// Looks for a newer version, tells on the way with ShowStatus, and returns its result code.
        std::function<int()> CheckUpdate = {};
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

    Parts parts_;
    Hooks hooks_;
    std::unique_ptr<Ui::frmAbout> ui_;
};

} // namespace korvalin
