#include "PlayLogicBase.h"

PlayLogicBase::PlayLogicBase(CMNodes* nodes, const CMPath& path, QObject* parent)
    : CMNode(path, parent) {
    setNodes(nodes);
}

void PlayLogicBase::stageData(const OrvoPlayLogicData& data) {
    m_staged = m_staged || data != m_data;
    m_data = data;
}

void PlayLogicBase::setData(const OrvoPlayLogicData& data) {
    stageData(data);
    if (!m_staged)
        return;
    m_staged = false;
    Q_EMIT dataChanged();
}

void PlayLogicBase::setPlayMode(OrvoPlayerPlayMode::Enum mode) {
    if (mode == m_playMode)
        return;
    m_playMode = mode;
    Q_EMIT playModeChanged();
    playModePublished();
}
