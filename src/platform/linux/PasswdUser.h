#pragma once

#include "platform/User.h"

namespace korvalin {

class PasswdUser : public User {
  public:
    /// The name of the process's user in the passwd database, else of $USER.
    std::string Name() override;

  private:
    std::string name_; // it does not change while the program runs, and is asked for every second
};

} // namespace korvalin
