#include "base/Text.h"
#include "cli/Commands.h"
#include "cli/UseOfLines.h"
#include "platform/Files.h"

#include <fmt/format.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

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

void AddFamily(std::string& text, std::string_view name, const char* help, const char* type,
               const std::vector<Sample>& samples) {
    if (samples.empty()) return;
    text += fmt::format("# HELP {} {}\n", name, help);
    if (*type != '\0') text += fmt::format("# TYPE {} {}\n", name, type);
    for (const Sample& sample : samples)
        text +=
            fmt::format("{}{{{}=\"{}\"}} {:.0f}\n", name, sample.Label, LabelText(sample.Name), sample.Value);
}

using OfLine = double LineFigures::*;

void AddLineFamily(std::string& text, const std::vector<LineFigures>& lines, const char* name,
                   const char* help, const char* type, OfLine value) {
    std::vector<Sample> samples;
    for (const LineFigures& line : lines)
        samples.push_back({"line", line.Name, line.*value});
    AddFamily(text, name, help, type, samples);
}

struct AliasFamily {
    const char* Name;
    const char* Help;
    bool (*Has)(const AllowanceUse&);
    double (*Value)(const AllowanceUse&);
};

void AddAliasFamilies(std::string& text, const std::vector<AliasUse>& aliases,
                      AllowanceUse AliasUse::*measure, const char* unit, double scale) {
    const auto always = [](const AllowanceUse&) { return true; };
    const auto hasAllowance = [](const AllowanceUse& use) { return use.HasAllowance(); };
    const AliasFamily families[] = {
        {"korvalin_period_used", "Used in the running billing period.", always,
         [](const AllowanceUse& use) { return use.Used; }},
        {"korvalin_today_used", "Used today.", always, [](const AllowanceUse& use) { return use.Today; }},
        {"korvalin_period_forecast", "What will be used when the period ends.",
         [](const AllowanceUse& use) { return use.HasForecast; },
         [](const AllowanceUse& use) { return use.Forecast(); }},
        {"korvalin_period_allowance", "The allowance of the billing period.", hasAllowance,
         [](const AllowanceUse& use) { return use.Allowance; }},
        {"korvalin_period_left", "What is left of the allowance.", hasAllowance,
         [](const AllowanceUse& use) { return use.Left(); }}};
    for (const AliasFamily& family : families) {
        std::vector<Sample> samples;
        for (const AliasUse& alias : aliases) {
            const AllowanceUse& use = alias.*measure;
            if (family.Has(use)) samples.push_back({"alias", alias.Alias, family.Value(use) * scale});
        }
        AddFamily(text, fmt::format("{}_{}", family.Name, unit), family.Help, "gauge", samples);
    }
}

// The counters have no TYPE line: the Prometheus text format would want "..._total" in it, OpenMetrics the
// name without "_total", and the file is read by readers of both. Without one both take the samples as
// untyped, and rates can be made of them all the same.
std::string MetricsText(Program& program) {
    UseOfLines figures(program);
    figures.Renew();
    std::string text;
    const std::vector<LineFigures> lines = figures.Lines();
    AddLineFamily(text, lines, "korvalin_line_received_bytes_total",
                  "Bytes that the open connection received.", "", &LineFigures::BytesReceived);
    AddLineFamily(text, lines, "korvalin_line_transmitted_bytes_total",
                  "Bytes that the open connection transmitted.", "", &LineFigures::BytesTransmitted);
    AddLineFamily(text, lines, "korvalin_line_received_bytes_per_second", "Rate of the last second.", "gauge",
                  &LineFigures::Received);
    AddLineFamily(text, lines, "korvalin_line_transmitted_bytes_per_second", "Rate of the last second.",
                  "gauge", &LineFigures::Transmitted);
    const std::vector<AliasUse> aliases = figures.Aliases();
    AddAliasFamilies(text, aliases, &AliasUse::Volume, "bytes", 1);
    AddAliasFamilies(text, aliases, &AliasUse::Online, "seconds", SecondsPerDay);
    return text += "# EOF\n";
}

} // namespace

// A new file has the permissions that the user gives new files: who collects it is mostly another user. One
// that is replaced keeps its own.
int TellMetrics(Program& program, Files& files, const std::string& file) {
    const std::string text = MetricsText(program);
    if (file.empty()) {
        fmt::print("{}", text);
        return EXIT_SUCCESS;
    }
    if (std::error_code error; !std::filesystem::exists(file, error)) std::ofstream created(file);
    if (files.Replace(file, text)) return EXIT_SUCCESS;
    fmt::print(stderr, "{} cannot be written\n", EscapeControls(file));
    return EXIT_FAILURE;
}

} // namespace korvalin
