#pragma once

class QWidget;

namespace korvalin {

class Language;

/// Puts the texts of the chosen language on a window and its controls: those whose dynamic property "Tag" holds
/// "#LngNo:" and a number. The section is the window's object name and "Obj". An element whose text is missing keeps what
/// it was designed with.
void ApplyFormTexts(QWidget& form, Language& language);

} // namespace korvalin
