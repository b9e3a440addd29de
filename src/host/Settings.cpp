#include "Settings.h"

#include <QFileInfo>

#include "CMLog.h"
#include "CMRootWorker.h"

void Settings::applyFactorySettings(CMRootWorker* root, const QString& settingsFile) {
    if (QFileInfo::exists(settingsFile))
        return;
    // An absent setting reads as false, which would hide both.
    for (const CMPath& path : {OrvoPlayListSettingsPlayqueueVisibilityPath(),
                               OrvoPlayListSettingsCollectionsVisibilityPath()})
        root->setValue(path, true, CMVoidReply());
}

Settings::Outcome Settings::apply(CMRootWorker* root,
                                  const QList<QPair<QString, QString>>& settings, QString* error) {
    for (const auto& [pathText, value] : settings) {
        const CMPath path(pathText);
        if (!root->values()->isPersistent(path)) {
            *error = QStringLiteral("there is no setting \"%1\"").arg(pathText);
            return Outcome::Refused;
        }
        const CMVoidReply reply;
        root->setValue(path, value, reply);
        if (reply.isError()) {
            *error = QStringLiteral("%1=%2: %3")
                         .arg(pathText, value, reply.error().message().toString());
            const bool wrongValue = reply.error().name() == CMError::InvalidValue();
            return wrongValue ? Outcome::Refused : Outcome::NotWritten;
        }
    }
    return Outcome::Applied;
}
