#pragma once

#include "CMNode.h"
#include "orvo_api_play_export.h"
#include "OrvoPlayRecords.h"

// What every play logic publishes: its data (what plays, with which controls, what went wrong) and
// its play mode. It is the node at its play-logic path, registered for as long as it lives. Owned
// by its module, on the worker's thread.
class ORVO_API_PLAY_EXPORT PlayLogicBase : public CMNode {
    Q_OBJECT
public:
    PlayLogicBase(CMNodes* nodes, const CMPath& path, QObject* parent = nullptr);

    const OrvoPlayLogicData& data() const { return m_data; }
    void setData(const OrvoPlayLogicData& data);

    OrvoPlayerPlayMode::Enum playMode() const { return m_playMode; }
    void setPlayMode(OrvoPlayerPlayMode::Enum mode);

Q_SIGNALS:
    void dataChanged();
    void playModeChanged();

protected:
    // Changes the data without telling the player: the next setData() does.
    void stageData(const OrvoPlayLogicData& data);
    // The mode was changed to another one.
    virtual void playModePublished() {}

private:
    OrvoPlayLogicData m_data;
    bool m_staged = false;
    OrvoPlayerPlayMode::Enum m_playMode = OrvoPlayerPlayMode::Normal;
};
