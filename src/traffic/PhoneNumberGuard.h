#pragma once

#include "platform/Ras.h"
#include "settings/Keys.h"

#include <string>

namespace korvalin {

class Language;
class MessageBoxes;
class Settings;

/// Stops an entry whose telephone number was changed behind the user's back before it is dialed: the number
/// is compared with the one that the entry had when it was last dialed.
class PhoneNumberGuard {
  public:
    PhoneNumberGuard(Ras& ras, Settings& settings, Language& language, MessageBoxes& messageBoxes);

    /// True when dialing may go on: the entry has no number, it is the remembered one, or the user accepts
    /// the new one, which is then remembered. The number of a first dial is remembered without a question.
    [[nodiscard]] bool CheckPhoneNumber(const std::string& entryName);

  private:
    std::string NumberOf(const std::string& entryName);
    SettingKey<std::string, std::string> KeyOf(const std::string& entryName);
    bool UserAccepts(const std::string& remembered, const std::string& number);

    Ras& ras_;
    Settings& settings_;
    Language& language_;
    MessageBoxes& messageBoxes_;
};

} // namespace korvalin
