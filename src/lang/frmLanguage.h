#pragma once

#include <QDialog>

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
    explicit frmLanguage(Language& language);
    ~frmLanguage() override;

  protected:
    void changeEvent(QEvent* event) override;

  private:
    void Form_Load();
    void ApplySelection();
    std::string SelectedCode() const;

    Language& language_;
    std::unique_ptr<Ui::frmLanguage> ui_;
};

} // namespace korvalin
