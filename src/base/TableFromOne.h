#pragma once

#include <cstddef>
#include <vector>

namespace korvalin {

/// A table whose slots count from 1, as lines are numbered for the user.
template <typename T>
class TableFromOne {
  public:
    TableFromOne() = default;
    explicit TableFromOne(std::size_t size) : slots_(size) {}

    /// Slot 1 .. Size(); an index outside throws std::out_of_range.
    T& operator()(std::size_t index) { return slots_.at(index - 1); }
    const T& operator()(std::size_t index) const { return slots_.at(index - 1); }

    std::size_t Size() const { return slots_.size(); }
    void Resize(std::size_t size) { slots_.resize(size); }
    void Append(const T& slot) { slots_.push_back(slot); }

    auto begin() { return slots_.begin(); }
    auto end() { return slots_.end(); }
    auto begin() const { return slots_.begin(); }
    auto end() const { return slots_.end(); }

  private:
    std::vector<T> slots_;
};

} // namespace korvalin
