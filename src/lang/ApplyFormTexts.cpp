#include "lang/ApplyFormTexts.h"

#include "forms/Loaded.h"
#include "lang/Language.h"
#include "lang/ToolkitTexts.h"

#include <QAbstractButton>
#include <QAction>
#include <QCoreApplication>
#include <QEvent>
#include <QGroupBox>
#include <QLabel>
#include <QMenu>
#include <QTabWidget>

namespace korvalin {
namespace {

// Where "&" marks no access key it would be shown; "&&" stands for the character itself.
QString WithoutAccessKey(const QString& text) {
    QString result;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] == QLatin1Char('&') && ++i == text.size()) break;
        result += text[i];
    }
    return result;
}

QTabWidget* TabsOf(QWidget& page) {
    // Between the tab widget and its page stands a stack.
    QWidget* stack = page.parentWidget();
    auto* tabs = stack == nullptr ? nullptr : qobject_cast<QTabWidget*>(stack->parentWidget());
    return tabs != nullptr && tabs->indexOf(&page) >= 0 ? tabs : nullptr;
}

void SetCaption(QObject& element, const QString& caption) {
    if (auto* action = qobject_cast<QAction*>(&element)) {
        action->setText(caption);
    } else if (auto* menu = qobject_cast<QMenu*>(&element)) {
        menu->setTitle(caption);
    } else if (auto* button = qobject_cast<QAbstractButton*>(&element)) {
        button->setText(caption);
    } else if (auto* group = qobject_cast<QGroupBox*>(&element)) {
        group->setTitle(caption);
    } else if (auto* label = qobject_cast<QLabel*>(&element)) {
        label->setText(label->buddy() != nullptr ? caption : WithoutAccessKey(caption));
    } else if (auto* widget = qobject_cast<QWidget*>(&element)) {
        if (auto* tabs = TabsOf(*widget)) tabs->setTabText(tabs->indexOf(widget), caption);
        if (widget->isWindow()) widget->setWindowTitle(WithoutAccessKey(caption));
    }
}

// The same text answers who points at the control and who asks what it is (Shift+F1).
void Explain(QWidget& widget, const QString& text) {
    widget.setToolTip(text);
    widget.setWhatsThis(text);
}

void SetToolTip(QObject& element, const QString& toolTip) {
    if (auto* action = qobject_cast<QAction*>(&element)) {
        action->setToolTip(toolTip);
        const QObjectList owners = action->associatedObjects();
        for (QObject* owner : owners) {
            if (auto* menu = qobject_cast<QMenu*>(owner)) menu->setToolTipsVisible(true);
        }
    } else if (auto* menu = qobject_cast<QMenu*>(&element)) {
        SetToolTip(*menu->menuAction(), toolTip);
    } else if (auto* widget = qobject_cast<QWidget*>(&element)) {
        if (auto* tabs = TabsOf(*widget)) {
            tabs->setTabToolTip(tabs->indexOf(widget),
                                toolTip); // on the page it would cover all its controls
        } else {
            Explain(*widget, toolTip);
            // Who points at the control means the caption beside it.
            const auto* label = qobject_cast<QLabel*>(widget);
            QWidget* buddy = label != nullptr ? label->buddy() : nullptr;
            if (buddy != nullptr && !buddy->property("Tag").isValid()) Explain(*buddy, toolTip);
        }
    }
}

void ApplyTo(QObject& element, const std::string& section, Language& language) {
    const int number = Language::ParseLngNo(element.property("Tag").toString().toStdString());
    if (number > 0) {
        const auto text = [&](bool toolTip) {
            return QString::fromStdString(language.Lng(section, number, {.Tooltip = toolTip}));
        };
        if (const QString caption = text(false); !caption.isEmpty()) SetCaption(element, caption);
        if (const QString toolTip = text(true); !toolTip.isEmpty()) SetToolTip(element, toolTip);
    }
    for (QObject* child : element.children()) {
        // A window that belongs to this one has a section of its own; a menu has not, though it is a window
        // too.
        const auto* widget = qobject_cast<QWidget*>(child);
        if (widget != nullptr && widget->isWindow() && qobject_cast<QMenu*>(child) == nullptr) continue;
        ApplyTo(*child, section, language);
    }
}

} // namespace

void ApplyFormTexts(QWidget& form, Language& language) {
    ApplyTo(form, form.objectName().toStdString() + "Obj", language);
}

void ApplyTextsToLoadedForms(Language& language) {
    UseToolkitTexts(language);
    const auto forms = LoadedForms();
    for (const QPointer<QWidget>& form : forms) {
        if (!form) continue;
        ApplyFormTexts(*form, language);
        QEvent changed(QEvent::LanguageChange);
        QCoreApplication::sendEvent(form, &changed);
    }
}

} // namespace korvalin
