// Asks for what is to be measured. What is typed is checked by the command line's own code, in the
// background; the equivalent command can be copied. Main thread.
#pragma once

#include "curves/measure_order.h"
#include "curves/order_check.h"

#include <QDialog>
#include <QTimer>

#include <memory>

namespace Ui {
class MeasureDialog;
} // namespace Ui

class MeasureDialog : public QDialog
{
    Q_OBJECT

public:
    explicit MeasureDialog(QWidget* parent = nullptr);
    ~MeasureDialog() override;

    // What was checked last, when it was accepted.
    QStringList words() const;

private:
    MeasureOrder order() const;
    void connectInputs();
    void browse();
    void browseSubtracted();
    QMap<QString, QString> figuresOf(const QString& device) const;
    void showBench();
    void listTheories();
    void scheduleCheck();
    void check();
    void showCheck(const OrderCheck& checked);
    void makeRoom();

    std::unique_ptr<Ui::MeasureDialog> ui;
    QTimer pause; // of typing, before a check
    int checks = 0;
};
