#pragma once

#include "base/TableFromOne.h"
#include "platform/Ras.h"

#include <string>

namespace korvalin {

class Errors;
class Internet;
class MessageBoxes;

/// The entries of the system's default phone book.
class PhoneBook {
  public:
    PhoneBook(Ras& ras, Internet& internet, MessageBoxes& messageBoxes, Errors& errors);

    /// Fills `names` with the entries, sorted by their characters, and returns their number. 0 without RAS,
    /// without entries, and on a failure, which is logged. Names that could not be read, which is shown, are
    /// empty.
    std::size_t RASGetEntries(TableFromOne<std::string>& names);

    /// The number of entries alone; 0 as above.
    std::size_t RASGetEntriesCount();

  private:
    Ras& ras_;
    Internet& internet_;
    MessageBoxes& messageBoxes_;
    Errors& errors_;
};

} // namespace korvalin
