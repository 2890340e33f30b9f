#include "base/Locale.h"
#include "base/Text.h"
#include "cli/Commands.h"
#include "cli/KnownAliases.h"
#include "cli/UseOfLines.h"
#include "program/Program.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <utility>

namespace korvalin {
namespace {

using Json = nlohmann::ordered_json;

constexpr const char* dayPattern = "yyyy-mm-dd";

// Three digits at most, in the unit that fits.
std::string ShortBytes(double bytes) {
    constexpr const char* units[] = {"B", "kB", "MB", "GB", "TB"};
    std::size_t unit = 0;
    while (bytes >= 999.5 && unit + 1 < std::size(units)) {
        bytes /= 1000;
        ++unit;
    }
    return fmt::format("{:.{}f} {}", bytes, unit > 0 && bytes < 9.95 ? 1 : 0, units[unit]);
}

std::string ShortHours(Date span) {
    const auto minutes = static_cast<std::int64_t>(std::round(span * SecondsPerDay / 60));
    return fmt::format("{}:{:02} h", minutes / 60, minutes % 60);
}

std::string LeftText(const AliasUse& use) {
    std::string text;
    if (use.Volume.HasAllowance())
        text += fmt::format("  left {} ({} a day)", ShortBytes(use.Volume.Left()),
                            ShortBytes(use.Volume.LeftPerDay()));
    if (use.Online.HasAllowance()) text += "  left " + ShortHours(use.Online.Left());
    return text;
}

std::string StatusText(double received, double transmitted, const AliasUse& use) {
    const std::string forecast =
        use.Volume.HasForecast ? "  forecast " + ShortBytes(use.Volume.Forecast()) : std::string();
    return fmt::format("\u2193 {}/s \u2191 {}/s  today {}  period {}{}{}", ShortBytes(received),
                       ShortBytes(transmitted), ShortBytes(use.Volume.Today), ShortBytes(use.Volume.Used),
                       LeftText(use), forecast);
}

Json MeasureAsJson(const AllowanceUse& use, double unit) {
    const auto whole = [unit](double value) { return static_cast<std::int64_t>(std::round(value * unit)); };
    Json json = {{"used", whole(use.Used)}, {"today", whole(use.Today)}};
    if (use.HasForecast) {
        json["mean_per_day"] = whole(use.MeanPerDay);
        json["forecast"] = whole(use.Forecast());
    }
    if (!use.HasAllowance()) return json;
    json["allowance"] = whole(use.Allowance);
    json["left"] = whole(use.Left());
    json["left_per_day"] = whole(use.LeftPerDay());
    return json;
}

Json UseAsJson(const AliasUse& use) {
    return {{"alias", use.Alias},
            {"period_begin", FormatPattern(use.PeriodBegin, dayPattern)},
            {"period_end", FormatPattern(use.PeriodEnd, dayPattern)},
            {"fraction_elapsed", use.FractionElapsed},
            {"provider_correction_bytes", static_cast<std::int64_t>(use.Correction)},
            {"bytes", MeasureAsJson(use.Volume, 1)},
            {"seconds", MeasureAsJson(use.Online, SecondsPerDay)}};
}

// How an allowance stands, the graver the later.
enum class Standing { Unlimited, Fine, Tight, Over };

// What a panel colours its text by.
constexpr const char* standingNames[] = {"unlimited", "fine", "tight", "over"};

Standing StandingOf(const AllowanceUse& use) {
    if (!use.HasAllowance()) return Standing::Unlimited;
    if (use.Used >= use.Allowance) return Standing::Over;
    return use.Forecast() > use.Allowance ? Standing::Tight : Standing::Fine;
}

// Of volume and hours what runs out first.
const AllowanceUse& GraverOf(const AliasUse& use) {
    const auto gravity = [](const AllowanceUse& measure) {
        return std::pair(StandingOf(measure), measure.Percent());
    };
    return gravity(use.Online) > gravity(use.Volume) ? use.Online : use.Volume;
}

} // namespace

int PrintStatus(Program& program, const std::string& alias, bool asJson, bool watch) {
    UseOfLines figures(program);
    do {
        figures.Renew();
        if (!IsKnownAlias(program, alias)) return ExitUsage;
        double received = 0;
        double transmitted = 0;
        for (const LineFigures& line : figures.Lines()) {
            received += line.Received;
            transmitted += line.Transmitted;
        }
        const AliasUse use = figures.Of(alias);
        const std::string text = StatusText(received, transmitted, use);
        if (asJson) {
            const AllowanceUse& graver = GraverOf(use);
            Json json = {{"text", text},
                         {"class", standingNames[static_cast<int>(StandingOf(graver))]},
                         {"percentage", std::min(std::round(graver.Percent()), 100.0)},
                         {"received_per_second", std::round(received)},
                         {"transmitted_per_second", std::round(transmitted)}};
            json.update(UseAsJson(use));
            // A name may hold any bytes; one that is no UTF-8 must not end the output.
            fmt::print("{}\n", json.dump(-1, ' ', false, Json::error_handler_t::replace));
        } else {
            fmt::print("{}\n", text);
        }
    } while (std::fflush(stdout) == 0 && watch);
    return EXIT_SUCCESS;
}

int TakeProvidersFigure(Program& program, const std::string& alias, std::optional<double> megabytes) {
    UseOfLines figures(program);
    figures.Renew();
    if (!IsKnownAlias(program, alias)) return ExitUsage;
    const std::size_t index = program.aliases.AliasIndex(alias);
    if (index == 0) {
        fmt::print(stderr, "An alias is needed\n");
        return ExitUsage;
    }
    const double counted = program.monthSums.TakeProvidersFigure(index, megabytes);
    const double correction = megabytes ? std::round(*megabytes - counted) : 0;
    const AliasUse use = program.monthSums.UseOf(index);
    const double stored = use.Correction / BytesPerAllowanceUnit;
    fmt::print("{}: counted {:.0f} MB, corrected by {:+.0f} MB, used {:.0f} MB till {}\n",
               EscapeControls(use.Alias), counted, stored, use.Volume.Used / BytesPerAllowanceUnit,
               FormatPattern(use.PeriodEnd, dayPattern));
    if (stored == correction) return EXIT_SUCCESS;
    fmt::print(stderr, "A correction by {:+.0f} MB could not be stored.\n", correction);
    return EXIT_FAILURE;
}

} // namespace korvalin
