#include "settingsdlg/ConnectionFields.h"

#include "inet/ConnectionState.h"
#include "lang/Language.h"

namespace korvalin {

std::array<std::string, 6> ConnectionFields(Internet& internet, Language& language) {
    const auto word = [&language](bool value) {
        return value ? language.Lng("frmEinstellungen", 30) : language.Lng("frmEinstellungen", 31);
    };
    return {word(IsInternetViaLan(internet)),   word(IsInternetViaModem(internet)),
            word(IsInternetViaProxy(internet)), word(IsOnline(internet)),
            word(IsRasInstalled(internet)),     ConnectionInfoText(internet, language)};
}

} // namespace korvalin
