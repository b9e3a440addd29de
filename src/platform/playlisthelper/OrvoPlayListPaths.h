#pragma once

#include <QList>

#include "CMPath.h"
#include "playListHelper_export.h"

// The fixed paths of the playlists module. None is the start of another one; only "items" and
// "item" are extended, by an id.
#define ORVO_PLAYLIST_PATHS(X)                                                                     \
    X(OrvoPlayListsRootPath, "playlists:root")                                                     \
    X(OrvoPlayListsPlayLogicPath, "playlists:playlogic")                                           \
    X(OrvoPlayListItemPath, "playlists:item")                                                      \
    X(OrvoPlayListPlGetlistPath, "playlists:pl/list")                                              \
    X(OrvoPlayListPlGetItemsPath, "playlists:pl/items")                                            \
    X(OrvoPlayListPqGetItemsPath, "playlists:pq/items")                                            \
    X(OrvoPlayListClGetItemsPath, "playlists:cl/items")                                            \
    X(OrvoPlayListPlContextPath, "playlists:pl/context")                                           \
    X(OrvoPlayListPlTrackContextPath, "playlists:pl/trackContext")                                 \
    X(OrvoPlayListPqContextPath, "playlists:pq/context")                                           \
    X(OrvoPlayListClContextPath, "playlists:cl/context")                                           \
    X(OrvoPlayListPlAddToPlaylistPath, "playlists:pl/addToPlaylist")                               \
    X(OrvoPlayListPlSelectAddModePath, "playlists:pl/selectAddMode")                               \
    X(OrvoPlayListClAddtoCollectionPath, "playlists:cl/addToCollection")                           \
    X(OrvoPlayListPlPrepareItemsPath, "playlists:prepareItems")                                    \
    X(OrvoPlayListPlPlayPath, "playlists:pl/play")                                                 \
    X(OrvoPlayListPlCreatePath, "playlists:pl/create")                                             \
    X(OrvoPlayListPlClearPath, "playlists:pl/clear")                                               \
    X(OrvoPlayListPlSetNamePath, "playlists:pl/setName")                                           \
    X(OrvoPlayListPlSetShufflePath, "playlists:pl/setShuffle")                                     \
    X(OrvoPlayListPlSetRepeatPath, "playlists:pl/setRepeat")                                       \
    X(OrvoPlayListPlDeletePath, "playlists:pl/delete")                                             \
    X(OrvoPlayListPlRemoveItemsPath, "playlists:pl/removeItems")                                   \
    X(OrvoPlayListPlAddItemsPath, "playlists:pl/addItems")                                         \
    X(OrvoPlayListPlAddExternalItemsPath, "playlists:pl/addExternalItems")                         \
    X(OrvoPlayListPlMoveItemspath, "playlists:pl/moveItems")                                       \
    X(OrvoPlayListPlSetOrderPath, "playlists:pl/setOrder")                                         \
    X(OrvoPlayListUpNextPath, "playlists:upnext")                                                  \
    X(OrvoPlayListClCreatePath, "playlists:cl/create")                                             \
    X(OrvoPlayListClAddItemPath, "playlists:cl/addItem")                                           \
    X(OrvoPlayListClRemoveItemPath, "playlists:cl/removeItem")                                     \
    X(OrvoPlayListClDeletePath, "playlists:cl/delete")

#define ORVO_DECLARE_PATH(function, path) PLAYLISTHELPER_EXPORT CMPath function();
ORVO_PLAYLIST_PATHS(ORVO_DECLARE_PATH)
#undef ORVO_DECLARE_PATH

// The list of one playlist's entries; 0 is the play queue, whose list has a path of its own.
PLAYLISTHELPER_EXPORT CMPath OrvoPlayListItemsPathOf(int plid);
// One item.
PLAYLISTHELPER_EXPORT CMPath OrvoPlayListItemPathOf(int uid);

// The name of the prepare call: appended to a module's prefix it is that module's prepare path.
// Takes a list of paths, answers a list of playlist items in their hash form.
PLAYLISTHELPER_EXPORT QString OrvoPlayListPrepareItems();
// The name of the prepare call's error when the items together are more than may be added at once.
PLAYLISTHELPER_EXPORT QString OrvoPlayListTooManyItems();

struct OrvoPathRow {
    const char* function;
    const char* path;
};
// Every function above with its path text.
PLAYLISTHELPER_EXPORT const QList<OrvoPathRow>& orvoPlayListPaths();
