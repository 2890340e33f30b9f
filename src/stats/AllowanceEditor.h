#pragma once

#include "stats/StatCells.h"

#include <QObject>

#include <string>

class QLabel;
class QLineEdit;

namespace korvalin {

class Aliases;
class AllowanceBar;
class Language;
class MonthSums;
class Settings;
struct AliasUse;

/// Shows how an alias's allowance is used in its running period, and takes what the provider counts and at
/// which percentages the user is warned.
class AllowanceEditor : public QObject {
    Q_OBJECT

  public:
    struct Controls {
        AllowanceBar& barUse;
        QLabel& lblUse;
        QLabel& lblCorrection;
        QLineEdit& txtProvider;
        QLineEdit& txtWarnAt;
    };
    struct Parts {
        korvalin::Settings& Settings;
        korvalin::Language& Language;
        korvalin::Aliases& Aliases;
        korvalin::MonthSums& MonthSums;
        const korvalin::Locale& Locale;
    };
    AllowanceEditor(const Controls& controls, const Parts& parts);

    /// Shows this alias from now on; none when it is empty.
    void ShowAlias(const std::string& alias);
    /// Shows what is used at this moment.
    void Renew();
    void SetUnit(const VolumeUnit& unit);

  private:
    std::size_t AliasIndex() const;
    void ShowFields();
    void ShowUse(const AliasUse& use);
    void txtProvider_Validate();
    void txtWarnAt_Validate();

    Controls controls_;
    Parts parts_;
    VolumeUnit unit_;
    std::string alias_;
};

} // namespace korvalin
