#include "TestModule.h"

#include <functional>

#include <QTimer>

namespace {

// A node made of two functions.
class FunctionNode : public CMListRowsNode {
public:
    using Rows = std::function<bool(const CMGetRowsRequest&)>;
    using Data = std::function<bool(const CMSetDataRequest&)>;

    FunctionNode(TestModule* module, const char* path, Rows rows, Data data)
        : CMListRowsNode(CMPath(QString::fromLatin1(path))),
          m_module(module),
          m_rows(rows),
          m_data(data) {
        setNodes(module->nodes());
    }

    bool getRowsRequest(const CMGetRowsRequest& request) override {
        return m_rows && m_rows(request);
    }
    bool setDataRequest(const CMSetDataRequest& request) override {
        if (!m_data)
            return false;
        m_module->countWrite();
        return m_data(request);
    }

private:
    TestModule* m_module;
    Rows m_rows;
    Data m_data;
};

OrvoRoles row(int number) {
    OrvoRoles roles;
    roles.setTitle(QStringLiteral("row %1").arg(number));
    roles.setPath(CMPath(QStringLiteral("test:row")) + QString::number(number));
    roles.setType(OrvoRolesType::Audio);
    return roles;
}

FunctionNode::Rows listOf(int count) {
    return [count](const CMGetRowsRequest& request) {
        OrvoRowsRoles answer;
        OrvoRoles roles;
        roles.setTitle(TrString("TestModule", "List of %1", {QString::number(count)}));
        answer.setRoles(roles);
        answer.setRowsCount(count);
        const int first = qBound(0, qMin(request.fromRow(), request.toRow()), count - 1);
        const int last = qBound(0, qMax(request.fromRow(), request.toRow()), count - 1);
        QVariantList rows;
        for (int i = first; i <= last; ++i)
            rows.append(QVariant(CMGlobal::itemRolesToList(request.roleNames(), row(i))));
        answer.setRows(rows);
        request.reply().setValue(answer);
        return true;
    };
}

bool oddRows(const CMGetRowsRequest& request) {
    OrvoRowsRoles answer;
    answer.setRowsCount(3);
    answer.setRows(
        {QVariant(QVariantList{QVariant(), 1.5, QVariant::fromValue(TrString("TestModule", "odd")),
                               QVariant::fromValue(CMPath(QStringLiteral("test:a b")))}),
         QVariant(7), QVariant()});
    request.reply().setValue(answer);
    return true;
}

bool revisedRows(const CMGetRowsRequest& request) {
    OrvoRowsRoles answer;
    answer.setRowsCount(0);
    answer.setRevision((qint64(1) << 53) - 1);
    answer.setLastPlayedIndex(4);
    answer.setResumeIndex(4);
    request.reply().setValue(answer);
    return true;
}

} // namespace

TestModule::TestModule() : CMNodesWorker({}, QStringLiteral("Test")) {
    const FunctionNode::Data echo = [](const CMSetDataRequest& request) {
        request.reply().setValue(request.value());
        return true;
    };
    const FunctionNode::Data late = [this](const CMSetDataRequest& request) {
        QTimer::singleShot(30, this, [request] { request.reply().setValue(request.value()); });
        return true;
    };
    const FunctionNode::Data silent = [this](const CMSetDataRequest& request) {
        m_kept.append(request);
        return true;
    };
    const FunctionNode::Data dropped = [](const CMSetDataRequest&) { return true; };
    const FunctionNode::Data refuse = [](const CMSetDataRequest& request) {
        request.reply().setError(CMError(QStringLiteral("Taken"),
                                         TrString("TestModule", "No \"%1\".", {"way"}),
                                         TrString("TestModule", "Refused")));
        return true;
    };
    const FunctionNode::Data outdated = [](const CMSetDataRequest& request) {
        request.reply().setError(CMError(CMError::Conflict(),
                                         TrString("TestModule", "It has changed."),
                                         CMError::DefaultTitle()));
        return true;
    };
    m_ownNodes = {
        new FunctionNode(this, "test:list", listOf(10), nullptr),
        new FunctionNode(this, "test:big", listOf(20000), nullptr),
        new FunctionNode(this, "test:odd", oddRows, nullptr),
        new FunctionNode(this, "test:echo", nullptr, echo),
        new FunctionNode(this, "test:late", nullptr, late),
        new FunctionNode(this, "test:silent", nullptr, silent),
        new FunctionNode(
            this, "test:dropped", [](const CMGetRowsRequest&) { return true; }, dropped),
        new FunctionNode(this, "test:refuse", nullptr, refuse),
        new FunctionNode(this, "test:revised", revisedRows, nullptr),
        new FunctionNode(this, "test:outdated", nullptr, outdated),
    };
}

TestModule::~TestModule() {
    qDeleteAll(m_ownNodes);
}

QVariant TestModule::getValue(const CMPath& path) {
    return path.toString() == QLatin1String("test:number") ? m_number : QVariant();
}

void TestModule::setValue(const CMPath& path, const QVariant& value, const CMVoidReply& reply) {
    if (path.toString() != QLatin1String("test:number")) {
        CMNodesWorker::setValue(path, value, reply);
        return;
    }
    m_number = value;
    reply.setFinished();
}
