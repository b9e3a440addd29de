#pragma once

#include "JsonText.h"
#include "MusicTree.h"
#include "OrvoPlayListItem.h"

// Makes the complete playlist items of tracks, as a playlist stores them. What the tracks of a
// folder have in common is made once, so tracks are best asked for folder by folder.
//
// A value of the job that prepares items, on its thread. Nothing here fails.
class ItemMaker {
public:
    OrvoPlayListItem item(const FolderPtr& folder, const Track& track);

private:
    void enter(const FolderPtr& folder);
    QString rolesText(const Track& track, const QString& title, const QString& url,
                      const QString& artworkUrl);

    FolderPtr m_folder;   // of the track before
    QString m_path;       // of its tracks, up to the name
    QString m_url;        // the same
    QString m_artworkUrl; // the folder's, empty where there is none
    OrvoPlayListItem m_common;
    JsonText m_json;
};
