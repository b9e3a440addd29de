#include "Names.h"

#include <algorithm>

#include "Arguments.h"
#include "ClientFailure.h"
#include "PathText.h"

int Names::idBelow(const QString& path, const QString& list) {
    const QStringList components = PathText::components(path);
    if (!path.startsWith(list + QLatin1Char('/')) ||
        components.size() != PathText::components(list).size() + 1)
        return -1;
    bool ok = false;
    const int id = components.last().toInt(&ok);
    return ok ? id : -1;
}

QVector<Named> Names::playlists(const QVector<QJsonObject>& rows, const QString& items) {
    QVector<Named> found = {{QueueId, QStringLiteral("queue")}};
    for (const QJsonObject& row : rows) {
        const int id = idBelow(row.value(QStringLiteral("path")).toString(), items);
        if (id > QueueId)
            found.append({id, row.value(QStringLiteral("title")).toString()});
    }
    return found;
}

QVector<Named> Names::collections(const QVector<QJsonObject>& rows, const QString& items) {
    QVector<Named> found;
    for (const QJsonObject& row : rows) {
        const QString path = row.value(QStringLiteral("path")).toString();
        bool ok = false;
        const int id = PathText::parameter(path, QStringLiteral("clid")).toInt(&ok);
        if (ok && path.section(QLatin1Char('?'), 0, 0) == items)
            found.append({id, row.value(QStringLiteral("title")).toString()});
    }
    return found;
}

Named Names::find(const QVector<Named>& all, const QString& text, const QString& kind) {
    if (text.startsWith(QLatin1Char('#'))) {
        const int id = Arguments::toNumber(text.mid(1), 0, QStringLiteral("an id behind #"));
        const auto known =
            std::find_if(all.begin(), all.end(), [id](const Named& one) { return one.id == id; });
        return known == all.end() ? Named{id, QString()} : *known;
    }
    QVector<Named> found;
    QStringList ids;
    for (const Named& one : all) {
        if (one.name == text) {
            found.append(one);
            ids.append(QStringLiteral("#%1").arg(one.id));
        }
    }
    if (found.isEmpty())
        throw ClientFailure::refused(QStringLiteral("there is no %1 \"%2\"").arg(kind, text));
    if (found.size() > 1)
        throw ClientFailure::refused(QStringLiteral("more than one %1 is called \"%2\": %3")
                                         .arg(kind, text, ids.join(QStringLiteral(", "))));
    return found.first();
}

QString Names::visible(const QString& name) {
    const QVector<uint> letters = name.toUcs4();
    const auto isUnseen = [](uint letter) {
        return QChar::isSpace(letter) || (QChar::category(letter) >= QChar::Other_Control &&
                                          QChar::category(letter) <= QChar::Other_NotAssigned);
    };
    if (!letters.isEmpty() && std::all_of(letters.begin(), letters.end(), isUnseen))
        throw ClientFailure::usage(QStringLiteral("a name needs something that can be seen"));
    return name;
}
