#pragma once

#include <QList>
#include <QPair>
#include <QString>

class CMRootWorker;

// The settings as they must be before the first module reads them.
namespace Settings {

// On a first start, when no settings are kept yet: what a new device shows.
void applyFactorySettings(CMRootWorker* root, const QString& settingsFile);

enum class Outcome { Applied, Refused, NotWritten };

// Stores each (path, value text) pair. Stops at the first that is no setting or not its type
// (Refused) or that cannot be kept (NotWritten); *error says which and why. Those before it stay
// stored.
Outcome apply(CMRootWorker* root, const QList<QPair<QString, QString>>& settings, QString* error);

} // namespace Settings
