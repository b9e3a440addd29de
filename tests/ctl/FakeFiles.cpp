#include "FakeFiles.h"

#include <QDir>

FakeFiles::FakeFiles(const QString& folder)
    : CMNodesWorker({}, QStringLiteral("Files")), m_folder(folder) {}

QVariant FakeFiles::getValue(const CMPath& path) {
    return path.toString() == QLatin1String("files:musicFolder")
               ? OrvoValue::fromString(m_folder).toVariant()
               : QVariant();
}

void FakeFiles::setDataRequest(const CMSetDataRequest& request) {
    if (request.path().toString() != QLatin1String("files:rescan")) {
        CMNodesWorker::setDataRequest(request);
        return;
    }
    ++rescans;
    request.reply().setValue(QVariant());
}

void FakeFiles::getRowsRequest(const CMGetRowsRequest& request) {
    const QDir folder(m_folder + '/' + request.path().splitBase().mid(1).join('/'));
    if (request.path().splitBase().value(0) != QLatin1String("tree") || !folder.exists()) {
        CMNodesWorker::getRowsRequest(request);
        return;
    }
    QVariantList rows;
    const QFileInfoList entries = folder.entryInfoList(
        QDir::Dirs | QDir::Files | QDir::NoDotAndDotDot, QDir::Name | QDir::DirsFirst);
    for (const QFileInfo& entry : entries) {
        if (!entry.isDir() && entry.suffix() != QLatin1String("flac"))
            continue;
        OrvoRoles roles;
        roles.setType(entry.isDir() ? OrvoRolesType::Container : OrvoRolesType::Audio);
        roles.setTitle(entry.fileName());
        roles.setPath(request.path() + entry.fileName());
        rows.append(QVariant(CMGlobal::itemRolesToList(request.roleNames(), roles)));
    }
    OrvoRowsRoles answer;
    answer.setRowsCount(rows.size());
    answer.setRows(rows.mid(request.fromRow(), request.toRow() - request.fromRow() + 1));
    request.reply().setValue(answer);
}
