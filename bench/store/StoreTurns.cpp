#include "StoreTurns.h"

StoreTurns::StoreTurns(const Setting& setting, const Workplace::Contents& contents, int itemsLimit)
    : m_setting(setting),
      m_contents(contents),
      m_itemsLimit(itemsLimit),
      m_workplace(setting.folder, contents, setting.storage == QLatin1String("disk")) {
    open();
}

StoreTurns::~StoreTurns() {
    close();
}

void StoreTurns::startOver() {
    close();
    m_workplace.restore();
    open();
}

void StoreTurns::open(bool withModel) {
    m_database = std::make_unique<Database>(m_itemsLimit, false);
    if (withModel)
        m_manager = std::make_unique<PlayListManager>(m_database.get());
    m_store = m_workplace.openFloor();
    floorList = {1, m_contents.length, -1};
}

void StoreTurns::close() {
    m_manager.reset();
    m_database.reset();
    m_store.reset();
}
