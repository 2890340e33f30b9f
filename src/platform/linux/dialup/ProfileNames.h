#pragma once

#include <string>
#include <vector>

namespace korvalin {

/// What a profile is called and what tells it from all others.
struct ProfileName {
    std::string Name;
    std::string Uuid;
};

/// A name for each profile, in their order, none twice. Blanks around a name are left out; a name of nothing
/// else becomes the identifier. Of profiles of the same name the one with the lowest identifier keeps it, the
/// others are counted, "Name (2)", passing over names that a profile really has.
std::vector<std::string> UniqueNames(const std::vector<ProfileName>& profiles);

} // namespace korvalin
