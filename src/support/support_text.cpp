#include "support/support_text.h"

#include <QTextStream>
#include <QUrl>

QString supportText(const ProductFacts& product, const QList<SystemSection>& system,
                    const QList<DriverSection>& drivers)
{
    QString text;
    QTextStream out(&text);
    out << "*** Global Setup ***\n"
        << "Product: " << product.product << '\n'
        << "Version: " << product.version << '\n'
        << "Date: " << product.date << "\n\n";
    for (const SystemSection& section : system) {
        out << "*** " << section.first << " ***\n";
        for (const KeyValue& row : section.second) {
            out << row.first << ": " << row.second << '\n';
        }
        out << '\n';
    }
    for (const DriverSection& section : drivers) {
        out << "*** " << section.first << " ***\n";
        for (const QString& line : section.second) {
            out << line << '\n';
        }
        out << '\n';
    }
    out.flush();
    return text;
}

QString supportMailLink(const QString& address, const QString& subject, const QString& text)
{
    const auto encoded = [](const QString& part) {
        return QString::fromLatin1(QUrl::toPercentEncoding(part));
    };
    const QString body = QStringLiteral("<put your message here>\n\n"
                                        "----------------------------------------\n") +
                         text;
    return QStringLiteral("mailto:") + address + QStringLiteral("?subject=") + encoded(subject) +
           QStringLiteral("&body=") + encoded(body);
}
