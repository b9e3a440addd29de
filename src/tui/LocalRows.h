#pragma once

#include "RowReader.h"

class AsyncApi;

// Rows that this program makes itself: its own menus.
class LocalRows : public RowReader {
public:
    LocalRows(const QString& title, const QVector<QJsonObject>& rows)
        : m_title(title), m_rows(rows) {}

    void read(const QString& path, int from, int to, const Done& done) override;
    // A row that acts, and one that only tells what a key does.
    static QJsonObject action(const QString& title, const QString& path);
    static QJsonObject note(const QString& title, const QString& text);

private:
    QString m_title;
    QVector<QJsonObject> m_rows;
};

// Where everything begins: the trees of the modules that the device has.
class HomeRows : public RowReader {
public:
    HomeRows(AsyncApi* api, const QString& playListsRoot)
        : m_api(api), m_playListsRoot(playListsRoot) {}

    void read(const QString& path, int from, int to, const Done& done) override;

    static QString homePath() { return QStringLiteral("home:"); }
    // A folder, a list of the library, or a track in one of them.
    static bool isMusic(const QString& path);

private:
    AsyncApi* m_api;
    QString m_playListsRoot;
};
