#pragma once

#include <memory>
#include <vector>

#include <QHash>
#include <QStringList>
#include <QVariant>

class CMAbstractWorker;

// Loads modules and owns the workers they make. Lives on the host's thread. The workers are
// destroyed in the reverse order of loading; the libraries stay mapped, because their types and
// texts may still be referred to.
class ModuleLoader {
public:
    explicit ModuleLoader(const QHash<QString, QVariant>& config);
    ~ModuleLoader();
    ModuleLoader(const ModuleLoader&) = delete;
    ModuleLoader& operator=(const ModuleLoader&) = delete;

    // The modules of a whole device that are there: those that can be missing are left out when
    // they are.
    static QStringList defaultModules();

    // A bare file name is looked for in the library folders beside the program. False when the file
    // is no module or makes no worker; *error says which file and why.
    bool load(const QString& module, QString* error);
    int count() const { return int(m_workers.size()); }

private:
    static QString find(const QString& fileName);

    QHash<QString, QVariant> m_config;
    std::vector<std::unique_ptr<CMAbstractWorker>> m_workers;
};
