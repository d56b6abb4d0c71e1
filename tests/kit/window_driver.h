// What an operator does to a window, by the names of its objects.
#pragma once

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QScrollBar>
#include <QSpinBox>
#include <QStackedWidget>
#include <QTableView>
#include <QTimer>
#include <QtTest>

class WindowDriver
{
public:
    explicit WindowDriver(QWidget& drivenWindow) : window(drivenWindow) {}

    template <typename Widget> Widget* find(const char* name) const
    {
        auto* widget = window.findChild<Widget*>(QLatin1String(name));
        Q_ASSERT_X(widget != nullptr, "find", name);
        return widget;
    }

    QString text(const char* name) const
    {
        auto* widget = find<QWidget>(name);
        if (auto* label = qobject_cast<QLabel*>(widget)) {
            return label->text();
        }
        if (auto* edit = qobject_cast<QLineEdit*>(widget)) {
            return edit->text();
        }
        if (auto* box = qobject_cast<QAbstractSpinBox*>(widget)) {
            return box->text();
        }
        return qobject_cast<QComboBox*>(widget)->currentText();
    }

    QStringList rowTexts(const char* name) const
    {
        const auto* box = find<QComboBox>(name);
        QStringList texts;
        for (int row = 0; row < box->count(); ++row) {
            texts.append(box->itemText(row));
        }
        return texts;
    }

    bool isEnabled(const char* name) const { return find<QWidget>(name)->isEnabled(); }

    void click(const char* name) const
    {
        auto* button = find<QAbstractButton>(name);
        QTest::mouseClick(button, Qt::LeftButton, Qt::NoModifier, clickPoint(button));
    }

    // Types a value over the old one, in a spin box or a line edit, and leaves it with Enter.
    void type(const char* name, const QString& value) const
    {
        auto* field = find<QWidget>(name);
        field->setFocus();
        if (auto* edit = qobject_cast<QLineEdit*>(field)) {
            edit->selectAll();
        } else {
            qobject_cast<QAbstractSpinBox*>(field)->selectAll();
        }
        QTest::keyClicks(field, value);
        QTest::keyClick(field, Qt::Key_Return);
    }

    // Picks a row of a combo box with its list open.
    void pick(const char* name, int row) const
    {
        auto* box = find<QComboBox>(name);
        box->setFocus();
        QTest::keyClick(box, Qt::Key_Home);
        for (int step = 0; step < row; ++step) {
            QTest::keyClick(box, Qt::Key_Down);
        }
    }

    // Types into a cell of the table, as a double click and Enter do.
    void typeCell(int row, int column, const QString& value) const
    {
        auto* table = find<QTableView>("main_table");
        const QModelIndex index = table->model()->index(row, column);
        table->setCurrentIndex(index);
        table->edit(index);
        auto* editor = table->viewport()->findChild<QLineEdit*>();
        Q_ASSERT_X(editor != nullptr, "typeCell", "no editor");
        editor->selectAll();
        QTest::keyClicks(editor, value);
        QTest::keyClick(editor, Qt::Key_Return);
        // The view commits and then deletes its editor a turn later.
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    QString cell(int row, int column) const
    {
        auto* table = find<QTableView>("main_table");
        return table->model()->index(row, column).data().toString();
    }

    int rowCount() const { return find<QTableView>("main_table")->model()->rowCount(); }

    void trigger(const char* action) const
    {
        window.findChild<QAction*>(QLatin1String(action))->trigger();
    }

    // Runs answer on the next modal dialog of the type, as soon as it stands on the screen.
    template <typename Dialog, typename Answer> void onNext(Answer answer) const
    {
        auto* timer = new QTimer(&window);
        timer->setInterval(5);
        QObject::connect(timer, &QTimer::timeout, &window, [timer, answer] {
            auto* dialog = qobject_cast<Dialog*>(QApplication::activeModalWidget());
            if (dialog != nullptr && dialog->isVisible()) {
                timer->stop();
                timer->deleteLater();
                answer(dialog);
            }
        });
        timer->start();
    }

    struct FileDialogLook
    {
        QString title;
        QString folder;
        QStringList filters;
        QString selectedFilter;
    };

    // The next file dialog gets the name typed in and is accepted; an empty name cancels it.
    void answerFileDialog(const QString& name, FileDialogLook* look = nullptr) const
    {
        onNext<QFileDialog>([name, look](QFileDialog* dialog) {
            if (look != nullptr) {
                *look = {dialog->windowTitle(), dialog->directory().path(), dialog->nameFilters(),
                         dialog->selectedNameFilter()};
            }
            if (name.isEmpty()) {
                dialog->reject();
                return;
            }
            auto* edit = dialog->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
            edit->setText(name);
            QTest::keyClick(edit, Qt::Key_Return);
        });
    }

    QWidget& window;

private:
    static QPoint clickPoint(QAbstractButton* button)
    {
        // Radio buttons and check boxes take clicks on their indicator and text only.
        return {8, button->height() / 2};
    }
};
