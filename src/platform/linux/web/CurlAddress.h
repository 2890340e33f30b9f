#pragma once

#include "platform/linux/web/CurlLibrary.h"

#include <string>

namespace korvalin {

/// An address and the account in it, taken apart and decoded.
struct CurlAddress {
    /// What is no address is left as it is: it leads nowhere.
    CurlAddress(const CurlLibrary& library, const std::string& address);

    std::string WithoutAccount;
    std::string UserName, Password;
};

} // namespace korvalin
