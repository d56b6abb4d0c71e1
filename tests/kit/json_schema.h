// Checks JSON against a schema, as far as ours go: a keyword that isn't known here is an error of
// the schema, so that nothing in it goes unchecked.
#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QRegularExpression>
#include <QStringList>

#include <algorithm>
#include <cmath>

class JsonSchema
{
public:
    explicit JsonSchema(QJsonObject document) : root(std::move(document)) {}

    // One line for each thing that is wrong.
    QStringList errorsIn(const QJsonValue& value) const { return errors(value, root, "$"); }

private:
    static QString typeOf(const QJsonValue& value)
    {
        switch (value.type()) {
        case QJsonValue::Null:
            return "null";
        case QJsonValue::Bool:
            return "boolean";
        case QJsonValue::Double:
            return "number";
        case QJsonValue::String:
            return "string";
        case QJsonValue::Array:
            return "array";
        case QJsonValue::Object:
            return "object";
        default:
            return "nothing";
        }
    }

    static bool hasType(const QJsonValue& value, const QJsonValue& wanted)
    {
        const QJsonArray types = wanted.isArray() ? wanted.toArray() : QJsonArray{wanted};
        const bool isWhole = value.isDouble() && value.toDouble() == std::floor(value.toDouble());
        return types.contains(typeOf(value)) || (isWhole && types.contains("integer"));
    }

    // A keyword that looks at the value as a whole. Numbers' bounds don't count for other types.
    static bool fits(const QJsonValue& value, const QString& keyword, const QJsonValue& wanted)
    {
        const bool isNumber = value.isDouble();
        const double number = value.toDouble();
        if (keyword == "type") {
            return hasType(value, wanted);
        }
        if (keyword == "const") {
            return value == wanted;
        }
        if (keyword == "enum") {
            return wanted.toArray().contains(value);
        }
        if (keyword == "minimum") {
            return !isNumber || number >= wanted.toDouble();
        }
        if (keyword == "maximum") {
            return !isNumber || number <= wanted.toDouble();
        }
        if (keyword == "exclusiveMinimum") {
            return !isNumber || number > wanted.toDouble();
        }
        if (keyword == "minLength") {
            return !value.isString() || value.toString().size() >= wanted.toInt();
        }
        if (keyword == "pattern") {
            return !value.isString() ||
                   QRegularExpression(wanted.toString()).match(value.toString()).hasMatch();
        }
        if (keyword == "uniqueItems") {
            return isUnique(value.toArray());
        }
        return isAnnotation(keyword);
    }

    static bool isAnnotation(const QString& keyword)
    {
        return QStringList{"$schema", "title", "description"}.contains(keyword);
    }

    static bool isUnique(const QJsonArray& array)
    {
        for (int k = 0; k < array.size(); ++k) {
            for (int other = 0; other < k; ++other) {
                if (array[k] == array[other]) {
                    return false;
                }
            }
        }
        return true;
    }

    QStringList errors(const QJsonValue& value, const QJsonObject& schema,
                       const QString& path) const
    {
        const QStringList ofParts{"required",
                                  "properties",
                                  "patternProperties",
                                  "additionalProperties",
                                  "items",
                                  "contains",
                                  "oneOf",
                                  "if",
                                  "then",
                                  "else"};
        QStringList found;
        for (auto keyword = schema.begin(); keyword != schema.end(); ++keyword) {
            if (!ofParts.contains(keyword.key()) && !fits(value, keyword.key(), keyword.value())) {
                found << path + " fails " + keyword.key();
            }
        }
        if (value.isObject()) {
            found += errorsOfMembers(value.toObject(), schema, path);
        }
        if (value.isArray()) {
            found += errorsOfElements(value.toArray(), schema, path);
        }
        if (schema.contains("oneOf")) {
            const QJsonArray choices = schema["oneOf"].toArray();
            const auto fitting =
                std::count_if(choices.begin(), choices.end(), [&](const QJsonValue& choice) {
                    return errors(value, choice.toObject(), path).isEmpty();
                });
            if (fitting != 1) {
                found << path + " fails oneOf";
            }
        }
        if (schema.contains("if")) {
            const bool holds = errors(value, schema["if"].toObject(), path).isEmpty();
            found += errors(value, schema[holds ? "then" : "else"].toObject(), path);
        }
        return found;
    }

    QStringList errorsOfMembers(const QJsonObject& object, const QJsonObject& schema,
                                const QString& path) const
    {
        QStringList found;
        for (const QJsonValue name : schema["required"].toArray()) {
            if (!object.contains(name.toString())) {
                found << path + " lacks " + name.toString();
            }
        }
        const QJsonObject properties = schema["properties"].toObject();
        const QJsonObject patterns = schema["patternProperties"].toObject();
        for (auto member = object.begin(); member != object.end(); ++member) {
            const QString at = path + '.' + member.key();
            bool isKnown = properties.contains(member.key());
            if (isKnown) {
                found += errors(member.value(), properties[member.key()].toObject(), at);
            }
            for (auto pattern = patterns.begin(); pattern != patterns.end(); ++pattern) {
                if (QRegularExpression(pattern.key()).match(member.key()).hasMatch()) {
                    isKnown = true;
                    found += errors(member.value(), pattern.value().toObject(), at);
                }
            }
            const QJsonValue others = schema["additionalProperties"];
            if (!isKnown && others == QJsonValue(false)) {
                found << at + " isn't known";
            } else if (!isKnown && others.isObject()) {
                found += errors(member.value(), others.toObject(), at);
            }
        }
        return found;
    }

    QStringList errorsOfElements(const QJsonArray& array, const QJsonObject& schema,
                                 const QString& path) const
    {
        QStringList found;
        bool contains = !schema.contains("contains");
        for (int k = 0; k < array.size(); ++k) {
            const QString at = QString("%1[%2]").arg(path).arg(k);
            found += errors(array[k], schema["items"].toObject(), at);
            contains = contains || errors(array[k], schema["contains"].toObject(), at).isEmpty();
        }
        return contains ? found : found << path + " lacks an element";
    }

    const QJsonObject root;
};
