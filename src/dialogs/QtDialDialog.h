#pragma once

#include "dialogs/MessageTexts.h"
#include "platform/DialDialog.h"

#include <QPointer>

namespace korvalin {

class frmDial;

/// The dial windows of the desktop.
class QtDialDialog : public DialDialog {
  public:
    QtDialDialog() = default;
    ~QtDialDialog() override;
    QtDialDialog(const QtDialDialog&) = delete;
    QtDialDialog& operator=(const QtDialDialog&) = delete;

    /// Until then the texts are English.
    void Plug(Language& language) { texts_.Plug(language); }

    void Begin(const std::string& entryName) override;
    void ShowStage(DialStage stage) override;
    bool Cancelled() const override;
    void End() override;
    void ShowFailure(const std::string& entryName, int error) override;
    std::optional<Login> AskLogin(const std::string& entryName, const std::string& userName) override;

  private:
    QString Reason(int error) const;

    MessageTexts texts_;
    bool begun_ = false;
    QPointer<frmDial> window_; // from Begin to End, unless the window above which it stands is deleted
};

} // namespace korvalin
