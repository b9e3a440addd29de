#include <QJsonArray>

#include "Browser.h"
#include "BrowserKeys.h"
#include "PathText.h"

// What people do while they browse. Places and events stand in Browser.cpp.

namespace {

// So long a second choice counts as sure.
constexpr int SureForMs = 4000;
constexpr int MaxTypedAhead = 32;
constexpr int CloseEvent = 1; // what a reply may ask for: close the view

const QString ModePrefix = QStringLiteral("own:mode/");

} // namespace

void Browser::openActive() {
    const BrowseRow row = shown().activeRow();
    if (m_menu.empty())
        openRow(row, row.actionInList(), shown().cursor().active());
    else if (m_menu.back().pick && row.isThere())
        // A copy: picking may close the page that holds it.
        MenuPage::Pick(m_menu.back().pick)(row);
    else
        openRow(row, row.actionInMenu(), -1);
}

void Browser::enterActive() {
    if (shown().activeRow().opens())
        openActive();
}

void Browser::openRow(const BrowseRow& row, RowAction action, int index) {
    const QString sure = m_surePath;
    m_surePath.clear();
    switch (action) {
    case RowAction::None:
        return;
    case RowAction::Play:
        playFrom(row, index);
        return;
    case RowAction::OpenMenu:
        pushMenu(row.path(), row.title());
        return;
    case RowAction::OpenList:
        // What a menu leads to is in no list that could be followed.
        if (m_menu.empty()) {
            push(row.path(), row);
        } else {
            closeMenu();
            push(row.path(), {}, row.title());
        }
        return;
    case RowAction::EditText:
        beginEdit(row);
        return;
    case RowAction::CarryOutWhenSure:
        if (sure != row.path()) {
            m_surePath = row.path();
            m_sureTimer.start(SureForMs);
            return;
        }
        carryOut(row, row.valueToSend());
        return;
    case RowAction::CarryOut:
        carryOut(row, row.valueToSend());
        return;
    }
}

void Browser::playFrom(const BrowseRow& row, int index) {
    if (!m_player.isPresent() || place().playLogicPath().isEmpty()) {
        openMenuOf(row);
        return;
    }
    m_player.playContainer(place().container(), row, row.position() >= 0 ? row.position() : index);
}

// A text or a switch is set, an action is carried out; then what the reply says happens.
void Browser::carryOut(const BrowseRow& row, const QJsonObject& value, bool closesEdit) {
    begunWork();
    m_api.post(row.path(), value, [this, path = row.path(), closesEdit](const ApiAnswer& answer) {
        endedWork();
        if (!answer.error.isEmpty()) {
            tell(answer.error, true);
            return;
        }
        if (closesEdit && m_edit && m_edit->row.path() == path)
            m_edit.reset();
        const QJsonArray events = answer.body.value(QLatin1String("result"))
                                      .toObject()
                                      .value(QLatin1String("events"))
                                      .toArray();
        for (const QJsonValue& event : events) {
            const QJsonObject told = event.toObject();
            if (told.value(QLatin1String("rowsType")).toInt() == CloseEvent)
                closePlace(told.value(QLatin1String("path")).toString());
        }
        Q_EMIT changed();
    });
}

void Browser::beginEdit(const BrowseRow& row) {
    m_edit = RowEdit{row, LineEditor(row.text())};
}

void Browser::saveEdit() {
    if (m_edit->row.isCreate() && m_menu.empty())
        expectNewRow();
    carryOut(m_edit->row, {{QStringLiteral("string"), m_edit->line.text()}}, true);
}

// What was just made is what people want to see.
void Browser::expectNewRow() {
    QSet<QString> known;
    for (int i = 0; i < place().store().count(); ++i)
        known.insert(place().store().row(i).path());
    m_knownPaths = known;
}

void Browser::lookForNewRow() {
    const ListStore& store = place().store();
    if (!m_knownPaths || !store.isCurrent())
        return;
    for (int i = 0; i < store.count(); ++i) {
        if (store.row(i).opens() && !m_knownPaths->contains(store.row(i).path())) {
            m_knownPaths.reset();
            place().cursor().jumpTo(i);
            return;
        }
    }
}

void Browser::back() {
    m_surePath.clear();
    m_typedAhead.clear();
    if (!m_menu.empty()) {
        popMenu();
    } else if (m_places.size() > 1) {
        m_knownPaths.reset();
        letGo(std::move(m_places.back()));
        m_places.pop_back();
    }
}

void Browser::openMenuOfActive() {
    if (!m_menu.empty())
        return;
    if (place().chosenCount() == 0 || !canBeAdded(place().activeRow())) {
        openMenuOf(place().activeRow());
        return;
    }
    chooseTarget(place().chosenRows());
}

// The device's own menu; music that has none can be added to a list.
void Browser::openMenuOf(const BrowseRow& row) {
    if (!row.contextPath().isEmpty())
        pushMenu(row.contextPath(), row.title());
    else if (canBeAdded(row))
        chooseTarget({row});
}

bool Browser::canBeAdded(const BrowseRow& row) const {
    return HomeRows::isMusic(row.path()) && (row.type() == BrowseRow::Audio || row.opens());
}

void Browser::escape() {
    if (m_menu.empty() && place().chosenCount() > 0)
        place().chooseNothing();
    else
        back();
}

void Browser::choose() {
    const BrowseRow& row = place().activeRow();
    const bool isTrackOrFolder = row.type() == BrowseRow::Audio || canBeAdded(row);
    if (!m_menu.empty() || !isTrackOrFolder)
        return;
    place().toggleChosen(row);
    place().cursor().move(1);
}

void Browser::removeChosen() {
    if (m_menu.empty())
        m_editor.remove(&place());
}

void Browser::moveChosen(int by) {
    if (m_menu.empty())
        m_editor.move(&place(), by);
}

// The first click goes to a row, one on the row at the cursor does what Enter does.
void Browser::click(const QPoint& point) {
    const int index = shown().indexAt(point);
    if (index < 0 || !shown().store().row(index).canBeChosen())
        return;
    if (index == shown().cursor().active())
        openActive();
    else
        shown().cursor().jumpTo(index);
}

void Browser::scroll(int rows) {
    shown().cursor().move(rows);
}

void Browser::chooseTarget(const QVector<BrowseRow>& what) {
    const QString title = QStringLiteral("Add to which list?");
    const MenuPage::Pick pick = [=, this](const BrowseRow& row) {
        if (const auto target = targetOf(row))
            chooseMode(what, *target);
        else if (row.opens())
            pushMenu(row.path(), row.title(), [=, this](const BrowseRow& inner) {
                if (const auto found = targetOf(inner))
                    chooseMode(what, *found);
            });
        else if (row.actionInMenu() == RowAction::EditText)
            beginEdit(row);
    };
    pushMenu(devicePath("OrvoPlayListsRootPath"), title, pick);
}

std::optional<AddFolderJob::Target> Browser::targetOf(const BrowseRow& row) const {
    const auto plid = m_editor.playlistAt(row.path());
    if (!plid)
        return std::nullopt;
    return AddFolderJob::Target{devicePath("OrvoPlayListPlAddItemsPath"), *plid, row.title()};
}

void Browser::chooseMode(const QVector<BrowseRow>& what, const AddFolderJob::Target& target) {
    struct ModeRow {
        const char* title;
        AddFolderJob::Mode mode;
    };
    static constexpr ModeRow Modes[] = {
        {"Append", AddFolderJob::Append}, {"Next", AddFolderJob::Next}, {"Now", AddFolderJob::Now}};
    QVector<QJsonObject> rows;
    for (const ModeRow& row : Modes) {
        if (row.mode != AddFolderJob::Now || m_player.isPresent())
            rows.append(LocalRows::action(QLatin1String(row.title),
                                          ModePrefix + QString::number(row.mode)));
    }
    const auto pick = [=, this](const BrowseRow& row) {
        const auto mode = AddFolderJob::Mode(row.path().section(QLatin1Char('/'), -1).toInt());
        closeMenu();
        startAdding(what, target, mode);
    };
    pushOwnMenu(QStringLiteral("Add to %1").arg(target.name), rows, pick);
}

void Browser::startAdding(const QVector<BrowseRow>& what, const AddFolderJob::Target& target,
                          AddFolderJob::Mode mode) {
    if (m_adding) {
        tell(QStringLiteral("Something is being added already."), true);
        return;
    }
    QVector<AddFolderJob::Source> sources;
    for (const BrowseRow& row : what)
        sources.append({row.path(), row.type() == BrowseRow::Audio ? AddFolderJob::Source::Track
                                                                   : AddFolderJob::Source::List});
    m_adding = std::make_unique<AddFolderJob>(&m_api, sources, target, mode);
    AddFolderJob* job = m_adding.get();
    const auto show = [this](const QString& text) {
        m_progress = text;
        Q_EMIT changed();
    };
    connect(job, &AddFolderJob::found, this,
            [show](int tracks) { show(QStringLiteral("Looking for tracks: %1").arg(tracks)); });
    connect(job, &AddFolderJob::adding, this, [show](int done, int total) {
        show(QStringLiteral("Adding %1 of %2").arg(done).arg(total));
    });
    connect(job, &AddFolderJob::looked, this, [this, job] {
        if (job->tracks().isEmpty())
            endAdding(QStringLiteral("There are no tracks in it."), true);
        else
            job->send();
    });
    connect(job, &AddFolderJob::finished, this, [this, job](const QString& error) {
        const int count = job->tracks().size();
        const QString amount =
            count == 1 ? QStringLiteral("1 track") : QStringLiteral("%1 tracks").arg(count);
        endAdding(error.isEmpty() ? QStringLiteral("%1 added to %2").arg(amount, job->target().name)
                                  : error,
                  !error.isEmpty());
    });
    job->look();
}

void Browser::endAdding(const QString& text, bool isError) {
    m_progress.clear();
    m_adding.release()->deleteLater();
    if (!isError)
        place().chooseNothing();
    tell(text, isError);
}

void Browser::showHelp() {
    QVector<QJsonObject> rows;
    for (const KeyNote& note : BrowserKeys::notes())
        rows.append(LocalRows::note(note.does, note.keys));
    pushOwnMenu(QStringLiteral("Keys"), rows, [this](const BrowseRow&) { popMenu(); });
}

// A key for a list whose rows have not come yet is kept until they have.
bool Browser::typesAhead(const Key& key) {
    if (shown().store().isLoaded())
        return false;
    if (m_typedAhead.size() < MaxTypedAhead)
        m_typedAhead.append(key);
    return true;
}

void Browser::replayKeys() {
    while (!m_typedAhead.isEmpty() && shown().store().isLoaded()) {
        // A text or a menu that opens takes the rest as it would have at its time.
        press(m_typedAhead.takeFirst());
    }
}

void Browser::find() {
    m_finding = LineEditor();
    m_foundFrom = shown().cursor().active();
}

void Browser::endFinding(bool stay) {
    if (!m_finding)
        return;
    m_finding.reset();
    shown().finder().stop();
    if (!stay)
        shown().cursor().jumpTo(m_foundFrom);
}

void Browser::jumpToCurrent() {
    const BrowseRow track = m_player.track();
    const BrowseRow container(m_player.container());
    if (!track.isThere() || container.path().isEmpty())
        return;
    closeMenu();
    if (place().path() != container.path())
        push(container.path(), {}, container.title());
    place().cursor().expect(qMax(0, track.position()), track.path());
}
