#pragma once

#include "platform/User.h"

namespace korvalin {

/// The name in the user database, else $USER. Looked up once: a directory server may take its time, and the
/// name does not change while the program runs.
class PasswdUser : public User {
  public:
    std::string Name() override;

  private:
    std::string name_;
};

} // namespace korvalin
