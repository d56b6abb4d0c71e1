// Showing a value in an input that somebody may be typing in. A refresh that comes from elsewhere
// leaves a text that is no value yet alone.
#pragma once

#include <QDoubleSpinBox>
#include <QLineEdit>
#include <QSpinBox>

inline double asShownBy(const QDoubleSpinBox& box, double value)
{
    const double rounded = QString::number(value, 'f', box.decimals()).toDouble();
    return qBound(box.minimum(), rounded, box.maximum());
}

inline int asShownBy(const QSpinBox& box, int value)
{
    return qBound(box.minimum(), value, box.maximum());
}

// A box that has this value is left alone.
template <class SpinBox, class Number> void showNumber(SpinBox& box, Number value)
{
    if (box.value() != asShownBy(box, value)) {
        box.setValue(value);
    }
}

// A line is being typed in from its first change on until the one who takes its text in calls
// setModified(false).
inline void showText(QLineEdit& line, const QString& text)
{
    if (!line.hasFocus() || !line.isModified()) {
        line.setText(text);
    }
}
