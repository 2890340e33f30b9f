#pragma once

#include "platform/Ras.h"

#include <string>
#include <vector>

using NMClient = struct _NMClient;
using NMConnection = struct _NMConnection;
using NMRemoteConnection = struct _NMRemoteConnection;

namespace korvalin {

/// A profile that can be dialed.
struct DialProfile {
    std::string Name;
    NMRemoteConnection* Profile = nullptr;
};

/// Whether a profile is a dial-up line: mobile broadband, DSL, VPN, and Bluetooth that dials through a
/// telephone.
bool IsDialUp(NMConnection* profile);

/// NetworkManager's profiles that are dial-up lines, each name once; see UniqueNames. The profiles belong to
/// `client`. Empty without a client.
std::vector<DialProfile> ReadDialProfiles(NMClient* client);

/// The profile of an entry; null when the phonebook has none of that name.
NMRemoteConnection* FindProfile(NMClient* client, const std::string& entryName);

/// What is told about a profile. The number of a mobile-broadband profile is the one that is dialed and the
/// access point behind it, "*99# (internet)", as either leads to another provider; one that names no number
/// has the access point alone.
PhoneEntry DescribeProfile(NMConnection* profile);

} // namespace korvalin
