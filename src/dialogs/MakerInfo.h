// Who makes the program, and where: what a distributor of it sets.
#pragma once

namespace korvalin::maker {

inline constexpr const char* Author = "Korvalin Project";
inline constexpr const char* ProgramPage = "https://www.example.org/korvalin/";
inline constexpr const char* HelpPage = "https://www.example.org/korvalin/help/";
inline constexpr const char* SupportMail = "support@example.org";

} // namespace korvalin::maker
