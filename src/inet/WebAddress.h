// Addresses of the web, as text.
#pragma once

#include <string>
#include <string_view>

namespace korvalin {

class AddressReader;

/// The address with an account in front of its host, percent-encoded. Left as it is without a user, and when
/// it cannot be read.
std::string WithAccount(AddressReader& reader, const std::string& address, std::string_view user,
                        std::string_view password);

/// The address as it may be shown and logged: without the account that it may hold. Empty when it cannot be
/// read, as nobody knows then what in it is secret.
std::string WithoutAccount(AddressReader& reader, const std::string& address);

/// Whether an address leads to this machine's own loopback interface, by http or https, with or without a
/// port. False for one with an account.
bool IsLoopbackAddress(AddressReader& reader, const std::string& address);

/// "file://..." for a file's absolute path.
std::string FileAddress(std::string_view path);

/// Whether a name can stand behind a folder's address and as a file's name without leading elsewhere:
/// letters, digits, and ".", "_", "-" within.
bool IsPlainFileName(std::string_view name);

} // namespace korvalin
