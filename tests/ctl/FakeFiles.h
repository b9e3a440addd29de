#pragma once

#include "CMWorker.h"

// Stands in for the files module: the folder's files as a tree, ".flac" being tracks, and the
// folder's name.
class FakeFiles : public CMNodesWorker {
    Q_OBJECT
public:
    explicit FakeFiles(const QString& folder);

    QVariant getValue(const CMPath& path) override;
    void getRowsRequest(const CMGetRowsRequest& request) override;

private:
    QString m_folder;
};
