#include "CMConnect.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QThread>

#include "FatalToStderr.h"
#include "Printing.h"

// A type that no queued connection can carry: it is not declared.
struct UndeclaredType {
    int number = 0;
};

class CMConnectSender : public QObject {
    Q_OBJECT
Q_SIGNALS:
    void plain(int number);
    void odd(const UndeclaredType& value);
};

namespace {
using Sender = CMConnectSender;
const char* const parametersText =
    "FATAL <verifyConnectionSignalParameters\\(sender, signal, receiver, type\\)>";
} // namespace

TEST(CMConnect, aConnectionDelivers) {
    Sender sender;
    QObject receiver;
    int seen = 0;
    cmConnect(&sender, &Sender::plain, &receiver, [&](int number) { seen = number; });
    Q_EMIT sender.plain(4);
    EXPECT_EQ(seen, 4);
}

TEST(CMConnect, aDirectConnectionCarriesAnyType) {
    Sender sender;
    QObject receiver;
    int seen = 0;
    cmConnect(&sender, &Sender::odd, &receiver,
              [&](const UndeclaredType& value) { seen = value.number; });
    Q_EMIT sender.odd({6});
    EXPECT_EQ(seen, 6);
}

TEST(CMConnect, aQueuedConnectionCarriesKnownTypes) {
    Sender sender;
    QObject receiver;
    int seen = 0;
    cmConnect(
        &sender, &Sender::plain, &receiver, [&](int number) { seen = number; },
        Qt::QueuedConnection);
    Q_EMIT sender.plain(4);
    EXPECT_EQ(seen, 0);
    QCoreApplication::processEvents();
    EXPECT_EQ(seen, 4);
}

TEST(CMConnect, aDisconnectedSlotHearsNothing) {
    Sender sender;
    Sender receiver;
    cmConnect(&sender, &Sender::plain, &receiver, &Sender::plain);
    int seen = 0;
    cmConnect(&receiver, &Sender::plain, &receiver, [&](int number) { seen = number; });
    cmDisconnect(&sender, &Sender::plain, &receiver, &Sender::plain);
    Q_EMIT sender.plain(4);
    EXPECT_EQ(seen, 0);
}

using CMConnectDeathTest = DeathTest;

TEST_F(CMConnectDeathTest, aQueuedConnectionOfAnUnknownTypeIsFatal) {
    Sender sender;
    QObject receiver;
    for (const int type : {int(Qt::QueuedConnection), int(Qt::BlockingQueuedConnection),
                           Qt::QueuedConnection | Qt::UniqueConnection}) {
        EXPECT_DEATH(
            {
                fatalToStderr();
                cmConnect(
                    &sender, &Sender::odd, &receiver, [](const UndeclaredType&) {},
                    Qt::ConnectionType(type));
            },
            parametersText)
            << type;
    }
}

TEST_F(CMConnectDeathTest, anAutomaticConnectionAcrossThreadsIsChecked) {
    Sender sender;
    QThread thread;
    QObject receiver;
    receiver.moveToThread(&thread);
    EXPECT_DEATH(
        {
            fatalToStderr();
            cmConnect(&sender, &Sender::odd, &receiver, [](const UndeclaredType&) {});
        },
        parametersText);
    EXPECT_TRUE(cmConnectionParametersRegistered(&sender, QMetaMethod::fromSignal(&Sender::plain),
                                                 &receiver, Qt::AutoConnection));
    EXPECT_TRUE(cmConnectionParametersRegistered(&sender, QMetaMethod::fromSignal(&Sender::odd),
                                                 &receiver, Qt::DirectConnection));
}

TEST_F(CMConnectDeathTest, aConnectionThatCannotBeMadeIsFatal) {
    QObject receiver;
    EXPECT_DEATH(
        {
            fatalToStderr();
            cmConnect(static_cast<Sender*>(nullptr), &Sender::plain, &receiver, [](int) {});
        },
        "FATAL <connect\\(sender, signal, receiver, slot, type\\)>");
}

TEST_F(CMConnectDeathTest, endingAConnectionThatIsNotThereIsFatal) {
    Sender sender;
    Sender receiver;
    EXPECT_DEATH(
        {
            fatalToStderr();
            cmDisconnect(&sender, &Sender::plain, &receiver, &Sender::plain);
        },
        "FATAL <disconnect\\(sender, signal, receiver, slot\\)>");
}

#include "CMConnectTest.moc"
