#pragma once

class QWidget;

namespace korvalin {

class Language;

/// Puts the texts of the chosen language on a window, its controls, menus and menu entries: on each whose
/// dynamic property "Tag" holds "#LngNo:" and a number. The section is the window's object name with "Obj"
/// behind it. An element whose text is missing keeps the one it has. A page of a tab widget carries the mark
/// of its tab. What a tooltip says is also what the control answers to "What's this?".
void ApplyFormTexts(QWidget& form, Language& language);

/// ApplyFormTexts for every loaded window. Each gets QEvent::LanguageChange afterwards, for texts that it
/// builds itself. The toolkit's dialogs follow too.
void ApplyTextsToLoadedForms(Language& language);

} // namespace korvalin
