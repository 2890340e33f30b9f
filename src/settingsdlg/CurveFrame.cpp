#include "settingsdlg/CurveFrame.h"

#include "forms/ColorField.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QLabel>
#include <QRadioButton>

namespace korvalin {
namespace {

enum Column { SpanColumn, ColorColumn, ChoiceColumn };

// Of the text that ApplyFormTexts puts on the control.
void Mark(QWidget& control, int textNumber) {
    control.setProperty("Tag", QStringLiteral("#LngNo:%1").arg(textNumber));
}

} // namespace

CurveFrame::CurveFrame(QWidget* parent) : QGroupBox(parent), rows_(new QGridLayout(this)) {
    rows_->setHorizontalSpacing(24);
    rows_->setVerticalSpacing(3);
    rows_->setColumnStretch(ChoiceColumn, 1);
    connect(&choices_, &QButtonGroup::idClicked, this, &CurveFrame::ChoiceClicked);
}

void CurveFrame::SetUp(const QString& direction, const TextNumbers& numbers) {
    AddHead(SpanColumn, numbers.Span);
    AddHead(ColorColumn, numbers.Color);
    AddHead(ChoiceColumn, numbers.Choice);
    for (std::size_t curve = 0; curve < RateSlots; ++curve)
        AddCurve(curve, direction);
    AddChoice(0, direction);
    Mark(*options_[0], numbers.PresetChoice);
}

void CurveFrame::AddHead(int column, int textNumber) {
    auto* head = new QLabel(this);
    Mark(*head, textNumber);
    rows_->addWidget(head, 0, column);
}

void CurveFrame::AddCurve(std::size_t curve, const QString& direction) {
    const int row = static_cast<int>(curve) + 1;
    boxes_[curve] = new QCheckBox(QString::number(RateSpans[curve]), this);
    boxes_[curve]->setObjectName(QStringLiteral("box%1%2").arg(direction).arg(curve));
    rows_->addWidget(boxes_[curve], row, SpanColumn);
    connect(boxes_[curve], &QCheckBox::toggled, this,
            [this, curve](bool shown) { emit ShownChanged(curve, shown); });

    fields_[curve] = new ColorField(this);
    fields_[curve]->setObjectName(QStringLiteral("lblColor%1%2").arg(direction).arg(curve));
    rows_->addWidget(fields_[curve], row, ColorColumn);
    connect(fields_[curve], &ColorField::clicked, this, [this, curve] { emit ColorClicked(curve); });

    AddChoice(row, direction);
}

void CurveFrame::AddChoice(int choice, const QString& direction) {
    auto* option = new QRadioButton(this);
    option->setObjectName(QStringLiteral("optText%1%2").arg(direction).arg(choice));
    choices_.addButton(option, choice);
    options_[static_cast<std::size_t>(choice)] = option;
    // The preset one stands below those of the curves.
    rows_->addWidget(option, choice == 0 ? static_cast<int>(RateSlots) + 1 : choice, ChoiceColumn);
}

void CurveFrame::AddBelow(QWidget& control) {
    rows_->addWidget(&control, static_cast<int>(RateSlots) + 1, SpanColumn, 1, 2, Qt::AlignLeft);
}

void CurveFrame::NameControls(const QString& colorCaption, const QString& choiceCaption) {
    for (std::size_t curve = 0; curve < RateSlots; ++curve) {
        const QString span = QLatin1Char(' ') + boxes_[curve]->text();
        fields_[curve]->setAccessibleName(colorCaption + span);
        options_[curve + 1]->setAccessibleName(choiceCaption + span);
    }
}

void CurveFrame::SetShown(std::size_t curve, bool shown) {
    boxes_.at(curve)->setChecked(shown);
}

void CurveFrame::SetColor(std::size_t curve, std::int32_t color) {
    fields_.at(curve)->SetColor(color);
}

void CurveFrame::SetChoice(int choice) {
    options_.at(static_cast<std::size_t>(choice))->setChecked(true);
}

} // namespace korvalin
