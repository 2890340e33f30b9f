#include "traffic/TrafficSettings.h"

#include "settings/Settings.h"
#include "traffic/LineRecord.h"

namespace korvalin {
namespace {

// Each setting and the member that holds it, in the order in which they are stored.
template <class Options, class Visit>
void VisitStoredTogether(Options& options, const Visit& visit) {
    visit(Keys::LANProt, options.LanProt);
    visit(Keys::LANByNetwork, options.LanByNetwork);
    visit(Keys::LANVirtual, options.LanVirtual);
    visit(Keys::LANActive, options.LanActive);
}

} // namespace

void LoadTrafficOptions(Settings& settings, TrafficOptions& options) {
    VisitStoredTogether(options, [&](const auto& key, auto& member) { member = settings.Get(key); });
    options.Split = static_cast<SplitDays>(settings.Get(Keys::SplitDays));
}

void StoreTrafficOptions(Settings& settings, const TrafficOptions& options) {
    VisitStoredTogether(options, [&](const auto& key, const auto& member) { settings.Set(key, member); });
}

} // namespace korvalin
