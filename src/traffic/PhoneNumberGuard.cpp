#include "traffic/PhoneNumberGuard.h"

#include "base/ProgramTitle.h"
#include "base/Text.h"
#include "errors/Errors.h"
#include "lang/Language.h"
#include "settings/Settings.h"

#include <fmt/format.h>

#include <algorithm>

namespace korvalin {
namespace {

constexpr const char* lineBreak = "\r\n";

// The settings hold no more. Of a number that is as long or longer this much is kept, which is never taken
// for a whole one: read back as nothing, every change of it would pass as a first dial.
constexpr std::size_t longestKept = RegistryBufferBytes - 1;

// Only what a keyboard types: marks that turn the reading direction, line breaks or digits of other scripts
// could make a new number look like the old one.
std::string Visible(std::string_view number) {
    std::string visible;
    for (const char c : number) {
        if (c >= ' ' && c <= '~') {
            visible += c;
        } else {
            visible += fmt::format("%{:02X}", static_cast<unsigned char>(c));
        }
    }
    return visible;
}

// What takes no room on the screen (UTF-8): soft hyphen, zero-width characters, direction marks.
constexpr std::string_view invisible[] = {"\u00AD", "\u034F", "\u061C", "\u180E", "\u200B", "\u200C",
                                          "\u200D", "\u200E", "\u200F", "\u202A", "\u202B", "\u202C",
                                          "\u202D", "\u202E", "\u2060", "\u2061", "\u2062", "\u2063",
                                          "\u2064", "\u2066", "\u2067", "\u2068", "\u2069", "\uFEFF"};
constexpr std::string_view wideBlanks[] = {"\u00A0", "\u2002", "\u2003", "\u2007",
                                           "\u2009", "\u202F", "\u3000"};

// Entries whose names look alike because they differ in blanks or in what is not seen share one remembered
// number: a renamed copy is no first dial.
std::string AsSeen(std::string name) {
    std::erase_if(name, [](unsigned char c) { return c < ' ' || c == 0x7F; });
    for (const std::string_view mark : invisible)
        name = ReplaceAll(name, mark, "");
    for (const std::string_view blank : wideBlanks)
        name = ReplaceAll(name, blank, " ");
    const auto twoBlanks = [](char left, char right) { return left == ' ' && right == ' '; };
    name.erase(std::unique(name.begin(), name.end(), twoBlanks), name.end());
    return std::string(Trim(name));
}

} // namespace

PhoneNumberGuard::PhoneNumberGuard(Ras& ras, Settings& settings, Language& language,
                                   MessageBoxes& messageBoxes)
    : ras_(ras), settings_(settings), language_(language), messageBoxes_(messageBoxes) {}

bool PhoneNumberGuard::CheckPhoneNumber(const std::string& entryName) {
    const auto key = KeyOf(entryName);
    std::string accepted;
    // Looked up again after every answer: the number may change while the question stands.
    while (true) {
        const std::string number = NumberOf(entryName);
        if (number.empty() || number == accepted) return true;
        const std::string remembered = settings_.Get(key);
        if (remembered == number && number.size() < longestKept) return true;
        const bool firstDial = remembered.empty() && accepted.empty();
        if (!firstDial && !UserAccepts(remembered, number)) return false;
        settings_.Set(key, number.substr(0, longestKept));
        if (firstDial) return true;
        accepted = number;
    }
}

// An entry that cannot be read has no number. Blanks around it are not kept by the settings.
std::string PhoneNumberGuard::NumberOf(const std::string& entryName) {
    const PhoneEntry entry = ras_.GetEntryProperties(entryName).value_or(PhoneEntry());
    const std::string& local = entry.LocalPhoneNumber;
    return std::string(Trim(entry.AreaCode.empty() ? local : entry.AreaCode + "-" + local));
}

SettingKey<std::string, std::string> PhoneNumberGuard::KeyOf(const std::string& entryName) {
    auto key = Keys::Phone(AsSeen(entryName));
    // "Phone_Office_FreeHours" is a tariff of the line "Phone_Office", where a telephone number does not keep
    // its zeros, and "Phone_Office_Alias" its alias.
    const bool isText = std::holds_alternative<std::string>(settings_.GetReg(key.Name));
    if (!isText || EndsWithNoCase(key.Name, Keys::Alias.After)) key.Name += '_';
    return key;
}

bool PhoneNumberGuard::UserAccepts(const std::string& remembered, const std::string& number) {
    const std::string question = language_.Lng("modRAS", 2) + lineBreak + lineBreak +
                                 language_.Lng("modRAS", 3) + " " + Visible(remembered) + lineBreak +
                                 language_.Lng("modRAS", 4) + " " + Visible(number) + lineBreak + lineBreak +
                                 language_.Lng("modRAS", 5);
    return messageBoxes_.Show(question, std::string(ProgramTitle), MessageIcon::Warning,
                              MessageButtons::YesNoCancel) == MessageAnswer::Yes;
}

} // namespace korvalin
