#pragma once

#include "CMWorker.h"

// Stands in for the files module: the folder's files as a tree, ".flac" being tracks, the
// folder's name, and that it is to be looked at again.
class FakeFiles : public CMNodesWorker {
    Q_OBJECT
public:
    explicit FakeFiles(const QString& folder);

    QVariant getValue(const CMPath& path) override;
    void setDataRequest(const CMSetDataRequest& request) override;
    void getRowsRequest(const CMGetRowsRequest& request) override;

    int rescans = 0;

private:
    QString m_folder;
};
