#pragma once

#include <QJsonObject>
#include <QJsonValue>
#include <QString>

// Where results and messages go: results on stdout, as tables or, with --json, as JSON; messages on
// stderr.
class Output {
public:
    explicit Output(bool json) : m_json(json) {}

    bool isJson() const { return m_json; }

    // Text that is safe already, e.g. a table.
    void text(const QString& text) const;
    // One JSON document: over several lines for people, on one line with --json.
    void json(const QJsonValue& value) const;
    // One line on stdout at once, for output that goes on for long.
    void line(const QString& text) const;
    // What was done, for people; nothing with --json.
    void done(const QString& message) const;
    static void message(const QString& message);

    static QByteArray compact(const QJsonValue& value);

private:
    bool m_json;
};
