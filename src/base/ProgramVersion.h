#pragma once

#include <string>

namespace korvalin {

struct ProgramVersion {
    int Major = 0;
    int Minor = 0;
    int Revision = 0;

    /// "V2.1": what versions with the same controls have in common.
    std::string Series() const;

    /// "2.1.7", each number whole.
    std::string Numbers() const;

    /// "V2.1.7". Of a revision of three or more digits only the first two count: the rest tells builds apart.
    std::string Text() const;
};

} // namespace korvalin
