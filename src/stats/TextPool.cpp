#include "stats/TextPool.h"

#include <cstdint>
#include <cstring>
#include <limits>
#include <stdexcept>

namespace korvalin {
namespace {

using Length = std::uint32_t;
constexpr std::size_t blockBytes = 64 * 1024;

} // namespace

std::string_view PooledText::View() const {
    if (stored_ == nullptr) return {};
    Length length = 0;
    std::memcpy(&length, stored_, sizeof length);
    return {stored_ + sizeof length, length};
}

PooledText TextPool::Store(std::string_view text) {
    if (text.empty()) return {};
    if (text.size() > std::numeric_limits<Length>::max()) throw std::length_error("text too long");
    const std::size_t needed = sizeof(Length) + text.size();
    if (blocks_.empty() || blocks_.back().Size - blocks_.back().Used < needed) {
        const std::size_t size = std::max(needed, blockBytes);
        blocks_.push_back({std::make_unique_for_overwrite<char[]>(size), 0, size});
    }
    Block& block = blocks_.back();
    const auto length = static_cast<Length>(text.size());
    char* const stored = block.Bytes.get() + block.Used;
    std::memcpy(stored, &length, sizeof length);
    std::memcpy(stored + sizeof length, text.data(), text.size());
    block.Used += needed;
    return PooledText(stored);
}

// The place of the last text that looks like this one.
PooledText& TextPool::RecentLike(std::string_view text) {
    constexpr std::size_t places = 64;
    if (recent_.empty()) recent_.resize(places);
    const auto first = static_cast<unsigned char>(text.front());
    const auto last = static_cast<unsigned char>(text.back());
    return recent_[(text.size() + first * 3U + last * 5U) % places];
}

PooledText TextPool::Intern(std::string_view text) {
    if (text.empty()) return {};
    PooledText& recent = RecentLike(text);
    if (recent.View() == text) return recent;
    const auto found = interned_.find(text);
    recent = found != interned_.end() ? *found : *interned_.insert(Store(text)).first;
    return recent;
}

} // namespace korvalin
