// Functions that one takes in at a glance, files that one finds one's way in. Forms are counted
// with neither: a tool writes them.
#include "structure/source_files.h"

#include <QRegularExpression>
#include <QtTest>

namespace {

constexpr int mostLinesOfAFunction = 45; // from its first line to its closing brace
constexpr int mostLinesOfAFile = 400;

struct Function
{
    QString name; // its line, as it stands
    int lines;
};

bool isBlankOrComment(const QString& line)
{
    const QString text = line.trimmed();
    return text.isEmpty() || text.startsWith("//");
}

// Whether lines end here what stands before a function, so that the function begins below. The
// braces of a member's initial value don't.
bool endsWhatStandsBefore(const QStringList& lines, int at)
{
    static const QRegularExpression end("([;{}]|^ *(public|protected|private|signals|public slots|"
                                        "private slots):|^#.*)$");
    const QString& line = lines.at(at);
    const bool isInitialValue = line.endsWith('}') && (line.trimmed().startsWith(':') ||
                                                       (at > 0 && lines.at(at - 1).endsWith(',')));
    return isBlankOrComment(line) || (end.match(line).hasMatch() && !isInitialValue);
}

bool isType(const QString& declaration)
{
    static const QRegularExpression type(
        "^(template <.*> ?)?(class|struct|union|enum|namespace|extern)\\b[^()]*$");
    return type.match(declaration).hasMatch();
}

// The functions of a text in the manner of our formatter, which gives the brace of a function a
// line of its own with the indentation of the brace that closes it.
QVector<Function> functionsOf(const QString& text)
{
    const QStringList lines = text.split('\n');
    QVector<Function> functions;
    for (int brace = 1; brace < lines.size(); ++brace) {
        if (lines.at(brace).trimmed() != "{") {
            continue;
        }
        int first = brace;
        while (first > 0 && !endsWhatStandsBefore(lines, first - 1)) {
            --first;
        }
        QString end = lines.at(brace);
        end.replace('{', '}');
        int last = brace;
        while (last + 1 < lines.size() && !lines.at(last).startsWith(end)) {
            ++last;
        }
        const QString declaration = QStringList(lines.mid(first, brace - first)).join(' ');
        if (!isType(declaration.simplified())) {
            functions.append({lines.at(first).trimmed(), last - first + 1});
        }
    }
    return functions;
}

} // namespace

class TestSizes : public QObject
{
    Q_OBJECT

private slots:
    void functionsAreFoundAndMeasured();
    void noFunctionIsLong();
    void noFileIsLong();

private:
    const QVector<SourceFile> files =
        sourceFiles(QStringLiteral(NOTCHBENCH_SOURCE_DIR "/src"), {"*.h", "*.cpp"});
};

void TestSizes::functionsAreFoundAndMeasured()
{
    const QString text = "struct Point\n"
                         "{\n"
                         "    int both() const\n"
                         "    {\n"
                         "        return x + y;\n"
                         "    }\n"
                         "    int x;\n"
                         "};\n"
                         "\n"
                         "// Two lines of declaration.\n"
                         "template <class Number>\n"
                         "Number twice(Number value,\n"
                         "             int times)\n"
                         "{\n"
                         "    const auto one = [] {\n"
                         "        return 1;\n"
                         "    };\n"
                         "    return {value};\n"
                         "}\n"
                         "\n"
                         "Point::Point()\n"
                         "    : x{1}\n"
                         "{\n"
                         "}\n";
    const QVector<Function> functions = functionsOf(text);
    QCOMPARE(functions.size(), 3);
    QCOMPARE(functions.at(0).name, QString("int both() const"));
    QCOMPARE(functions.at(0).lines, 4);
    QCOMPARE(functions.at(1).name, QString("template <class Number>"));
    QCOMPARE(functions.at(1).lines, 9);
    QCOMPARE(functions.at(2).lines, 4);
}

void TestSizes::noFunctionIsLong()
{
    int count = 0;
    QStringList wrong;
    for (const SourceFile& file : files) {
        for (const Function& function : functionsOf(file.text)) {
            ++count;
            if (function.lines > mostLinesOfAFunction) {
                wrong.append(QString("%1: %2 has %3 lines")
                                 .arg(file.path, function.name)
                                 .arg(function.lines));
            }
        }
    }
    QVERIFY2(wrong.isEmpty(), qPrintable(wrong.join('\n')));
    QVERIFY(count > 500); // the tree was found, and the functions in it
}

void TestSizes::noFileIsLong()
{
    QVERIFY(files.size() > 100); // the tree was found
    for (const SourceFile& file : files) {
        const int lines = file.text.count('\n');
        QVERIFY2(lines <= mostLinesOfAFile,
                 qPrintable(QString("%1 has %2 lines").arg(file.path).arg(lines)));
    }
}

QTEST_APPLESS_MAIN(TestSizes)
#include "test_sizes.moc"
