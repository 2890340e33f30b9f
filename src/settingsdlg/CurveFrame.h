#pragma once

#include "display/HistorySample.h"

#include <QButtonGroup>
#include <QGroupBox>

#include <array>
#include <cstdint>

class QCheckBox;
class QGridLayout;
class QRadioButton;

namespace korvalin {

class ColorField;

/// The eight curves of one direction: whether each is shown, its colour, and which one's rate is shown as a
/// text.
class CurveFrame : public QGroupBox {
    Q_OBJECT

  public:
    /// Numbers of the captions in the window's section.
    struct TextNumbers {
        int Span;
        int Color;
        int Choice;
        int PresetChoice;
    };

    explicit CurveFrame(QWidget* parent = nullptr);

    /// Makes the controls: box, lblColor and optText with `direction` ("DL", "UL") and an index in their
    /// names.
    void SetUp(const QString& direction, const TextNumbers& numbers);

    /// Puts a control below the colours.
    void AddBelow(QWidget& control);

    /// Names the controls for those who cannot see the table; to be called when the language has changed.
    void NameControls(const QString& colorCaption, const QString& choiceCaption);

    void SetShown(std::size_t curve, bool shown);
    void SetColor(std::size_t curve, std::int32_t color);
    /// 1 to 8: the curve whose rate is the text; 0: the preset one.
    void SetChoice(int choice);

  signals:
    void ShownChanged(std::size_t curve, bool shown);
    void ColorClicked(std::size_t curve);
    void ChoiceClicked(int choice);

  private:
    void AddHead(int column, int textNumber);
    void AddCurve(std::size_t curve, const QString& direction);
    void AddChoice(int choice, const QString& direction);

    QGridLayout* rows_;
    std::array<QCheckBox*, RateSlots> boxes_{};
    std::array<ColorField*, RateSlots> fields_{};
    std::array<QRadioButton*, RateSlots + 1> options_{};
    QButtonGroup choices_;
};

} // namespace korvalin
