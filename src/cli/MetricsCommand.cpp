#include "base/Text.h"
#include "cli/Commands.h"
#include "cli/UseOfLines.h"

#include <fmt/format.h>


namespace korvalin {
namespace {

struct Sample {
    std::string Label;
    std::string Name;
    double Value = 0;
};

std::string LabelText(const std::string& text) {
    const std::string valid = IsValidUtf8(text) ? text : FromWindows1252(text);
    return ReplaceAll(ReplaceAll(ReplaceAll(valid, "\\", "\\\\"), "\"", "\\\""), "\n", "\\n");
}

void PrintFamily(const char* name, const char* help, const char* type, const std::vector<Sample>& samples) {
    if (samples.empty()) return;
    fmt::print("# HELP {} {}\n", name, help);
    if (*type != '\0') fmt::print("# TYPE {} {}\n", name, type);
    for (const Sample& sample : samples)
        fmt::print("{}{{{}=\"{}\"}} {:.0f}\n", name, sample.Label, LabelText(sample.Name), sample.Value);
}

using OfLine = double LineFigures::*;

void PrintLineFamily(const std::vector<LineFigures>& lines, const char* name, const char* help,
                     const char* type, OfLine value) {
    std::vector<Sample> samples;
    for (const LineFigures& line : lines)
        samples.push_back({"line", line.Name, line.*value});
    PrintFamily(name, help, type, samples);
}

struct AliasFamily {
    const char* Name;
    const char* Help;
    bool NeedsAllowance;
    double (*Value)(const AllowanceUse&);
};

void PrintAliasFamilies(const std::vector<AliasUse>& aliases, AllowanceUse AliasUse::*measure,
                        const char* unit, double scale) {
    const AliasFamily families[] = {
        {"korvalin_period_used", "Used in the running billing period.", false,
         [](const AllowanceUse& use) { return use.Used; }},
        {"korvalin_today_used", "Used today.", false, [](const AllowanceUse& use) { return use.Today; }},
        {"korvalin_period_forecast", "What will be used when the period ends.", false,
         [](const AllowanceUse& use) { return use.Forecast(); }},
        {"korvalin_period_allowance", "The allowance of the billing period.", true,
         [](const AllowanceUse& use) { return use.Allowance; }},
        {"korvalin_period_left", "What is left of the allowance.", true,
         [](const AllowanceUse& use) { return use.Left(); }}};
    for (const AliasFamily& family : families) {
        std::vector<Sample> samples;
        for (const AliasUse& alias : aliases) {
            const AllowanceUse& use = alias.*measure;
            if (use.HasAllowance() || !family.NeedsAllowance)
                samples.push_back({"alias", alias.Alias, family.Value(use) * scale});
        }
        PrintFamily(fmt::format("{}_{}", family.Name, unit).c_str(), family.Help, "gauge", samples);
    }
}

} // namespace

// Readers of the older text format take a counter's type by its full name, those of the newer one by the name
// without "_total". Without a type both take it, and rates are made of it all the same.
void PrintMetrics(Program& program) {
    UseOfLines figures(program);
    figures.Renew();
    const std::vector<LineFigures> lines = figures.Lines();
    PrintLineFamily(lines, "korvalin_line_received_bytes_total", "Bytes that the open connection received.",
                    "", &LineFigures::BytesReceived);
    PrintLineFamily(lines, "korvalin_line_transmitted_bytes_total",
                    "Bytes that the open connection transmitted.", "", &LineFigures::BytesTransmitted);
    PrintLineFamily(lines, "korvalin_line_received_bytes_per_second", "Rate of the last second.", "gauge",
                    &LineFigures::Received);
    PrintLineFamily(lines, "korvalin_line_transmitted_bytes_per_second", "Rate of the last second.", "gauge",
                    &LineFigures::Transmitted);
    const std::vector<AliasUse> aliases = figures.Aliases();
    PrintAliasFamilies(aliases, &AliasUse::Volume, "bytes", 1);
    PrintAliasFamilies(aliases, &AliasUse::Online, "seconds", SecondsPerDay);
    fmt::print("# EOF\n");
}

} // namespace korvalin
