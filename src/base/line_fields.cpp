#include "base/line_fields.h"

QVector<QStringRef> fieldsOf(const QString& line, char separator)
{
    QVector<QStringRef> fields = QStringRef(&line).trimmed().split(QLatin1Char(separator));
    for (QStringRef& field : fields) {
        field = field.trimmed();
    }
    return fields;
}
