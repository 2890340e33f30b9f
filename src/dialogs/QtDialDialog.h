#pragma once

#include "dialogs/MessageTexts.h"
#include "platform/DialDialog.h"

#include <memory>

namespace korvalin {

class frmDial;

/// The dial windows of the desktop.
class QtDialDialog : public DialDialog {
  public:
    QtDialDialog();
    ~QtDialDialog() override;

    /// Until then the texts are English.
    void Plug(Language& language) { texts_.Plug(language); }

    void Begin(const std::string& entryName) override;
    void ShowStage(DialStage stage) override;
    bool Cancelled() const override;
    void End() override;
    std::optional<Login> AskLogin(const std::string& entryName, const std::string& userName) override;

  private:
    MessageTexts texts_;
    std::unique_ptr<frmDial> window_; // exists from Begin to End
};

} // namespace korvalin
