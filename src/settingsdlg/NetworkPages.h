#pragma once

#include "forms/Styles.h"
#include "settingsdlg/NetworkTableModel.h"

#include <QObject>

namespace Ui {
class frmEinstellungen;
}

namespace korvalin {

class Internet;
class Language;
class NetworkTables;
struct Locale;

/// The dialog's pages about the machine's network: the tables of adapters and of addresses in one list, which
/// a button refreshes, and the state of the connection.
class NetworkPages : public QObject {
    Q_OBJECT

  public:
    struct Parts {
        Ui::frmEinstellungen& Controls;
        korvalin::NetworkTables& NetworkTables;
        korvalin::Internet& Internet;
        korvalin::Language& Language;
        const korvalin::Locale& Locale;
    };
    explicit NetworkPages(const Parts& parts);

    /// Puts list and button out of sight.
    void Hide();

    void ShowAdapters();
    void ShowAddresses();

    /// Fills the fields of the connection's state.
    void ShowConnection();

    /// Names what has no caption of its own; to be called when the texts have changed.
    void ApplyTexts(const QString& listName);

  private:
    /// What the list shows, anew.
    using Build = TextTable (NetworkPages::*)() const;
    void Show(Build build);
    TextTable AdapterTable() const;
    TextTable AddressTable() const;
    void cmdButton1_Click();
    void FitColumns();
    void CopyRows();

    Parts parts_;
    Ui::frmEinstellungen& ui_;
    RoomyStyle listStyle_;
    NetworkTableModel model_;
    Build build_ = &NetworkPages::AdapterTable;
};

} // namespace korvalin
