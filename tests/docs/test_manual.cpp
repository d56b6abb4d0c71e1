// The manual as a whole: pages, links and index hold together, and every text that the main window
// shows is explained somewhere.
#include "structure/source_files.h"

#include <QMap>
#include <QSet>
#include <QXmlStreamReader>
#include <QtTest>

namespace {

const QString manualFolder = QStringLiteral(NOTCHBENCH_SOURCE_DIR "/docs/manual/");

QSet<QString> asSet(const QStringList& list)
{
    return QSet<QString>(list.begin(), list.end());
}

// The texts of a form: of its labels, buttons, menus and their entries.
QStringList textsOfForm(const QString& path)
{
    QStringList texts;
    QXmlStreamReader form(textOfFile(path));
    QString property;
    while (!form.atEnd()) {
        form.readNext();
        if (form.isStartElement() && form.name() == QLatin1String("property")) {
            property = form.attributes().value("name").toString();
        } else if (form.isStartElement() && form.name() == QLatin1String("string") &&
                   (property == "text" || property == "title")) {
            texts.append(form.readElementText());
        }
    }
    return texts;
}

} // namespace

class TestManual : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void everyPageIsInTheProjectAndItsContents();
    void everyLinkLeadsToAPage();
    void everyPageLeadsToItsNeighbours();
    void everyPictureIsThere();
    void everyTextOfTheMainWindowIsExplained();
    void everyMisleadingReadingHasCauseAndRemedy();
    void everyMarkOfAPointIsExplained();

private:
    QString project;
    QMap<QString, QString> pages; // by file name
};

void TestManual::initTestCase()
{
    project = textOfFile(manualFolder + "notchbench.qhp");
    const QStringList names = QDir(manualFolder).entryList({"*.html"});
    for (const QString& name : names) {
        pages[name] = textOfFile(manualFolder + name);
    }
    QVERIFY(pages.size() > 5);
}

void TestManual::everyPageIsInTheProjectAndItsContents()
{
    const QSet<QString> listed = asSet(allMatches(project, "<file>([^<]*\\.html)</file>"));
    const QSet<QString> inContents = asSet(allMatches(project, "<section [^>]*ref=\"([^\"]*)\""));
    QCOMPARE(listed, asSet(pages.keys()));
    QCOMPARE(inContents, listed);
}

void TestManual::everyLinkLeadsToAPage()
{
    QMap<QString, QStringList> linksOf;
    linksOf["index.html"] = allMatches(project, "<keyword [^>]*ref=\"([^\"]*)\"");
    for (auto page = pages.begin(); page != pages.end(); ++page) {
        linksOf[page.key()] += allMatches(page.value(), "href=\"([^\"]*\\.html[^\"]*)\"");
    }
    int followed = 0;
    for (auto links = linksOf.begin(); links != linksOf.end(); ++links) {
        followed += links.value().size();
        for (const QString& link : links.value()) {
            const QString target = link.section('#', 0, 0);
            const QString anchor = link.section('#', 1);
            QVERIFY2(pages.contains(target), qPrintable(links.key() + " -> " + link));
            QVERIFY2(anchor.isEmpty() || pages[target].contains("id=\"" + anchor + '"'),
                     qPrintable(links.key() + " -> " + link));
        }
    }
    QVERIFY(followed > 20);
}

void TestManual::everyPageLeadsToItsNeighbours()
{
    // The first section is the manual as a whole.
    const QStringList order = allMatches(project, "<section [^>]*ref=\"([^\"]*)\"").mid(1);
    for (int i = 0; i < order.size(); ++i) {
        const QString foot = pages[order.at(i)].section("class=\"pages\"", 1);
        const QStringList before = i > 0 ? order.mid(i - 1, 1) : QStringList();
        QCOMPARE(allMatches(foot, "href=\"([^\"]*)\""), before + order.mid(i + 1, 1));
    }
}

void TestManual::everyPictureIsThere()
{
    QSet<QString> shown;
    for (auto page = pages.begin(); page != pages.end(); ++page) {
        for (const QString& picture : allMatches(page.value(), "<img src=\"([^\"]*)\"")) {
            QVERIFY2(QFile::exists(manualFolder + "../images/" + picture),
                     qPrintable(page.key() + " -> " + picture));
            shown.insert(picture);
        }
    }
    QVERIFY(shown.size() > 5);
    QCOMPARE(asSet(allMatches(project, "<file>([^<]*\\.png)</file>")), shown);
}

void TestManual::everyTextOfTheMainWindowIsExplained()
{
    const QStringList withoutMeaning{"--.--",           "MHz",  "kHz", "dB",
                                     "Phase/Magn File", "Load", "I",   "Q"};
    QString manual = pages.values().join(' ');
    manual.replace(QRegularExpression("\\s+"), " ");
    const QStringList texts =
        textsOfForm(QStringLiteral(NOTCHBENCH_SOURCE_DIR "/src/app/main_window.ui"));
    QVERIFY(texts.size() > 30);
    for (const QString& text : texts) {
        bool isNumber = false; // a row of the FFT lengths
        text.toInt(&isNumber);
        QVERIFY2(isNumber || withoutMeaning.contains(text) ||
                     manual.contains(text.toHtmlEscaped(), Qt::CaseInsensitive),
                 qPrintable(text));
    }
}

void TestManual::everyMisleadingReadingHasCauseAndRemedy()
{
    const QString table =
        pages["trust.html"].section("id=\"misleading\"", 1).section("</table>", 0, 0);
    const QStringList rows = table.split("<tr>").mid(2); // after the head
    for (const char* reading : {"0.00 / 0.00 / 0.00", "near 0 on one side", "NPR that stops rising",
                                "NPR that is too good", "a reading that doesn't move"}) {
        QVERIFY2(table.contains('>' + QString(reading) + "</td>"), reading);
    }
    QVERIFY(rows.size() >= 10);
    int groupLeft = 0; // rows that share the reading of a row before
    for (const QString& row : rows) {
        QCOMPARE(row.count("<td"), groupLeft > 0 ? 2 : 3);
        const QStringList span = allMatches(row, "rowspan=\"(\\d+)\"");
        groupLeft = span.isEmpty() ? qMax(0, groupLeft - 1) : span.first().toInt() - 1;
    }
    QCOMPARE(groupLeft, 0);
}

void TestManual::everyMarkOfAPointIsExplained()
{
    const QString source =
        textOfFile(QStringLiteral(NOTCHBENCH_SOURCE_DIR "/src/campaign/npr_result.cpp"));
    const QString words = source.section("namespace PointMark {", 1).section("\n}", 0, 0);
    const QStringList marks = allMatches(words, "QStringLiteral\\(\"([^\"]*)\"\\)");
    QVERIFY(marks.contains("few-peaks"));
    const QString table =
        pages["decision.html"].section("id=\"marks\"", 1).section("</table>", 0, 0);
    for (const QString& mark : marks) {
        QVERIFY2(table.contains("<td><code>" + mark + "</code></td>"), qPrintable(mark));
    }
}

QTEST_APPLESS_MAIN(TestManual)
#include "test_manual.moc"
