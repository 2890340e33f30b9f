#pragma once

namespace korvalin {

class Language;

/// Lets the toolkit's own dialogs (files, folders, colours) speak the chosen language, as far as its
/// translations are installed.
void UseToolkitTexts(const Language& language);

} // namespace korvalin
