#include "inet/UpdateManifest.h"

#include "base/Text.h"
#include "platform/Signatures.h"

#include <algorithm>
#include <charconv>

namespace korvalin {
namespace {

constexpr std::string_view signatureWord = "signature ";
constexpr std::string_view heading = "Korvalin update 1";
constexpr std::size_t hashDigits = 64;

/// Takes the lines of a text one by one.
class ManifestLines {
  public:
    explicit ManifestLines(std::string_view text) : rest_(text) {}

    bool AtEnd() const { return rest_.empty(); }
    std::string_view Rest() const { return rest_; }
    std::string_view Next() {
        const std::size_t end = std::min(rest_.find('\n'), rest_.size());
        const std::string_view line = rest_.substr(0, end);
        rest_.remove_prefix(std::min(end + 1, rest_.size()));
        return line;
    }
    /// What stands behind a word on the next line; empty when the line begins otherwise.
    std::string_view NextBehind(std::string_view word) {
        const std::string_view line = Next();
        return line.starts_with(word) ? line.substr(word.size()) : std::string_view();
    }

  private:
    std::string_view rest_;
};

std::optional<UpdateManifest::File> ReadFileLine(std::string_view text) {
    const std::vector<std::string_view> fields = Split(text, ' ', 3);
    if (fields.size() != 3 || fields[1].size() != hashDigits || fields[2].empty()) return std::nullopt;
    UpdateManifest::File file{std::string(fields[2]), 0, std::string(fields[1])};
    const char* const end = fields[0].data() + fields[0].size();
    const auto [read, error] = std::from_chars(fields[0].data(), end, file.Bytes);
    return error == std::errc() && read == end ? std::optional(file) : std::nullopt;
}

// "2.4.1 setup241.exe"
std::optional<UpdateOffer> ReadProgramLine(std::string_view text) {
    const std::vector<std::string_view> fields = Split(text, ' ', 2);
    const auto version = ReadVersion(fields.front());
    if (!version || fields.size() != 2) return std::nullopt;
    return UpdateOffer{*version, std::string(fields.back())};
}

std::optional<UpdateManifest> ReadSigned(std::string_view text) {
    ManifestLines lines(text);
    if (lines.Next() != heading) return std::nullopt;
    const auto expires = ParseDateIso(lines.NextBehind("expires "));
    const auto automatic = ReadProgramLine(lines.NextBehind("automatic "));
    const auto onDemand = ReadProgramLine(lines.NextBehind("on-demand "));
    if (!expires || !automatic || !onDemand) return std::nullopt;
    UpdateManifest manifest{*expires, *automatic, *onDemand, {}};
    while (!lines.AtEnd()) {
        const auto file = ReadFileLine(lines.NextBehind("file "));
        if (!file) return std::nullopt;
        manifest.Files.push_back(*file);
    }
    return manifest;
}

} // namespace

const UpdateManifest::File* UpdateManifest::Find(std::string_view name) const {
    const auto found =
        std::find_if(Files.begin(), Files.end(), [&](const File& file) { return file.Name == name; });
    return found == Files.end() ? nullptr : &*found;
}

std::optional<UpdateManifest> ReadManifest(std::string_view text, Signatures& signatures,
                                           std::string_view publicKey) {
    ManifestLines lines(text);
    const auto signature = BytesOfHex(lines.NextBehind(signatureWord));
    if (!signature || !signatures.IsValid(lines.Rest(), *signature, publicKey)) return std::nullopt;
    return ReadSigned(lines.Rest());
}

std::optional<std::string> BytesOfHex(std::string_view digits) {
    if (digits.size() % 2 != 0) return std::nullopt;
    std::string bytes;
    for (; !digits.empty(); digits.remove_prefix(2)) {
        unsigned char value = 0;
        const auto [read, error] = std::from_chars(digits.data(), digits.data() + 2, value, 16);
        if (error != std::errc() || read != digits.data() + 2) return std::nullopt;
        bytes += static_cast<char>(value);
    }
    return bytes;
}

} // namespace korvalin
