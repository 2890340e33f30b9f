#pragma once

#include <QString>

class QWidget;

namespace korvalin {

class Language;

/// The texts of the message windows: in the program's language, and in English while there are none.
class MessageTexts {
  public:
    void Plug(Language& language) { language_ = &language; }

    /// Text of a section by number, else `english`.
    QString Lng(const char* section, int number, const char* english) const;

    /// Puts the texts on a window and its controls; those without one keep theirs.
    void ApplyTo(QWidget& form) const;

  private:
    Language* language_ = nullptr;
};

} // namespace korvalin
