#pragma once

#include "base/ProgramVersion.h"

#include <optional>
#include <string>
#include <string_view>

namespace korvalin {

/// A program that a page offers.
struct UpdateOffer {
    ProgramVersion Version;
    std::string FileName; ///< as the page has it
};

/// A page of the update site. It is searched for its marks only, without regard to letter case, and may hold
/// anything.
class UpdatePage {
  public:
    enum class Channel { Automatic, OnDemand };

    UpdatePage() = default;
    explicit UpdatePage(std::string text);

    const std::string& Text() const { return text_; }
    /// Whether the page is one of versions at all.
    bool HasNewestRelease() const { return Find("Newest Release") != std::string_view::npos; }
    /// Whether the page says which programs can be replaced.
    bool IsUpgradable() const { return Find("Upgradable") != std::string_view::npos; }

    /// The release in the maker's words, as one line of at most 100 characters; empty when there is none.
    std::string NewestRelease() const;

    /// nullopt when the offer lacks anything or its numbers are none.
    std::optional<UpdateOffer> Offer(Channel channel) const;

    /// What the page tells about the language file, for the code or else for English, as one such line.
    std::string LanguageInformation(std::string_view languageCode) const;

  private:
    std::size_t Find(std::string_view mark, std::size_t from = 0) const;
    std::size_t NumbersAfter(std::string_view mark, std::size_t from) const;
    std::string Value(std::size_t from) const;

    std::string text_;
    std::string lower_; ///< the same in lower case
};

/// "2.4.1": three numbers and nothing else.
std::optional<ProgramVersion> ReadVersion(std::string_view text);

/// Whether the offered version is later than the running one; the first part that differs decides.
bool IsNewer(const ProgramVersion& offered, const ProgramVersion& running);

} // namespace korvalin
