#include "ModuleLoader.h"

#include <dlfcn.h>
#include <exception>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include "CMWorker.h"
#include "HostLog.h"

namespace {

// What every module exports under this plain name.
using WorkerCreate = CMAbstractWorker* (*)(QHash<QString, QVariant> config);
constexpr const char* WorkerCreateName = "worker_create";

struct DefaultModule {
    const char* file;
    bool optional = false;
};
// In the order of loading: the gateway comes last, so that no client asks for what is not there
// yet.
constexpr DefaultModule DefaultModules[] = {
    {.file = "liborvo_playlists.so"},
    {.file = "liborvo_files.so"},
    {.file = "liborvo_lists.so", .optional = true},
    {.file = "liborvo_player.so", .optional = true},
    {.file = "liborvo_gateway.so"},
};

} // namespace

ModuleLoader::ModuleLoader(const QHash<QString, QVariant>& config) : m_config(config) {}

ModuleLoader::~ModuleLoader() {
    while (!m_workers.empty())
        m_workers.pop_back();
}

QStringList ModuleLoader::defaultModules() {
    QStringList modules;
    for (const DefaultModule& row : DefaultModules) {
        const QString file = QString::fromLatin1(row.file);
        if (!row.optional || !find(file).isEmpty())
            modules.append(file);
    }
    return modules;
}

QString ModuleLoader::find(const QString& fileName) {
    const QDir bin(QCoreApplication::applicationDirPath());
    for (const char* folder : {"../lib", "../" ORVO_LIBDIR "/orvo", "../lib/orvo"}) {
        const QFileInfo file(QDir(bin.filePath(QString::fromLatin1(folder))), fileName);
        if (file.isFile())
            return QDir::cleanPath(file.absoluteFilePath());
    }
    return {};
}

bool ModuleLoader::load(const QString& module, QString* error) {
    const auto fail = [&](const QString& reason) {
        *error = QStringLiteral("cannot load module %1: %2").arg(module, reason);
        return false;
    };
    const QString file = module.contains(QLatin1Char('/')) ? module : find(module);
    if (file.isEmpty())
        return fail(QStringLiteral("there is no such file beside the program"));
    if (!QFileInfo::exists(file))
        return fail(QStringLiteral("there is no such file"));

    // Everything is resolved now: a module with a missing symbol must fail here, not in the middle
    // of a request.
    void* library = dlopen(QFile::encodeName(file).constData(), RTLD_NOW | RTLD_LOCAL);
    if (!library)
        return fail(QString::fromLocal8Bit(dlerror()));
    const auto create = reinterpret_cast<WorkerCreate>(dlsym(library, WorkerCreateName));
    if (!create)
        return fail(QStringLiteral("it has no worker_create"));

    std::unique_ptr<CMAbstractWorker> worker;
    try {
        worker.reset(create(m_config));
    } catch (const std::exception& exception) {
        return fail(QString::fromLocal8Bit(exception.what()));
    }
    if (!worker)
        return fail(QStringLiteral("its worker_create made no worker"));
    m_workers.push_back(std::move(worker));
    LOG4CPLUS_INFO(hostLog(), "loaded " << file);
    return true;
}
