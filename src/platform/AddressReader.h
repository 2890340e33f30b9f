#pragma once

#include <optional>
#include <string>

namespace korvalin {

/// An address of the web, taken apart and decoded.
struct AddressParts {
    std::string Scheme; ///< in lower case
    /// The account; empty for what it does not hold.
    std::string UserName, Password;
    /// As it is connected to: an IPv4 address in whatever form as "1.2.3.4", one of IPv6 in brackets.
    std::string Host;
    /// The address without its account, in the form that begins with the scheme and "://".
    std::string WithoutAccount;
};

/// Takes addresses apart exactly as the transfers do, so that nothing is decided or hidden by a rule of its
/// own.
class AddressReader {
  public:
    virtual ~AddressReader() = default;

    /// nullopt for what leads nowhere, and where there is nothing to make transfers with.
    [[nodiscard]] virtual std::optional<AddressParts> Read(const std::string& address) = 0;
};

} // namespace korvalin
