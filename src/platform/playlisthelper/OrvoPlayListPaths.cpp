#include "OrvoPlayListPaths.h"

#define ORVO_DEFINE_PATH(function, path)                                                           \
    CMPath function() {                                                                            \
        static const CMPath thePath{QStringLiteral(path)};                                         \
        return thePath;                                                                            \
    }
ORVO_PLAYLIST_PATHS(ORVO_DEFINE_PATH)
#undef ORVO_DEFINE_PATH

CMPath OrvoPlayListItemsPathOf(int plid) {
    return plid == 0 ? OrvoPlayListPqGetItemsPath()
                     : OrvoPlayListPlGetItemsPath() + QString::number(plid);
}

CMPath OrvoPlayListItemPathOf(int uid) {
    return OrvoPlayListItemPath() + QString::number(uid);
}

QString OrvoPlayListPrepareItems() {
    return QStringLiteral("prepareItems");
}

QString OrvoPlayListTooManyItems() {
    return QStringLiteral("TooManyItems");
}

const QList<OrvoPathRow>& orvoPlayListPaths() {
#define ORVO_PATH_ROW(function, path) {#function, path},
    static const QList<OrvoPathRow> rows = {ORVO_PLAYLIST_PATHS(ORVO_PATH_ROW)};
#undef ORVO_PATH_ROW
    return rows;
}
