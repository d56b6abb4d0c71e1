// Lines of text files and the fields that they fall into.
#include "base/line_fields.h"

#include <QtTest>

class TestLineFields : public QObject
{
    Q_OBJECT

private slots:
    void lineFallsIntoTrimmedFields_data();
    void lineFallsIntoTrimmedFields();
    void fieldsArePartsOfTheLine();
};

void TestLineFields::lineFallsIntoTrimmedFields_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<char>("separator");
    QTest::addColumn<QStringList>("expected");
    const auto row = [](const char* name, const char* line, char separator,
                        const QStringList& expected) {
        QTest::newRow(name) << QString(line) << separator << expected;
    };
    row("plain", "1;2;3", ';', {"1", "2", "3"});
    row("blanks around", " 1 ;\t2\t; 3\r\n", ';', {"1", "2", "3"});
    row("blanks inside", "1 2;3", ';', {"1 2", "3"});
    row("empty line", "", ';', {""});
    row("nothing but blanks", " \t\r\n", ' ', {""});
    row("empty fields", ";;", ';', {"", "", ""});
    row("blank as separator", "  7 0.5 1 \n", ' ', {"7", "0.5", "1"});
    row("two blanks as separators", "7  1", ' ', {"7", "", "1"});
    row("no separator", "7,1", ';', {"7,1"});
}

void TestLineFields::lineFallsIntoTrimmedFields()
{
    QFETCH(QString, line);
    QFETCH(char, separator);
    QStringList fields;
    for (const QStringRef& field : fieldsOf(line, separator)) {
        fields.append(field.toString());
    }
    QTEST(fields, "expected");
}

void TestLineFields::fieldsArePartsOfTheLine()
{
    const QString line = QStringLiteral(" a; b");
    const QVector<QStringRef> fields = fieldsOf(line, ';');
    QCOMPARE(fields.at(1).string(), &line);
    QCOMPARE(fields.at(1).position(), 4);
}

QTEST_APPLESS_MAIN(TestLineFields)
#include "test_line_fields.moc"
