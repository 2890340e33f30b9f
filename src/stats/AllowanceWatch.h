#pragma once

#include "stats/Forecast.h"

#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace korvalin {

class Aliases;
class Clock;
class Errors;
class Language;
class MonthSums;
class Notifier;
class Settings;

/// The percentages of "80,95 100" in ascending order; what is none is left out.
std::vector<int> Percentages(const std::string& text);

/// Warns the user of allowances that run out: at each of an alias's percentages, and when the forecast passes
/// the allowance. Each once a period, which the settings remember over restarts and for other instances.
class AllowanceWatch {
  public:
    struct Parts {
        korvalin::Settings& Settings;
        korvalin::Aliases& Aliases;
        korvalin::MonthSums& MonthSums;
        korvalin::Language& Language;
        korvalin::Errors& Errors;
        korvalin::Clock& Clock;
    };
    explicit AllowanceWatch(const Parts& parts) : parts_(parts) {}

    /// Until then nobody is warned.
    void Plug(Notifier& notifier) { notifier_ = &notifier; }

    /// To be called often; looks once a minute.
    void PassEnded();

    void Check();

  private:
    using Marks = std::set<std::string, std::less<>>;
    void Check(const AliasUse& use);
    Marks Told(const AliasUse& use);
    void Remember(const AliasUse& use, const Marks& told);
    /// What is due of a measure and not told yet becomes part of `told`; the text of the gravest.
    std::string Due(std::string_view measure, const AllowanceUse& use, const std::vector<int>& percentages,
                    Marks& told) const;

    Parts parts_;
    Notifier* notifier_ = nullptr;
    double lastCheck_ = 0;                    // seconds awake
    std::map<std::string, std::string> told_; // by alias, as the settings should have it
};

} // namespace korvalin
