#include "Browser.h"

#include <QCoreApplication>

#include "BrowserKeys.h"
#include "PathText.h"

// Places, and what the device says about them. What people do stands in BrowserActions.cpp.

namespace {
constexpr int NotFound = 404;
constexpr int ShowNoticeMs = 4000;
constexpr int ShowErrorMs = 8000;
// What takes longer shows that it works.
constexpr int BusyAfterMs = 150;
// Changes come in flocks.
constexpr int HeadAgainMs = 250;

QString moduleOf(const QString& path) {
    return path.section(QLatin1Char(':'), 0, 0);
}
} // namespace

Browser::Browser(const Connection& connection, const QJsonObject& paths, const QJsonArray& modules,
                 const QString& start)
    : m_paths(paths),
      m_modules(modules),
      m_api(connection),
      m_player(paths, &m_api),
      m_editor(&m_api, paths),
      m_feed(&m_api, m_player.watched()),
      m_home(&m_api, devicePath("OrvoPlayListsRootPath")),
      m_start(start) {
    for (QTimer* timer : {&m_sureTimer, &m_noticeTimer, &m_headTimer, &m_busyTimer})
        timer->setSingleShot(true);
    connect(&m_sureTimer, &QTimer::timeout, this, [this] {
        m_surePath.clear();
        Q_EMIT changed();
    });
    connect(&m_noticeTimer, &QTimer::timeout, this, [this] {
        m_notice.reset();
        Q_EMIT changed();
    });
    connect(&m_headTimer, &QTimer::timeout, this, &Browser::lookAtHeads);
    connect(&m_busyTimer, &QTimer::timeout, this, [this] {
        m_isBusy = true;
        Q_EMIT changed();
    });
    connect(&m_api, &AsyncApi::reached, &m_feed, &EventFeed::noteReached);
    connect(&m_feed, &EventFeed::received, this, &Browser::onReceived);
    connect(&m_feed, &EventFeed::resync, this, &Browser::readEverythingAgain);
    connect(&m_feed, &EventFeed::onlineChanged, this, &Browser::onOnline);
    connect(&m_player, &PlayerModel::changed, this, &Browser::changed);
    connect(&m_player, &PlayerModel::failed, this, [this](const QString& why) { tell(why, true); });
    connect(&m_editor, &TrackEditor::done, this, [this](const QString& text) { tell(text); });
    connect(&m_editor, &TrackEditor::refused, this,
            [this](const QString& text) { tell(text, true); });
    m_places.push_back(makePlace(HomeRows::homePath(), {}, &m_home, QStringLiteral("Orvo")));
}

Browser::~Browser() {
    // Places that were let go while their own signals were under way.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

void Browser::start() {
    refreshPlayer(m_modules);
    place().store().pump();
    if (!m_start.isEmpty())
        push(m_start, {}, m_start);
    m_feed.start();
}

QString Browser::devicePath(const char* function) const {
    return m_paths.value(QLatin1String(function)).toString();
}

void Browser::press(const Key& key) {
    BrowserKeys::press(*this, key);
    Q_EMIT changed();
}

// Places.

std::unique_ptr<ListPlace> Browser::makePlace(const QString& path, const BrowseRow& row,
                                              RowReader* reader, const QString& name) {
    auto made = std::make_unique<ListPlace>(path, row, reader, name);
    ListPlace* place = made.get();
    connect(place, &ListPlace::changed, this, &Browser::changed);
    connect(&place->store(), &ListStore::rowsChanged, this, [this, place] {
        m_editor.onRows(place);
        followParents();
        lookForNewRow();
        if (!m_typedAhead.isEmpty())
            QMetaObject::invokeMethod(this, &Browser::replayKeys, Qt::QueuedConnection);
    });
    connect(&place->store(), &ListStore::closed, this, [this, place] { remove(place); });
    connect(&place->store(), &ListStore::failed, this,
            [this, place](const QString& message, int status) {
                m_typedAhead.clear();
                if (status == NotFound)
                    remove(place, message);
                else if (status != 0) // a lost connection is shown anyway
                    tell(message, true);
            });
    return made;
}

void Browser::push(const QString& path, const BrowseRow& row, const QString& name) {
    m_places.push_back(makePlace(path, row, &m_api, name));
    place().store().pump();
    Q_EMIT changed();
}

// Goes later: it may be what is calling.
void Browser::letGo(std::unique_ptr<ListPlace> place) {
    place->disconnect();
    place->store().blockSignals(true);
    place->store().close();
    place->finder().stop();
    place.release()->deleteLater();
}

// The list is gone: its place goes, and with it everything that was opened from it.
void Browser::remove(ListPlace* place, const QString& message) {
    for (const MenuPage& page : m_menu) {
        if (page.place.get() != place)
            continue;
        while (m_menu.back().place.get() != place)
            popMenu();
        popMenu();
        if (!message.isEmpty())
            tell(message, true);
        return;
    }
    std::size_t at = 1; // the home list stays
    while (at < m_places.size() && m_places[at].get() != place)
        ++at;
    if (at >= m_places.size())
        return;
    const QString title = place->title();
    endFinding(true);
    while (m_places.size() > at) {
        letGo(std::move(m_places.back()));
        m_places.pop_back();
    }
    if (!message.isEmpty())
        tell(message, true);
    else if (!title.isEmpty())
        tell(QStringLiteral("“%1” is gone.").arg(title));
    Q_EMIT changed();
}

// The device says that a view is done with.
void Browser::closePlace(const QString& path) {
    for (const MenuPage& page : m_menu) {
        if (PathText::isSamePlace(page.place->path(), path)) {
            closeMenu();
            break;
        }
    }
    for (std::size_t i = 1; i < m_places.size(); ++i) {
        if (PathText::isSamePlace(m_places[i]->path(), path)) {
            remove(m_places[i].get());
            return;
        }
    }
}

// Lists follow the rows that they were opened from.
void Browser::followParents() {
    for (std::size_t i = 1; i < m_places.size(); ++i) {
        if (!m_places[i]->followRow(m_places[i - 1]->store())) {
            remove(m_places[i].get());
            return;
        }
    }
}

QVector<ListPlace*> Browser::allPlaces() const {
    QVector<ListPlace*> all;
    for (const auto& place : m_places)
        all.append(place.get());
    for (const MenuPage& page : m_menu)
        all.append(page.place.get());
    return all;
}

// The device.

void Browser::onReceived(const DeviceEvent& event) {
    if (event.isResync())
        return;
    const QJsonObject data = event.object();
    const QString path = data.value(QLatin1String("path")).toString();
    if (event.type == "value") {
        m_player.apply(path, data.value(QLatin1String("value")).toObject());
        return;
    }
    ListChange change{path, event.type == "startingWith", {}, -1};
    change.revision = qint64(data.value(QLatin1String("revision")).toDouble(-1));
    const QJsonArray changes = data.value(QLatin1String("changes")).toArray();
    for (const QJsonValue& one : changes)
        change.changes.append(one.toString());
    for (ListPlace* place : allPlaces())
        place->store().apply(change);
    // A title may say what another list changed: a playlist's name, for one.
    m_changedModules.insert(moduleOf(path));
    m_headTimer.start(HeadAgainMs);
}

void Browser::lookAtHeads() {
    for (ListPlace* place : allPlaces()) {
        if (m_changedModules.contains(moduleOf(place->path())))
            place->store().lookAtHead();
    }
    m_changedModules.clear();
}

void Browser::readEverythingAgain() {
    for (ListPlace* place : allPlaces())
        place->store().invalidate();
    m_api.get(QStringLiteral("/api/modules"), {}, [this](const ApiAnswer& answer) {
        if (answer.error.isEmpty())
            refreshPlayer(answer.body.value(QLatin1String("modules")).toArray());
    });
}

void Browser::refreshPlayer(const QJsonArray& modules) {
    m_modules = modules;
    m_player.refresh(modules.contains(QStringLiteral("player")));
}

// What was asked for while there was no connection was not answered.
void Browser::onOnline(bool isOnline) {
    if (isOnline) {
        for (ListPlace* place : allPlaces())
            place->store().pump();
        refreshPlayer(m_modules);
    }
    Q_EMIT changed();
}

// Messages.

void Browser::tell(const QString& text, bool isError) {
    m_notice = Notice{text, isError};
    m_noticeTimer.start(isError ? ShowErrorMs : ShowNoticeMs);
    Q_EMIT changed();
}

void Browser::begunWork() {
    if (m_working++ == 0)
        m_busyTimer.start(BusyAfterMs);
}

void Browser::endedWork() {
    if (--m_working > 0)
        return;
    m_busyTimer.stop();
    m_isBusy = false;
    Q_EMIT changed();
}

bool Browser::asksAgain(const BrowseRow& row) const {
    return !m_surePath.isEmpty() && row.path() == m_surePath;
}

// Menus.

void Browser::pushMenu(const QString& path, const QString& title, const MenuPage::Pick& pick) {
    MenuPage page;
    page.place = makePlace(path, {}, &m_api, title);
    page.title = title;
    page.pick = pick;
    m_menu.push_back(std::move(page));
    shown().store().pump();
}

void Browser::pushOwnMenu(const QString& title, const QVector<QJsonObject>& rows,
                          const MenuPage::Pick& pick) {
    MenuPage page;
    page.ownRows = std::make_unique<LocalRows>(title, rows);
    page.place = makePlace(QStringLiteral("own:menu"), {}, page.ownRows.get(), title);
    page.title = title;
    page.pick = pick;
    m_menu.push_back(std::move(page));
    shown().store().pump();
}

void Browser::popMenu() {
    m_surePath.clear();
    endFinding(true);
    MenuPage page = std::move(m_menu.back());
    m_menu.pop_back();
    letGo(std::move(page.place));
    Q_EMIT changed();
}

void Browser::closeMenu() {
    while (!m_menu.empty())
        popMenu();
}
