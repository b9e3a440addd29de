#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include <QJsonArray>
#include <QSet>
#include <QTimer>

#include "AddFolderJob.h"
#include "AsyncApi.h"
#include "EventFeed.h"
#include "Key.h"
#include "LineEditor.h"
#include "ListPlace.h"
#include "LocalRows.h"
#include "PlayerModel.h"
#include "TrackEditor.h"

// One page of an open menu: what the device publishes for a row, or a choice of this program's own.
struct MenuPage {
    // What choosing a row does instead of the row's own action; empty for published menus.
    using Pick = std::function<void(const BrowseRow& row)>;

    std::unique_ptr<RowReader> ownRows; // outlives the place that reads it
    std::unique_ptr<ListPlace> place;
    QString title;
    Pick pick;
};

// A text that is being typed for an editable row.
struct RowEdit {
    BrowseRow row;
    LineEditor line;
};

// A message at the foot of the screen.
struct Notice {
    QString text;
    bool isError = false;
};

// The browse tree as a person walks through it, with all that can be done on the way, and without a
// screen. Made by main, on the thread of the event loop; nothing waits. What goes wrong
// becomes a notice.
class Browser : public QObject {
    Q_OBJECT
public:
    // `paths` and `modules`: what the device has. `start`: the place to begin at, the home list
    // when it is empty.
    Browser(const Connection& connection, const QJsonObject& paths, const QJsonArray& modules,
            const QString& start);
    ~Browser() override;

    void start();

    // What is to be seen. There is always a place.
    const std::vector<std::unique_ptr<ListPlace>>& places() const { return m_places; }
    ListPlace& place() const { return *m_places.back(); }
    const std::vector<MenuPage>& menu() const { return m_menu; }
    // Where the keys go: the menu's list, or the place's.
    ListPlace& shown() const { return m_menu.empty() ? place() : *m_menu.back().place; }
    const std::optional<RowEdit>& edit() const { return m_edit; }
    const std::optional<LineEditor>& finding() const { return m_finding; }
    const std::optional<Notice>& notice() const { return m_notice; }
    const QString& progress() const { return m_progress; }
    bool isBusy() const { return m_isBusy; }
    bool isOnline() const { return m_feed.isOnline(); }
    const PlayerModel& player() const { return m_player; }
    // The row that was chosen once and asks to be chosen again.
    bool asksAgain(const BrowseRow& row) const;

    // Takes one key; see BrowserKeys.
    void press(const Key& key);

    // What can be done.
    void openActive();
    void enterActive(); // opens lists and menus only
    void escape();      // gives up a choice, otherwise goes back
    void choose();
    void removeChosen();
    void moveChosen(int by);
    void click(const QPoint& point);
    void scroll(int rows);
    void back();
    void openMenuOfActive();
    void showHelp();
    void find();
    void jumpToCurrent();
    void togglePlaying() { m_player.toggle(); }
    void playNext() { m_player.next(); }
    void playPrevious() { m_player.previous(); }
    void changeVolume(int by) { m_player.changeVolume(by); }
    void seekBy(int seconds) { m_player.seekBy(seconds); }

Q_SIGNALS:
    void changed();
    void quit();

private:
    friend class BrowserKeys;

    void onReceived(const DeviceEvent& event);
    void readEverythingAgain();
    void refreshPlayer(const QJsonArray& modules);
    void onOnline(bool isOnline);
    void lookAtHeads();
    QVector<ListPlace*> allPlaces() const;

    std::unique_ptr<ListPlace> makePlace(const QString& path, const BrowseRow& row,
                                         RowReader* reader, const QString& name);
    void push(const QString& path, const BrowseRow& row, const QString& name = {});
    void remove(ListPlace* place, const QString& message = {});
    void closePlace(const QString& path);
    void followParents();
    static void letGo(std::unique_ptr<ListPlace> place);

    void openRow(const BrowseRow& row, RowAction action, int index);
    void playFrom(const BrowseRow& row, int index);
    void carryOut(const BrowseRow& row, const QJsonObject& value, bool closesEdit = false);
    void beginEdit(const BrowseRow& row);
    void saveEdit();
    void expectNewRow();
    void lookForNewRow();
    void endFinding(bool stay);
    bool typesAhead(const Key& key);
    void replayKeys();

    void pushMenu(const QString& path, const QString& title, const MenuPage::Pick& pick = {});
    void pushOwnMenu(const QString& title, const QVector<QJsonObject>& rows,
                     const MenuPage::Pick& pick);
    void popMenu();
    void closeMenu();
    void openMenuOf(const BrowseRow& row);
    bool canBeAdded(const BrowseRow& row) const;
    void chooseTarget(const QVector<BrowseRow>& what);
    void startAdding(const QVector<BrowseRow>& what, const AddFolderJob::Target& target,
                     AddFolderJob::Mode mode);
    void endAdding(const QString& text, bool isError);
    void chooseMode(const QVector<BrowseRow>& what, const AddFolderJob::Target& target);
    std::optional<AddFolderJob::Target> targetOf(const BrowseRow& row) const;

    void tell(const QString& text, bool isError = false);
    void begunWork();
    void endedWork();
    QString devicePath(const char* function) const;

    QJsonObject m_paths;
    QJsonArray m_modules;
    AsyncApi m_api;
    PlayerModel m_player;
    TrackEditor m_editor;
    EventFeed m_feed;
    HomeRows m_home;
    QString m_start;
    std::vector<std::unique_ptr<ListPlace>> m_places;
    std::vector<MenuPage> m_menu;
    std::optional<RowEdit> m_edit;
    std::optional<LineEditor> m_finding;
    int m_foundFrom = 0; // the row from which the finding began
    std::optional<Notice> m_notice;
    QString m_progress;
    std::unique_ptr<AddFolderJob> m_adding;
    QString m_surePath;
    QTimer m_sureTimer;
    QTimer m_noticeTimer;
    QTimer m_headTimer;
    QSet<QString> m_changedModules;
    std::optional<QSet<QString>> m_knownPaths; // before something new was made
    std::optional<Key> m_prefix;               // the first of two keys, as in dd
    QVector<Key> m_typedAhead;                 // for a list that is still on its way
    int m_working = 0;
    bool m_isBusy = false;
    QTimer m_busyTimer;
};
