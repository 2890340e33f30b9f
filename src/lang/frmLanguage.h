#pragma once

#include <QDialog>

#include <functional>
#include <memory>

namespace Ui {
class frmLanguage;
}

namespace korvalin {

class Language;

/// Lets the user choose the language of all texts; a choice counts at once.
class frmLanguage : public QDialog {
    Q_OBJECT

  public:
    /// Gives every loaded window, this one included, its texts again.
    using TextsChanged = std::function<void()>;

    frmLanguage(Language& language, TextsChanged textsChanged);
    ~frmLanguage() override;

  private:
    void Form_Load();
    void ApplySelection();
    std::string SelectedCode() const;

    Language& language_;
    TextsChanged textsChanged_;
    std::unique_ptr<Ui::frmLanguage> ui_;
};

} // namespace korvalin
