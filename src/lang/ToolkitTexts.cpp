#include "lang/ToolkitTexts.h"

#include "lang/Language.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QTranslator>

namespace korvalin {
namespace {

// The toolkit names languages by two letters; what is not here stays as the toolkit was written, in English.
QString ToolkitName(const std::string& code) {
    return code == "GER" ? QStringLiteral("de") : QString();
}

} // namespace

void UseToolkitTexts(const Language& language) {
    const QString name = ToolkitName(language.LanguageCode());
    auto* present = qApp->findChild<QTranslator*>();
    if (name.isEmpty() == (present == nullptr) && (present == nullptr || present->objectName() == name))
        return;
    delete present;
    if (name.isEmpty()) return;
    auto* translator = new QTranslator(qApp);
    translator->setObjectName(name);
    const QString folder = QLibraryInfo::path(QLibraryInfo::TranslationsPath);
    if (translator->load(QStringLiteral("qtbase_") + name, folder))
        QCoreApplication::installTranslator(translator);
}

} // namespace korvalin
