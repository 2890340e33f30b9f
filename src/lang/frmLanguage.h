#pragma once

#include <QDialog>

#include <functional>
#include <memory>

namespace Ui {
class frmLanguage;
}

namespace korvalin {

class Language;

/// Lets the user choose the language of all texts.
class frmLanguage : public QDialog {
    Q_OBJECT

  public:
    /// `textsChanged` gives every loaded window its texts again.
    frmLanguage(Language& language, std::function<void()> textsChanged);
    ~frmLanguage() override;

  private:
    void Form_Load();
    void ApplySelection();

    Language& language_;
    std::function<void()> textsChanged_;
    std::unique_ptr<Ui::frmLanguage> ui_;
};

} // namespace korvalin
