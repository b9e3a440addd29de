#include <QJsonArray>
#include <QJsonDocument>

#include "ClientFailure.h"
#include "TextTable.h"
#include "Verbs.h"

namespace {

// What a table shows unless other roles are asked for: the rest is too wide for a screen.
const QStringList TableRoles = {QStringLiteral("type"), QStringLiteral("title"),
                                QStringLiteral("path")};

QJsonValue parseJson(const QString& text) {
    // As an element of a list any value is a document.
    QJsonParseError error;
    const QJsonArray list = QJsonDocument::fromJson('[' + text.toUtf8() + ']', &error).array();
    if (error.error != QJsonParseError::NoError || list.size() != 1)
        throw ClientFailure::usage(QStringLiteral("this is no JSON: %1").arg(text));
    return list.first();
}

QString cell(const QJsonValue& value) {
    if (value.isString())
        return value.toString();
    return value.isNull() || value.isUndefined() ? QString()
                                                 : QString::fromUtf8(Output::compact(value));
}

QString pathArgument(const VerbContext& context) {
    return context.arguments.at(0);
}

} // namespace

void BasicVerbs::paths(VerbContext& context) {
    const QJsonObject& paths = context.device.paths();
    if (context.output.isJson()) {
        context.output.json(paths);
        return;
    }
    TextTable table({QStringLiteral("NAME"), QStringLiteral("PATH")});
    for (auto it = paths.begin(); it != paths.end(); ++it)
        table.addRow({it.key(), it.value().toString()});
    context.output.text(table.text());
}

void BasicVerbs::rows(VerbContext& context) {
    const Arguments& arguments = context.arguments;
    const int from = arguments.number(QStringLiteral("from"), 0, 0);
    const int to = arguments.number(QStringLiteral("to"), Device::LastRow, 0);
    QStringList roles =
        arguments.value(QStringLiteral("roles")).split(QLatin1Char(','), Qt::SkipEmptyParts);
    if (roles.isEmpty() && !context.output.isJson())
        roles = TableRoles;
    const RowsAnswer answer = context.device.rows(pathArgument(context), roles, from, to);
    if (context.output.isJson()) {
        QJsonArray rows;
        for (const QJsonObject& row : answer.rows)
            rows.append(row);
        context.output.json(QJsonObject{{QStringLiteral("title"), answer.title},
                                        {QStringLiteral("rowsCount"), answer.count},
                                        {QStringLiteral("roles"), answer.roles},
                                        {QStringLiteral("rows"), rows}});
        return;
    }
    QStringList titles{QStringLiteral(">ROW")};
    for (const QString& role : qAsConst(roles))
        titles.append(role.toUpper());
    TextTable table(titles);
    for (int i = 0; i < answer.rows.size(); ++i) {
        QStringList cells{QString::number(qMin(from, to) + i)};
        for (const QString& role : qAsConst(roles))
            cells.append(cell(answer.rows.at(i).value(role)));
        table.addRow(cells);
    }
    context.output.text(table.text());
}

void BasicVerbs::set(VerbContext& context) {
    context.output.json(
        context.device.send(pathArgument(context), parseJson(context.arguments.at(1))));
}

void BasicVerbs::value(VerbContext& context) {
    const QString path = pathArgument(context);
    if (context.arguments.positional().size() == 1) {
        context.output.json(context.device.value(path));
        return;
    }
    context.output.json(context.device.setValue(path, parseJson(context.arguments.at(1))));
}

void BasicVerbs::rescan(VerbContext& context) {
    const QJsonObject answer = context.device.send(QStringLiteral("files:rescan"), QJsonObject());
    if (context.output.isJson())
        context.output.json(answer);
    else
        context.output.done(QStringLiteral("looking at the music folder again"));
}
