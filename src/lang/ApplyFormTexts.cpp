#include "lang/ApplyFormTexts.h"

#include "lang/Language.h"

#include <QAbstractButton>
#include <QAction>
#include <QGroupBox>
#include <QLabel>
#include <QMenu>
#include <QVariant>

namespace korvalin {
namespace {

QString WithoutAccessKey(QString text) { return text.remove(QLatin1Char('&')); }

void SetCaption(QObject& element, const QString& text) {
    if (auto* menu = qobject_cast<QMenu*>(&element)) {
        menu->setTitle(text);
    } else if (auto* action = qobject_cast<QAction*>(&element)) {
        action->setText(text);
    } else if (auto* button = qobject_cast<QAbstractButton*>(&element)) {
        button->setText(text);
    } else if (auto* label = qobject_cast<QLabel*>(&element)) {
        label->setText(label->buddy() != nullptr ? text : WithoutAccessKey(text));
    } else if (auto* box = qobject_cast<QGroupBox*>(&element)) {
        box->setTitle(text);
    } else if (auto* widget = qobject_cast<QWidget*>(&element); widget != nullptr && widget->isWindow()) {
        widget->setWindowTitle(WithoutAccessKey(text));
    }
}

void SetToolTip(QObject& element, const QString& text) {
    if (auto* action = qobject_cast<QAction*>(&element)) {
        action->setToolTip(text);
    } else if (auto* widget = qobject_cast<QWidget*>(&element)) {
        widget->setToolTip(text);
    }
}

void ApplyTo(QObject& element, const std::string& section, Language& language) {
    const int number = Language::ParseLngNo(element.property("Tag").toString().toStdString());
    if (number <= 0) return;
    const std::string caption = language.Lng(section, number);
    if (!caption.empty()) SetCaption(element, QString::fromStdString(caption));
    const std::string tooltip = language.Lng(section, number, true);
    if (!tooltip.empty()) SetToolTip(element, QString::fromStdString(tooltip));
}

} // namespace

void ApplyFormTexts(QWidget& form, Language& language) {
    const std::string section = form.objectName().toStdString() + "Obj";
    ApplyTo(form, section, language);
    for (QObject* element : form.findChildren<QObject*>()) ApplyTo(*element, section, language);
}

} // namespace korvalin
