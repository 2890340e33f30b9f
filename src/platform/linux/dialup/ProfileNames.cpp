#include "platform/linux/dialup/ProfileNames.h"

#include "base/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <numeric>
#include <set>

namespace korvalin {
namespace {

std::string PlainName(const ProfileName& profile) {
    const std::string_view name = Trim(profile.Name);
    return std::string(name.empty() ? std::string_view(profile.Uuid) : name);
}

std::string CountedName(const std::string& name, const std::set<std::string>& taken) {
    for (int count = 2;; ++count) {
        std::string counted = fmt::format("{} ({})", name, count);
        if (!taken.contains(counted)) return counted;
    }
}

} // namespace

std::vector<std::string> UniqueNames(const std::vector<ProfileName>& profiles) {
    std::vector<std::size_t> order(profiles.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::sort(order.begin(), order.end(), [&](std::size_t left, std::size_t right) {
        return profiles[left].Uuid < profiles[right].Uuid;
    });

    std::vector<std::string> names(profiles.size());
    std::set<std::string> taken;
    std::vector<std::size_t> repeated;
    for (const std::size_t i : order) {
        names[i] = PlainName(profiles[i]);
        if (!taken.insert(names[i]).second) repeated.push_back(i);
    }
    for (const std::size_t i : repeated) {
        names[i] = CountedName(names[i], taken);
        taken.insert(names[i]);
    }
    return names;
}

} // namespace korvalin
