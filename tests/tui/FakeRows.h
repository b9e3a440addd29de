#pragma once

#include "RowReader.h"

// A list in memory that answers when it is told to, so that a test can put something in between.
class FakeRows : public RowReader {
public:
    struct Request {
        int from;
        int to;
        Done done;
    };

    QVector<QJsonObject> list;
    QString title = QStringLiteral("List");
    QVector<Request> waiting;
    QVector<QPair<int, int>> asked; // every range, in order
    QString error;
    int status = 200;

    void read(const QString&, int from, int to, const Done& done) override {
        asked.append({from, to});
        waiting.append({from, to, done});
    }

    // Answers everything that waits, and what is asked because of it.
    void answerAll() {
        while (!waiting.isEmpty())
            answerOne();
    }
    void answerOne() {
        const Request request = waiting.takeFirst();
        RowsAnswer answer;
        answer.error = error;
        answer.status = status;
        answer.title = title;
        answer.count = list.size();
        // Like the device: a range behind the end gives the end.
        const int from = request.from < list.size() ? request.from : qMax(0, list.size() - 1);
        answer.rows = list.mid(from, request.to - from + 1);
        request.done(answer);
    }

    static QJsonObject track(const QString& name) {
        return {{"title", name}, {"type", 3}, {"path", "playlists:item/" + name}};
    }
    static QJsonObject container(const QString& name) {
        return {{"title", name}, {"type", 1}, {"path", "playlists:pl/items/" + name}};
    }
    static QJsonObject header(const QString& name) { return {{"title", name}, {"type", 103}}; }
    // t0, t1, t2 …
    void fill(int count) {
        list.clear();
        for (int i = 0; i < count; ++i)
            list.append(track(QStringLiteral("t%1").arg(i)));
    }
};
