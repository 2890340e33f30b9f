#pragma once

namespace korvalin {

/// Sets a flag and clears it at the end of the scope, however that is left.
class FlagGuard {
  public:
    explicit FlagGuard(bool& flag) : flag_(flag) { flag_ = true; }
    ~FlagGuard() { flag_ = false; }
    FlagGuard(const FlagGuard&) = delete;
    FlagGuard& operator=(const FlagGuard&) = delete;

  private:
    bool& flag_;
};

} // namespace korvalin
