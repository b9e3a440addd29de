#include "TrackSource.h"

#include <QJsonDocument>
#include <QJsonObject>

#include "OrvoPlayListPaths.h"

OrvoPlayListItem TrackSource::item(const QString& path) {
    const QStringList parts = CMPath(path).splitBase();
    const QString title = parts.isEmpty() ? path : parts.last();
    OrvoMetaData metaData;
    metaData.setArtist(QStringLiteral("Artist"));
    metaData.setAlbum(QStringLiteral("Album"));
    metaData.setDuration(61000);
    OrvoResource resource;
    resource.setUri(path);
    OrvoMediaData mediaData;
    mediaData.setMetaData(metaData);
    mediaData.setResources({resource});
    OrvoRoles roles;
    roles.setTitle(TrString(title));
    roles.setType(OrvoRolesType::Audio);
    roles.setMediaData(mediaData);
    OrvoPlayListItem item;
    item.setTitle(title);
    item.setUrl(path);
    item.setOrvoRoles(QString::fromUtf8(QJsonDocument(QJsonObject::fromVariantHash(roles.toHash()))
                                            .toJson(QJsonDocument::Compact)));
    return item;
}

void TrackSource::setDataRequest(const CMSetDataRequest& request) {
    if (request.path() != CMPath::fromPrefix(prefix()) + OrvoPlayListPrepareItems()) {
        CMNodesWorker::setDataRequest(request);
        return;
    }
    const QVariantList paths = request.value().toList();
    requestSizes.append(paths.size());
    QVariantList items;
    for (const QVariant& path : paths)
        items.append(item(path.toString()).toVariant());
    request.reply().setValue(items);
}
