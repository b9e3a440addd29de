#pragma once

#include <QList>

#include "CMNode.h"
#include "CMWorker.h"

// A module under the prefix "test" that behaves well and badly on demand:
//
//   test:list      ten rows, "row 0" to "row 9", paged as lists of this platform are
//   test:echo      answers a set-data request with its value
//   test:late      answers a set-data request after a moment
//   test:silent    keeps every request and never answers
//   test:dropped   lets go of every request without a word
//   test:refuse    refuses with an error of its own
//   test:odd       rows whose values are of every kind
//   test:revised   a list that has a revision and a last played row
//   test:outdated  refuses because of a change meanwhile
//   test:big       a list of 20,000 rows
//   test:number    a value
class TestModule : public CMNodesWorker {
    Q_OBJECT
public:
    TestModule();
    ~TestModule() override;

    QVariant getValue(const CMPath& path) override;
    void setValue(const CMPath& path, const QVariant& value, const CMVoidReply& reply) override;

    // How many set-data requests reached a node.
    int writes() const { return m_writes; }
    void countWrite() { ++m_writes; }
    // What test:silent kept, oldest first.
    QList<CMSetDataRequest>& kept() { return m_kept; }

private:
    QList<CMNode*> m_ownNodes;
    QList<CMSetDataRequest> m_kept;
    QVariant m_number = 1;
    int m_writes = 0;
};
