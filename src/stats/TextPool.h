// Texts of a million records: one allocation for thousands of them, eight bytes where one is used.
#pragma once

#include <cstddef>
#include <memory>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace korvalin {

/// A text that lives in a TextPool; empty when it was never set. As cheap to copy as a pointer.
class PooledText {
  public:
    PooledText() = default;

    /// Valid as long as its pool.
    std::string_view View() const;
    operator std::string_view() const { return View(); }
    bool Empty() const { return View().empty(); }

    /// Whether both are one and the same text of a pool. Two texts of one pool's Intern are equal exactly
    /// then.
    bool Is(PooledText other) const { return stored_ == other.stored_; }

    /// Distinguishes the texts of a pool, for tables of them.
    const void* Identity() const { return stored_; }

  private:
    friend class TextPool;
    explicit PooledText(const char* stored) : stored_(stored) {}

    const char* stored_ = nullptr; // four bytes of length, then the characters
};

/// Owns texts and frees them all at once.
class TextPool {
  public:
    /// A copy of the text, always a new one: for texts that hardly ever repeat.
    PooledText Store(std::string_view text);

    /// The one copy of this text.
    PooledText Intern(std::string_view text);

  private:
    struct Block {
        std::unique_ptr<char[]> Bytes;
        std::size_t Used, Size;
    };
    struct Hash {
        using is_transparent = void;
        std::size_t operator()(std::string_view text) const { return std::hash<std::string_view>()(text); }
    };
    struct Equal {
        using is_transparent = void;
        bool operator()(std::string_view left, std::string_view right) const { return left == right; }
    };

    PooledText& RecentLike(std::string_view text);

    std::vector<Block> blocks_;
    std::unordered_set<PooledText, Hash, Equal> interned_;
    std::vector<PooledText> recent_; // asked before the table: few names serve a million records
};

} // namespace korvalin
