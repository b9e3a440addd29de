#pragma once

#include <QElapsedTimer>
#include <QJsonObject>
#include <QMap>
#include <QObject>
#include <QStringList>

#include "AsyncApi.h"
#include "BrowseRow.h"

// What plays, as the device publishes it, and what can be asked of it. Owned by the program; a
// refusal is reported by failed().
class PlayerModel : public QObject {
    Q_OBJECT
public:
    // `paths`: the device's paths by the names of their functions.
    PlayerModel(const QJsonObject& paths, AsyncApi* api);

    // The values that have events only while a client watches them.
    QStringList watched() const;
    // Reads everything again; without a player nothing is asked. `done` gets the first refusal in
    // the order of the values, an answer without an error when there was none.
    void refresh(bool isPresent, const AsyncApi::Answered& done = {});
    // The names of the functions of all paths that are read.
    static QStringList functions();
    void apply(const QString& path, const QJsonObject& value);

    bool isPresent() const { return m_isPresent; }
    bool isPlaying() const { return m_state == QLatin1String("playing"); }
    bool isActive() const { return m_isPresent && m_state != QLatin1String("stopped"); }
    QString state() const { return m_state; }
    // What plays, an empty row when nothing does.
    BrowseRow track() const;
    QJsonObject container() const;
    qint64 position() const; // milliseconds, running on while it plays
    qint64 duration() const { return m_duration; }
    int volume() const { return m_volume; }
    QString mode() const { return m_mode; }
    // Empty when nothing has been announced to follow.
    QString nextTitle() const { return m_nextTitle; }
    // What the play logic in charge publishes, also while nothing plays.
    const QJsonObject& data() const { return m_data; }
    // Why the track cannot be played, empty when it can.
    QString error() const;
    bool isCurrent(const BrowseRow& row) const;

    void playContainer(const QJsonObject& container, const BrowseRow& track, int index);
    void toggle();
    void next();
    void previous();
    // From 0 to 100, and from the track's beginning to its end. Steps that come faster than the
    // device answers are taken together.
    void changeVolume(int by);
    void seekBy(int seconds);

Q_SIGNALS:
    void changed();
    void failed(const QString& message);

private:
    struct Value {
        const char* function;
        void (PlayerModel::*take)(const QJsonObject& value);
    };
    static const QVector<Value>& values();

    void take(int index, const ApiAnswer& answer, QMap<int, ApiAnswer>& answers,
              const AsyncApi::Answered& done);

    void takeState(const QJsonObject& value);
    void takeData(const QJsonObject& value);
    void takeMode(const QJsonObject& value);
    void takePosition(const QJsonObject& value);
    void takeDuration(const QJsonObject& value);
    void takeVolume(const QJsonObject& value);
    void takeNext(const QJsonObject& value);
    // A number that a command sets, of which only the latest counts.
    struct Setting {
        const char* function;
        const char* key;
        qint64 latest = 0;
        bool isUnderWay = false;
        bool isDue = false; // the latest is still to be sent
    };
    void set(Setting* setting, qint64 number);
    void sendLatest(Setting* setting);
    bool allows(const char* control) const;
    void send(const char* function, const QJsonObject& value = {});
    QString pathOf(const char* function) const;

    QJsonObject m_paths;
    AsyncApi* m_api;
    bool m_isPresent = false;
    QString m_state = QStringLiteral("stopped");
    QJsonObject m_data;
    QString m_mode;
    QString m_nextTitle;
    qint64 m_duration = 0;
    int m_volume = 100;
    qint64 m_position = 0; // when the clock was set
    QElapsedTimer m_clock;
    Setting m_volumeSetting = {"OrvoPlayerSetVolumePath", "volume"};
    Setting m_seekSetting = {"OrvoPlayerSeekTimePath", "time"};
};
