#pragma once

#include <string>

using NMConnection = struct _NMConnection;

namespace korvalin {

struct Login;

/// Whether a profile logs in with user name and password, and not with keys alone.
bool TakesLogin(NMConnection* profile);

/// The user name that a profile holds; empty when it has none.
std::string StoredUserName(NMConnection* profile);

/// Puts the login into the profile, to be kept by NetworkManager itself: an agent that would be asked for the
/// password may not be there when the profile is dialed again. Nothing for a profile that takes no login.
void StoreLogin(NMConnection* profile, const Login& login);

/// The name of the profile's setting that the login is kept in, together with other secrets; empty without a
/// login.
std::string LoginSetting(NMConnection* profile);

} // namespace korvalin
